// A geometry as one stream of a workspace file (Geom<i>): a header, then per component its record
// followed by all its nodes, lines and triangles, in that order, with no separator.
#pragma once

#include "nvdl/Dispatch.h"
#include "nvdl/Stream.h"

namespace nvdl {

// Writes one geometry as a Geom<i> stream; clears Modified of node, line, triangle, component,
// geometry in that order after writing each. Items of the lists that are not of this server's
// geometry classes are not written.
HRESULT saveGeometryStream(IStream* stream, IDispatch* geometry);

// Reads one Geom<i> stream of a workspace file of the given version (the number of the version tag,
// e.g. 19960905; below it the old records) into a new geometry, handed out with one reference.
// A short read of any record, or a count that the rest of the stream cannot hold, fails the whole
// load and hands out nothing.
HRESULT loadGeometryStream(IStream* stream, long version, IDispatch** geometry);

}  // namespace nvdl
