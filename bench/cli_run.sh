#!/usr/bin/env bash
# Time of one whole headless run, from process start to exit: a 1,000-row CSV through
# three transforms to a CSV file. Uses hyperfine when it is installed, else times 20 runs.
# Usage: bench/cli_run.sh [path to the tabrelle executable]
set -euo pipefail
exe=$(realpath "${1:-build/app/tabrelle}")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
# The runs count rows in a settings store of their own.
export XDG_CONFIG_HOME="$work/config" HOME="$work"

awk 'BEGIN {
    print "Order ID,Customer,City,Quantity,Unit price,Order date"
    split("Oslo Lyon Osaka Austin Dublin Hamburg", cities, " ")
    for (i = 1; i <= 1000; ++i)
        printf "SO-%d,Customer %d,%s,%d,%.2f,2024-%02d-%02d\n", 10000 + i, i % 97, cities[i % 6 + 1],
            i % 13 + 1, (i * 37 % 5000) / 100 + 1, i % 12 + 1, i % 28 + 1
}' > orders.csv

sep=$'\x1f'
cat > bench.tflow <<FLOW
<?xml version="1.0"?>
<!DOCTYPE Tabrelle>
<root>
    <meta><version value="84"/></meta>
    <inputs><input id="1" path="orders.csv"/></inputs>
    <transforms>
        <transform id="2" name="Filter"><parameters>
            <parameter name="Columns" value="1${sep}1${sep}3${sep}10${sep}Oslo"/></parameters></transform>
        <transform id="3" name="Sort"/>
        <transform id="4" name="Calculate"><parameters>
            <parameter name="Operation" value="* Multiply"/>
            <parameter name="Column1" value="4"/><parameter name="Column2" value="5"/></parameters></transform>
    </transforms>
    <outputs><output id="5" path="out.csv"/></outputs>
    <connections>
        <connection start_id="1" end_id="2"/><connection start_id="2" end_id="3"/>
        <connection start_id="3" end_id="4"/><connection start_id="4" end_id="5"/>
    </connections>
</root>
FLOW

echo "One run at verbosity 1:"
"$exe" -cli -verbosity 1 bench.tflow
echo
if command -v hyperfine > /dev/null; then
    hyperfine --warmup 3 --runs 20 "'$exe' -cli bench.tflow"
else
    start=$(date +%s.%N)
    for _ in $(seq 20); do "$exe" -cli bench.tflow; done
    end=$(date +%s.%N)
    echo "Mean of 20 runs: $(echo "($end - $start) / 20" | bc -l | cut -c1-6) s"
fi
