// The smallest and largest of a run of floats, in one pass over memory: the reduction behind every
// min/max overview of a long record.
#pragma once

#include <cstddef>

namespace nvdl {

// Lowers `lowest` and raises `highest` by the n values from `in`. A NaN changes neither, as a
// comparison with it is false.
void floatExtremes(const float* in, std::size_t n, float& lowest, float& highest);

}  // namespace nvdl
