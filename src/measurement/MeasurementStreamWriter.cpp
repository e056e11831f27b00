// Writer of the stored measurement record, generation 20071012: three fixed blocks (920, 656 and
// 116 bytes), each built in a zeroed buffer and flushed, then the vectors and the parameter text
// in one run. The header comes through the measurement's property getters.
#include "measurement/Measurement.h"
#include "measurement/MeasurementGetters.h"
#include "measurement/MeasurementStreamFormat.h"
#include "nvdl/IParameter.h"
#include "platform/LittleEndian.h"
#include "platform/Registry.h"
#include "project/UnitClient.h"

namespace nvdl {

using namespace measurement_tag;

using namespace getters;

namespace {

constexpr ULONG kLargestWrite = 1u << 30;


HRESULT writeAll(IStream* stream, const std::uint8_t* bytes, std::size_t size) {
    while (size > 0) {
        ULONG chunk = static_cast<ULONG>(std::min<std::size_t>(size, kLargestWrite)), written = 0;
        HRESULT h = stream->Write(bytes, chunk, &written);
        if (FAILED(h)) return h;
        if (written != chunk) return STG_E_MEDIUMFULL;
        bytes += chunk;
        size -= chunk;
    }
    return S_OK;
}

HRESULT writeBlock(IStream* stream, const std::uint8_t* block, std::size_t size) {
    HRESULT h = writeAll(stream, block, size);
    return FAILED(h) ? h : stream->Commit(STGC_DEFAULT);
}

void appendFloats(std::vector<std::uint8_t>& run, const std::vector<float>& values) {
    std::size_t at = run.size();
    run.resize(at + values.size() * sizeof(float));
    for (float v : values) {
        le::putF32(run.data() + at, v);
        at += sizeof(float);
    }
}

// "name\0value\0" per parameter; an empty name gives no bytes at all, its zero byte included.
struct ParameterText {
    std::vector<std::uint8_t> bytes;
    LONG countedLength = 0;
    LONG count = 0;
};

ParameterText parameterText(CObjectCollection& parameters) {
    ParameterText text;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        IParameter* parameter = nullptr;
        if (FAILED(parameters.itemAt(i)->QueryInterface(IID_IParameter, reinterpret_cast<void**>(&parameter)))) continue;
        Bstr name, value;
        parameter->get_Name(name.out());
        parameter->get_Value(value.out());
        parameter->Release();
        const std::string n = name.ansi(), v = value.ansi();
        if (!n.empty()) {
            text.bytes.insert(text.bytes.end(), n.begin(), n.end());
            text.bytes.push_back(0);
        }
        text.bytes.insert(text.bytes.end(), v.begin(), v.end());
        text.bytes.push_back(0);
        text.countedLength += static_cast<LONG>(2 + n.size() + v.size());
        ++text.count;
    }
    return text;
}

// Copies `bytes` bytes from `offset` of `source` to the end of `target`, a few megabytes at a time.
HRESULT copyRun(IStream* source, std::int64_t offset, std::uint64_t bytes, IStream* target) {
    if (FAILED(source->Seek(offset, STREAM_SEEK_SET, nullptr))) return STG_E_READFAULT;
    std::vector<std::uint8_t> chunk(std::min<std::uint64_t>(bytes, 4u << 20));
    while (bytes > 0) {
        const ULONG want = static_cast<ULONG>(std::min<std::uint64_t>(bytes, chunk.size()));
        ULONG got = 0;
        if (FAILED(source->Read(chunk.data(), want, &got)) || got != want) return STG_E_READFAULT;
        if (HRESULT h = writeAll(target, chunk.data(), want); FAILED(h)) return h;
        bytes -= want;
    }
    return S_OK;
}

}  // namespace

MeasurementPagingRecord MeasurementStreamFormat::pagingRecord(const CMeasurement& m) {
    MeasurementPagingRecord p;
    p.reservedLong = m.m_reservedLong;
    p.isUncompleted = m.m_isUncompleted;
    p.compressionFactor = m.m_compressionFactor;
    p.isUsefullData = m.m_isUsefullData;
    p.currentBlock = m.m_currentBlock;
    p.blockStartOffset = m.m_blockStartOffset;
    p.firstBlockRead = 1;
    p.locationSubStorage = m.m_locationSubStorage;
    p.locationFile = m.m_locationFile;
    p.locationStream = m.m_locationStream;
    p.locationInDataStorage = m.m_locationInDataStorage;
    p.dataLoaded = m.m_dataLoaded;
    return p;
}

HRESULT MeasurementStreamFormat::write(CMeasurement& m, IStream* stream) {
    if (!stream) return E_POINTER;
    using C = CMeasurement;
    const ParameterText parameters = parameterText(m.m_parameters);
    // A record paged from a stream of a workspace or project file holds one block, or an overview,
    // in memory. Writing that block, with the record still pointing at its old stream, would lose
    // the rest once a save replaces the file it came from; so the whole record is written: its
    // samples are copied from its stream and the new stream holds a complete record. Records of a
    // recording (a loader's class) keep pointing at the recording, which no save replaces.
    const bool pagedFromStream = m.m_isUncompleted && m.m_clsidLoader == GUID_NULL && !m.m_locationFile.empty();
    const LONG size = pagedFromStream ? m.m_fileSamples : valueOf<LONG>(m, &C::get_Size);
    const bool complex = valueOf<SHORT>(m, &C::get_Complex) != 0;

    MeasurementHeaderRecord r;
    r.tag = kWritten;
    r.name = textOf(m, &C::get_Name);
    r.functionType = enumeratedText(m, &C::get_FunctionType);
    r.responseChannel = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_ResponseChannel));
    r.response = textOf(m, &C::get_Response);
    r.referenceChannel = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_ReferenceChannel));
    r.reference = textOf(m, &C::get_Reference);
    Variant axisValue;
    m.get_XAxisType(&axisValue);
    const LONG axis = SUCCEEDED(axisValue.changeType(VT_I4)) ? axisValue.lVal : kAxisEquidistant;
    r.xAxisType = enumeratedText(m, &C::get_XAxisType);
    r.xStart = valueOf<float>(m, &C::get_XStart);
    r.xIncrement = valueOf<float>(m, &C::get_XIncrement);
    r.xDimension = dimensionIndex(m, &C::get_XdDimension);
    r.storageUnitX = textOf(m, &C::get_StorageUnitX);
    r.size = size;
    r.complex = complex ? -1 : 0;
    r.yDimension = dimensionIndex(m, &C::get_YdDimension);
    r.storageUnitY = textOf(m, &C::get_StorageUnitY);
    r.averagingType = enumeratedText(m, &C::get_AveragingType);
    r.averagingParameter = valueOf<float>(m, &C::get_AveragingParameter);
    r.averages = static_cast<std::int16_t>(valueOf<LONG>(m, &C::get_Averages));
    r.overlap = valueOf<float>(m, &C::get_Overlap);
    r.windowType = enumeratedText(m, &C::get_WindowType);
    r.windowParameter = valueOf<float>(m, &C::get_WindowParameter);
    r.measurementTime = valueOf<double>(m, &C::get_MeasurementTime);
    r.testId = textOf(m, &C::get_TestId);
    r.functionQualifier = textOf(m, &C::get_FunctionQualifier);
    r.acousticWeighting = textOf(m, &C::get_AcousticWeighting);
    r.environment = textOf(m, &C::get_Environment);
    r.userId = textOf(m, &C::get_UserId);
    r.parameterTextLength = parameters.countedLength;
    r.order = valueOf<float>(m, &C::get_Order);
    r.rpm = valueOf<float>(m, &C::get_RPM);
    r.z = valueOf<float>(m, &C::get_Z);
    r.zDimension = dimensionIndex(m, &C::get_ZdDimension);
    r.parameterCount = parameters.count;
    r.bandwidthCorrectionFactor = valueOf<float>(m, &C::get_BandwidthCorrectionFactor);
    r.power = valueOf<LONG>(m, &C::get_Power);
    r.overload = valueOf<LONG>(m, &C::get_Overload);
    r.usage = valueOf<LONG>(m, &C::get_Usage);
    std::uint8_t b1[kBlock1Size] = {};
    record::encode(headerFields(), kHeader20021112, r, b1);

    MeasurementPagingRecord p = pagingRecord(m);
    p.tag = kWritten;
    if (pagedFromStream) {
        p.isUncompleted = 0;
        p.compressionFactor = 1.0f;
        p.isUsefullData = 1;
        p.currentBlock = -1;
        p.blockStartOffset = 0;
    }
    // The file of a complete record is not kept: its data are all in this stream.
    if (!p.isUncompleted) p.locationFile.clear();
    p.fileSamples = valueOf<LONG>(m, &C::get_FileSamples);
    std::uint8_t b2[kBlock2Size] = {};
    record::encode(pagingFields(), 0, p, b2);

    MeasurementOriginRecord o;
    o.tag = kWritten;
    o.softwareRevision = registry::readSetting("BuildNumber").value_or("");
    o.workspaceName = textOf(m, &C::get_Workspace);
    std::uint8_t b3[kBlock3Size] = {};
    record::encode(originFields(), 0, o, b3);

    HRESULT h;
    if (FAILED(h = writeBlock(stream, b1, sizeof b1))) return h;
    if (FAILED(h = writeBlock(stream, b2, sizeof b2))) return h;
    if (FAILED(h = writeBlock(stream, b3, sizeof b3))) return h;

    std::vector<std::uint8_t> run;
    if (pagedFromStream && size > 0) {
        IStream* source = m.GetDataStream();
        if (!source) return STG_E_READFAULT;
        const std::uint64_t vectors = 1 + (complex ? 1 : 0) + (axisHasXVector(axis) ? 1 : 0);
        h = copyRun(source, m.m_dataOffset, static_cast<std::uint64_t>(size) * sizeof(float) * vectors, stream);
        source->Release();
        m.CloseDataStream();
        if (FAILED(h)) return h;
    } else if (size > 0) {
        const std::size_t n = static_cast<std::size_t>(size);
        std::vector<float> re(n), im(complex ? n : 0);
        m.GetYValues(0, size, re.data(), complex ? im.data() : nullptr);
        run.reserve(n * sizeof(float) * (complex ? 3 : 2) + parameters.bytes.size());
        appendFloats(run, re);
        if (complex) appendFloats(run, im);
        if (axisHasXVector(axis)) {
            std::vector<float> x(n);
            m.GetXValues(0, size, x.data());
            appendFloats(run, x);
        }
    }
    if (parameters.count > 0) run.insert(run.end(), parameters.bytes.begin(), parameters.bytes.end());
    return writeAll(stream, run.data(), run.size());
}

}  // namespace nvdl
