// A measurement and the flat record in which an outside producer hands one over: Initialize fills
// the measurement from a record through its setters, recordOf builds a record from its getters.
#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/TextChecks.h"
#include "measurement/FlatRecord.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementGetters.h"
#include "nvdl/IParameter.h"
#include "platform/CodePage.h"
#include "project/UnitClient.h"

namespace nvdl {

namespace {

// "name;value" in one field.
bool splitPair(const std::string& text, std::string& name, std::string& value) {
    std::size_t semicolon = text.find(';');
    if (semicolon == std::string::npos) return false;
    name = text.substr(0, semicolon);
    value = text.substr(semicolon + 1);
    return !trimmed(name).empty();
}

// The parameters of the head's fields, in the order of the head, then those of the tail.
std::vector<std::pair<std::string, std::string>> parametersOf(const flat::Record& r) {
    std::vector<std::pair<std::string, std::string>> parameters;
    for (const std::string* field : {&r.head.parameter1, &r.head.parameter2}) {
        std::string name, value;
        if (splitPair(*field, name, value)) parameters.emplace_back(name, value);
    }
    if (!trimmed(r.head.extraName).empty()) parameters.emplace_back(r.head.extraName, r.head.extraValue);
    if (!r.head.loudnessSones.empty()) parameters.emplace_back("Loudness N in sones", r.head.loudnessSones);
    if (!r.head.loudnessPhons.empty()) parameters.emplace_back("Loudness level LN in phons", r.head.loudnessPhons);
    parameters.insert(parameters.end(), r.parameters.begin(), r.parameters.end());
    return parameters;
}

Bstr bstrOf(const std::string& text) { return Bstr(std::string_view(text)); }

}  // namespace

bool CMeasurement::Initialize(const std::uint8_t* bytes, std::size_t available) {
    flat::Record r;
    if (!flat::decodeHead(bytes, available, r.head)) return false;
    const bool whole = flat::readRecord(bytes, available, r);
    const flat::Head& h = r.head;
    // Each setter keeps its own rules (a negative Averages is stored and refused); what counts is
    // that every setter ran over a record that was whole.
    auto enumerated = [&](HRESULT (CMeasurement::*put)(VARIANT), const std::string& text) {
        (this->*put)(Variant::fromAnsi(text));
    };
    put_Name(bstrOf(h.name).get());
    enumerated(&CMeasurement::put_FunctionType, h.functionType);
    put_ResponseChannel(h.responseChannel);
    put_Response(bstrOf(h.response).get());
    put_ReferenceChannel(h.referenceChannel);
    put_Reference(bstrOf(h.reference).get());
    enumerated(&CMeasurement::put_XAxisType, h.xAxisType);
    put_XStart(h.xStart);
    put_XIncrement(h.xIncrement);
    setDimensionByIndex(m_xdDimension, h.xDimension);
    put_Size(h.size);
    put_Complex(h.complex != 0 ? VARIANT_TRUE : VARIANT_FALSE);
    setDimensionByIndex(m_ydDimension, h.yDimension);
    enumerated(&CMeasurement::put_AveragingType, h.averagingType);
    put_AveragingParameter(h.averagingParameter);
    put_Averages(h.averages);
    put_Overlap(h.overlap);
    enumerated(&CMeasurement::put_WindowType, h.windowType);
    put_WindowParameter(h.windowParameter);
    put_MeasurementTime(h.measurementTime);
    put_TestId(bstrOf(h.testId).get());
    put_FunctionQualifier(bstrOf(h.functionQualifier).get());
    put_AcousticWeighting(bstrOf(h.acousticWeighting).get());
    put_Environment(bstrOf(h.environment).get());
    put_UserId(bstrOf(h.userId).get());
    put_Order(h.order);
    put_RPM(h.rpm);
    put_Z(h.z);
    setDimensionByIndex(m_zdDimension, h.zDimension);
    put_BandwidthCorrectionFactor(h.bandwidthCorrectionFactor);
    put_Power(h.power);
    put_Overload(h.overload);
    put_StorageUnitX(bstrOf(h.storageUnitX).get());
    put_StorageUnitY(bstrOf(h.storageUnitY).get());

    ISignalRange& range = m_signalRange;
    range.put_Min(h.rangeMin);
    range.put_Max(h.rangeMax);
    range.put_OverallMin(h.overallMin);
    range.put_OverallMax(h.overallMax);
    range.put_Mean(h.mean);
    range.put_Rms(h.rms);
    range.put_StandardDeviation(h.standardDeviation);
    range.put_Factor(h.factor);
    range.put_UnitOffset(h.unitOffset);
    range.put_Range(h.range);
    put_Usage(h.usage);
    m_isUsefullData = h.isUsefullData != 0 ? 1 : 0;
    if (!whole) return false;

    bool ok = true;
    for (const auto& [name, value] : parametersOf(r)) {
        IDispatch* parameter = nullptr;
        if (FAILED(createInstance(CLSID_CParameter, &parameter))) {
            ok = false;
            continue;
        }
        latebound::put(parameter, u"Name", Variant::fromAnsi(name));
        latebound::put(parameter, u"Value", Variant::fromAnsi(value));
        Variant key, before, after;
        LONG index;
        m_parameters.Add(parameter, &key, &before, &after, &index);
        parameter->Release();
    }
    const LONG n = static_cast<LONG>(r.re.size());
    if (!r.x.empty()) SetXValues(0, n, r.x.data());
    SetYValues(0, n, r.re.data(), r.im.empty() ? nullptr : r.im.data());
    return ok;
}

namespace flat {

using namespace getters;

// The reverse of Initialize: the parameters all go to the tail, the head's parameter fields stay empty.
Record recordOf(CMeasurement& m) {
    using C = CMeasurement;
    Record r;
    Head& h = r.head;
    h.name = textOf(m, &C::get_Name);
    h.functionType = enumeratedText(m, &C::get_FunctionType);
    h.responseChannel = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_ResponseChannel));
    h.response = textOf(m, &C::get_Response);
    h.referenceChannel = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_ReferenceChannel));
    h.reference = textOf(m, &C::get_Reference);
    h.xAxisType = enumeratedText(m, &C::get_XAxisType);
    h.xStart = valueOf<float>(m, &C::get_XStart);
    h.xIncrement = valueOf<float>(m, &C::get_XIncrement);
    h.xDimension = dimensionIndex(m, &C::get_XdDimension);
    h.yDimension = dimensionIndex(m, &C::get_YdDimension);
    h.averagingType = enumeratedText(m, &C::get_AveragingType);
    h.averagingParameter = valueOf<float>(m, &C::get_AveragingParameter);
    h.averages = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_Averages));
    h.overlap = valueOf<float>(m, &C::get_Overlap);
    h.windowType = enumeratedText(m, &C::get_WindowType);
    h.windowParameter = valueOf<float>(m, &C::get_WindowParameter);
    h.measurementTime = valueOf<double>(m, &C::get_MeasurementTime);
    h.testId = textOf(m, &C::get_TestId);
    h.functionQualifier = textOf(m, &C::get_FunctionQualifier);
    h.acousticWeighting = textOf(m, &C::get_AcousticWeighting);
    h.environment = textOf(m, &C::get_Environment);
    h.userId = textOf(m, &C::get_UserId);
    h.order = valueOf<float>(m, &C::get_Order);
    h.rpm = valueOf<float>(m, &C::get_RPM);
    h.z = valueOf<float>(m, &C::get_Z);
    h.zDimension = dimensionIndex(m, &C::get_ZdDimension);
    h.bandwidthCorrectionFactor = valueOf<float>(m, &C::get_BandwidthCorrectionFactor);
    h.power = valueOf<LONG>(m, &C::get_Power);
    h.overload = valueOf<LONG>(m, &C::get_Overload);
    h.storageUnitX = textOf(m, &C::get_StorageUnitX);
    h.storageUnitY = textOf(m, &C::get_StorageUnitY);
    ISignalRange& range = m.signalRange();
    h.rangeMin = valueOf<double>(range, &ISignalRange::get_Min);
    h.rangeMax = valueOf<double>(range, &ISignalRange::get_Max);
    h.overallMin = valueOf<double>(range, &ISignalRange::get_OverallMin);
    h.overallMax = valueOf<double>(range, &ISignalRange::get_OverallMax);
    h.mean = valueOf<double>(range, &ISignalRange::get_Mean);
    h.rms = valueOf<double>(range, &ISignalRange::get_Rms);
    h.standardDeviation = valueOf<double>(range, &ISignalRange::get_StandardDeviation);
    h.factor = valueOf<double>(range, &ISignalRange::get_Factor);
    h.unitOffset = valueOf<double>(range, &ISignalRange::get_UnitOffset);
    h.range = valueOf<float>(range, &ISignalRange::get_Range);
    h.usage = valueOf<LONG>(m, &C::get_Usage);
    h.isUsefullData = valueOf<SHORT>(m, &C::get_IsUsefullData) != 0 ? 1 : 0;

    ComPtr<ICollection> parameters;
    LONG count = 0;
    if (SUCCEEDED(m.get_Parameters(parameters.out())) && parameters && SUCCEEDED(parameters->get_Count(&count))) {
        for (LONG i = 0; i < count; ++i) {
            ComPtr<IDispatch> item;
            Variant name, value;
            if (FAILED(parameters->Item(Variant::fromLong(i), item.out())) ||
                FAILED(latebound::get(item.get(), u"Name", &name)) || FAILED(name.changeType(VT_BSTR)) ||
                FAILED(latebound::get(item.get(), u"Value", &value)) || FAILED(value.changeType(VT_BSTR)))
                continue;
            r.parameters.emplace_back(bstrToAnsi(name.bstrVal), bstrToAnsi(value.bstrVal));
        }
    }
    const LONG n = std::max<LONG>(valueOf<LONG>(m, &C::get_Size), 0);
    r.re.resize(static_cast<std::size_t>(n));
    if (m.isComplex()) r.im.resize(static_cast<std::size_t>(n));
    m.GetYValues(0, n, r.re.data(), r.im.empty() ? nullptr : r.im.data());
    if (storesX(h)) {
        r.x.resize(static_cast<std::size_t>(n));
        m.GetXValues(0, n, r.x.data());
    }
    return r;
}

}  // namespace flat

}  // namespace nvdl
