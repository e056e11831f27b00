// Pictures of measurements, drawn with cairo into PNG or SVG files: axes with ticks and labels,
// units from the measurements' dimensions, a legend of their names.
#pragma once

#include <string>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl::plot {

struct PlotOptions {
    int width = 960;   // pixels for PNG, points for SVG
    int height = 600;
    std::string title;  // empty: the first measurement's name
    bool linearFrequency = false;  // frequency axes are logarithmic unless asked otherwise
    bool linearMagnitude = false;  // spectra are in dB unless asked otherwise
};

// Writes one picture of the measurements, overlaid, to `path`: PNG for ".png", SVG for ".svg" (in
// any case); any other extension is an error. What is drawn follows the first measurement: complex
// spectra and FRFs as magnitude above phase, coherence from 0 to 1, octave bands as bars, real
// spectra as magnitude, time records as lines, and reduced pictures of a recording's channel
// (compression factor above 1) as their min/max envelope. False with `error` set when a
// measurement has no values to draw or the file cannot be written.
bool writeMeasurementPlot(const std::vector<IDispatch*>& measurements, const std::string& path,
                          const PlotOptions& options, std::string& error);

}  // namespace nvdl::plot
