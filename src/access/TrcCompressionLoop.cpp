// The loops of the reduced read: a recorded channel block by block with its status records, a
// stored measurement's curves in pieces. Each pass of a loop reads what its queue lacks and takes
// a step when the queue holds one.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "access/TrcCompressionSource.h"
#include "access/TrcLoader.h"
#include "recording/TrcMeasurementData.h"
#include "recording/TrcRecorderChannels.h"
#include "recording/TrcScanInfo.h"

namespace nvdl::access {

namespace {

OutputArray zeroArray(std::int64_t length) {
    return OutputArray(static_cast<float*>(std::calloc(static_cast<std::size_t>(length), sizeof(float))));
}

// A step's status and range in the overall ones: the range is the smaller, an overload stays.
void merge(CompressionResult& result, long status, float range) {
    result.range = std::min(result.range, range);
    if (result.status != trc::kStatusOverload && result.status != trc::kStatusOverloadHeld) result.status = status;
}

// Ends the reads of a call on every way out; the windows still held by a queue go with it.
struct ReadsEnd {
    trc::ChannelRunReader& reader;
    ~ReadsEnd() { reader.End(); }
};

}  // namespace

bool CTrcCompression::fromCache(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                                CompressionResult& result, std::int64_t length) {
    const char* name = loader.GetFilename();
    std::unique_ptr<CMinMaxCache> cache = name ? CMinMaxCache::Load(name, request.kind, request.channel) : nullptr;
    if (!cache) return false;
    const CompressionPlan& plan = result.plan;
    std::vector<StepExtremes> extremes(static_cast<std::size_t>(plan.steps));
    long status = 0;
    float range = 20.0f;
    if (!cache->Reduce(request.start, plan.stepLength, plan.steps, extremes.data(), &status, &range)) return false;
    result.yReal = zeroArray(length);
    if (!result.yReal) return false;
    CTrcLogging& log = loader.GetLog();
    log.Add("Start compression loop <%ld steps>", plan.steps);
    float* out = result.yReal.get();
    for (long k = 0; k < plan.steps && 2 * k + 1 < length; ++k) {
        const StepExtremes pair = source.conversion.pair(extremes[static_cast<std::size_t>(k)].minimum,
                                                         extremes[static_cast<std::size_t>(k)].maximum);
        out[2 * k] = pair.minimum;
        out[2 * k + 1] = pair.maximum;
    }
    result.status = status;
    result.range = range;
    log.Add("End compression loop <%ld steps>", plan.steps);
    return true;
}

void CTrcCompression::feedCache(CMinMaxCacheBuilder& builder, const Source& source, const unsigned char* block,
                                const trc::CTrcScanInfo& info) {
    const float* values = reinterpret_cast<const float*>(block);
    if (source.sampleBytes == 2) {
        float* converted = m_scanValues.get();
        const auto* samples = reinterpret_cast<const std::int16_t*>(block);
        for (std::int64_t i = 0; i < source.blocksize; ++i) converted[i] = samples[i];
        values = converted;
    }
    builder.AddScan(values, info.GetStatus(), info.GetRange());
}

int CTrcCompression::readRecorded(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                                  CompressionResult& result, std::int64_t length) {
    CTrcLogging& log = loader.GetLog();
    const CompressionPlan& plan = result.plan;
    const bool reduce = plan.factor != 1.0f;
    if (reduce && source.conversion.keepsOrder() && fromCache(loader, request, source, result, length)) return 1;

    // A whole channel read from its first sample leaves its min/max cache behind for later reads.
    std::unique_ptr<CMinMaxCacheBuilder> builder;
    const std::int64_t B = source.blocksize;
    if (reduce && loader.GetLongFileFeature() && request.start == 0 && request.count == request.fileSamples &&
        request.fileSamples == source.scans * B && loader.GetFilename() &&
        (source.sampleBytes == 4 || m_scanValues.Ensure(B)))
        builder = CMinMaxCacheBuilder::Begin(loader.GetFilename(), request.kind, request.channel, static_cast<long>(B),
                                             source.scans);

    result.yReal = zeroArray(length);
    if (!result.yReal) return 0;
    const bool rpm = request.kind == kTachoChannel;
    const char* beginRead = rpm ? "Begin-Read (rpm) file scan <%ld scan, %ld>" : "Begin-Read (input) file scan <%ld scan, %ld>";
    const char* endRead = rpm ? "End-Read (rpm) file scan <%ld scan, %ld>" : "End-Read (input) file scan <%ld scan, %ld>";
    const long D = source.sampleBytes;
    CSampleQueue queue(log);
    m_reader.Begin(*source.part, loader.GetFile(), request.channel, request.start + request.count + B);
    const ReadsEnd readsEnd{m_reader};

    std::int64_t position = request.start, failures = 0;
    long counter = 0;
    log.Add("Start compression loop <%ld steps>", plan.steps);
    while (counter < plan.steps) {
        const long scan = static_cast<long>(position / B + 1);
        if (!queue.QueueHasValues(plan.stepLength)) {
            log.Add(beginRead, scan, request.channel);
            trc::ChannelRunReader::Run run;
            trc::CTrcScanInfo info;
            if (m_reader.ReadChannel(position, B, run) && m_reader.ReadInfo(scan, info)) {
                if (builder) feedCache(*builder, source, run.data, info);
                const int queued = run.keep ? queue.QueueLend(run.data, std::move(run.keep), D, static_cast<long>(B),
                                                              info.GetStatus(), info.GetRange())
                                            : queue.QueuePush(run.data, D, static_cast<long>(B), info.GetStatus(),
                                                              info.GetRange());
                if (!queued) return 0;
                position += B;
            } else {
                // A scan that cannot be read counts against the source; the position stays.
                failures += B;
            }
            log.Add(endRead, scan, request.channel);
        }
        log.Add("Begin-Compression <%ld scan, %ld>", scan, counter);
        if (!queue.QueueHasValues(plan.stepLength)) {
            log.Add("Not enough data <%ld scan>", scan);
            // A source that fails for good ends the loop with what has been collected.
            if (failures >= plan.stepLength) counter = plan.steps;
            continue;
        }
        log.Add("Enough data <%ld scan>", scan);
        long status = 0;
        float range = 0.0f;
        const Step step{plan.stepLength, D, source.conversion, reduce, 2 * std::int64_t{counter}};
        if (!takeStep(queue, step, m_workingY.get(), result.yReal.get(), length, status, range)) return 0;
        log.Add("Retrieve data section <%ld scan>", scan);
        merge(result, status, range);
        log.Add("After set range and status  <%ld scan>", scan);
        if (D == 4) {
            log.Add("Before copy section  <%ld scan>", scan);
            log.Add("After copy section  <%ld scan>", scan);
        }
        log.Add("End-Compression <%ld scan, %ld>", scan, counter);
        log.Add("Begin-unit conversion <%ld scan, %ld>", scan, counter);
        log.Add("End-unit conversion <%ld scan, %ld>", scan, counter);
        ++counter;
    }
    log.Add("End compression loop <%ld steps>", counter);

    // The scans behind the last step complete the cache.
    if (builder && failures == 0) {
        for (; position < source.scans * B && builder; position += B) {
            trc::ChannelRunReader::Run run;
            trc::CTrcScanInfo info;
            if (m_reader.ReadChannel(position, B, run) && m_reader.ReadInfo(static_cast<long>(position / B + 1), info))
                feedCache(*builder, source, run.data, info);
            else
                builder.reset();
        }
        if (builder) builder->Finish();
    }
    return 1;
}

int CTrcCompression::readStored(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                                CompressionResult& result, std::int64_t length) {
    CTrcLogging& log = loader.GetLog();
    const CompressionPlan& plan = result.plan;
    log.Add("Step-11 Compression <Channel %ld>", request.channel);
    const std::int64_t chunk = PickReadChunk(plan.stepLength, request.fileSamples);
    log.Add("Step-12 Compression <Channel %ld>", request.channel);
    if (chunk < 1) return 0;
    if (!m_readY.Ensure(chunk) || (source.hasX && !m_readX.Ensure(chunk)) ||
        (source.complex && !m_readImag.Ensure(chunk)))
        return 0;
    log.Add("Step-13 Compression <Channel %ld>", request.channel);
    result.yReal = zeroArray(length);
    if (source.hasX) result.x = zeroArray(length);
    if (source.complex) result.yImag = zeroArray(length);
    if (!result.yReal || (source.hasX && !result.x) || (source.complex && !result.yImag)) return 0;

    CSampleQueue xs(log), reals(log), imags(log);
    trc::CTrcMeasurementDataSection& data = *source.data;
    const bool reduce = plan.factor != 1.0f;
    std::int64_t position = request.start;
    long counter = 0;
    // One curve's piece into its queue, with the trace around it; a failed read fails the call.
    auto readPiece = [&](CSampleQueue& queue, float* buffer, std::int64_t piece, const char* begin, const char* end,
                         auto&& read) {
        log.Add(begin, static_cast<long>(position));
        if (piece < 1 || !read(buffer, piece) || !queue.QueuePush(buffer, 4, static_cast<long>(piece), 0, 20.0f))
            return false;
        log.Add(end, static_cast<long>(position));
        return true;
    };
    log.Add("Start compression loop <%ld steps>", plan.steps);
    while (counter < plan.steps) {
        // The last piece of a curve is what is left of it.
        const std::int64_t piece = std::min(chunk, source.curveSize - position);
        bool read = false;
        if (source.hasX && !xs.QueueHasValues(plan.stepLength)) {
            if (!readPiece(xs, m_readX.get(), piece, "Begin-ReadX (meas) file <%ld>", "End-ReadX (meas) file <%ld>",
                           [&](float* b, std::int64_t n) { return data.GetX().Read(position, b, n); }))
                return 0;
            read = true;
        }
        if (!reals.QueueHasValues(plan.stepLength)) {
            if (!readPiece(reals, m_readY.get(), piece, "Begin-ReadYReal (meas) file <%ld>",
                           "End-ReadYReal (meas) file <%ld>",
                           [&](float* b, std::int64_t n) { return data.GetY().ReadReal(position, b, n); }))
                return 0;
            read = true;
        }
        if (source.complex && !imags.QueueHasValues(plan.stepLength)) {
            if (!readPiece(imags, m_readImag.get(), piece, "Begin-ReadYImag (meas) file <%ld>",
                           "End-ReadYImag (meas) file <%ld>",
                           [&](float* b, std::int64_t n) { return data.GetY().ReadImag(position, b, n); }))
                return 0;
            read = true;
        }
        if (read) position += piece;
        if ((source.hasX && !xs.QueueHasValues(plan.stepLength)) || !reals.QueueHasValues(plan.stepLength)) continue;
        const Step step{plan.stepLength, 4, SampleConversion{}, reduce, 2 * std::int64_t{counter}};
        long status = 0;
        float range = 0.0f;
        if (source.hasX) {
            if (!takeStep(xs, step, m_workingX.get(), result.x.get(), length, status, range)) return 0;
            merge(result, status, range);
        }
        if (!takeStep(reals, step, m_workingY.get(), result.yReal.get(), length, status, range)) return 0;
        merge(result, status, range);
        if (source.complex) {
            if (!imags.QueueHasValues(plan.stepLength) ||
                !takeStep(imags, step, m_workingImag.get(), result.yImag.get(), length, status, range))
                return 0;
            merge(result, status, range);
        }
        ++counter;
    }
    log.Add("End compression loop <%ld steps>", counter);
    return 1;
}

}  // namespace nvdl::access
