#!/usr/bin/env bash
# Configures and builds one build tree. Usage: scripts/build.sh DIR [cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."
dir="$1"
shift
if [ ! -f "$dir/CMakeCache.txt" ]; then
    cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@" >/dev/null
fi
cmake --build "$dir" -j "$(nproc)"
