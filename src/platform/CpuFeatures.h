// Element loops built twice, for the baseline instruction set and for AVX2, with the build the
// processor runs picked once at load. The loop body is an always-inlined function, compiled into
// both builds:
//
//   NVDL_INLINE_LOOP void sumBody(...) { for (...) ... }
//   NVDL_AVX2 void sumAvx2(...) { sumBody(...); }
//   void sumBaseline(...) { sumBody(...); }
//   const auto sum = pickBuild(sumAvx2, sumBaseline);
#pragma once

#define NVDL_INLINE_LOOP __attribute__((always_inline)) inline

#if defined(__x86_64__)
#define NVDL_HAS_AVX2_BUILD 1
#define NVDL_AVX2 __attribute__((target("avx2")))
#else
#define NVDL_HAS_AVX2_BUILD 0
#define NVDL_AVX2
#endif

namespace nvdl {

// Whether the processor runs the AVX2 build.
inline bool processorHasAvx2() {
#if NVDL_HAS_AVX2_BUILD
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
#else
    return false;
#endif
}

template <class F>
F* pickBuild(F* avx2, F* baseline) {
    return processorHasAvx2() ? avx2 : baseline;
}

}  // namespace nvdl
