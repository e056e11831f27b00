// The loader's reduced read: the checks, the source, the plan and the working state. The loops
// that read the sources are in TrcCompressionLoop.cpp.
#include "access/TrcCompression.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <new>

#include "access/TrcCompressionSource.h"
#include "access/TrcLoader.h"
#include "measurement/FloatExtremes.h"
#include "recording/TrcMeasurement.h"
#include "recording/TrcMeasurements.h"
#include "recording/TrcRecorderSection.h"
#include "recording/TrcSubMeasurements.h"

namespace nvdl::access {

// Samples and status records are used where they stand in memory, as the file holds them.
static_assert(std::endian::native == std::endian::little, "recorded samples are read in place");

void CompressionDeleter::operator()(CTrcCompression* compression) const { delete compression; }

float SampleConversion::operator()(float stored) const {
    if (!convert) return stored;
    const float value = int16 ? CTrcLoader::ScaleSample(static_cast<std::int16_t>(stored), scale) : stored;
    return factor * value + offset;
}

bool SampleConversion::keepsOrder() const {
    return !convert || (std::isfinite(factor) && factor != 0.0f && std::isfinite(offset));
}

StepExtremes SampleConversion::pair(float lowest, float highest) const {
    if (!(lowest <= highest)) return {kMinimumStart, kMaximumStart};
    float low = (*this)(lowest), high = (*this)(highest);
    if (convert && factor < 0.0f) std::swap(low, high);
    return {low < kMinimumStart ? low : kMinimumStart, high > kMaximumStart ? high : kMaximumStart};
}

int CTrcCompression::findRecorded(CTrcLoader& loader, const CompressionRequest& request, Source& source) {
    trc::CTrcRecorderSection& recorder = loader.GetRecorder();
    if (!recorder.IsRead() && !recorder.Read()) return 0;
    trc::CTrcSetupSection& setup = recorder.GetHeader().GetSetup();
    const long inputs = setup.GetInputs().GetTotalChannels();
    SampleConversion& conversion = source.conversion;
    conversion.convert = true;
    conversion.int16 = recorder.GetHeader().GetSampleBytes() == 2;
    if (request.kind == kInputChannel) {
        const trc::CTrcInputChannel* input =
            request.channel <= inputs ? setup.GetInputs().GetItem(request.channel - 1) : nullptr;
        if (!input) return 0;
        source.part = &recorder.GetInputSection();
        // Without the units table the values stay in range units (factor 1, offset 0).
        CTrcLoader::GetUnitConversion(input->GetUnit(), input->GetSensitivity(), input->GetCalibrationType(),
                                      input->GetPreGain(), input->GetOffset(), &conversion.offset,
                                      &conversion.factor);
        conversion.scale = CTrcLoader::ScaleOfRange(input->GetRange());
    } else {
        // The tacho channel must be one the recording holds; its settings come from its place in
        // the list of tachos, behind all inputs.
        source.part = &recorder.GetTachoSection();
        const trc::CTrcTachoChannel* tacho = source.part->GetChannelIndex(request.channel) >= 0
                                                 ? setup.GetTachos().GetItem(request.channel - inputs - 1)
                                                 : nullptr;
        if (!tacho) return 0;
        conversion.factor = CTrcLoader::GetRpmFactor();
        conversion.offset = 0.0f;
        conversion.scale = CTrcLoader::ScaleOfRange(2.0f * tacho->GetEndRPM());
    }
    const trc::ScanGeometry& geometry = source.part->GetGeometry();
    source.blocksize = geometry.blocksize;
    source.sampleBytes = static_cast<long>(geometry.sampleBytes);
    source.scans = geometry.scans;
    return source.blocksize >= 1 ? 1 : 0;
}

int CTrcCompression::findStored(CTrcLoader& loader, const CompressionRequest& request, Source& source) {
    CTrcLogging& log = loader.GetLog();
    source.recorded = false;
    log.Add("Step-1 Compression <Channel %ld>", request.channel);
    trc::CTrcMeasurementsSection& list = loader.GetMeasurements();
    if (!list.IsRead() && !list.Read(-1)) return 0;
    log.Add("Step-2 Compression <Channel %ld>", request.channel);
    trc::CTrcMeasurementSection* measurement = list.GetCount() > 0 ? list.GetItem(request.channel - 1) : nullptr;
    if (!measurement) return 0;
    // A sub-channel below 1 reads the measurement itself: 0 stands for the measurement just as -1
    // does, instead of reading through a sub-measurement that was never chosen.
    trc::CTrcMeasurementBase* selected = measurement;
    if (request.subChannel >= 1) {
        selected = measurement->GetMeasurements().GetItem(request.subChannel - 1);
        if (!selected) return 0;
    }
    log.Add("Step-3 Compression <Channel %ld>", request.channel);
    const trc::CTrcMeasurementHeaderSection& header = selected->GetHeader();
    source.hasX = header.HasXTable();
    source.complex = header.GetComplex() != 0;
    source.curveSize = header.GetSize();
    source.data = &selected->GetData();
    return 1;
}

int CTrcCompression::Read(CTrcLoader& loader, const CompressionRequest& request, CompressionResult& result) {
    CTrcLogging& log = loader.GetLog();
    Source source;
    int found = 0;
    if (request.kind == kStoredMeasurement) found = findStored(loader, request, source);
    else if (request.kind == kInputChannel || request.kind == kTachoChannel) found = findRecorded(loader, request, source);
    if (!found) return 0;

    log.Add("Step-4 Compression <Channel %ld>", request.channel);
    log.Add("Step-5 Compression <Channel %ld>", request.channel);
    // The working copy follows a lowered setting too: it only ever shrinks.
    m_workingMaximum = std::min(m_workingMaximum, loader.GetMaxBlockSize());
    CompressionPlan& plan = result.plan;
    if (!PlanCompression(request.start, request.count, request.fileSamples, m_workingMaximum,
                         loader.GetLongFileFeature(), plan))
        return 0;
    // A short source makes every later read of this loader hand out fewer values.
    if (request.fileSamples < m_workingMaximum) m_workingMaximum = static_cast<long>(request.fileSamples);

    log.Add("Step-6 Compression <Channel %ld>", request.channel);
    m_workingLength = std::max<std::int64_t>(m_workingMaximum, plan.stepLength);
    if (!m_workingY.Ensure(m_workingLength) || (source.hasX && !m_workingX.Ensure(m_workingLength)) ||
        (source.complex && !m_workingImag.Ensure(m_workingLength)))
        return 0;
    log.Add("Step-7 Compression <Channel %ld>", request.channel);
    log.Add("Step-8 Compression <Channel %ld>", request.channel);
    if (source.recorded && !m_raw.Ensure(plan.stepLength * source.sampleBytes)) return 0;

    result.range = 20.0f;
    result.status = 0;
    log.Add("Step-10 Compression <Channel %ld>", request.channel);
    // A single step keeps all its values.
    const std::int64_t length = request.count == plan.stepLength ? m_workingLength : loader.GetMaxBlockSize();
    return source.recorded ? readRecorded(loader, request, source, result, length)
                           : readStored(loader, request, source, result, length);
}

int CTrcCompression::takeStep(CSampleQueue& queue, const Step& step, float* working, float* out,
                              std::int64_t length, long& status, float& range) {
    const SampleConversion& conversion = step.conversion;
    if (step.reduce && conversion.keepsOrder()) {
        // The pair follows from the stored extremes, so the values are searched where they stand.
        float lowest = INFINITY, highest = -INFINITY;
        int taken;
        if (step.elementSize == 4) {
            taken = queue.QueueTakeInto(step.length, 4, status, range, [&](const void* values, std::int64_t count) {
                floatExtremes(static_cast<const float*>(values), static_cast<std::size_t>(count), lowest, highest);
            });
        } else {
            std::int16_t low = INT16_MAX, high = INT16_MIN;
            taken = queue.QueueTakeInto(step.length, 2, status, range, [&](const void* values, std::int64_t count) {
                const auto* samples = static_cast<const std::int16_t*>(values);
                for (std::int64_t i = 0; i < count; ++i) {
                    low = std::min(low, samples[i]);
                    high = std::max(high, samples[i]);
                }
            });
            lowest = low;
            highest = high;
        }
        if (!taken) return 0;
        const StepExtremes pair = conversion.pair(lowest, highest);
        if (step.pairAt + 1 < length) {
            out[step.pairAt] = pair.minimum;
            out[step.pairAt + 1] = pair.maximum;
        }
        return 1;
    }
    // Every value converted into the working array, then reduced or handed out.
    if (step.elementSize == 4 && !conversion.convert) {
        if (!queue.QueueTake(step.length, 4, working, &status, &range)) return 0;
    } else {
        unsigned char* raw = m_raw.get();
        if (!queue.QueueTake(step.length, step.elementSize, raw, &status, &range)) return 0;
        for (std::int64_t i = 0; i < step.length; ++i) {
            float stored;
            if (step.elementSize == 4) {
                std::memcpy(&stored, raw + 4 * i, 4);
            } else {
                std::int16_t sample;
                std::memcpy(&sample, raw + 2 * i, 2);
                stored = sample;
            }
            working[i] = conversion(stored);
        }
    }
    if (step.reduce) {
        std::int64_t at = step.pairAt;
        ReduceMinMax(working, step.length, out, length, at);
    } else {
        std::memcpy(out, working, static_cast<std::size_t>(std::min(length, step.length)) * sizeof(float));
    }
    return 1;
}

int CTrcLoader::ReadCompressed(long kind, long channel, long subChannel, std::int64_t fileSamples, std::int64_t start,
                               std::int64_t count, float** x, float** yReal, float** yImag, float* factor,
                               int* uncompleted, int* useful, float* range, long* status) {
    m_log.Add("Begin Compression <Channel %ld>", channel);
    if (!IsFileOpened() || channel < 1) return 0;
    if (fileSamples <= 0 || count <= 0) return 1;
    if (start < 0 || !yReal || !factor || !uncompleted || !useful || !range || !status) return 0;
    if (!m_compression) m_compression.reset(new (std::nothrow) CTrcCompression(m_maxBlockSize));
    if (!m_compression) return 0;
    if (x) *x = nullptr;
    if (yImag) *yImag = nullptr;
    CompressionResult result;
    if (!m_compression->Read(*this, {kind, channel, subChannel, fileSamples, start, count}, result)) return 0;
    *factor = result.plan.factor;
    *uncompleted = result.plan.uncompleted;
    *useful = result.plan.useful;
    *range = result.range;
    *status = result.status;
    *yReal = result.yReal.release();
    // An array the caller has no place for goes with the result.
    if (x) *x = result.x.release();
    if (yImag) *yImag = result.yImag.release();
    m_log.Add("End Compression <Channel %ld>", channel);
    return 1;
}

}  // namespace nvdl::access
