#!/bin/sh
# How long a command of vexorctl takes from a cold start, over virtual controllers of its own in a
# temporary folder: medians by hyperfine, beside what each may take.
#
# usage: bench/vexorctl_start.sh BUILD_FOLDER
set -eu

if [ $# -ne 1 ] || [ ! -x "$1/bin/vexorctl" ]; then
    echo "usage: bench/vexorctl_start.sh BUILD_FOLDER   (one that holds bin/vexorctl)" >&2
    exit 2
fi
bin=$(cd "$1/bin" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export VEXORAPI_ROOT="$folder"

missed=0
# median NAME LIMIT_MS TOPOLOGY WORD...
median() {
    name=$1 limit=$2 topology=$3
    shift 3
    export HXSIM_STATE="$folder/$topology.db"
    if [ ! -e "$HXSIM_STATE" ]; then
        "$bin/hxsimctl" init --topology "$topology"
        "$bin/hxsimctl" clock freeze
    fi
    # -N: no shell between, whose start would be measured too.
    hyperfine -N --warmup 5 --runs 50 --export-json "$folder/result.json" \
        "$bin/vexorctl $*" >"$folder/log" 2>&1 || { cat "$folder/log" >&2; exit 1; }
    python3 - "$folder/result.json" "$name" "$limit" <<'PY' || missed=1
import json, sys
median = 1000 * json.load(open(sys.argv[1]))["results"][0]["median"]
name, limit = sys.argv[2], float(sys.argv[3])
print(f"| {name:<58} | {median:6.1f} ms | {limit:4.0f} ms | {'' if median <= limit else '**missed**'} |")
sys.exit(median > limit)
PY
}

echo "| command | median | at most | |"
echo "|---|---|---|---|"
median "\`adapter list\`, default machine" 30 default adapter list
median "\`disk list a0\`, 128 disks of the machine \`rack\`" 60 rack disk list a0
median 'completion of a virtual disk, default machine' 200 default \
    completion candidates -- vd show name:A
median "completion of a disk, 512 disks of the machine \`rack\`" 200 rack \
    completion candidates -- disk show a0/pd1
exit $missed
