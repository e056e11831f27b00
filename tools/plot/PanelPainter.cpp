// A panel's frame: grid lines at the ticks, tick marks and their texts, the axis names, and the
// traces clipped to the plotting area.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "plot/Painter.h"

namespace nvdl::plot {

namespace {

enum class Anchor { Centre, Right };

// Text with its centre (or right end) at x and its vertical middle at y.
void text(cairo_t* cr, const std::string& s, double x, double y, Anchor anchor) {
    cairo_text_extents_t e;
    cairo_text_extents(cr, s.c_str(), &e);
    const double left = anchor == Anchor::Centre ? x - e.width / 2 - e.x_bearing : x - e.width - e.x_bearing;
    cairo_move_to(cr, left, y - e.height / 2 - e.y_bearing);
    cairo_show_text(cr, s.c_str());
}

void line(cairo_t* cr, double x0, double y0, double x1, double y1) {
    cairo_move_to(cr, x0, y0);
    cairo_line_to(cr, x1, y1);
    cairo_stroke(cr);
}

// Device positions of the axes' ticks inside the area; ticks outside the range are skipped.
template <class Each>
void forTicks(const Axis& axis, Each each) {
    for (const Tick& t : axis.ticks) {
        const double f = axis.fraction(t.value);
        if (std::isfinite(f) && f >= -1e-9 && f <= 1.0 + 1e-9) each(t, f);
    }
}

}  // namespace

void paintPanel(cairo_t* cr, const Panel& panel, const Area& a, const Style& style) {
    const double right = a.left + a.width, bottom = a.top + a.height;
    cairo_save(cr);
    cairo_set_line_width(cr, 1.0);
    // Grid: major ticks darker than minor ones.
    const auto grid = [&](const Tick& t) { cairo_set_source_rgb(cr, t.major ? 0.82 : 0.92, t.major ? 0.82 : 0.92, t.major ? 0.82 : 0.92); };
    forTicks(panel.xAxis, [&](const Tick& t, double f) {
        grid(t);
        line(cr, a.left + f * a.width, a.top, a.left + f * a.width, bottom);
    });
    forTicks(panel.yAxis, [&](const Tick& t, double f) {
        grid(t);
        line(cr, a.left, bottom - f * a.height, right, bottom - f * a.height);
    });

    cairo_save(cr);
    cairo_rectangle(cr, a.left, a.top, a.width, a.height);
    cairo_clip(cr);
    for (const Trace& t : panel.traces) paintTrace(cr, t, panel.xAxis, panel.yAxis, a);
    cairo_restore(cr);

    cairo_set_source_rgb(cr, 0.2, 0.2, 0.2);
    cairo_rectangle(cr, a.left, a.top, a.width, a.height);
    cairo_stroke(cr);
    const double tick = style.font * 0.4;
    cairo_set_font_size(cr, style.font);
    forTicks(panel.xAxis, [&](const Tick& t, double f) {
        const double x = a.left + f * a.width;
        line(cr, x, bottom, x, bottom + (t.major ? tick : tick / 2));
        if (!t.label.empty()) text(cr, t.label, x, bottom + tick + style.font * 0.8, Anchor::Centre);
    });
    forTicks(panel.yAxis, [&](const Tick& t, double f) {
        const double y = bottom - f * a.height;
        line(cr, a.left - (t.major ? tick : tick / 2), y, a.left, y);
        if (!t.label.empty()) text(cr, t.label, a.left - tick - style.font * 0.3, y, Anchor::Right);
    });
    text(cr, panel.xLabel, a.left + a.width / 2, bottom + tick + style.font * 2.3, Anchor::Centre);
    cairo_save(cr);
    cairo_translate(cr, a.left - style.font * 5.2, a.top + a.height / 2);
    cairo_rotate(cr, -std::numbers::pi / 2);
    text(cr, panel.yLabel, 0, 0, Anchor::Centre);
    cairo_restore(cr);
    cairo_restore(cr);
}

void paintPicture(cairo_t* cr, const Picture& picture, int width, int height) {
    const Style style{std::clamp(std::min(width, height) / 48.0, 8.0, 16.0)};
    cairo_set_source_rgb(cr, 1, 1, 1);
    cairo_paint(cr);
    cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);

    const double left = style.font * 6.5, right = style.font * 1.5, top = style.font * 2.8, bottom = style.font * 3.8;
    const double gap = style.font * 3.8;  // below an upper panel: its tick texts and axis name
    const double free = height - top - bottom - gap * static_cast<double>(picture.panels.size() - 1);
    // Two panels: the magnitude takes three fifths, the phase the rest.
    const double shares[2] = {picture.panels.size() > 1 ? 0.6 : 1.0, 0.4};
    double y = top;
    for (std::size_t i = 0; i < picture.panels.size() && i < 2; ++i) {
        const Area area{left, y, width - left - right, free * shares[i]};
        paintPanel(cr, picture.panels[i], area, style);
        if (i == 0) paintLegend(cr, picture.legend, area, style);
        y += area.height + gap;
    }

    cairo_set_source_rgb(cr, 0, 0, 0);
    cairo_set_font_size(cr, style.font * 1.2);
    cairo_text_extents_t e;
    cairo_text_extents(cr, picture.title.c_str(), &e);
    cairo_move_to(cr, width / 2.0 - e.width / 2 - e.x_bearing, top / 2 - e.height / 2 - e.y_bearing);
    cairo_show_text(cr, picture.title.c_str());
}

}  // namespace nvdl::plot
