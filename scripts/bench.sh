#!/usr/bin/env bash
# Builds the overview benchmark in Release and runs it on the generated order document: every
# read and write of the library against the expat floor, pugixml's DOM beside them, and the peak
# memory of each. Usage: scripts/bench.sh [--peers] [--large]
#   --peers  also gSOAP and CodeSynthesis XSD bindings of the same schema (their Debian packages
#            are installed and the bindings generated in the build tree)
#   --large  1, 10 and 100 MB documents, to check that the cost grows linearly (else 10 MB)
set -euo pipefail
cd "$(dirname "$0")/.."

sizes=(10)
peers=OFF
for argument in "$@"; do
  case "$argument" in
    --large) sizes=(1 10 100) ;;
    --peers) peers=ON ;;
    *) echo "usage: scripts/bench.sh [--peers] [--large]" >&2; exit 2 ;;
  esac
done

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
