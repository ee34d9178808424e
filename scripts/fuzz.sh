#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each for a bounded time on a copy of its seed
# corpus. Usage: scripts/fuzz.sh [seconds per target, default 30]
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-30}"
build_dir=build-fuzz
CC=clang CXX=clang++ cmake -S . -B "$build_dir" -DKX_BUILD_FUZZERS=ON \
  -DKX_BUILD_BENCHMARKS=OFF -DKX_BUILD_TOOLS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build_dir" -j"$(nproc)"

status=0
for fuzzer in "$build_dir"/tests/fuzz/*_fuzzer; do
  name=$(basename "$fuzzer" _fuzzer)
  seeds="$build_dir/tests/fuzz/corpus/$name"
  [ -d "$seeds" ] || seeds="tests/fuzz/corpus/$name"
  work=$(mktemp -d)
  cp -r "$seeds"/. "$work"/ 2>/dev/null || true
  echo "=== fuzzing $name for ${seconds}s ==="
  if ! "$fuzzer" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
       -artifact_prefix="$build_dir/$name-" "$work"; then
    echo "fuzz target $name failed: see $build_dir/$name-*"
    status=1
  fi
  rm -rf "$work"
done
exit $status
