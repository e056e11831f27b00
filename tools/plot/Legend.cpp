// The legend: one row per measurement, a swatch of its colour and its name, on a pale box in the
// upper right corner of the first panel.
#include <algorithm>

#include "plot/Painter.h"

namespace nvdl::plot {

void paintLegend(cairo_t* cr, const std::vector<LegendEntry>& legend, const Area& area, const Style& style) {
    if (legend.empty()) return;
    cairo_save(cr);
    cairo_set_font_size(cr, style.font);
    const double row = style.font * 1.4, swatch = style.font * 1.6, pad = style.font * 0.5;
    double widest = 0;
    for (const LegendEntry& e : legend) {
        cairo_text_extents_t extents;
        cairo_text_extents(cr, e.name.c_str(), &extents);
        widest = std::max(widest, extents.x_advance);
    }
    const double width = std::min(pad * 3 + swatch + widest, area.width * 0.6);
    const double height = pad * 2 + row * static_cast<double>(legend.size());
    const double left = area.left + area.width - width - pad, top = area.top + pad;

    cairo_rectangle(cr, left, top, width, height);
    cairo_set_source_rgba(cr, 1, 1, 1, 0.85);
    cairo_fill_preserve(cr);
    cairo_set_source_rgb(cr, 0.6, 0.6, 0.6);
    cairo_set_line_width(cr, 1.0);
    cairo_stroke(cr);
    // Names too long for the box are cut at its edge.
    cairo_rectangle(cr, left, top, width, height);
    cairo_clip(cr);
    for (std::size_t i = 0; i < legend.size(); ++i) {
        const double middle = top + pad + row * (static_cast<double>(i) + 0.5);
        const Colour c = colourOf(legend[i].colour);
        cairo_set_source_rgb(cr, c.red, c.green, c.blue);
        cairo_rectangle(cr, left + pad, middle - style.font * 0.3, swatch, style.font * 0.6);
        cairo_fill(cr);
        cairo_set_source_rgb(cr, 0, 0, 0);
        cairo_move_to(cr, left + pad * 2 + swatch, middle + style.font * 0.35);
        cairo_show_text(cr, legend[i].name.c_str());
    }
    cairo_restore(cr);
}

}  // namespace nvdl::plot
