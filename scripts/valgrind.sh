#!/usr/bin/env bash
# Runs the test programs under valgrind's memcheck, in an optimised build with debug
# information and no sanitizers (build-valgrind, or $KX_BUILD_DIR). A leak (definite or
# indirect) or a memory error fails the run. The subset below reaches every subsystem and takes
# a few minutes on two cores (plus the build). scripts/valgrind.supp hides third-party noise
# only (glibc's vector wmemcmp). Usage: scripts/valgrind.sh [--all]
#   --all  every test but the memory check (the thread stress tests add about two minutes)
set -euo pipefail
cd "$(dirname "$0")/.."

all=0
for argument in "$@"; do
  case "$argument" in
    --all) all=1 ;;
    *) echo "usage: scripts/valgrind.sh [--all]" >&2; exit 2 ;;
  esac
done

scripts/install-deps.sh
build_dir="${KX_BUILD_DIR:-build-valgrind}"
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKX_SANITIZE=OFF \
  -DKX_SANITIZE_THREAD=OFF -DKX_BUILD_TOOLS=OFF -DKX_BUILD_BENCHMARKS=OFF
jobs="${KX_JOBS:-$(nproc)}"

# folder under tests/, program, gtest filter. Every program runs whole but two: the
# large-document memory check is left out (under valgrind it would measure valgrind), and of the
# thread stress tests one per shared object runs (the full set takes two minutes here, and
# ThreadSanitizer covers them all in scripts/tsan.sh).
subset=(
  "values:kx_values_tests:*"
  "io:kx_io_tests:*"
  "core:kx_core_tests:*"
  "metadata:kx_metadata_tests:*"
  "collections:kx_collections_tests:*"
  "xml:kx_xml_tests:-LargeDocumentMemory.*"
  "json:kx_json_tests:*"
  "fastinfoset:kx_fastinfoset_tests:*"
  "examples:kx_examples_tests:*"
  "concurrency:kx_threads_tests:CBinaryData.CopiesOf*:CXmlObjectBase.References*:KxRegEx.*:ConcurrentSerialization.DefaultContext*:ConcurrentSerialization.FirstUse*"
)

targets=()
for entry in "${subset[@]}"; do
  IFS=: read -r _ program _ <<<"$entry"
  targets+=("$program")
done
cmake --build "$build_dir" -j"$jobs" --target "${targets[@]}"

status=0
start=$SECONDS
for entry in "${subset[@]}"; do
  IFS=: read -r folder program filter <<<"$entry"
  [ "$all" = 1 ] && filter="-LargeDocumentMemory.*"
  echo "=== memcheck $program --gtest_filter=$filter ==="
  if ! valgrind --tool=memcheck --leak-check=full --errors-for-leak-kinds=definite,indirect \
       --show-leak-kinds=definite,indirect --error-exitcode=1 --num-callers=30 \
       --suppressions=scripts/valgrind.supp --quiet \
       "$build_dir/tests/$folder/$program" --gtest_filter="$filter" --gtest_brief=1; then
    echo "memcheck failed: $program"
    status=1
  fi
done
echo "memcheck: $((SECONDS - start)) s"
exit $status
