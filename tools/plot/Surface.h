// The file a picture is drawn into: a PNG image or an SVG document, chosen by the file's extension.
#pragma once

#include <cairo.h>

#include <string>

namespace nvdl::plot {

enum class ImageFormat { Png, Svg, Unknown };

// ".png" and ".svg" in any case; anything else is Unknown.
ImageFormat imageFormatOf(const std::string& path);

class PlotSurface {
public:
    PlotSurface(ImageFormat format, const std::string& path, int width, int height);
    ~PlotSurface();
    PlotSurface(const PlotSurface&) = delete;
    PlotSurface& operator=(const PlotSurface&) = delete;

    // Null after a failed start; `finish` then says why.
    cairo_t* context() const { return m_context; }
    // Completes the file: the PNG is written now, the SVG document closed. False with `error` set
    // when the surface or the file failed.
    bool finish(std::string& error);

private:
    ImageFormat m_format;
    std::string m_path;
    cairo_surface_t* m_surface = nullptr;
    cairo_t* m_context = nullptr;
};

}  // namespace nvdl::plot
