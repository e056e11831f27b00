// CTrcLoader: what a recorder writes through the loader: the scan count, the creator, whole scans of
// samples and the status records of a scan.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "access/TrcLoader.h"
#include "platform/LittleEndian.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::access {

namespace {

// The sample format a scan write needs, and the size of one sample of it.
enum class Samples { Float, Int16 };

struct ScanShape {
    long blocksize, usedInputs, usedTachos;
};

// Checks of a scan write; the shape of the recording when the write may go on.
bool scanWritable(trc::CTrc& trc, long scan, long channels, Samples samples, ScanShape& shape) {
    if (scan < 1 || channels < 1 || !trc.IsOpened()) return false;
    trc::CTrcRecorderSectionHeader& header = trc.GetRecorder().GetHeader();
    const bool floats = header.GetDataSize() != trc::kDataSizeInt16;
    if (floats != (samples == Samples::Float)) return false;
    trc::CTrcSetupSection& setup = header.GetSetup();
    shape = {setup.GetAcquisition().GetBlocksize(), setup.GetInputs().GetUsedChannels(),
             setup.GetTachos().GetUsedChannels()};
    return shape.blocksize >= 1 && shape.usedInputs + shape.usedTachos >= channels;
}

void encode(float value, std::uint8_t* at) { le::putF32(at, value); }
void encode(std::int16_t value, std::uint8_t* at) { le::put16(at, static_cast<std::uint16_t>(value)); }

// The inputs' samples of the scan, then, when the buffer holds every used channel, the tachos'.
// The buffer must hold what is taken from it: `count` values.
template <class T>
int writeScan(trc::CTrc& trc, long scan, long channels, const T* buffer, std::int64_t count, Samples samples) {
    ScanShape shape{};
    if (!buffer || !scanWritable(trc, scan, channels, samples, shape)) return 0;
    const bool withTachos = shape.usedTachos > 0 && channels == shape.usedInputs + shape.usedTachos;
    const std::int64_t inputValues = static_cast<std::int64_t>(shape.usedInputs) * shape.blocksize;
    const std::int64_t tachoValues = withTachos ? static_cast<std::int64_t>(shape.usedTachos) * shape.blocksize : 0;
    if (count < inputValues + tachoValues) return 0;
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(inputValues + tachoValues) * sizeof(T));
    for (std::int64_t i = 0; i < inputValues + tachoValues; ++i) encode(buffer[i], &bytes[static_cast<std::size_t>(i) * sizeof(T)]);
    trc::CTrcRecorderSection& recorder = trc.GetRecorder();
    if (!recorder.GetInputSection().WriteScan(scan, bytes.data(), inputValues)) return 0;
    if (withTachos &&
        !recorder.GetTachoSection().WriteScan(scan, bytes.data() + inputValues * static_cast<std::int64_t>(sizeof(T)),
                                              tachoValues))
        return 0;
    return 1;
}

}  // namespace

int CTrcLoader::SetScanCount(long count) {
    GetRecorder().GetHeader().GetSetup().GetProcessing().SetAverageNumber(count);
    return IsOpened() ? GetRecorder().Write() : 1;
}

int CTrcLoader::SetCreator(const char* creator) {
    if (!creator) return 0;
    GetRecorder().GetHeader().GetSetup().SetCreator(creator);
    return IsOpened() ? GetRecorder().Write() : 1;
}

int CTrcLoader::WriteScanFloat(long scan, long channels, const float* buffer, std::int64_t count) {
    return writeScan(*this, scan, channels, buffer, count, Samples::Float);
}

int CTrcLoader::WriteScanInt16(long scan, long channels, const std::int16_t* buffer, std::int64_t count) {
    return writeScan(*this, scan, channels, buffer, count, Samples::Int16);
}

namespace {

// One status record per used channel of a part, in used order, each under its channel's number.
template <class List>
int writeInfos(trc::CTrc& trc, trc::CTrcRecorderChannelSection& part, List& list, long firstNumber, long scan,
               long channels, const long* status, const float* range) {
    if (!status || !range || scan < 1 || !trc.IsOpened()) return 0;
    const long count = std::min(channels, list.GetUsedChannels());
    for (long k = 0; k < count; ++k) {
        trc::CTrcScanInfo info;
        info.SetStatus(status[k]);
        info.SetRange(range[k]);
        if (!part.WriteInfo(scan, firstNumber + list.GetChannelNrFromUsedIndex(k), info)) return 0;
    }
    return 1;
}

}  // namespace

int CTrcLoader::WriteInputInfo(long scan, long channels, const long* status, const float* range) {
    trc::CTrcSetupSection& setup = GetRecorder().GetHeader().GetSetup();
    return writeInfos(*this, GetRecorder().GetInputSection(), setup.GetInputs(), 0, scan, channels, status, range);
}

int CTrcLoader::WriteTachoInfo(long scan, long channels, const long* status, const float* range) {
    trc::CTrcSetupSection& setup = GetRecorder().GetHeader().GetSetup();
    return writeInfos(*this, GetRecorder().GetTachoSection(), setup.GetTachos(), setup.GetInputs().GetTotalChannels(),
                      scan, channels, status, range);
}

}  // namespace nvdl::access
