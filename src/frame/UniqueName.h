// Renaming of a name that a collection already holds: "A" becomes "A(2)", "run.dat" "run(2)..dat".
#pragma once

#include <string>

namespace nvdl {

// The candidate for round n, built from the name as first given. `closingInExtension` is sticky
// across the rounds of one call: once the extension held a ")" it keeps that form.
std::string numberedName(const std::string& original, long n, bool& closingInExtension);

}  // namespace nvdl
