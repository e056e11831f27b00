// CMeasurement::Initialize: a measurement from the flat record in which an outside producer hands
// over a finished measurement. A head of 1,400 bytes at fixed offsets, then a tail with the
// parameter texts and the vectors. Every length in the record is checked against what was given.
#include <algorithm>

#include "frame/ClassTable.h"
#include "frame/LateBound.h"
#include "frame/TextChecks.h"
#include "frame/TextCompare.h"
#include "measurement/Measurement.h"
#include "platform/CodePage.h"
#include "platform/LittleEndian.h"

namespace nvdl {

namespace {

constexpr std::size_t kHeadSize = 1400;

Bstr textField(const std::uint8_t* head, std::size_t offset, std::size_t size) {
    return Bstr(std::string_view(le::text(head + offset, size)));
}

// "name;value" in one field.
bool splitPair(const std::string& text, std::string& name, std::string& value) {
    std::size_t semicolon = text.find(';');
    if (semicolon == std::string::npos) return false;
    name = text.substr(0, semicolon);
    value = text.substr(semicolon + 1);
    return !trimmed(name).empty();
}

}  // namespace

bool CMeasurement::Initialize(const std::uint8_t* record, std::size_t available) {
    if (!record || available < kHeadSize) return false;
    const std::uint8_t* h = record;
    // Each setter keeps its own rules (a negative Averages is stored and refused); what counts is
    // that every setter ran over a record that was whole.
    bool ok = true;
    auto run = [](HRESULT) {};
    auto enumerated = [&](HRESULT (CMeasurement::*put)(VARIANT), std::size_t offset) {
        Variant text = Variant::fromAnsi(le::text(h + offset, 50));
        run((this->*put)(text));
    };

    run(put_Name(textField(h, 0, 100).get()));
    enumerated(&CMeasurement::put_FunctionType, 100);
    run(put_ResponseChannel(le::i16(h + 156)));
    run(put_Response(textField(h, 158, 50).get()));
    run(put_ReferenceChannel(le::i16(h + 208)));
    run(put_Reference(textField(h, 210, 50).get()));
    enumerated(&CMeasurement::put_XAxisType, 260);
    run(put_XStart(le::f32(h + 312)));
    run(put_XIncrement(le::f32(h + 316)));
    run(setDimensionByIndex(m_xdDimension, le::i32(h + 320)));
    const LONG size = le::i32(h + 376);
    const bool complex = le::i32(h + 380) != 0;
    run(put_Size(size));
    run(put_Complex(complex ? VARIANT_TRUE : VARIANT_FALSE));
    run(setDimensionByIndex(m_ydDimension, le::i32(h + 384)));
    enumerated(&CMeasurement::put_AveragingType, 438);
    run(put_AveragingParameter(le::f32(h + 488)));
    run(put_Averages(le::i16(h + 492)));
    run(put_Overlap(le::f32(h + 496)));
    enumerated(&CMeasurement::put_WindowType, 500);
    run(put_WindowParameter(le::f32(h + 552)));
    run(put_MeasurementTime(le::f64(h + 560)));
    run(put_TestId(textField(h, 568, 50).get()));
    run(put_FunctionQualifier(textField(h, 618, 50).get()));
    run(put_AcousticWeighting(textField(h, 668, 50).get()));
    run(put_Environment(textField(h, 718, 50).get()));
    run(put_UserId(textField(h, 768, 100).get()));
    const std::int32_t parameterBytes = le::i32(h + 868);
    run(put_Order(le::f32(h + 872)));
    run(put_RPM(le::f32(h + 876)));
    run(put_Z(le::f32(h + 880)));
    run(setDimensionByIndex(m_zdDimension, le::i32(h + 884)));
    const std::int32_t parameterCount = le::i32(h + 888);
    run(put_BandwidthCorrectionFactor(le::f32(h + 892)));
    run(put_Power(le::i32(h + 896)));
    run(put_Overload(le::i32(h + 900)));
    run(put_StorageUnitX(textField(h, 904, 50).get()));
    run(put_StorageUnitY(textField(h, 954, 50).get()));

    ISignalRange& range = m_signalRange;
    run(range.put_Min(le::f64(h + 1008)));
    run(range.put_Max(le::f64(h + 1016)));
    run(range.put_OverallMin(le::f64(h + 1024)));
    run(range.put_OverallMax(le::f64(h + 1032)));
    run(range.put_Mean(le::f64(h + 1040)));
    run(range.put_Rms(le::f64(h + 1048)));
    run(range.put_StandardDeviation(le::f64(h + 1056)));
    run(range.put_Factor(le::f64(h + 1064)));
    run(range.put_UnitOffset(le::f64(h + 1072)));
    run(range.put_Range(le::f32(h + 1080)));
    run(put_Usage(le::i32(h + 1188)));
    m_isUsefullData = le::i32(h + 1192) != 0 ? 1 : 0;

    // Parameters: two "name;value" fields, an extra pair, the two loudness values, then the tail's texts.
    std::vector<std::pair<std::string, std::string>> parameters;
    for (std::size_t offset : {1088u, 1138u}) {
        std::string name, value;
        if (splitPair(le::text(h + offset, 50), name, value)) parameters.emplace_back(name, value);
    }
    std::string extraName = le::text(h + 1196, 50);
    if (!trimmed(extraName).empty()) parameters.emplace_back(extraName, le::text(h + 1246, 50));
    std::string sones = le::text(h + 1296, 50), phons = le::text(h + 1346, 50);
    if (!sones.empty()) parameters.emplace_back("Loudness N in sones", sones);
    if (!phons.empty()) parameters.emplace_back("Loudness level LN in phons", phons);

    std::size_t at = kHeadSize;
    if (parameterBytes < 0 || static_cast<std::size_t>(parameterBytes) > available - at) return false;
    const std::uint8_t* text = record + at;
    const std::uint8_t* end = text + parameterBytes;
    for (std::int32_t i = 0; i < parameterCount && text < end; ++i) {
        std::string name = le::text(text, static_cast<std::size_t>(end - text));
        text += std::min(name.size() + 1, static_cast<std::size_t>(end - text));
        std::string value = text < end ? le::text(text, static_cast<std::size_t>(end - text)) : std::string();
        text += std::min(value.size() + 1, static_cast<std::size_t>(end - text));
        parameters.emplace_back(name, value);
    }
    at += static_cast<std::size_t>(parameterBytes);
    for (const auto& [name, value] : parameters) {
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

    // Vectors: X on "Arbitrary" and "Octaves" axes, Y real, Y imaginary when complex.
    const std::size_t n = size > 0 ? static_cast<std::size_t>(m_size) : 0;
    const std::size_t vectorBytes = static_cast<std::size_t>(std::max<LONG>(size, 0)) * sizeof(float);
    auto readVector = [&](std::vector<float>& into) -> bool {
        if (vectorBytes > available - at) return false;
        into.resize(n);
        for (std::size_t i = 0; i < n; ++i) into[i] = le::f32(record + at + i * sizeof(float));
        at += vectorBytes;
        return true;
    };
    std::string axis = le::text(h + 260, 50);
    std::vector<float> values;
    if (equalsIgnoringCase(widen(axis), u"Arbitrary") || equalsIgnoringCase(widen(axis), u"Octaves")) {
        if (!readVector(values)) return false;
        run(SetXValues(0, static_cast<LONG>(n), values.data()));
    }
    std::vector<float> re, im;
    if (!readVector(re)) return false;
    if (complex && !readVector(im)) return false;
    run(SetYValues(0, static_cast<LONG>(n), re.data(), complex ? im.data() : nullptr));
    return ok;
}

}  // namespace nvdl
