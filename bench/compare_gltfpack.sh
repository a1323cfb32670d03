#!/usr/bin/env bash
# Side-by-side export of one synthetic scene: nqfexport on the scene document against gltfpack on
# the same scene as glTF (both from bench/make_grid_scene.py). Prints the median CPU time (user +
# system) and wall time of each over several runs, their ratio, and the time of nqfexport on the
# scene four times as large against the 1x scene. It also checks with nqfinfo that the export
# merged the meshes into one render node per material, as gltfpack makes one draw per material.
#
# Usage: bench/compare_gltfpack.sh [BUILD_DIR] [REPETITIONS]
#   BUILD_DIR    the build tree with apps/nqfexport and apps/nqfinfo (default: build)
#   REPETITIONS  runs of each program (default: 5)
# Environment: WORK_DIR (default: a temporary folder, removed at the end), SKIP_4X=1 to leave out
# the 4x scene.
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
build="$(cd "${1:-$here/../build}" && pwd)"
reps="${2:-5}"
nqfexport="$build/apps/nqfexport"
nqfinfo="$build/apps/nqfinfo"
for tool in "$nqfexport" "$nqfinfo"; do
    [[ -x "$tool" ]] || { echo "compare_gltfpack: $tool is missing; build the apps first" >&2; exit 2; }
done
command -v gltfpack >/dev/null || { echo "compare_gltfpack: gltfpack is missing (scripts/install-deps.sh)" >&2; exit 2; }

if [[ -n "${WORK_DIR:-}" ]]; then
    work="$WORK_DIR"
    mkdir -p "$work"
else
    work="$(mktemp -d)"
    trap 'rm -rf "$work"' EXIT
fi
# The settings of these runs: defaults, no statistics dialog.
mkdir -p "$work/cfg"

# The median of numbers, one a line.
median() {
    sort -g | awk '{ v[NR] = $1 } END { printf "%.3f", (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

# Runs a command REPS times; prints "median_cpu median_wall" in seconds.
measure() {
    local lines=""
    for ((i = 0; i < reps; i++)); do
        /usr/bin/time -o "$work/time.txt" -f '%U %S %e' "$@" >/dev/null 2>&1
        lines+="$(tail -n 1 "$work/time.txt")"$'\n'
    done
    local cpu wall
    cpu="$(printf '%s' "$lines" | awk '{ print $1 + $2 }' | median)"
    wall="$(printf '%s' "$lines" | awk '{ print $3 }' | median)"
    echo "$cpu $wall"
}

export_scene() {  # scene document, target
    "$nqfexport" "$1" -o "$2" --plugcfg "$work/cfg" --set showExportStat=0
}

echo "load average: $(cut -d' ' -f1-3 /proc/loadavg)"
python3 "$here/make_grid_scene.py" "$work" --scale 1 --name scene1
export_scene "$work/scene1.json" "$work/scene1.nqf" 2>/dev/null || {
    echo "compare_gltfpack: nqfexport failed on the 1x scene:" >&2
    export_scene "$work/scene1.json" "$work/scene1.nqf" >&2 || true
    exit 1
}

# One render node per material: the groups of the file hold 20 render nodes.
render_nodes="$("$nqfinfo" --json "$work/scene1.nqf" | python3 -c '
import json, sys
dump = json.load(sys.stdin)
print(sum(len(g["nodes"]) for g in dump["groups"] if g["name"] == "RENDER_NODES"))')"
echo "render nodes in the export: $render_nodes (materials: 20)"
[[ "$render_nodes" == 20 ]] || { echo "compare_gltfpack: the meshes were not merged per material" >&2; exit 1; }

read -r nq_cpu nq_wall < <(measure "$nqfexport" "$work/scene1.json" -o "$work/scene1.nqf" \
    --plugcfg "$work/cfg" --set showExportStat=0)
read -r gp_cpu gp_wall < <(measure gltfpack -i "$work/scene1.gltf" -o "$work/scene1.glb")
echo "1x scene, median of $reps runs (CPU s, wall s):"
printf '  nqfexport  %8.3f %8.3f\n' "$nq_cpu" "$nq_wall"
printf '  gltfpack   %8.3f %8.3f\n' "$gp_cpu" "$gp_wall"
awk -v a="$nq_cpu" -v b="$gp_cpu" -v c="$nq_wall" -v d="$gp_wall" \
    'BEGIN { printf "  nqfexport / gltfpack: CPU %.2fx, wall %.2fx (target: at most 2x)\n", a / b, c / d }'

if [[ "${SKIP_4X:-0}" != 1 ]]; then
    python3 "$here/make_grid_scene.py" "$work" --scale 4 --name scene4 >/dev/null
    rm -f "$work/scene4.gltf" "$work/scene4.bin"
    read -r nq4_cpu nq4_wall < <(measure "$nqfexport" "$work/scene4.json" -o "$work/scene4.nqf" \
        --plugcfg "$work/cfg" --set showExportStat=0)
    printf '4x scene: nqfexport %.3f s CPU, %.3f s wall\n' "$nq4_cpu" "$nq4_wall"
    awk -v a="$nq4_cpu" -v b="$nq_cpu" 'BEGIN { printf "  4x / 1x: %.2fx CPU (target: at most 4.6x)\n", a / b }'
fi
echo "load average: $(cut -d' ' -f1-3 /proc/loadavg)"
