// Failures inside the compound-file layer travel as CompoundError and become status codes at the
// border of every interface call.
#pragma once

#include <new>

#include "nvdl/HResult.h"

namespace nvdl::cfb {

struct CompoundError {
    HRESULT code;
};

[[noreturn]] inline void fail(HRESULT code) { throw CompoundError{code}; }

// Runs `body` (returning nothing) and turns what it throws into a status code.
template <class Body>
HRESULT guarded(Body&& body) noexcept {
    try {
        body();
        return S_OK;
    } catch (const CompoundError& e) {
        return e.code;
    } catch (const std::bad_alloc&) {
        return STG_E_INSUFFICIENTMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

}  // namespace nvdl::cfb
