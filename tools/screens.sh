#!/usr/bin/env bash
# Screenshots of the window's named states under a virtual display, with real fonts and
# styles: tools/screens.sh [build-dir] [output-dir]
set -euo pipefail
build_dir=${1:-build}
out_dir=${2:-screens}
mkdir -p "$out_dir"
exe="$build_dir/tests/workbench/tabrelle_screens"
if [ ! -x "$exe" ]; then
    echo "Build tabrelle_screens first: cmake --build $build_dir --target tabrelle_screens" >&2
    exit 1
fi
TABRELLE_SCREENS_DIR="$(cd "$out_dir" && pwd)" QT_QPA_PLATFORM=xcb \
    xvfb-run -a -s "-screen 0 1600x1000x24" "$exe"
