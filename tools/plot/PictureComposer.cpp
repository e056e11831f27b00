#include "plot/Picture.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nvdl::plot {

namespace {

constexpr double kRadiansToDegrees = 180.0 / 3.14159265358979323846;
// A dB scale that reaches further down than this below its top shows nothing more of use: values
// near zero (a removed mean, a suppressed line) would squash the rest into a strip.
constexpr double kDecibelSpan = 200.0;
// The smallest and largest marks a reduced read leaves in a pair whose chunk held no number.
constexpr double kEmptyChunkMark = 2147483648.0;
// The share of a band's slot that its bars fill, the rest being the gap to the next band.
constexpr double kBarFill = 0.8;

bool isCoherence(long type) { return type >= 1013 && type <= 1016; }
bool isPower(long type) { return type >= 1003 && type <= 1008; }
// Spectra, FRFs and what is computed from them: function types over frequency.
bool isSpectral(long type) {
    return (type >= 1002 && type <= 1008) || type == 1011 || type == 1021 || type == 1022 || type == 1044 || type == 1045;
}

double magnitudeAt(const MeasurementValues& m, std::size_t i) {
    return m.imag.empty() ? std::abs(m.real[i]) : std::hypot(m.real[i], m.imag[i]);
}

std::string withUnit(const std::string& name, const std::string& unit) {
    if (unit.empty() || unit == name) return name;
    return name + " [" + unit + "]";
}

std::string xLabelOf(const MeasurementValues& first, PictureKind kind) {
    if (!first.xDimension.empty()) return withUnit(first.xDimension, first.xUnit);
    return isFrequencyPicture(kind) ? "Frequency" : "Time";
}

std::string magnitudeLabel(const MeasurementValues& first, bool linear) {
    const std::string name = first.yDimension.empty() ? "Magnitude" : first.yDimension;
    if (linear) return withUnit(name, first.yUnit);
    return name + " [dB re 1" + (first.yUnit.empty() ? std::string() : " " + first.yUnit) + "]";
}

Trace lineOf(const MeasurementValues& m, int colour, double (*value)(const MeasurementValues&, std::size_t, long)) {
    Trace t;
    t.colour = colour;
    t.x = m.x;
    t.y.resize(m.real.size());
    for (std::size_t i = 0; i < m.real.size(); ++i) t.y[i] = value(m, i, m.functionType);
    return t;
}

double realValue(const MeasurementValues& m, std::size_t i, long) { return m.real[i]; }
double linearMagnitude(const MeasurementValues& m, std::size_t i, long) { return magnitudeAt(m, i); }
double decibelMagnitude(const MeasurementValues& m, std::size_t i, long type) { return decibels(magnitudeAt(m, i), type); }
double phaseDegrees(const MeasurementValues& m, std::size_t i, long) {
    return std::atan2(m.imag[i], m.real[i]) * kRadiansToDegrees;
}

// Bars of one measurement among `count` that share each band's slot: the slot reaches halfway to
// the neighbouring centres (in log10 on a logarithmic axis), and this measurement takes its share.
Trace barsOf(const MeasurementValues& m, int colour, int index, int count, bool logarithmic, bool linear) {
    Trace t;
    t.style = TraceStyle::Bars;
    t.colour = colour;
    const auto at = [&](double v) { return logarithmic ? std::log10(v) : v; };
    const auto back = [&](double v) { return logarithmic ? std::pow(10.0, v) : v; };
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < m.x.size(); ++i)
        if (std::isfinite(m.x[i]) && (!logarithmic || m.x[i] > 0.0)) shown.push_back(i);
    for (std::size_t k = 0; k < shown.size(); ++k) {
        const double centre = at(m.x[shown[k]]);
        const double before = k > 0 ? centre - at(m.x[shown[k - 1]]) : 0.0;
        const double after = k + 1 < shown.size() ? at(m.x[shown[k + 1]]) - centre : 0.0;
        double half = 0.5 * (before > 0.0 && after > 0.0 ? std::min(before, after) : std::max({before, after, 0.0}));
        if (half <= 0.0) half = logarithmic ? 0.05 : 0.5;
        const double slot = 2.0 * half * kBarFill;
        const double left = centre - half * kBarFill + slot * index / count;
        t.x.push_back(back(left));
        t.right.push_back(back(left + slot / count));
        const double magnitude = magnitudeAt(m, shown[k]);
        t.y.push_back(linear ? magnitude : decibels(magnitude, m.functionType));
    }
    return t;
}

// The y axis of a magnitude scale: dB scales keep to the top kDecibelSpan of their values.
Axis magnitudeAxis(Extent extent, bool linear) {
    if (!linear && !extent.empty) extent.low = std::max(extent.low, extent.high - kDecibelSpan);
    return linearAxis(extent);
}

Extent yExtentOf(const Panel& panel, bool positiveXOnly) {
    Extent e;
    for (const Trace& t : panel.traces)
        for (std::size_t i = 0; i < t.y.size(); ++i) {
            if (positiveXOnly && !(t.x[i] > 0.0)) continue;
            e.take(t.y[i]);
            if (!t.top.empty()) e.take(t.top[i]);
        }
    return e;
}

Axis xAxisOf(const Panel& panel, bool logarithmic) {
    Extent e;
    for (const Trace& t : panel.traces) {
        for (double x : t.x) e.take(x, logarithmic);
        for (double x : t.right) e.take(x, logarithmic);
    }
    if (logarithmic) return logAxis(e);
    // Time and band axes end where the data ends rather than at a whole step beyond it.
    Axis axis = linearAxis(e, 8);
    if (!e.empty && e.high > e.low) {
        axis.low = e.low;
        axis.high = e.high;
        std::erase_if(axis.ticks, [&](const Tick& t) { return t.value < e.low - 1e-9 * (e.high - e.low) ||
                                                              t.value > e.high + 1e-9 * (e.high - e.low); });
    }
    return axis;
}

bool anyPositive(const std::vector<MeasurementValues>& measurements) {
    for (const MeasurementValues& m : measurements)
        for (double x : m.x)
            if (x > 0.0 && std::isfinite(x)) return true;
    return false;
}

}  // namespace

PictureKind pictureKindOf(const MeasurementValues& values) {
    if (values.axisType == 1103) return PictureKind::OctaveBands;
    if (isCoherence(values.functionType)) return PictureKind::Coherence;
    if (values.complex) return PictureKind::MagnitudePhase;
    if (isSpectral(values.functionType)) return PictureKind::Magnitude;
    if (values.compressionFactor > 1.0f) return PictureKind::Envelope;
    return PictureKind::Lines;
}

bool isFrequencyPicture(PictureKind kind) {
    return kind == PictureKind::MagnitudePhase || kind == PictureKind::Magnitude || kind == PictureKind::Coherence ||
           kind == PictureKind::OctaveBands;
}

double decibels(double magnitude, long functionType) {
    if (!(magnitude > 0.0)) return -std::numeric_limits<double>::infinity();
    return (isPower(functionType) ? 10.0 : 20.0) * std::log10(magnitude);
}

Trace envelopeOf(const MeasurementValues& values) {
    Trace t;
    t.style = TraceStyle::Envelope;
    const double pairSpan = 2.0 * values.compressionFactor * values.xIncrement;
    const double start = values.x.empty() ? 0.0 : values.x.front();
    for (std::size_t i = 0; i + 1 < values.real.size(); i += 2) {
        const double low = values.real[i], high = values.real[i + 1];
        if (!(low <= high) || low >= kEmptyChunkMark || high <= -kEmptyChunkMark) continue;
        // The pair holds over its whole span: a step at each end.
        const double from = start + pairSpan * static_cast<double>(i / 2);
        t.x.insert(t.x.end(), {from, from + pairSpan});
        t.y.insert(t.y.end(), {low, low});
        t.top.insert(t.top.end(), {high, high});
    }
    return t;
}

Picture composePicture(const std::vector<MeasurementValues>& measurements, const PlotOptions& options) {
    const MeasurementValues& first = measurements.front();
    const PictureKind kind = pictureKindOf(first);
    const bool logX = isFrequencyPicture(kind) && !options.linearFrequency && anyPositive(measurements);
    const bool linear = options.linearMagnitude;

    Picture picture;
    picture.title = options.title.empty() ? first.name : options.title;
    Panel top, bottom;
    top.xLabel = bottom.xLabel = xLabelOf(first, kind);
    const int count = static_cast<int>(measurements.size());
    for (int k = 0; k < count; ++k) {
        const MeasurementValues& m = measurements[static_cast<std::size_t>(k)];
        if (count > 1) picture.legend.push_back({m.name.empty() ? "measurement " + std::to_string(k + 1) : m.name, k});
        Trace t;
        switch (kind) {
        case PictureKind::OctaveBands: t = barsOf(m, k, k, count, logX, linear); break;
        case PictureKind::Coherence: t = lineOf(m, k, &realValue); break;
        case PictureKind::MagnitudePhase:
        case PictureKind::Magnitude: t = lineOf(m, k, linear ? &linearMagnitude : &decibelMagnitude); break;
        case PictureKind::Lines:
        case PictureKind::Envelope:
            t = pictureKindOf(m) == PictureKind::Envelope ? envelopeOf(m) : lineOf(m, k, &realValue);
            t.colour = k;
            break;
        }
        top.traces.push_back(std::move(t));
        if (kind == PictureKind::MagnitudePhase && !m.imag.empty()) bottom.traces.push_back(lineOf(m, k, &phaseDegrees));
    }

    top.xAxis = xAxisOf(top, logX);
    switch (kind) {
    case PictureKind::Coherence:
        top.yAxis = fixedAxis(0.0, 1.0, 0.2);
        top.yLabel = "Coherence";
        break;
    case PictureKind::MagnitudePhase:
    case PictureKind::Magnitude:
    case PictureKind::OctaveBands:
        top.yAxis = magnitudeAxis(yExtentOf(top, logX), linear);
        top.yLabel = magnitudeLabel(first, linear);
        break;
    case PictureKind::Lines:
    case PictureKind::Envelope:
        top.yAxis = linearAxis(yExtentOf(top, false));
        top.yLabel = first.yDimension.empty() ? "Value" : withUnit(first.yDimension, first.yUnit);
        break;
    }
    picture.panels.push_back(std::move(top));
    if (kind == PictureKind::MagnitudePhase) {
        bottom.xAxis = picture.panels.front().xAxis;
        bottom.yAxis = fixedAxis(-180.0, 180.0, 90.0);
        bottom.yLabel = "Phase [°]";
        picture.panels.push_back(std::move(bottom));
    }
    return picture;
}

}  // namespace nvdl::plot
