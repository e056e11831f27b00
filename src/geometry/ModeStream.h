// The Mode<i> stream of a workspace file: one mode as a header record followed by its coefficient
// records, all of Shape, OrigShape, Participation and OrigParticip in that order.
#pragma once

#include "nvdl/Dispatch.h"
#include "nvdl/Stream.h"

namespace nvdl {

// Writes one mode as a Mode<i> stream in the current layout; clears Modified of the mode after.
HRESULT saveModeStream(IStream* stream, IDispatch* mode);
// Reads one Mode<i> stream of a workspace file of the given version number (atol of the tag) into a
// new mode, handed out with one reference.
HRESULT loadModeStream(IStream* stream, long version, IDispatch** mode);

}  // namespace nvdl
