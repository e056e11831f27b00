// The traces: lines thinned to what each pixel column can show, filled min/max envelopes and bars.
#include <algorithm>
#include <cmath>

#include "plot/Painter.h"

namespace nvdl::plot {

namespace {

// Device positions far outside the area are pulled in to a few areas' distance: cairo's fixed-point
// coordinates cannot take the positions of values far off the scale, and the clip hides the rest.
constexpr double kReach = 8.0;

struct Mapper {
    const Axis& x;
    const Axis& y;
    const Area& a;
    double px(double v) const { return a.left + x.fraction(v) * a.width; }
    double py(double v) const {
        const double p = a.top + (1.0 - y.fraction(v)) * a.height;
        return std::clamp(p, a.top - kReach * a.height, a.top + (1.0 + kReach) * a.height);
    }
};

// A line through many values, drawn per pixel column: of the values that fall in one column only
// the first, the lowest, the highest and the last are joined, in the order they came, which is all
// a pixel column can show of them. A value that cannot be placed (not a number, zero or below on a
// logarithmic axis) breaks the line.
class ColumnLine {
public:
    explicit ColumnLine(cairo_t* cr) : m_cr(cr) {}
    void add(double px, double py) {
        if (!std::isfinite(px) || !std::isfinite(py)) {
            flush();
            m_started = false;
            return;
        }
        const double column = std::floor(px);
        if (m_count > 0 && column == m_column) {
            if (py < m_low.y) m_low = {px, py, m_count};
            if (py > m_high.y) m_high = {px, py, m_count};
            m_last = {px, py, m_count++};
            return;
        }
        flush();
        m_column = column;
        m_low = m_high = m_last = {px, py, 0};
        m_count = 1;
        if (m_started) cairo_line_to(m_cr, px, py);
        else cairo_move_to(m_cr, px, py);
        m_started = true;
    }
    void flush() {
        if (m_count > 1) {
            const Point& early = m_low.order < m_high.order ? m_low : m_high;
            const Point& late = m_low.order < m_high.order ? m_high : m_low;
            for (const Point* p : {&early, &late, static_cast<const Point*>(&m_last)})
                if (p->order > 0) cairo_line_to(m_cr, p->x, p->y);
        }
        m_count = 0;
    }

private:
    struct Point {
        double x, y;
        long order;  // within the column; the first value, already joined, is 0
    };
    cairo_t* m_cr;
    bool m_started = false;
    double m_column = 0;
    Point m_low{}, m_high{}, m_last{};
    long m_count = 0;
};

void paintLine(cairo_t* cr, const Trace& t, const Mapper& map) {
    ColumnLine path(cr);
    for (std::size_t i = 0; i < t.x.size() && i < t.y.size(); ++i) path.add(map.px(t.x[i]), map.py(t.y[i]));
    path.flush();
    cairo_set_line_width(cr, 1.2);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cr);
}

// The band between the lowest and highest values: along the tops forward, back along the lows.
void paintEnvelope(cairo_t* cr, const Trace& t, const Mapper& map) {
    bool started = false;
    for (std::size_t i = 0; i < t.x.size(); ++i) {
        const double px = map.px(t.x[i]);
        if (!std::isfinite(px)) continue;
        if (started) cairo_line_to(cr, px, map.py(t.top[i]));
        else cairo_move_to(cr, px, map.py(t.top[i]));
        started = true;
    }
    for (std::size_t i = t.x.size(); i-- > 0;) {
        const double px = map.px(t.x[i]);
        if (std::isfinite(px)) cairo_line_to(cr, px, map.py(t.y[i]));
    }
    if (!started) return;
    cairo_close_path(cr);
    cairo_fill_preserve(cr);
    // The outline keeps a band thinner than a pixel visible.
    cairo_set_line_width(cr, 1.0);
    cairo_stroke(cr);
}

void paintBars(cairo_t* cr, const Trace& t, const Mapper& map) {
    const double floor = map.a.top + map.a.height;
    for (std::size_t i = 0; i < t.x.size(); ++i) {
        const double left = map.px(t.x[i]), right = map.px(t.right[i]), top = map.py(t.y[i]);
        if (!std::isfinite(left) || !std::isfinite(right) || !std::isfinite(t.y[i])) continue;
        cairo_rectangle(cr, left, std::min(top, floor), std::max(right - left, 1.0), std::abs(floor - top));
    }
    cairo_fill(cr);
}

}  // namespace

Colour colourOf(int index) {
    static constexpr Colour kPalette[] = {
        {0.12, 0.47, 0.71}, {0.84, 0.15, 0.16}, {0.17, 0.63, 0.17}, {1.00, 0.50, 0.05}, {0.58, 0.40, 0.74},
        {0.55, 0.34, 0.29}, {0.89, 0.47, 0.76}, {0.50, 0.50, 0.50}, {0.74, 0.74, 0.13}, {0.09, 0.75, 0.81},
    };
    constexpr int count = static_cast<int>(std::size(kPalette));
    return kPalette[((index % count) + count) % count];
}

void paintTrace(cairo_t* cr, const Trace& trace, const Axis& x, const Axis& y, const Area& area) {
    const Mapper map{x, y, area};
    const Colour c = colourOf(trace.colour);
    cairo_save(cr);
    switch (trace.style) {
    case TraceStyle::Line:
        cairo_set_source_rgb(cr, c.red, c.green, c.blue);
        paintLine(cr, trace, map);
        break;
    case TraceStyle::Envelope:
        cairo_set_source_rgba(cr, c.red, c.green, c.blue, 0.6);
        paintEnvelope(cr, trace, map);
        break;
    case TraceStyle::Bars:
        cairo_set_source_rgba(cr, c.red, c.green, c.blue, 0.85);
        paintBars(cr, trace, map);
        break;
    }
    cairo_restore(cr);
}

}  // namespace nvdl::plot
