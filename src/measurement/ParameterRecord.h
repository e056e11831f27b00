// The stored form of a name and value pair, shared by parameters and save functions: one record of
// 200 bytes, the name then the value, each a text of 100 bytes cut to 99 characters and zero-ended.
#pragma once

#include <cstddef>
#include <string>

#include "nvdl/Stream.h"

namespace nvdl {

struct ParameterRecord {
    std::string name, value;
};

namespace parameter_record {

inline constexpr std::size_t kSize = 200;

// Reads one whole record; a short or failed read is E_FAIL and leaves `into` as it was.
HRESULT read(IStream* stream, ParameterRecord& into);
// Writes one whole record; a short write is STG_E_MEDIUMFULL.
HRESULT write(IStream* stream, const ParameterRecord& from);

}  // namespace parameter_record
}  // namespace nvdl
