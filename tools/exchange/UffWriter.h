// Writes the universal file's datasets as ASCII text with the fixed-width fields each dataset
// defines: units first, then nodes, trace lines, data at nodes and functions, each dataset between
// "    -1" lines.
#pragma once

#include <string>

#include "exchange/UffModel.h"

namespace nvdl::exchange::uff {

std::string writeText(const File& file);

}  // namespace nvdl::exchange::uff
