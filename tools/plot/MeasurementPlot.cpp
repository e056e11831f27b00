#include "plot/MeasurementPlot.h"

#include "plot/Painter.h"
#include "plot/Picture.h"
#include "plot/Surface.h"

namespace nvdl::plot {

namespace {

// Pictures smaller than this have no room for their axes; larger ones would take gigabytes.
constexpr int kSmallestSide = 64;
constexpr int kLargestSide = 16384;

}  // namespace

bool writeMeasurementPlot(const std::vector<IDispatch*>& measurements, const std::string& path,
                          const PlotOptions& options, std::string& error) {
    const ImageFormat format = imageFormatOf(path);
    if (format == ImageFormat::Unknown) {
        error = "the picture's file name must end in .png or .svg";
        return false;
    }
    if (options.width < kSmallestSide || options.height < kSmallestSide || options.width > kLargestSide ||
        options.height > kLargestSide) {
        error = "width and height must be from " + std::to_string(kSmallestSide) + " to " + std::to_string(kLargestSide);
        return false;
    }
    if (measurements.empty()) {
        error = "no measurement to draw";
        return false;
    }
    std::vector<MeasurementValues> values(measurements.size());
    for (std::size_t i = 0; i < measurements.size(); ++i)
        if (!readMeasurementValues(measurements[i], values[i], error)) return false;

    const Picture picture = composePicture(values, options);
    PlotSurface surface(format, path, options.width, options.height);
    if (surface.context()) paintPicture(surface.context(), picture, options.width, options.height);
    return surface.finish(error);
}

}  // namespace nvdl::plot
