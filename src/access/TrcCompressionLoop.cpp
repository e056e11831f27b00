// The loops of the reduced read: a recorded channel block by block with its status records, a
// stored measurement's curves in pieces. Each pass of a loop reads what its queue lacks and takes
// a step when the queue holds one.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <system_error>
#include <thread>
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

// A step's status and range into those gathered so far: the range is the smaller, an overload stays.
void merge(long& status, float& range, long stepStatus, float stepRange) {
    range = std::min(range, stepRange);
    if (status != trc::kStatusOverload && status != trc::kStatusOverloadHeld) status = stepStatus;
}

// Ends the reads of a call on every way out; the windows still held by a queue go with it.
struct ReadsEnd {
    std::vector<trc::ChannelRunReader*> readers;
    ~ReadsEnd() {
        for (trc::ChannelRunReader* reader : readers) reader->End();
    }
};

// A thread pays for itself only on a long span: each part reads at least this much of the channel.
constexpr std::int64_t kPartBytes = std::int64_t{4} << 20;
// Each part holds windows of its own; the count stays small whatever the machine.
constexpr long kMostParts = 8;

// How many parts the steps of a span of `spanBytes` are taken in: one per processor.
long partCount(std::int64_t spanBytes, long steps) {
    const long processors = static_cast<long>(std::max(1u, std::thread::hardware_concurrency()));
    return static_cast<long>(std::max<std::int64_t>(1, std::min<std::int64_t>({processors, kMostParts, steps,
                                                                                spanBytes / kPartBytes})));
}

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

// One stretch of a recorded channel's steps, [first, end), read by a reader of its own, with the
// status and range merged over the steps it took.
struct CTrcCompression::RecordedPart {
    long first = 0;
    long end = 0;
    trc::ChannelRunReader* reader = nullptr;
    int ok = 1;     // 0 when the whole read fails
    long taken = 0;  // fewer than end - first when the source ended early
    long status = 0;
    float range = 20.0f;
    std::int64_t position = 0;  // the first sample not read yet
    std::int64_t failures = 0;  // samples of the reads that failed
};

void CTrcCompression::readSteps(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                                CompressionResult& result, std::int64_t length, CMinMaxCacheBuilder* builder,
                                RecordedPart& part) {
    CTrcLogging& log = loader.GetLog();
    const CompressionPlan& plan = result.plan;
    const bool rpm = request.kind == kTachoChannel;
    const char* beginRead = rpm ? "Begin-Read (rpm) file scan <%ld scan, %ld>" : "Begin-Read (input) file scan <%ld scan, %ld>";
    const char* endRead = rpm ? "End-Read (rpm) file scan <%ld scan, %ld>" : "End-Read (input) file scan <%ld scan, %ld>";
    const long D = source.sampleBytes;
    const std::int64_t B = source.blocksize;
    trc::ChannelRunReader& reader = *part.reader;
    CSampleQueue queue(log);
    // A part inside the span reads from the block that its first step starts in, as the loop
    // before it would have, and drops the values of that block before the step.
    part.position = request.start + part.first * plan.stepLength / B * B;
    std::int64_t before = request.start + part.first * plan.stepLength - part.position;
    long counter = part.first;
    while (counter < part.end) {
        const long scan = static_cast<long>(part.position / B + 1);
        if (!queue.QueueHasValues(plan.stepLength)) {
            log.Add(beginRead, scan, request.channel);
            trc::ChannelRunReader::Run run;
            trc::CTrcScanInfo info;
            if (reader.ReadChannel(part.position, B, run) && reader.ReadInfo(scan, info)) {
                if (builder) feedCache(*builder, source, run.data, info);
                const int queued = run.keep ? queue.QueueLend(run.data, std::move(run.keep), D, static_cast<long>(B),
                                                              info.GetStatus(), info.GetRange())
                                            : queue.QueuePush(run.data, D, static_cast<long>(B), info.GetStatus(),
                                                              info.GetRange());
                if (!queued) {
                    part.ok = 0;
                    return;
                }
                if (before > 0) {
                    long status;
                    float range;
                    queue.QueueTakeInto(before, D, status, range, [](const void*, std::int64_t) {});
                    before = 0;
                }
                part.position += B;
            } else {
                // A scan that cannot be read counts against the source; the position stays.
                part.failures += B;
            }
            log.Add(endRead, scan, request.channel);
        }
        log.Add("Begin-Compression <%ld scan, %ld>", scan, counter);
        if (!queue.QueueHasValues(plan.stepLength)) {
            log.Add("Not enough data <%ld scan>", scan);
            // A source that fails for good ends the loop with what has been collected.
            if (part.failures >= plan.stepLength) return;
            continue;
        }
        log.Add("Enough data <%ld scan>", scan);
        long status = 0;
        float range = 0.0f;
        const Step step{plan.stepLength, D, source.conversion, plan.factor != 1.0f, 2 * std::int64_t{counter}};
        if (!takeStep(queue, step, m_workingY.get(), result.yReal.get(), length, status, range)) {
            part.ok = 0;
            return;
        }
        log.Add("Retrieve data section <%ld scan>", scan);
        merge(part.status, part.range, status, range);
        log.Add("After set range and status  <%ld scan>", scan);
        if (D == 4) {
            log.Add("Before copy section  <%ld scan>", scan);
            log.Add("After copy section  <%ld scan>", scan);
        }
        log.Add("End-Compression <%ld scan, %ld>", scan, counter);
        log.Add("Begin-unit conversion <%ld scan, %ld>", scan, counter);
        log.Add("End-unit conversion <%ld scan, %ld>", scan, counter);
        ++part.taken;
        ++counter;
    }
}

int CTrcCompression::readInParts(CTrcLoader& loader, const CompressionRequest& request, const Source& source,
                                 CompressionResult& result, std::int64_t length, long count) {
    const CompressionPlan& plan = result.plan;
    while (static_cast<long>(m_partReaders.size()) < count - 1)
        m_partReaders.push_back(std::make_unique<trc::ChannelRunReader>());
    std::vector<RecordedPart> parts(static_cast<std::size_t>(count));
    ReadsEnd readsEnd;
    for (long p = 0; p < count; ++p) {
        RecordedPart& part = parts[static_cast<std::size_t>(p)];
        part.first = static_cast<long>(std::int64_t{plan.steps} * p / count);
        part.end = static_cast<long>(std::int64_t{plan.steps} * (p + 1) / count);
        part.reader = p == 0 ? &m_reader : m_partReaders[static_cast<std::size_t>(p - 1)].get();
        part.reader->Begin(*source.part, loader.GetFile(), request.channel,
                           request.start + part.end * plan.stepLength + source.blocksize);
        readsEnd.readers.push_back(part.reader);
    }
    auto work = [&](RecordedPart& part) { readSteps(loader, request, source, result, length, nullptr, part); };
    std::vector<std::thread> threads;
    std::vector<RecordedPart*> unstarted;
    threads.reserve(parts.size());
    unstarted.reserve(parts.size());
    for (std::size_t p = 1; p < parts.size(); ++p) {
        try {
            threads.emplace_back(work, std::ref(parts[p]));
        } catch (const std::system_error&) {
            unstarted.push_back(&parts[p]);
        }
    }
    work(parts[0]);
    for (RecordedPart* part : unstarted) work(*part);
    for (std::thread& thread : threads) thread.join();

    // The parts in order, as one loop would have met them: a part that ended early ends the read,
    // and what the parts behind it found is not there.
    for (std::size_t p = 0; p < parts.size(); ++p) {
        const RecordedPart& part = parts[p];
        if (!part.ok) return 0;
        if (part.taken > 0) merge(result.status, result.range, part.status, part.range);
        if (part.taken < part.end - part.first) {
            const std::int64_t from = std::min<std::int64_t>(2 * std::int64_t{part.end}, length);
            std::fill(result.yReal.get() + from, result.yReal.get() + length, 0.0f);
            break;
        }
    }
    return 1;
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
    log.Add("Start compression loop <%ld steps>", plan.steps);
    // Steps that search stored extremes are taken in parts at once when neither a trace nor a
    // cache being built needs them one after the other.
    const long parts = reduce && source.conversion.keepsOrder() && !builder && !log.IsStarted()
                           ? partCount(request.count * source.sampleBytes, plan.steps)
                           : 1;
    if (parts > 1) {
        if (!readInParts(loader, request, source, result, length, parts)) return 0;
        log.Add("End compression loop <%ld steps>", plan.steps);
        return 1;
    }
    RecordedPart whole;
    whole.end = plan.steps;
    whole.reader = &m_reader;
    m_reader.Begin(*source.part, loader.GetFile(), request.channel, request.start + request.count + B);
    const ReadsEnd readsEnd{{&m_reader}};
    readSteps(loader, request, source, result, length, builder.get(), whole);
    if (!whole.ok) return 0;
    merge(result.status, result.range, whole.status, whole.range);
    log.Add("End compression loop <%ld steps>", plan.steps);

    // The scans behind the last step complete the cache.
    if (builder && whole.failures == 0) {
        for (std::int64_t position = whole.position; position < source.scans * B && builder; position += B) {
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
            merge(result.status, result.range, status, range);
        }
        if (!takeStep(reals, step, m_workingY.get(), result.yReal.get(), length, status, range)) return 0;
        merge(result.status, result.range, status, range);
        if (source.complex) {
            if (!imags.QueueHasValues(plan.stepLength) ||
                !takeStep(imags, step, m_workingImag.get(), result.yImag.get(), length, status, range))
                return 0;
            merge(result.status, result.range, status, range);
        }
        ++counter;
    }
    log.Add("End compression loop <%ld steps>", counter);
    return 1;
}

}  // namespace nvdl::access
