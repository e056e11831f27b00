// A list of save functions as the saving section's stream keeps it: the names in order, joined by
// ";" and ended by a zero byte; an empty list has no text at all.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/ObjectCollection.h"

namespace nvdl::save_functions {

// The text of a list: its names joined, zero-ended; empty for a list without names.
std::string textOf(const std::vector<std::string>& names);
// The names of a text read whole (its zero included), blank names left out.
std::vector<std::string> namesOf(const std::vector<std::uint8_t>& text);

// The names of the list's items, in order; an item that gives no name is passed over.
std::vector<std::string> namesIn(const CObjectCollection& list);
// Empties the list and fills it with a new save function for each name, as Add takes them (a name
// that repeats, case ignored, makes no second item).
void refill(CObjectCollection& list, const std::vector<std::string>& names);
// Empties `target` and fills it with a clone of each save function of `source`.
void copyClones(const CObjectCollection& source, CObjectCollection& target);

}  // namespace nvdl::save_functions
