#!/usr/bin/env bash
# Builds the library and the thread stress tests with ThreadSanitizer and runs them; any data
# race or lock-order fault stops the test that met it and fails the run.
# Usage: scripts/tsan.sh [extra CTest arguments]. KX_BUILD_DIR overrides the build folder.
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir="${KX_BUILD_DIR:-build-tsan}"
cmake -S . -B "$build_dir" -DKX_SANITIZE_THREAD=ON -DKX_SANITIZE=OFF \
  -DKX_BUILD_TOOLS=OFF -DKX_BUILD_BENCHMARKS=OFF
cmake --build "$build_dir" -j"$(nproc)" --target KxXmlLib16 kx_threads_tests

export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 ${TSAN_OPTIONS:-}"
ctest --test-dir "$build_dir" -L threads --output-on-failure "$@"
