#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test twice: in the normal build and in the
# AddressSanitizer + UndefinedBehaviorSanitizer build. Fast when nothing changed.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

scripts/build.sh build
scripts/build.sh build-asan -DNQ_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug

export QT_QPA_PLATFORM=offscreen
echo "== tests (release build)"
ctest --test-dir build --output-on-failure -j "$(nproc)"
echo "== tests (address + undefined sanitizers)"
ASAN_OPTIONS=detect_leaks=1:allocator_may_return_null=1:abort_on_error=1 \
UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build-asan --output-on-failure -j "$(nproc)"
if [ -x scripts/fuzz.sh ]; then
    echo "== short fuzz runs"
    scripts/fuzz.sh
fi
