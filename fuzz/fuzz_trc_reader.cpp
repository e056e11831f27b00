// libFuzzer target for recordings: the input is written to a file and opened as a recording; every
// top section is read, then the status records and a span of every channel, the first and last
// scan, the first values of every stored curve and the embedded test definition's first bytes.
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "recording/Trc.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"
#include "recording/TrcSetupSection.h"
#include "recording/TrcSetupsSection.h"
#include "recording/TrcSubMeasurement.h"
#include "recording/TrcTestDefinition.h"

namespace {

using namespace nvdl::trc;

constexpr std::int64_t kMaxSpan = 4096;  // samples or values read at a time

const std::string& scratchFile() {
    static const std::string name = "/tmp/fuzz_trc_" + std::to_string(::getpid()) + ".trc";
    return name;
}

void readCurves(CTrcMeasurementBase& m, std::vector<float>& values) {
    CTrcMeasurementDataSection& data = m.GetData();
    const std::int64_t n = std::min<std::int64_t>(m.GetHeader().GetSize(), kMaxSpan);
    values.resize(static_cast<std::size_t>(std::max<std::int64_t>(n, 1)));
    data.GetX().Read(0, values.data(), n);
    data.GetY().ReadReal(0, values.data(), n);
    data.GetY().ReadImag(0, values.data(), n);
}

void readScans(CTrcRecorderSection& recorder) {
    CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    const long inputs = setup.GetInputs().GetTotalChannels();
    const long channels = inputs + setup.GetTachos().GetTotalChannels();
    const long scans = setup.GetProcessing().GetAverageNumber();
    std::vector<unsigned char> buffer(kMaxSpan * 4);
    for (long c = 1; c <= channels; ++c) {
        CTrcRecorderChannelSection& part = c > inputs ? static_cast<CTrcRecorderChannelSection&>(recorder.GetTachoSection())
                                                      : recorder.GetInputSection();
        part.ReadChannel(c, 0, buffer.data(), kMaxSpan);
        CTrcScanInfo info;
        part.ReadInfo(1, c, info);
        part.ReadInfo(scans, c, info);
    }
    const std::int64_t block = setup.GetAcquisition().GetBlocksize();
    const std::int64_t samples = block * (setup.GetInputs().GetUsedChannels() + setup.GetTachos().GetUsedChannels());
    if (samples <= 0 || samples > kMaxSpan) return;
    std::vector<CTrcScanInfo> infos(static_cast<std::size_t>(channels + 1));
    for (long scan : {1L, scans}) recorder.ReadScan(scan, buffer.data(), samples, static_cast<long>(infos.size()), infos.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::FILE* f = std::fopen(scratchFile().c_str(), "wb");
    if (!f) return 0;
    std::fwrite(data, 1, size, f);
    std::fclose(f);

    CTrc recording;
    if (!recording.Open(scratchFile().c_str())) return 0;
    recording.GetSetups().Read();
    if (recording.GetRecorder().Read()) readScans(recording.GetRecorder());
    std::vector<float> values;
    if (recording.GetMeasurements().Read(-1)) {
        for (long i = 0; i < recording.GetMeasurements().GetCount(); ++i) {
            CTrcMeasurementSection& m = *recording.GetMeasurements().GetItem(i);
            readCurves(m, values);
            for (long s = 0; s < m.GetMeasurements().GetCount(); ++s) readCurves(*m.GetMeasurements().GetItem(s), values);
        }
    }
    if (recording.GetTestDefinition().Read()) {
        unsigned char bytes[64];
        recording.GetTestDefinition().GetData().Read(0, bytes, sizeof bytes);
    }
    return 0;
}
