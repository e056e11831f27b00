#include "analysis/ChannelAnalysis.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "analysis/BlockPlan.h"
#include "analysis/BlockReader.h"
#include "cli/Failure.h"
#include "measurement/Measurement.h"
#include "nvdl/nvdl.h"

namespace nvdl::analysis {

namespace {

enum : LONG {
    kTimeRecord = 1001,
    kAutopower = 1003,
    kCrosspower = 1004,
    kPsd = 1005,
    kCrossDensity = 1006,
    kLinearAveraging = 1201,
};

// Windows a block analysis can take without parameters of an impact test.
constexpr LONG kPlainWindows[] = {1301, 1302, 1303, 1304, 1307, 1308};

std::string textOf(IMeasurement* m, HRESULT (IMeasurement::*get)(BSTR*)) {
    Bstr text;
    if (FAILED((m->*get)(text.out()))) return {};
    return text.ansi();
}

void putText(IMeasurement* m, HRESULT (IMeasurement::*put)(BSTR), const std::string& text) {
    const Bstr value{std::string_view{text}};
    (m->*put)(value.get());
}

// Makes `to` use the dimension object of `from` for one axis.
void shareDimension(IMeasurement* from, IMeasurement* to, HRESULT (IMeasurement::*get)(IDispatch**),
                    HRESULT (IMeasurement::*put)(IDispatch*)) {
    IDispatch* dimension = nullptr;
    if (SUCCEEDED((from->*get)(&dimension)) && dimension) {
        (to->*put)(dimension);
        dimension->Release();
    }
}

// The channel's name in result names: its response text, else its own name.
std::string channelName(IMeasurement* record) {
    std::string name = textOf(record, &IMeasurement::get_Response);
    return name.empty() ? textOf(record, &IMeasurement::get_Name) : name;
}

// One record on its way through the blocks: the block measurement that carries its header, the
// window, the spectrum of the current block and the running sums of the block estimates.
struct Channel {
    IMeasurement* record = nullptr;
    std::string name;
    ComPtr<IMeasurement> block, window, spectrum, autoSum, crossSum;
};

bool check(HRESULT status, const char* step, std::string& error) {
    if (SUCCEEDED(status)) return true;
    error = tool::reasonOf(status, std::string(step) + " failed");
    return false;
}

// The block measurement of a record: a time record of `samples` samples with the record's sampling
// step, names and dimensions, and its window, made once. It names no storage units: the operators
// carry texts over unchanged, while they work the dimensions out, and readers take a dimension's
// own unit when there is no text (the recording's values are in those units already). Making the window leaves the window's
// noise bandwidth in the block's BandwidthCorrectionFactor, and every spectrum made from the block
// carries it on.
bool prepare(Channel& c, long samples, LONG window, std::string& error) {
    ComPtr<IDispatch> object;
    if (!check(CreateObject(u"nv_bench.measurement", object.out()), "creating a measurement", error)) return false;
    c.block = ComPtr<IMeasurement>::query(object.get());
    IMeasurement* b = c.block.get();
    float step = 0.0f;
    c.record->get_XIncrement(&step);
    if (!check(b->put_Size(samples), "sizing a block", error)) return false;
    b->put_XStart(0.0f);
    b->put_XIncrement(step);
    b->put_FunctionType(Variant::fromLong(kTimeRecord));
    putText(b, &IMeasurement::put_Name, c.name);
    putText(b, &IMeasurement::put_Response, c.name);
    LONG channel = 0;
    c.record->get_ResponseChannel(&channel);
    b->put_ResponseChannel(channel);
    shareDimension(c.record, b, &IMeasurement::get_XdDimension, &IMeasurement::put_XdDimension);
    shareDimension(c.record, b, &IMeasurement::get_YdDimension, &IMeasurement::put_YdDimension);
    b->put_WindowType(Variant::fromLong(window));
    // A factor of 0 asks for the window's amplitude correction: a sine keeps its amplitude.
    b->put_BandwidthCorrectionFactor(0.0f);
    return check(b->Window(c.window.out()), "making the window", error);
}

// The spectrum of the block that starts at `start`.
bool transform(Channel& c, std::int64_t start, long samples, std::vector<float>& scratch, std::string& error) {
    if (!readSpan(c.record, start, samples, scratch.data(), error)) return false;
    if (!check(c.block->SetYValues(0, samples, scratch.data(), nullptr), "filling a block", error)) return false;
    ComPtr<IMeasurement> windowed;
    if (!check(c.block->Multiply(c.window.get(), windowed.out()), "windowing a block", error)) return false;
    return check(windowed->Fft(c.spectrum.out()), "transforming a block", error);
}

// Adds one block's estimate to a running sum.
bool accumulate(ComPtr<IMeasurement>& sum, ComPtr<IMeasurement> estimate, std::string& error) {
    if (!sum) {
        sum = std::move(estimate);
        return true;
    }
    Variant plain = Variant::fromLong(0);
    ComPtr<IMeasurement> next;
    if (!check(sum->Add(estimate.get(), &plain, next.out()), "averaging", error)) return false;
    sum = std::move(next);
    return true;
}

bool scaled(IMeasurement* m, double factor, ComPtr<IMeasurement>& out, std::string& error) {
    return check(m->ScalarMultiply(static_cast<float>(factor), out.out()), "scaling", error);
}

// Function type, name and averaging of a result.
void label(IMeasurement* m, LONG type, const std::string& name, long averages, double overlap) {
    m->put_FunctionType(Variant::fromLong(type));
    putText(m, &IMeasurement::put_Name, name);
    m->put_Averages(averages);
    m->put_AveragingType(Variant::fromLong(kLinearAveraging));
    m->put_Overlap(static_cast<float>(overlap));
}

// Gives `target` the Y dimension of the product of two spectra: the unit of a power of the two.
bool takeProductDimension(IMeasurement* a, IMeasurement* b, IMeasurement* target, std::string& error) {
    ComPtr<IMeasurement> product;
    if (!check(a->Multiply(b, product.out()), "forming a unit", error)) return false;
    shareDimension(product.get(), target, &IMeasurement::get_YdDimension, &IMeasurement::put_YdDimension);
    return true;
}

bool checkRecords(const std::vector<IMeasurement*>& records, const AnalysisOptions& options, std::string& error) {
    if (records.empty()) {
        error = "no records to analyse";
        return false;
    }
    if (options.reference >= records.size()) {
        error = "the reference is not one of the records";
        return false;
    }
    float firstStep = 0.0f;
    for (IMeasurement* record : records) {
        Variant type, axis;
        float step = 0.0f;
        record->get_FunctionType(&type);
        record->get_XAxisType(&axis);
        record->get_XIncrement(&step);
        if (FAILED(type.changeType(VT_I4)) || type.lVal != kTimeRecord || FAILED(axis.changeType(VT_I4)) ||
            axis.lVal != kAxisEquidistant || !(step > 0.0f)) {
            error = channelName(record) + " is not an equidistant time record";
            return false;
        }
        if (firstStep == 0.0f) firstStep = step;
        if (std::fabs(step - firstStep) > 1e-6f * firstStep) {
            error = channelName(record) + " has another sampling rate than " + channelName(records.front());
            return false;
        }
    }
    return true;
}

// The averaged results of one channel from the sums of its block estimates.
bool finish(Channel& c, Channel& reference, ComPtr<IMeasurement>& referencePsd, const ChannelAnalysis& result,
            double overlap, double lineSpacing, ChannelSpectra& out, std::string& error) {
    const long n = result.averages;
    const double toPower = lineSpacing * result.windowBandwidth;
    if (!scaled(c.autoSum.get(), 1.0 / n, out.psd, error)) return false;
    out.psd->put_Complex(0);
    label(out.psd.get(), kPsd, "PSD(" + c.name + ")", n, overlap);
    if (!scaled(out.psd.get(), toPower, out.autopower, error) ||
        !takeProductDimension(c.spectrum.get(), c.spectrum.get(), out.autopower.get(), error))
        return false;
    label(out.autopower.get(), kAutopower, "Autopower(" + c.name + ")", n, overlap);
    if (&c == &reference) return true;

    const std::string pair = "(" + c.name + "," + reference.name + ")";
    ComPtr<IMeasurement> crossDensity;
    if (!scaled(c.crossSum.get(), 1.0 / n, crossDensity, error)) return false;
    label(crossDensity.get(), kCrossDensity, "CSD" + pair, n, overlap);
    if (!scaled(crossDensity.get(), toPower, out.cross, error) ||
        !takeProductDimension(reference.spectrum.get(), c.spectrum.get(), out.cross.get(), error))
        return false;
    label(out.cross.get(), kCrosspower, "Crosspower" + pair, n, overlap);
    Variant h1 = Variant::fromLong(1);
    if (!check(crossDensity->Frf(referencePsd.get(), h1, out.frf.out()), "the FRF", error) ||
        !check(crossDensity->Coherence(referencePsd.get(), out.psd.get(), out.coherence.out()), "the coherence", error))
        return false;
    putText(out.frf.get(), &IMeasurement::put_Name, "FRF" + pair);
    putText(out.coherence.get(), &IMeasurement::put_Name, "Coherence" + pair);
    return true;
}

}  // namespace

LONG windowCode(const std::string& name) {
    auto lower = [](std::string_view text) {
        std::string s(text);
        for (char& ch : s) ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
        return s;
    };
    for (LONG code : kPlainWindows)
        if (lower(measurementEnumTable().textOf(code)) == lower(name)) return code;
    return -1;
}

bool analyseChannels(const std::vector<IMeasurement*>& records, const AnalysisOptions& options,
                     const std::function<void(double)>& progress, ChannelAnalysis& result, std::string& error) {
    if (!checkRecords(records, options, error)) return false;
    std::int64_t shortest = recordLength(records.front());
    for (IMeasurement* record : records) shortest = std::min(shortest, recordLength(record));
    BlockPlan plan;
    if (!planBlocks(shortest, options.block, options.overlap, options.averages, plan, error)) return false;

    std::vector<Channel> channels(records.size());
    for (std::size_t i = 0; i < records.size(); ++i) {
        channels[i].record = records[i];
        channels[i].name = channelName(records[i]);
        if (!prepare(channels[i], plan.block, options.window, error)) return false;
    }
    Channel& reference = channels[options.reference];
    std::vector<float> scratch(static_cast<std::size_t>(plan.block));
    for (long k = 0; k < plan.count; ++k) {
        for (Channel& c : channels)
            if (!transform(c, plan.start(k), plan.block, scratch, error)) return false;
        for (Channel& c : channels) {
            ComPtr<IMeasurement> power, cross;
            if (!check(c.spectrum->Psd(c.spectrum.get(), power.out()), "an autopower", error) ||
                !accumulate(c.autoSum, std::move(power), error))
                return false;
            if (&c == &reference) continue;
            if (!check(reference.spectrum->Psd(c.spectrum.get(), cross.out()), "a crosspower", error) ||
                !accumulate(c.crossSum, std::move(cross), error))
                return false;
        }
        if (progress) progress(static_cast<double>(k + 1) / plan.count);
    }

    result.averages = plan.count;
    reference.block->get_BandwidthCorrectionFactor(&result.windowBandwidth);
    float step = 0.0f;
    records.front()->get_XIncrement(&step);
    const double lineSpacing = 1.0 / (plan.block * static_cast<double>(step));
    result.channels.assign(channels.size(), {});
    ChannelSpectra& referenceOut = result.channels[options.reference];
    if (!finish(reference, reference, referenceOut.psd, result, options.overlap, lineSpacing, referenceOut, error))
        return false;
    for (std::size_t i = 0; i < channels.size(); ++i)
        if (i != options.reference &&
            !finish(channels[i], reference, referenceOut.psd, result, options.overlap, lineSpacing, result.channels[i],
                    error))
            return false;
    return true;
}

bool octaveBands(IMeasurement* autopower, long bandsPerOctave, float windowBandwidth, ComPtr<IMeasurement>& bands,
                 std::string& error) {
    if (bandsPerOctave < 1) {
        error = "bands per octave must be 1 or more";
        return false;
    }
    // The bands sum the squares of line amplitudes: the root of the mean square of each line is the
    // amplitude whose square is the line's power. The window's bandwidth takes away the power a sine
    // spreads over its neighbouring lines.
    ComPtr<IMeasurement> amplitudes;
    if (!check(autopower->sqr(amplitudes.out()), "taking the root of an autopower", error)) return false;
    amplitudes->put_BandwidthCorrectionFactor(windowBandwidth);
    if (!check(amplitudes->Octave(bandsPerOctave, bands.out()), "the octave bands", error)) return false;
    putText(bands.get(), &IMeasurement::put_Name, "Oct(" + textOf(autopower, &IMeasurement::get_Name) + ")");
    return true;
}

}  // namespace nvdl::analysis
