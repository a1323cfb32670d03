#!/usr/bin/env bash
# Installs the Debian packages the project needs, only those missing. Idempotent: when all are
# present it asks nothing of the network and returns at once.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config git
    libgtest-dev libgmock-dev libbenchmark-dev
    liblua5.1-0-dev libfmt-dev libmeshoptimizer-dev libboost-dev
    libcli11-dev libsimdjson-dev libjemalloc-dev
    qt6-base-dev
    clang libclang-rt-14-dev
    gltfpack
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}" >&2
SUDO=""
if [ "$(id -u)" -ne 0 ]; then
    SUDO="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
