#!/usr/bin/env bash
# Builds the overview benchmark in Release and runs it on the generated order document: every
# read and write of the library against the expat floor, pugixml's DOM beside them, and the peak
# memory of each. Usage: scripts/bench.sh [--peers] [--large] | --memory SIZE_MB
#   --peers  also gSOAP and CodeSynthesis XSD bindings of the same schema (their Debian packages
#            are installed and the bindings generated in the build tree)
#   --large  1, 10 and 100 MB documents, to check that the cost grows linearly (else 10 MB)
#   --memory SIZE_MB  instead: the peak memory of a streamed write and of a filtered read of a
#            SIZE_MB document (kx_bench_memory; the file goes to /tmp and is removed)
set -euo pipefail
cd "$(dirname "$0")/.."

sizes=(10)
peers=OFF
memory_mb=""
while (($# > 0)); do
  case "$1" in
    --large) sizes=(1 10 100) ;;
    --peers) peers=ON ;;
    --memory)
      memory_mb="${2:-}"
      [[ "$memory_mb" =~ ^[0-9]+$ ]] || { echo "--memory needs a size in MB" >&2; exit 2; }
      shift ;;
    *) echo "usage: scripts/bench.sh [--peers] [--large] | --memory SIZE_MB" >&2; exit 2 ;;
  esac
  shift
done

if [ -n "$memory_mb" ]; then
  scripts/install-deps.sh
  build_dir=build-bench
  cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DKX_BUILD_TESTS=OFF -DKX_BUILD_TOOLS=OFF
  cmake --build "$build_dir" -j"$(nproc)" --target kx_bench_memory
  exec "$build_dir/bench/kx_bench_memory" "$memory_mb"
fi

scripts/install-deps.sh
wanted=(libpugixml-dev)
if [ "$peers" = ON ]; then wanted+=(gsoap libgsoap-dev xsdcxx libxerces-c-dev); fi
missing=()
for package in "${wanted[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$package")
  fi
done
if ((${#missing[@]} > 0)); then
  sudo=""
  if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

build_dir=build-bench
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release -DKX_BUILD_TESTS=OFF -DKX_BUILD_TOOLS=OFF \
  -DKX_BENCH_PEERS="$peers"
cmake --build "$build_dir" -j"$(nproc)" --target kx_bench_overview
for size in "${sizes[@]}"; do
  KX_BENCH_MB="$size" "$build_dir/bench/kx_bench_overview" --benchmark_repetitions=3 \
    --benchmark_report_aggregates_only=true
done
