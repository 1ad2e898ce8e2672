#!/usr/bin/env bash
# Installs the Debian packages that building, testing and benchmarking Tabrelle need.
# Does nothing when all of them are present. Needs root (or sudo) only when something is missing.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config ccache
    qtbase5-dev qtdeclarative5-dev libqt5charts5-dev libqt5svg5-dev
    libbenchmark-dev
    # The allocator the program links: faster than the C library's for many small strings.
    libmimalloc-dev
    xvfb xauth
    # File formats: JSON with numbers kept as text, zip for XLSX, FreeXL and the OLE2
    # container for XLS, YAML and XLSX writing.
    rapidjson-dev libzip-dev libfreexl-dev libgsf-1-dev libyaml-cpp-dev libxlsxwriter-dev
    # Test set-up (Excel files made by a second program) and the benchmarks' peer.
    python3-openpyxl python3-pandas
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$p")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing missing packages: ${missing[*]}"
if [ "$(id -u)" -eq 0 ]; then
    sudo=()
elif command -v sudo >/dev/null 2>&1; then
    sudo=(sudo)
else
    echo "These packages are missing and this script needs root to install them: ${missing[*]}" >&2
    exit 1
fi
"${sudo[@]}" apt-get update
DEBIAN_FRONTEND=noninteractive "${sudo[@]}" apt-get install -y --no-install-recommends "${missing[@]}"
