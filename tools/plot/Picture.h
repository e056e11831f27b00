// A picture before it is drawn: panels of axes and traces in the measurements' own values (dB,
// degrees and band edges already worked out), a title and a legend. Which picture a set of
// measurements gets follows the first of them.
#pragma once

#include <string>
#include <vector>

#include "plot/MeasurementPlot.h"
#include "plot/MeasurementValues.h"
#include "plot/Ticks.h"

namespace nvdl::plot {

enum class PictureKind {
    MagnitudePhase,  // complex values: magnitude above phase
    Magnitude,       // real spectra
    Coherence,       // 0 to 1
    OctaveBands,     // bars at the band centres
    Lines,           // time records and anything else
    Envelope,        // the min/max pairs of a reduced picture of a long record
};

PictureKind pictureKindOf(const MeasurementValues& values);
// Whether the abscissa is frequency, and so logarithmic unless asked otherwise.
bool isFrequencyPicture(PictureKind kind);

enum class TraceStyle { Line, Envelope, Bars };

// One measurement's share of a panel. Lines: (x, y) joined, broken at values that cannot be shown.
// Envelope: the band between y (lowest) and top (highest) over x. Bars: from the panel's floor up
// to y, spanning x to right.
struct Trace {
    TraceStyle style = TraceStyle::Line;
    int colour = 0;
    std::vector<double> x, y, top, right;
};

struct Panel {
    Axis xAxis, yAxis;
    std::string xLabel, yLabel;
    std::vector<Trace> traces;
};

struct LegendEntry {
    std::string name;
    int colour;
};

struct Picture {
    std::string title;
    std::vector<Panel> panels;    // top to bottom
    std::vector<LegendEntry> legend;  // empty for a single measurement, whose name is the title
};

// The picture of the measurements (at least one). Measurements that do not fit the first one's
// picture still go in as well as they can: a real one in a magnitude-and-phase picture only above.
Picture composePicture(const std::vector<MeasurementValues>& measurements, const PlotOptions& options);

// Magnitude in dB re 1: 10 log10 for power quantities (autopowers, cross powers, densities),
// 20 log10 for the rest; minus infinity for zero.
double decibels(double magnitude, long functionType);

// The min/max pairs of a reduced picture as an envelope trace: each pair holds over twice the
// compression factor of the record's samples, from its start to its end. Pairs of chunks that held
// no number are left out.
Trace envelopeOf(const MeasurementValues& values);

}  // namespace nvdl::plot
