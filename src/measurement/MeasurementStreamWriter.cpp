// Writer of the stored measurement record, generation 20071012: three fixed blocks (920, 656 and
// 116 bytes), each built in a zeroed buffer and flushed, then the vectors and the parameter text
// in one run. The header comes through the measurement's property getters.
#include "measurement/Measurement.h"
#include "measurement/MeasurementStreamFormat.h"
#include "nvdl/IParameter.h"
#include "platform/LittleEndian.h"
#include "platform/Registry.h"
#include "project/UnitClient.h"

namespace nvdl {

using namespace measurement_tag;

namespace {

constexpr std::size_t kTextField = 50;
constexpr ULONG kLargestWrite = 1u << 30;

std::string textOf(CMeasurement& m, HRESULT (CMeasurement::*get)(BSTR*)) {
    Bstr text;
    (m.*get)(text.out());
    return text.ansi();
}

// An enumerated property as the text of its code; a code without text gives an empty field.
std::string enumeratedText(CMeasurement& m, HRESULT (CMeasurement::*get)(VARIANT*)) {
    Variant value;
    if (FAILED((m.*get)(&value)) || FAILED(value.changeType(VT_I4))) return {};
    Bstr text;
    m.Translate(value.lVal, text.out());
    return text.ansi();
}

LONG dimensionIndex(CMeasurement& m, HRESULT (CMeasurement::*get)(IDispatch**)) {
    IDispatch* dimension = nullptr;
    (m.*get)(&dimension);
    LONG index = DimensionTableIndex(dimension);
    if (dimension) dimension->Release();
    return index;
}

template <class T>
T valueOf(CMeasurement& m, HRESULT (CMeasurement::*get)(T*)) {
    T value{};
    (m.*get)(&value);
    return value;
}

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

}  // namespace

HRESULT MeasurementStreamFormat::write(CMeasurement& m, IStream* stream) {
    if (!stream) return E_POINTER;
    using C = CMeasurement;
    const ParameterText parameters = parameterText(m.m_parameters);
    const LONG size = valueOf<LONG>(m, &C::get_Size);
    const bool complex = valueOf<SHORT>(m, &C::get_Complex) != 0;

    std::uint8_t b1[kBlock1Size] = {};
    le::put32(b1 + 0, static_cast<std::uint32_t>(kWritten));
    le::putText(b1 + 4, kTextField, textOf(m, &C::get_Name));
    le::putText(b1 + 54, kTextField, enumeratedText(m, &C::get_FunctionType));
    le::put16(b1 + 108, static_cast<std::uint16_t>(valueOf<LONG>(m, &C::get_ResponseChannel)));
    le::putText(b1 + 110, kTextField, textOf(m, &C::get_Response));
    le::put16(b1 + 160, static_cast<std::uint16_t>(valueOf<LONG>(m, &C::get_ReferenceChannel)));
    le::putText(b1 + 162, kTextField, textOf(m, &C::get_Reference));
    Variant axisValue;
    m.get_XAxisType(&axisValue);
    const LONG axis = SUCCEEDED(axisValue.changeType(VT_I4)) ? axisValue.lVal : kAxisEquidistant;
    le::putText(b1 + 212, kTextField, enumeratedText(m, &C::get_XAxisType));
    le::putF32(b1 + 264, valueOf<float>(m, &C::get_XStart));
    le::putF32(b1 + 268, valueOf<float>(m, &C::get_XIncrement));
    le::put32(b1 + 272, static_cast<std::uint32_t>(dimensionIndex(m, &C::get_XdDimension)));
    le::putText(b1 + 276, kTextField, textOf(m, &C::get_StorageUnitX));
    le::put32(b1 + 328, static_cast<std::uint32_t>(size));
    le::put32(b1 + 332, complex ? 0xFFFFFFFFu : 0u);
    le::put32(b1 + 336, static_cast<std::uint32_t>(dimensionIndex(m, &C::get_YdDimension)));
    le::putText(b1 + 340, kTextField, textOf(m, &C::get_StorageUnitY));
    le::putText(b1 + 390, kTextField, enumeratedText(m, &C::get_AveragingType));
    le::putF32(b1 + 440, valueOf<float>(m, &C::get_AveragingParameter));
    le::put16(b1 + 444, static_cast<std::uint16_t>(valueOf<LONG>(m, &C::get_Averages)));
    le::putF32(b1 + 448, valueOf<float>(m, &C::get_Overlap));
    le::putText(b1 + 452, kTextField, enumeratedText(m, &C::get_WindowType));
    le::putF32(b1 + 504, valueOf<float>(m, &C::get_WindowParameter));
    le::putF64(b1 + 512, valueOf<double>(m, &C::get_MeasurementTime));
    le::putText(b1 + 520, kTextField, textOf(m, &C::get_TestId));
    le::putText(b1 + 570, kTextField, textOf(m, &C::get_FunctionQualifier));
    le::putText(b1 + 620, kTextField, textOf(m, &C::get_AcousticWeighting));
    le::putText(b1 + 670, kTextField, textOf(m, &C::get_Environment));
    le::putText(b1 + 720, 100, textOf(m, &C::get_UserId));
    le::put32(b1 + 820, static_cast<std::uint32_t>(parameters.countedLength));
    le::putF32(b1 + 824, valueOf<float>(m, &C::get_Order));
    le::putF32(b1 + 828, valueOf<float>(m, &C::get_RPM));
    le::putF32(b1 + 832, valueOf<float>(m, &C::get_Z));
    le::put32(b1 + 836, static_cast<std::uint32_t>(dimensionIndex(m, &C::get_ZdDimension)));
    le::put32(b1 + 840, static_cast<std::uint32_t>(parameters.count));
    le::putF32(b1 + 844, valueOf<float>(m, &C::get_BandwidthCorrectionFactor));
    le::put32(b1 + 848, static_cast<std::uint32_t>(valueOf<LONG>(m, &C::get_Power)));
    le::put32(b1 + 852, static_cast<std::uint32_t>(valueOf<LONG>(m, &C::get_Overload)));
    le::put32(b1 + 856, static_cast<std::uint32_t>(valueOf<LONG>(m, &C::get_Usage)));

    std::uint8_t b2[kBlock2Size] = {};
    le::put32(b2 + 0, static_cast<std::uint32_t>(kWritten));
    le::put32(b2 + 4, static_cast<std::uint32_t>(m.m_reservedLong));
    le::put32(b2 + 8, static_cast<std::uint32_t>(m.m_isUncompleted));
    le::putF32(b2 + 12, m.m_compressionFactor);
    le::put32(b2 + 16, static_cast<std::uint32_t>(m.m_isUsefullData));
    le::put32(b2 + 20, static_cast<std::uint32_t>(m.m_currentBlock));
    le::put32(b2 + 24, static_cast<std::uint32_t>(m.m_blockStartOffset));
    le::put32(b2 + 28, 1);
    le::putText(b2 + 32, 100, m.m_locationSubStorage);
    // The file of a complete record is not kept: its data are all in this stream.
    le::putText(b2 + 132, 400, m.m_isUncompleted ? m.m_locationFile : std::string());
    le::putText(b2 + 532, 100, m.m_locationStream);
    le::put16(b2 + 632, static_cast<std::uint16_t>(m.m_locationInDataStorage));
    le::put32(b2 + 636, static_cast<std::uint32_t>(valueOf<LONG>(m, &C::get_FileSamples)));
    le::put32(b2 + 652, static_cast<std::uint32_t>(m.m_dataLoaded));

    std::uint8_t b3[kBlock3Size] = {};
    le::put32(b3 + 0, static_cast<std::uint32_t>(kWritten));
    le::putText(b3 + 4, 10, registry::readSetting("BuildNumber").value_or(""));
    le::putText(b3 + 14, 100, textOf(m, &C::get_Workspace));

    HRESULT h;
    if (FAILED(h = writeBlock(stream, b1, sizeof b1))) return h;
    if (FAILED(h = writeBlock(stream, b2, sizeof b2))) return h;
    if (FAILED(h = writeBlock(stream, b3, sizeof b3))) return h;

    std::vector<std::uint8_t> run;
    if (size > 0) {
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
