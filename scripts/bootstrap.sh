#!/usr/bin/env bash
# First command for a newcomer: install what is missing, build, run the sample job.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build
cmake --build build -j"$(nproc)"
echo "--- sample job: tools/samples/values.txt ---"
build/tools/kxvalues tools/samples/values.txt
