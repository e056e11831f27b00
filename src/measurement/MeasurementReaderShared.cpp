// What the readers of the stored measurement record share: the header fields through the setters,
// dimensions by index, the vectors, and the parameters in both stored forms.
#include <climits>

#include "frame/ClassTable.h"
#include "frame/TextChecks.h"
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "measurement/Parameter.h"
#include "nvdl/IParameter.h"
#include "platform/CodePage.h"
#include "platform/LittleEndian.h"
#include "nvdl/SafeArray.h"
#include "project/UnitClient.h"

namespace nvdl {

namespace {

HRESULT floatVariant(const std::vector<float>& values, Variant& into) {
    into.parray = makeFloatArray(values);
    if (!into.parray) return E_OUTOFMEMORY;
    into.vt = VT_ARRAY | VT_R4;
    return S_OK;
}

}  // namespace

HRESULT MeasurementStreamFormat::setDimensionByIndex(IDispatch*& slot, LONG index, bool strict) {
    IDispatch* found = DimensionAtIndex(index);
    if (!found && strict) {
        // Without a unit service no index can be resolved, and none is refused.
        IDimensions* table = GetDimensions();
        if (table) {
            table->Release();
            return E_FAIL;
        }
    }
    if (slot) slot->Release();
    slot = found;
    return S_OK;
}

HRESULT MeasurementStreamFormat::setYDimensionByIndex(CMeasurement& m, LONG index, bool strict) {
    HRESULT h = setDimensionByIndex(m.m_ydDimension, index, strict);
    m.m_yDimensionText = DimensionName(m.m_ydDimension);
    return h;
}

HRESULT MeasurementStreamFormat::applyHeader(CMeasurement& m, const MeasurementHeaderRecord& r, HeaderLayout layout,
                                             bool strictDimensions) {
    // A setter's refusal of a stored value leaves that property as it was; only an unknown
    // dimension index fails the read, and only when asked. The order of the setters is the order in
    // which each one finds what it depends on already in place.
    const auto stored = [&](auto member) { return record::stores(headerFields(), layout, member); };
    const auto enumerated = [&](HRESULT (CMeasurement::*put)(VARIANT), const std::string& text) {
        (m.*put)(Variant::fromAnsi(text));
    };
    const auto text = [&](HRESULT (CMeasurement::*put)(BSTR), const std::string& value) {
        (m.*put)(Bstr(std::string_view(value)).get());
    };
    using H = MeasurementHeaderRecord;
    HRESULT h;

    text(&CMeasurement::put_Name, r.name);
    enumerated(&CMeasurement::put_FunctionType, r.functionType);
    text(&CMeasurement::put_Response, r.response);
    m.put_ResponseChannel(r.responseChannel);
    text(&CMeasurement::put_Reference, r.reference);
    m.put_ReferenceChannel(r.referenceChannel);
    m.put_Complex(r.complex != 0 ? VARIANT_TRUE : VARIANT_FALSE);
    if (stored(&H::overload)) m.put_Overload(r.overload);
    if (stored(&H::usage)) m.put_Usage(r.usage);
    if (FAILED(h = setDimensionByIndex(m.m_xdDimension, r.xDimension, strictDimensions))) return h;
    text(&CMeasurement::put_StorageUnitX, r.storageUnitX);
    enumerated(&CMeasurement::put_XAxisType, r.xAxisType);
    m.put_XStart(r.xStart);
    m.put_XIncrement(r.xIncrement);
    if (FAILED(h = setYDimensionByIndex(m, r.yDimension, strictDimensions))) return h;
    text(&CMeasurement::put_StorageUnitY, r.storageUnitY);
    enumerated(&CMeasurement::put_AveragingType, r.averagingType);
    m.put_AveragingParameter(r.averagingParameter);
    m.put_Averages(r.averages);
    m.put_Overlap(r.overlap);
    enumerated(&CMeasurement::put_WindowType, r.windowType);
    m.put_WindowParameter(r.windowParameter);
    m.put_MeasurementTime(r.measurementTime);
    if (stored(&H::testId)) {
        text(&CMeasurement::put_TestId, r.testId);
        text(&CMeasurement::put_FunctionQualifier, r.functionQualifier);
        text(&CMeasurement::put_AcousticWeighting, r.acousticWeighting);
        text(&CMeasurement::put_Environment, r.environment);
        text(&CMeasurement::put_UserId, r.userId);
    }
    if (stored(&H::order)) {
        m.put_Order(r.order);
        m.put_RPM(r.rpm);
        m.put_Z(r.z);
        if (FAILED(h = setDimensionByIndex(m.m_zdDimension, r.zDimension, strictDimensions))) return h;
    }
    if (stored(&H::bandwidthCorrectionFactor)) m.put_BandwidthCorrectionFactor(r.bandwidthCorrectionFactor);
    if (stored(&H::power)) m.put_Power(r.power);
    return S_OK;
}

HRESULT MeasurementStreamFormat::feedVectors(CMeasurement& m, std::vector<float>& re, const std::vector<float>* im,
                                             const std::vector<float>* x) {
    if (re.empty()) {
        m.put_Size(0);
        m.m_dataLoaded = 1;
        return S_OK;
    }
    Variant realArray, imagArray, xArray;
    HRESULT h;
    if (FAILED(h = floatVariant(re, realArray))) return h;
    if (im && FAILED(h = floatVariant(*im, imagArray))) return h;
    if (x && FAILED(h = floatVariant(*x, xArray))) return h;

    // YArray takes an empty StorageUnitY from the dimension text; the stored unit stands instead.
    const std::string storedUnitY = m.m_storageUnitY;
    Bstr dimension(std::string_view(m.m_yDimensionText.empty() ? std::string("1") : m.m_yDimensionText));
    h = m.YArray(&realArray, static_cast<LONG>(re.size()), im ? &imagArray : nullptr, dimension.get());
    m.m_storageUnitY = storedUnitY;
    if (FAILED(h)) return h;
    if (x) {
        const LONG uncompleted = m.m_isUncompleted;
        m.m_isUncompleted = 0;
        h = m.put_XArray(xArray);
        m.m_isUncompleted = uncompleted;
        if (FAILED(h)) return h;
    }
    m.m_dataLoaded = 1;
    return S_OK;
}

HRESULT MeasurementStreamFormat::readVectorsIntoMemory(CMeasurement& m, StreamCursor& cursor, LONG size, bool imaginary,
                                                       bool xVector) {
    const std::size_t n = size > 0 ? static_cast<std::size_t>(size) : 0;
    std::vector<float> re, im, x;
    HRESULT h;
    if (FAILED(h = cursor.readFloats(n, re))) return h;
    if (imaginary && FAILED(h = cursor.readFloats(n, im))) return h;
    if (xVector && n > 0 && FAILED(h = cursor.readFloats(n, x))) return h;
    return feedVectors(m, re, imaginary ? &im : nullptr, xVector && n > 0 ? &x : nullptr);
}

void MeasurementStreamFormat::fallBackToWholeRecord(CMeasurement& m, LONG size) {
    m.m_isUncompleted = 0;
    m.m_compressionFactor = 1.0f;
    m.m_isUsefullData = 1;
    m.m_currentBlock = -1;
    m.m_blockStartOffset = 0;
    m.m_fileSamples = size;
    m.m_dataOffset = 0;
    m.put_Size(size);
}

HRESULT MeasurementStreamFormat::addParameter(CMeasurement& m, const std::string& name, const std::string& value) {
    // The parameters collection holds no parameter without a name: such a pair is passed over.
    Bstr nameText{std::string_view(name)}, valueText{std::string_view(value)};
    if (IsBlankString(nameText.get())) return S_FALSE;
    IDispatch* object = nullptr;
    HRESULT h = createInstance(CLSID_CParameter, &object);
    if (FAILED(h)) return h;
    auto* parameter = static_cast<IParameter*>(object);
    parameter->put_Name(nameText.get());
    parameter->put_Value(valueText.get());
    ICollection* parameters = nullptr;
    if (SUCCEEDED(h = m.get_Parameters(&parameters))) {
        Variant key, before, after;
        LONG index = 0;
        h = parameters->Add(object, &key, &before, &after, &index);
        parameters->Release();
    }
    object->Release();
    return h;
}

HRESULT MeasurementStreamFormat::readParameterText(CMeasurement& m, StreamCursor& cursor, std::uint64_t offset,
                                                   LONG length, LONG count) {
    if (count <= 0) return S_OK;
    if (length < 0) return E_FAIL;
    HRESULT h;
    if (FAILED(h = cursor.seek(offset))) return h;
    // The length counts two zero bytes per pair, one more than a pair with an empty name has: the
    // text may end before it.
    std::vector<std::uint8_t> text;
    if (FAILED(h = cursor.readAtMost(static_cast<std::size_t>(length), text))) return h;
    std::size_t at = 0;
    auto next = [&]() {
        std::size_t end = at;
        while (end < text.size() && text[end]) ++end;
        std::string s(reinterpret_cast<const char*>(text.data()) + at, std::min(end - at, kParameterTextLimit));
        at = end < text.size() ? end + 1 : end;
        return s;
    };
    for (LONG i = 0; i < count && at < text.size(); ++i) {
        std::string name = next();
        std::string value = next();
        if (FAILED(h = addParameter(m, name, value))) return h;
    }
    return S_OK;
}

HRESULT MeasurementStreamFormat::readParameterRecords(CMeasurement& m, IStream* stream, StreamCursor& cursor, LONG count) {
    if (count <= 0) return S_OK;
    if (!cursor.holds(static_cast<std::uint64_t>(count) * CParameterPersistStream::kRecordSize)) return E_FAIL;
    for (LONG i = 0; i < count; ++i) {
        IDispatch* object = nullptr;
        HRESULT h = createInstance(CLSID_CParameter, &object);
        if (FAILED(h)) return h;
        auto* record = static_cast<IParameter*>(object);
        IPersistStream* persist = nullptr;
        if (SUCCEEDED(h = object->QueryInterface(IID_IPersistStream, reinterpret_cast<void**>(&persist)))) {
            h = persist->Load(stream);
            persist->Release();
        }
        Bstr name, value;
        if (SUCCEEDED(h)) {
            record->get_Name(name.out());
            record->get_Value(value.out());
        }
        object->Release();
        if (FAILED(h) || FAILED(h = addParameter(m, name.ansi(), value.ansi()))) return h;
    }
    return S_OK;
}

void MeasurementStreamFormat::takeFormatVersion(CMeasurement& m, LONG tag) {
    if (m.m_formatVersion == -1) m.m_formatVersion = tag;
}

HRESULT MeasurementStreamFormat::setDataOffset(CMeasurement& m, std::uint64_t position) {
    if (position > static_cast<std::uint64_t>(LONG_MAX)) return E_FAIL;
    m.m_dataOffset = static_cast<LONG>(position);
    return S_OK;
}

LONG MeasurementStreamFormat::storedAxis(const std::string& text) {
    return measurementEnumTable().lookupEnum(widen(text));
}

bool MeasurementStreamFormat::holdsSamples(const StreamCursor& cursor, LONG size, int vectors) {
    if (size < 0) return false;
    return cursor.holds(static_cast<std::uint64_t>(size) * sizeof(float) * static_cast<std::uint64_t>(vectors));
}

}  // namespace nvdl
