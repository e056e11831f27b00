// What a picture needs of one measurement, read once through its interface: the values in memory,
// the abscissa of each, the kind of function and the axes' names in UTF-8.
#pragma once

#include <string>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl::plot {

struct MeasurementValues {
    std::string name;
    std::string xDimension, xUnit, yDimension, yUnit;  // empty when the measurement has none
    long functionType = 0;
    long axisType = 0;
    bool complex = false;
    float compressionFactor = 1.0f;
    double xIncrement = 1.0;
    std::vector<double> x, real, imag;  // imag only for complex measurements
};

// False with `error` set when the object is no measurement or holds no values.
bool readMeasurementValues(IDispatch* object, MeasurementValues& values, std::string& error);

}  // namespace nvdl::plot
