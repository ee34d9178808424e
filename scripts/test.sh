#!/usr/bin/env bash
# Builds the library and every test, then runs the whole suite through CTest.
# Extra arguments go to CTest (for example: scripts/test.sh -L values).
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir="${KX_BUILD_DIR:-build}"
cmake -S . -B "$build_dir" ${KX_CMAKE_ARGS:-}
cmake --build "$build_dir" -j"$(nproc)"
ctest --test-dir "$build_dir" --output-on-failure -j"$(nproc)" "$@"
