// CTrcLoader: reading a recording scan by scan, through the cursor over the scan window, with the
// samples turned into range units (and physical units on request).
#include <cstdint>
#include <vector>

#include "access/TrcLoader.h"
#include "platform/LittleEndian.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::access {

namespace {

// `count` samples of one block as stored, in range units: floats as they are, 16-bit samples
// through the scale of `range`.
void decodeBlock(const std::vector<std::uint8_t>& raw, long sampleBytes, float range, long count, float* out) {
    const float scale = CTrcLoader::ScaleOfRange(range);
    for (long i = 0; i < count; ++i) {
        const std::uint8_t* at = &raw[static_cast<std::size_t>(i * sampleBytes)];
        out[i] = sampleBytes == 2 ? CTrcLoader::ScaleSample(le::i16(at), scale) : le::f32(at);
    }
}

}  // namespace

int CTrcLoader::ReadScan(long channels, const long* numbers, long blocksize, float* data, long* status, float* range,
                         int convert) {
    if (!numbers || !data || !status || !range || channels <= 0 || !IsOpened()) return 0;
    trc::CTrcRecorderSection& recorder = GetRecorder();
    if (!recorder.Read() || !recorder.GetHeader().GetEnabled()) return 0;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    const long scans = setup.GetProcessing().GetAverageNumber();
    if (blocksize != setup.GetAcquisition().GetBlocksize() || channels > setup.GetInputs().GetUsedChannels() ||
        scans < 0)
        return 0;
    const std::int64_t scanIndex = m_firstScan + m_scanCursor - 1;
    if (scanIndex > scans) return 0;

    const long sampleBytes = recorder.GetHeader().GetSampleBytes();
    std::vector<std::uint8_t> raw(static_cast<std::size_t>(blocksize) * static_cast<std::size_t>(sampleBytes));
    trc::CTrcRecorderInputSection& inputs = recorder.GetInputSection();
    for (long k = 0; k < channels; ++k) {
        const trc::CTrcInputChannel* channel = setup.GetInputs().GetItem(numbers[k] - 1);
        float* values = data + static_cast<std::int64_t>(k) * blocksize;
        trc::CTrcScanInfo info;
        // The status record is looked up by the cursor, not by the scan read: both name the same
        // scan while the window starts at the recording's start, and recorders that set a window
        // have always read the records of the window's first scans this way.
        if (!channel || !inputs.ReadChannel(numbers[k], scanIndex * blocksize, raw.data(), blocksize) ||
            !inputs.ReadInfo(static_cast<long>(m_scanCursor), numbers[k], info))
            return 0;
        decodeBlock(raw, sampleBytes, channel->GetRange(), blocksize, values);
        status[k] = info.GetStatus();
        range[k] = info.GetRange();
        if (convert) {
            float offset = 0.0f, factor = 1.0f;
            GetUnitConversion(channel->GetUnit(), channel->GetSensitivity(), channel->GetCalibrationType(),
                              channel->GetPreGain(), channel->GetOffset(), &offset, &factor);
            for (long i = 0; i < blocksize; ++i) values[i] = factor * values[i] + offset;
        }
    }
    ++m_scanCursor;
    return 1;
}

int CTrcLoader::ReadRpmScan(long blocksize, float* data) {
    if (!data || !IsOpened()) return 0;
    trc::CTrcRecorderSection& recorder = GetRecorder();
    if (!recorder.Read()) return 0;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    trc::CTrcTachoChannels& tachos = setup.GetTachos();
    if (tachos.GetUsedChannels() != 1 || blocksize != setup.GetAcquisition().GetBlocksize() || blocksize < 1)
        return 0;
    const long sampleBytes = recorder.GetHeader().GetSampleBytes();
    std::vector<std::uint8_t> raw(static_cast<std::size_t>(blocksize) * static_cast<std::size_t>(sampleBytes));
    const std::int64_t position = (m_firstScan + m_scanCursor - 1) * blocksize;
    if (!recorder.GetTachoSection().ReadChannel(setup.GetInputs().GetTotalChannels() + 1, position, raw.data(),
                                                blocksize))
        return 0;
    // The first tacho channel's range is twice its end speed.
    decodeBlock(raw, sampleBytes, 2.0f * tachos.GetItem(0)->GetEndRPM(), blocksize, data);
    // The cursor stays: these samples belong to the scan that the next ReadScan reads.
    return 1;
}

}  // namespace nvdl::access
