#!/usr/bin/env bash
# Builds every fuzz/*_fuzz.cpp with libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer and
# runs each for a short time. Fails on the first crash, sanitizer report or hang.
#
# Each target names what it needs in comment lines of its own source:
#   // fuzz-sources: core/*.cpp usertext/*.cpp   source globs, relative to the repository
#   // fuzz-packages: lua5.1 fmt                 pkg-config names (compile and link flags)
#   // fuzz-libs: -lsimdjson                     further link flags (optional)
#   // fuzz-seeds: fuzz/corpus/usertext          folders of seed inputs (optional)
#
# Usage: scripts/fuzz.sh [TARGET...]   (default: all; e.g. scripts/fuzz.sh usertext_fuzz)
# FUZZ_SECONDS sets the run time of each target (default 20).
set -euo pipefail
cd "$(dirname "$0")/.."
root="$PWD"
seconds="${FUZZ_SECONDS:-20}"
out=build-fuzz
jobs="$(nproc)"
mkdir -p "$out"

cxx=(clang++ -std=c++20 -g -O1 -fno-omit-frame-pointer -I"$root" -DNQ_SOURCE_DIR="\"$root\""
     -fsanitize=address,undefined -fno-sanitize-recover=all)

# An object is rebuilt when its source or any header of the repository is newer.
newest_header="$(find core model usertext host scene exporter -name '*.h' -printf '%T@\n' 2>/dev/null |
                 sort -n | tail -1)"

directive() {  # directive FILE NAME: the words after "// fuzz-NAME:"
    sed -n "s|^// fuzz-$2:||p" "$1" | tr '\n' ' '
}

build_target() {
    local src="$1" name
    name="$(basename "$src" .cpp)"
    local sources packages libs flags=() link=()
    sources="$(directive "$src" sources)"
    packages="$(directive "$src" packages)"
    libs="$(directive "$src" libs)"
    if [ -z "$sources" ]; then
        echo "fuzz: $src names no sources (add a line '// fuzz-sources: folder/*.cpp ...')" >&2
        return 1
    fi
    if [ -n "$packages" ]; then
        read -r -a flags <<<"$(pkg-config --cflags $packages)"
        read -r -a link <<<"$(pkg-config --libs $packages)"
    fi

    local objdir="$out/obj/$name" objects=() pending=()
    mkdir -p "$objdir"
    local file obj
    for file in $sources; do
        [ -f "$file" ] || continue
        obj="$objdir/${file//\//_}.o"
        objects+=("$obj")
        if [ ! -f "$obj" ] || [ "$file" -nt "$obj" ] ||
           [ "$(stat -c %Y "$obj")" -lt "${newest_header%.*}" ]; then
            pending+=("$file")
        fi
    done
    if [ ${#pending[@]} -gt 0 ]; then
        printf '%s\n' "${pending[@]}" |
            xargs -P "$jobs" -I{} sh -c 'o="$1/$(echo "$2" | tr / _).o"; shift 2; "$@" -c "$0" -o "$o"' \
                {} "$objdir" {} "${cxx[@]}" -fsanitize=fuzzer-no-link "${flags[@]}"
    fi
    "${cxx[@]}" -fsanitize=fuzzer "${flags[@]}" "$src" "${objects[@]}" "${link[@]}" $libs -o "$out/$name"
}

run_target() {
    local src="$1" name
    name="$(basename "$src" .cpp)"
    local corpus="$out/corpus/$name" seeds=()
    mkdir -p "$corpus"
    read -r -a seeds <<<"$(directive "$src" seeds)"
    echo "== $name: ${seconds}s"
    if ! ASAN_OPTIONS=allocator_may_return_null=1:detect_leaks=1 \
        "$out/$name" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -print_final_stats=1 \
        "$corpus" "${seeds[@]}" >"$out/$name.log" 2>&1; then
        tail -60 "$out/$name.log" >&2
        echo "fuzz: $name failed; the input is in $root (crash-*, timeout-*, oom-*)" >&2
        return 1
    fi
    grep -E '^stat::number_of_executed_units|^Done' "$out/$name.log" || true
}

targets=()
if [ $# -gt 0 ]; then
    for t in "$@"; do targets+=("fuzz/${t%.cpp}.cpp"); done
else
    targets=(fuzz/*_fuzz.cpp)
fi
for src in "${targets[@]}"; do
    [ -f "$src" ] || { echo "fuzz: no $src" >&2; exit 1; }
    echo "== building $(basename "$src" .cpp)"
    build_target "$src"
done
for src in "${targets[@]}"; do
    run_target "$src"
done
echo "fuzz: all targets ran without a fault"
