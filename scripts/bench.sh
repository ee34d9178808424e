#!/usr/bin/env bash
# Builds the overview benchmark in Release and runs it on the generated order document: every
# read and write of the library against the expat floor, pugixml's DOM beside them, and the peak
# memory of each. Usage: scripts/bench.sh [--large]   (--large: 1, 10 and 100 MB documents,
# to check that the cost grows linearly; otherwise 10 MB)
set -euo pipefail
cd "$(dirname "$0")/.."

sizes=(10)
for argument in "$@"; do
  case "$argument" in
    --large) sizes=(1 10 100) ;;
    *) echo "usage: scripts/bench.sh [--large]" >&2; exit 2 ;;
  esac
done

scripts/install-deps.sh
if ! dpkg-query -W -f='${Status}' libpugixml-dev 2>/dev/null | grep -q "install ok installed"; then
  sudo=""
  if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends libpugixml-dev
fi

build_dir=build-bench
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DKX_BUILD_TESTS=OFF -DKX_BUILD_TOOLS=OFF
cmake --build "$build_dir" -j"$(nproc)" --target kx_bench_overview
for size in "${sizes[@]}"; do
  KX_BENCH_MB="$size" "$build_dir/bench/kx_bench_overview" --benchmark_repetitions=3 \
    --benchmark_report_aggregates_only=true
done
