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

constexpr std::size_t kTextField = 50;
constexpr std::size_t kUserIdField = 100;

Bstr textAt(const std::uint8_t* block, int offset, std::size_t size) {
    return Bstr(std::string_view(le::text(block + offset, size)));
}

HRESULT floatVariant(const std::vector<float>& values, Variant& into) {
    into.parray = makeFloatArray(values);
    if (!into.parray) return E_OUTOFMEMORY;
    into.vt = VT_ARRAY | VT_R4;
    return S_OK;
}

}  // namespace

const MeasurementHeaderLayout kLayoutGeneration2 = {
    0, 50, 104, 106, 156, 158, 208, 260, 264, 268, 272, 324, 328, 332, 336, 386, 436, 440, 444, 448, 500, 504,
    -1, -1, -1, -1, -1,
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
};
const MeasurementHeaderLayout kLayoutGeneration3 = {
    0, 50, 104, 106, 156, 158, 208, 260, 264, 268, 272, 324, 328, 332, 336, 386, 436, 440, 444, 448, 500, 504,
    512, 562, 612, 662, 712,
    -1, -1, -1, -1, -1, -1, -1, -1, -1, -1,
};
const MeasurementHeaderLayout kLayoutGeneration4 = {
    0, 50, 104, 106, 156, 158, 208, 260, 264, 268, 272, 324, 328, 332, 336, 386, 436, 440, 444, 448, 500, 504,
    512, 562, 612, 662, 712,
    -1, -1, -1, -1, -1, 812, -1, -1, -1, -1,
};
const MeasurementHeaderLayout kLayoutGeneration6 = {
    4, 54, 108, 110, 160, 162, 212, 264, 268, 272, 276, 328, 332, 336, 340, 390, 440, 444, 448, 452, 504, 512,
    520, 570, 620, 670, 720,
    820, 824, 828, 832, 836, 840, -1, -1, -1, -1,
};
const MeasurementHeaderLayout kLayoutGeneration7 = {
    4, 54, 108, 110, 160, 162, 212, 264, 268, 272, 276, 328, 332, 336, 340, 390, 440, 444, 448, 452, 504, 512,
    520, 570, 620, 670, 720,
    820, 824, 828, 832, 836, 840, 844, 848, -1, -1,
};
const MeasurementHeaderLayout kLayoutGeneration8 = {
    4, 54, 108, 110, 160, 162, 212, 264, 268, 272, 276, 328, 332, 336, 340, 390, 440, 444, 448, 452, 504, 512,
    520, 570, 620, 670, 720,
    820, 824, 828, 832, 836, 840, 844, 848, 852, 856,
};

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

HRESULT MeasurementStreamFormat::applyHeader(CMeasurement& m, const std::uint8_t* b, const MeasurementHeaderLayout& l,
                                             bool strictDimensions) {
    // A setter's refusal of a stored value leaves that property as it was; only an unknown
    // dimension index fails the read, and only when asked.
    auto enumerated = [&](HRESULT (CMeasurement::*put)(VARIANT), int offset) {
        (m.*put)(Variant::fromAnsi(le::text(b + offset, kTextField)));
    };
    auto text = [&](HRESULT (CMeasurement::*put)(BSTR), int offset, std::size_t size) {
        (m.*put)(textAt(b, offset, size).get());
    };
    HRESULT h;

    text(&CMeasurement::put_Name, l.name, kTextField);
    enumerated(&CMeasurement::put_FunctionType, l.functionType);
    text(&CMeasurement::put_Response, l.response, kTextField);
    m.put_ResponseChannel(le::i16(b + l.responseChannel));
    text(&CMeasurement::put_Reference, l.reference, kTextField);
    m.put_ReferenceChannel(le::i16(b + l.referenceChannel));
    m.put_Complex(le::i32(b + l.complex) != 0 ? VARIANT_TRUE : VARIANT_FALSE);
    if (l.overload >= 0) m.put_Overload(le::i32(b + l.overload));
    if (l.usage >= 0) m.put_Usage(le::i32(b + l.usage));
    if (FAILED(h = setDimensionByIndex(m.m_xdDimension, le::i32(b + l.xDimension), strictDimensions))) return h;
    text(&CMeasurement::put_StorageUnitX, l.storageUnitX, kTextField);
    enumerated(&CMeasurement::put_XAxisType, l.xAxisType);
    m.put_XStart(le::f32(b + l.xStart));
    m.put_XIncrement(le::f32(b + l.xIncrement));
    if (FAILED(h = setYDimensionByIndex(m, le::i32(b + l.yDimension), strictDimensions))) return h;
    text(&CMeasurement::put_StorageUnitY, l.storageUnitY, kTextField);
    enumerated(&CMeasurement::put_AveragingType, l.averagingType);
    m.put_AveragingParameter(le::f32(b + l.averagingParameter));
    m.put_Averages(le::i16(b + l.averages));
    m.put_Overlap(le::f32(b + l.overlap));
    enumerated(&CMeasurement::put_WindowType, l.windowType);
    m.put_WindowParameter(le::f32(b + l.windowParameter));
    m.put_MeasurementTime(le::f64(b + l.measurementTime));
    if (l.testId >= 0) {
        text(&CMeasurement::put_TestId, l.testId, kTextField);
        text(&CMeasurement::put_FunctionQualifier, l.functionQualifier, kTextField);
        text(&CMeasurement::put_AcousticWeighting, l.acousticWeighting, kTextField);
        text(&CMeasurement::put_Environment, l.environment, kTextField);
        text(&CMeasurement::put_UserId, l.userId, kUserIdField);
    }
    if (l.order >= 0) {
        m.put_Order(le::f32(b + l.order));
        m.put_RPM(le::f32(b + l.rpm));
        m.put_Z(le::f32(b + l.z));
        if (FAILED(h = setDimensionByIndex(m.m_zdDimension, le::i32(b + l.zDimension), strictDimensions))) return h;
    }
    if (l.bandwidthCorrectionFactor >= 0) m.put_BandwidthCorrectionFactor(le::f32(b + l.bandwidthCorrectionFactor));
    if (l.power >= 0) m.put_Power(le::i32(b + l.power));
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

LONG MeasurementStreamFormat::storedAxis(const std::uint8_t* field) {
    return measurementEnumTable().lookupEnum(widen(le::text(field, kTextField)));
}

bool MeasurementStreamFormat::holdsSamples(const StreamCursor& cursor, LONG size, int vectors) {
    if (size < 0) return false;
    return cursor.holds(static_cast<std::uint64_t>(size) * sizeof(float) * static_cast<std::uint64_t>(vectors));
}

}  // namespace nvdl
