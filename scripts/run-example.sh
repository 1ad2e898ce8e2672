#!/usr/bin/env bash
# The main job of `make run`: open the bundled example flow in the workbench, or, with
# no display, run it headless and say where its outputs went.
set -euo pipefail
build_dir=${1:-build}
exe="$(cd "$build_dir/app" && pwd)/tabrelle"
example="examples/sales/clean-and-merge.tflow"

if [ ! -f "$example" ]; then
    # No example flow yet: the program says what it is.
    if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
        export QT_QPA_PLATFORM=${QT_QPA_PLATFORM:-offscreen}
    fi
    exec "$exe"
fi

# The flow names its input files relative to its own folder.
example_dir="$(cd "$(dirname "$example")" && pwd)"
cd "$example_dir"
flow="$(basename "$example")"

if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    exec "$exe" "$flow"
fi

echo "No display found: running $example headless."
status=0
"$exe" -cli -verbosity 3 "$flow" || status=$?
echo "Outputs of the example are in $example_dir/output:"
ls -l "$example_dir/output"
exit $status
