// Measurements as comma-separated text, the form spreadsheets and scripts read: a header line of
// column names with units, then one line per abscissa value. Measurements written together share
// the first one's abscissa; a complex measurement gives a real and an imaginary column.
#pragma once

#include <string>
#include <vector>

#include "nvdl/Dispatch.h"

namespace nvdl::exchange {

// False with `error` set when a measurement has no values or the file cannot be written; the file
// is written through a temporary file and renamed, so a failed write leaves no half file.
bool writeMeasurementsCsv(const std::vector<IDispatch*>& measurements, const std::string& path, std::string& error);

}  // namespace nvdl::exchange
