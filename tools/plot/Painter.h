// Drawing a composed picture with cairo: panels with their grid, ticks and labels, the traces
// inside them, the legend and the title.
#pragma once

#include <cairo.h>

#include "plot/Picture.h"

namespace nvdl::plot {

struct Area {
    double left, top, width, height;
};

struct Colour {
    double red, green, blue;
};

// The colour of the k-th measurement; distinct for the first ten, then repeating.
Colour colourOf(int index);

// The sizes every part of a picture takes from: the text height in device units.
struct Style {
    double font;
};

void paintPanel(cairo_t* cr, const Panel& panel, const Area& area, const Style& style);
void paintTrace(cairo_t* cr, const Trace& trace, const Axis& x, const Axis& y, const Area& area);
// In the upper right corner of `area`, over the traces.
void paintLegend(cairo_t* cr, const std::vector<LegendEntry>& legend, const Area& area, const Style& style);

// The whole picture on a width x height canvas.
void paintPicture(cairo_t* cr, const Picture& picture, int width, int height);

}  // namespace nvdl::plot
