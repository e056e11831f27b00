// Runs a short numpy script in Debian's Python to compute reference results for the kernel's tests.
#pragma once

#include <string>
#include <vector>

namespace nvdl::test {

// Runs `body` with /usr/bin/python3. The body sees `np` (numpy) and `inputs`, a list of float64
// arrays holding `inputs` as passed, and must assign a float64-convertible array to `result`.
// Returns the flattened result. Fails the calling test (and returns an empty vector) if Python or
// numpy cannot be run.
std::vector<double> runNumpy(const std::string& body, const std::vector<std::vector<double>>& inputs);

}  // namespace nvdl::test
