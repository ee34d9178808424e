#!/usr/bin/env bash
# First command for a newcomer: install what is missing, build, run the sample job.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build
cmake --build build -j"$(nproc)"
echo "--- sample job: kxxml on tools/samples/orders.xml ---"
build/tools/kxxml validate tools/samples/orders.xml
build/tools/kxxml roundtrip tools/samples/orders.xml
build/tools/kxxml convert tools/samples/orders.xml build/orders.json
build/tools/kxxml stats tools/samples/orders.xml
echo "--- the value layer: kxvalues on tools/samples/values.txt ---"
build/tools/kxvalues tools/samples/values.txt
