// The sections of a setup: the single sections it owns, its collections, and the table of the
// storage tree in which a setup is saved (a sub-storage per section, a stream per object).
#pragma once

#include <cstddef>
#include <span>

#include "nvdl/Dispatch.h"

namespace nvdl {

enum class SingleSection {
    Acquisition, Processing, Saving, Tacho, Rpm, SinRed, SRS, SteppedSine, Throughput, Octave, Impact,
    TimeFilter, Resampling, PostProcessing, ShockCapture,
};
inline constexpr std::size_t kSingleSectionCount = 15;

enum class SectionCollection { Parameters, Transducers, InputChannels, StrainChannels, SourceChannels, Frontends };

// A new object of the class of a single section, holding one reference, or null.
IDispatch* createSection(SingleSection which);

// One element of the saved tree: a sub-storage holding one stream per object, named "<stream>(n)"
// with n counted from 1 (a single section has one stream, "<stream>(1)").
struct StorageSection {
    const char16_t* storage;
    const char16_t* stream;
    bool isCollection;
    SingleSection single;          // when not a collection
    SectionCollection collection;  // when a collection
    const CLSID* itemClass;        // the class of a collection's items
};

// In saving order, which is also the order in which a load compares the names.
std::span<const StorageSection> storageSections();

}  // namespace nvdl
