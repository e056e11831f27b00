#!/usr/bin/env bash
# Set-up, build, and run every test: the normal build (C++ and Python tests),
# then the AddressSanitizer + UndefinedBehaviorSanitizer build.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)

scripts/setup.sh build
(cd build && ctest --output-on-failure -j "$jobs")
echo "run-tests: normal build and tests done after ${SECONDS} s"

# The checking builds (sanitizers, fuzzing) are optimised less and carry line tables only: they
# compile in about half the time, and their reports still name files and lines.
checking_flags="-O1 -g1 -DNDEBUG"
scripts/setup.sh build-asan -DNVDL_SANITIZE=ON -DNVDL_BENCH=OFF \
  -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="$checking_flags" -DCMAKE_C_FLAGS_RELWITHDEBINFO="$checking_flags"
# Python loads the sanitized module into an uninstrumented interpreter: preload the runtime (with
# the C++ library, so that the runtime finds the exception functions it wraps), and leave leak
# checking to the C++ programs (the interpreter keeps objects until exit).
asan_lib="$(gcc -print-file-name=libasan.so) $(gcc -print-file-name=libstdc++.so)"
lsan_suppressions="$(pwd)/scripts/lsan-suppressions.txt"
(cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
   LSAN_OPTIONS="suppressions=$lsan_suppressions" ctest --output-on-failure -j "$jobs" -L cpp)
(cd build-asan && env LD_PRELOAD="$asan_lib" ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 \
   ctest --output-on-failure -j "$jobs" -L python)
echo "run-tests: sanitizer build and tests done after ${SECONDS} s"

# Short fuzzing runs of the file readers, each on a copy of its seed corpus (clang with libFuzzer):
# the compound-file layer, the setup readers, the workspace and project file readers, the zip
# bundle reader, data blocks and recordings share the minute.
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="$checking_flags" -DCMAKE_C_FLAGS_RELWITHDEBINFO="$checking_flags" \
  -DNVDL_FUZZ=ON -DNVDL_PYTHON=OFF -DNVDL_BENCH=OFF >/dev/null
for target in compound:fuzz_compound_reader setup:fuzz_setup_reader wkd:fuzz_wkd_reader zip:fuzz_zip_reader vpj:fuzz_vpj_reader datablock:fuzz_datablock_reader trc:fuzz_trc_reader uff:fuzz_uff_reader; do
  corpus_name=${target%%:*}
  fuzzer=${target#*:}
  cmake --build build-fuzz --target "$fuzzer" -j "$jobs"
  fuzz_corpus=$(mktemp -d)
  cp fuzz/corpus/"$corpus_name"/* "$fuzz_corpus"/
  build-fuzz/fuzz/"$fuzzer" -max_total_time=8 -rss_limit_mb=2048 "$fuzz_corpus"
  rm -rf "$fuzz_corpus"
done
echo "run-tests: fuzzing done after ${SECONDS} s"
