// NVDL for C++ clients: create any registered class of the object server and drive it through
// IDispatch (GetIDsOfNames and Invoke) or its own interface.
#pragma once

#include "nvdl/Dispatch.h"
#include "nvdl/ErrorInfo.h"
#include "nvdl/Export.h"

NVDL_API_BEGIN

namespace nvdl {

// Creates an object by ProgID (compared ignoring case), e.g. u"nv_bench.parameter".
// REGDB_E_CLASSNOTREG for an unknown ProgID.
HRESULT CreateObject(std::u16string_view progId, IDispatch** object);
// The number of live model objects of the server.
long ObjectCount();

}  // namespace nvdl

NVDL_API_END
