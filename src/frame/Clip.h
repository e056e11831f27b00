// Clip: an object's fields rendered through a client's format text with numbered inserts
// (%1, %2!d!, ...). Real values are passed truncated to integers, enumerations as their texts.
#pragma once

#include <span>

#include "platform/MessageFormat.h"
#include "nvdl/Types.h"

namespace nvdl {

// E_POINTER for a missing output; E_OUTOFMEMORY when the formatter produced nothing.
HRESULT clip(BSTR format, std::span<const MessageArg> fields, BSTR* text);

}  // namespace nvdl
