#include "plot/Surface.h"

#include <cairo-svg.h>

#include <algorithm>
#include <cctype>

namespace nvdl::plot {

namespace {

bool endsWith(const std::string& path, const char* extension) {
    const std::string tail(extension);
    if (path.size() < tail.size()) return false;
    return std::equal(tail.begin(), tail.end(), path.end() - static_cast<std::ptrdiff_t>(tail.size()),
                      [](char a, char b) { return std::tolower(static_cast<unsigned char>(b)) == a; });
}

}  // namespace

ImageFormat imageFormatOf(const std::string& path) {
    if (endsWith(path, ".png")) return ImageFormat::Png;
    if (endsWith(path, ".svg")) return ImageFormat::Svg;
    return ImageFormat::Unknown;
}

PlotSurface::PlotSurface(ImageFormat format, const std::string& path, int width, int height)
    : m_format(format), m_path(path) {
    m_surface = format == ImageFormat::Svg ? cairo_svg_surface_create(path.c_str(), width, height)
                                           : cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
    if (cairo_surface_status(m_surface) == CAIRO_STATUS_SUCCESS) m_context = cairo_create(m_surface);
}

PlotSurface::~PlotSurface() {
    if (m_context) cairo_destroy(m_context);
    cairo_surface_destroy(m_surface);
}

bool PlotSurface::finish(std::string& error) {
    cairo_status_t status = cairo_surface_status(m_surface);
    if (status == CAIRO_STATUS_SUCCESS && m_context) status = cairo_status(m_context);
    if (status == CAIRO_STATUS_SUCCESS) {
        cairo_surface_flush(m_surface);
        if (m_format == ImageFormat::Png) status = cairo_surface_write_to_png(m_surface, m_path.c_str());
        else cairo_surface_finish(m_surface);
        if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(m_surface);
    }
    if (status == CAIRO_STATUS_SUCCESS) return true;
    error = status == CAIRO_STATUS_WRITE_ERROR || status == CAIRO_STATUS_FILE_NOT_FOUND
                ? "cannot write the file"
                : std::string("cannot draw the picture: ") + cairo_status_to_string(status);
    return false;
}

}  // namespace nvdl::plot
