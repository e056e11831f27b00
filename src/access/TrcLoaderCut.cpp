// CTrcLoader::Cut: a time span of a recording copied into a new recording with the same setup, a
// new length and a new scan count. The source and the target are two files of their own; of the
// loader only its two scratch buffers are used, which grow and never shrink between cuts.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <vector>

#include "access/TrcCutPlan.h"
#include "access/TrcLoader.h"
#include "platform/Host.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::access {

namespace {

// Tells the user why a recording cannot be cut; the cut then fails.
int tell(const char* format, const char* name) {
    char text[1024];
    std::snprintf(text, sizeof text, format, name);
    host::messageBox(text, "TRC Loader", host::MB_OK);
    return 0;
}

// Makes the buffer hold at least `bytes` and clears it; false when that memory is not to be had.
// It never shrinks: the next cut of a recording of the same shape allocates nothing.
bool prepareScratch(std::vector<unsigned char>& buffer, std::int64_t bytes) {
    try {
        if (buffer.size() < static_cast<std::size_t>(bytes)) buffer.resize(static_cast<std::size_t>(bytes));
    } catch (const std::exception&) {
        return false;
    }
    std::fill(buffer.begin(), buffer.end(), 0);
    return true;
}

// One part of the scan stream (the inputs or the tachos) on its way from the source to the target.
struct PartCopy {
    trc::CTrcRecorderChannelSection& from;
    trc::CTrcRecorderChannelSection& to;
    unsigned char* buffer;      // one source scan of the part
    std::vector<long> numbers;  // channel numbers of the used channels, in used order
    std::int64_t written = 0;   // samples per channel written to the target so far
};

// Copies source scan `sourceScan` (from 1) of the part into the target, `head` samples into the
// scan on, and its status records into target scan `targetScan`. False when the scan cannot be
// read or a channel cannot be written.
bool copyScan(PartCopy& part, long sourceScan, long targetScan, const CutPlan& plan, std::int64_t tail,
              std::int64_t blocksize, std::int64_t sampleBytes) {
    const auto used = static_cast<std::int64_t>(part.numbers.size());
    if (!part.from.ReadScan(sourceScan, part.buffer, used * blocksize)) return false;
    std::int64_t m = blocksize - plan.head;
    const std::int64_t room = plan.passes * blocksize;
    if (part.written + m > room) m = room - part.written;
    if (m > 0) {
        for (std::int64_t i = 0; i < used; ++i) {
            // On the last pass the count is m - tail, not tail: a cut that stops t samples into
            // its last scan copies B - t samples of that scan, running past the stop. Kept so on
            // purpose: recordings cut by this system have always ended so, and a cut made now must
            // match one made before. A count of zero or less is refused like any failed write.
            const unsigned char* from = part.buffer + (i * blocksize + plan.head) * sampleBytes;
            if (!part.to.WriteChannel(part.numbers[static_cast<std::size_t>(i)], part.written, from, m - tail))
                return false;
        }
    }
    // The written count moves by the whole piece: the target's positions stay those of the span.
    part.written += m;
    for (const long number : part.numbers) {
        trc::CTrcScanInfo info;
        if (part.from.ReadInfo(sourceScan, number, info)) part.to.WriteInfo(targetScan, number, info);
    }
    return true;
}

}  // namespace

int CTrcLoader::Cut(const char* input, const char* output, float start, float stop) {
    if (!input || !*input || !output || !*output) return 0;
    if (!(start >= 0.0f) || !(stop >= 0.0f) || !(start < stop) || !(stop - start > 0.0f)) return 0;

    trc::CTrc source;
    trc::CTrcRecorderSection& recorder = source.GetRecorder();
    if (!source.Open(input) || !recorder.Read() || !recorder.GetHeader().GetEnabled()) return 0;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    const trc::CTrcInputChannels& inputs = setup.GetInputs();
    const trc::CTrcTachoChannels& tachos = setup.GetTachos();
    const std::int64_t usedInputs = inputs.GetUsedChannels();
    const std::int64_t usedTachos = tachos.GetUsedChannels();
    const std::int64_t scans = setup.GetProcessing().GetAverageNumber();
    const std::int64_t blocksize = setup.GetAcquisition().GetBlocksize();
    if (usedInputs < 1) return tell("No channels are defined in <%s>.", input);
    if (scans < 1) return tell("No scans are defined in <%s>.", input);
    if (blocksize < 1) return tell("The blocksize is not defined in <%s>.", input);

    const double frequency = setup.GetAcquisition().GetSampleFrequency();
    if (!(frequency > 0.0)) return 0;
    CutPlan plan;
    if (!planCut(start, stop, 1.0 / frequency, scans, blocksize, plan)) return 0;

    // One source scan of each part must lie within the source file: a damaged setup that claims
    // more is refused before anything is allocated for it.
    const std::int64_t sampleBytes = recorder.GetHeader().GetSampleBytes();
    const std::int64_t fileSize = source.GetFile()->GetFileSize();
    const std::int64_t scanLimit = fileSize / blocksize / sampleBytes;
    if (usedInputs > scanLimit || usedTachos > scanLimit) return 0;
    if (!prepareScratch(m_cutInputs, usedInputs * blocksize * sampleBytes) ||
        !prepareScratch(m_cutTachos, usedTachos * blocksize * sampleBytes))
        return 0;

    // The target: the source's recorder header with its whole setup, the span's length, and room
    // for the new scan count.
    trc::CTrc target;
    trc::CTrcRecorderSection& targetRecorder = target.GetRecorder();
    if (!recorder.GetHeader().Copy(targetRecorder.GetHeader())) return 0;
    trc::CTrcSetupSection& targetSetup = targetRecorder.GetHeader().GetSetup();
    targetSetup.GetThroughput().SetLength(stop - start);
    targetSetup.GetProcessing().SetAverageNumber(static_cast<long>(plan.newScans));
    if (!target.Create(output) || !targetRecorder.Write()) return 0;

    PartCopy parts[2] = {{recorder.GetInputSection(), targetRecorder.GetInputSection(), m_cutInputs.data(), {}},
                         {recorder.GetTachoSection(), targetRecorder.GetTachoSection(), m_cutTachos.data(), {}}};
    for (long i = 0; i < usedInputs; ++i) parts[0].numbers.push_back(inputs.GetChannelNrFromUsedIndex(i));
    for (long i = 0; i < usedTachos; ++i)
        parts[1].numbers.push_back(tachos.GetChannelNrFromUsedIndex(i) + inputs.GetTotalChannels());

    char text[128];
    std::snprintf(text, sizeof text, "Cut from %02fs to %02f", static_cast<double>(start), static_cast<double>(stop));
    long sourceScan = static_cast<long>(plan.firstScan) + 1;
    for (std::int64_t j = 1; j <= plan.passes; ++j) {
        const std::int64_t tail = j == plan.passes ? plan.tail : 0;
        bool copied = copyScan(parts[0], sourceScan, static_cast<long>(j), plan, tail, blocksize, sampleBytes);
        if (copied && usedTachos > 0)
            copied = copyScan(parts[1], sourceScan, static_cast<long>(j), plan, tail, blocksize, sampleBytes);
        if (!copied) break;
        ++sourceScan;
        plan.head = 0;
        const int percent =
            static_cast<int>(std::trunc(100.0 / static_cast<double>(plan.passes) * static_cast<double>(j)));
        if (!host::reportProgress(percent, text)) break;
        // Calls into the server may arrive here, between scans.
        host::DoEvents();
    }

    // Closing the target rewrites its root table; a cut that ended early leaves the target as far
    // as it got. Only the preparation can fail a cut: once the target is made the answer is 1.
    source.Close();
    target.Close();
    return 1;
}

}  // namespace nvdl::access
