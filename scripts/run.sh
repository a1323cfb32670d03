#!/usr/bin/env bash
# Installs what is missing, builds, and runs the main job: export the bundled example scene
# with the headless host and print its statistics. Until the headless host exists, it builds
# and says so.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build
if [ -x build/apps/nqfexport ] && [ -f examples/example.json ]; then
    build/apps/nqfexport examples/example.json -o build/example.nqf
    build/apps/nqfinfo build/example.nqf
else
    echo "Built everything in build/. The headless exporter nqfexport is not part of the build yet."
fi
