// CMeasurement::ExternalReadFormat: a block of a measurement whose data lies in a recording. The
// measurement's ChannelFileID names the source inside the file; the recording loader reads the span,
// reduced to min/max pairs when it is longer than a block, and the file is closed again at once.
#include <algorithm>
#include <charconv>
#include <string_view>

#include "access/TrcMeasurementFill.h"
#include "frame/ClassTable.h"
#include "measurement/Measurement.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSetupSection.h"

namespace nvdl {

namespace {

struct Source {
    long kind = 0;
    long channel = 0;
    long subChannel = -1;
};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

// Takes `prefix` off the front of `text`; false when it does not stand there.
bool take(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) return false;
    text.remove_prefix(prefix.size());
    return true;
}

// A non-negative decimal number off the front of `text`.
bool takeNumber(std::string_view& text, long& value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || value < 0) return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return true;
}

// The source an address names, after the loader's program identifier and ":": "Measurements:n",
// "Measurements(n):SubMeasurements:k", "Recorder(Input):n" or "Recorder(Rpm):n", all 0-based.
// A tacho channel's number stands behind all the recorder's inputs.
bool parseAddress(std::string_view text, long inputs, Source& source) {
    long n = 0, k = 0;
    if (take(text, "Measurements:")) {
        source = {access::kStoredMeasurement, 0, -1};
        if (!takeNumber(text, n) || !text.empty()) return false;
        source.channel = n + 1;
        return true;
    }
    if (take(text, "Measurements(")) {
        if (!takeNumber(text, n) || !take(text, "):SubMeasurements:") || !takeNumber(text, k) || !text.empty()) return false;
        source = {access::kStoredMeasurement, n + 1, k + 1};
        return true;
    }
    if (take(text, "Recorder(Input):")) {
        if (!takeNumber(text, n) || !text.empty()) return false;
        source = {access::kInputChannel, n + 1, -1};
        return true;
    }
    if (take(text, "Recorder(Rpm):")) {
        if (!takeNumber(text, n) || !text.empty()) return false;
        source = {access::kTachoChannel, inputs + 1 + n, -1};
        return true;
    }
    return false;
}

// The first `block` values of a curve of the loader (which is at least that long), or none.
std::vector<float> firstValues(const access::Curve& curve, LONG block) {
    if (!curve) return {};
    return {curve.get(), curve.get() + block};
}

}  // namespace

HRESULT CMeasurement::ExternalReadFormat(LONG start, LONG count) {
    const ClassInfo* loaderClass = findClass(m_clsidLoader);
    const std::string_view progId = loaderClass && loaderClass->progId ? loaderClass->progId : "";
    const std::string_view file = trimmed(m_locationFile), address = trimmed(m_channelFileID);
    if (progId.empty() || m_maxBlockSize <= 0 || file.empty() || address.empty()) return E_FAIL;
    if (start < 0 || count <= 0 || m_size <= 0) return E_FAIL;

    access::CTrcLoader loader;
    if (!loader.OpenFile(std::string(file).c_str()) || !loader.GetRecorder().Read()) return E_FAIL;
    std::string_view rest = address;
    if (!take(rest, progId) || !take(rest, ":")) return E_FAIL;
    Source source;
    const long inputs = loader.GetRecorder().GetHeader().GetSetup().GetInputs().GetTotalChannels();
    if (!parseAddress(rest, inputs, source)) return E_FAIL;

    access::CompressedCurves read;
    if (!access::readCurves(loader, source.kind, source.channel, source.subChannel, m_fileSamples, start, count, read))
        return E_FAIL;
    // The loader hands out at least a block of values; the block in memory is as long as the
    // measurement's own, which a short source makes shorter.
    const LONG block = std::min(m_maxBlockSize, m_fileSamples);
    if (block <= 0) return E_FAIL;
    std::vector<float> reValues = firstValues(read.real, block), imValues = firstValues(read.imag, block),
                       xValues = firstValues(read.x, block);
    if (m_complex && imValues.empty()) imValues.assign(static_cast<std::size_t>(block), 0.0f);
    const bool hasX = axisHasXVector(m_xAxisType) && !xValues.empty();
    m_isUncompleted = read.uncompleted ? 1 : 0;
    m_isUsefullData = read.useful ? 1 : 0;
    if (HRESULT h = takeBlock(block, reValues, imValues, xValues, hasX); FAILED(h)) return h;

    m_currentBlock = -1;
    if (!m_isUncompleted && count <= block) m_firstBlockRead = 0;
    m_currentBlock = GetBlockNumber(start);
    m_compressionFactor = read.factor;
    m_blockStartOffset = static_cast<LONG>(start - static_cast<long long>(m_currentBlock - 1) * block);
    m_dataLoaded = 1;
    m_firstBlockRead = 0;
    return S_OK;
}

}  // namespace nvdl
