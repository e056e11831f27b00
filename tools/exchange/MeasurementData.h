// What the exchange writers take from a measurement: its header texts and codes and all of its
// values in memory, read through the measurement's interface so that a record paged from a file
// or a recording is read whole.
#pragma once

#include <string>
#include <vector>

#include "nvdl/IMeasurement.h"

namespace nvdl::exchange {

struct MeasurementData {
    std::string name, response, reference, xDimension, yDimension, xUnit, yUnit;  // 8-bit texts
    LONG functionType = 1000, responseChannel = 0, referenceChannel = 0, xAxisType = 1100;
    double xStart = 0, xIncrement = 1;
    bool complex = false;
    std::vector<float> x;  // filled for every axis: the abscissa of each value
    std::vector<float> re, im;
    bool evenlySpaced() const { return xAxisType == 1100; }
};

// The IMeasurement behind a dispatch pointer, with one reference for the caller; null when the
// object is not a measurement.
IMeasurement* measurementOf(IDispatch* object);

// False with `error` set when a value cannot be read.
bool readMeasurement(IMeasurement* m, MeasurementData& out, std::string& error);

}  // namespace nvdl::exchange
