#!/bin/sh
# The example program check_in against the virtual controller. usage: check_in_test.sh CHECK_IN
set -eu
check_in=$1
VEXORAPI_ROOT=$(mktemp -d)
export VEXORAPI_ROOT
trap 'rm -rf "$VEXORAPI_ROOT"' EXIT

fail() {
    echo "check_in_test: $1" >&2
    exit 1
}

[ "$("$check_in" 2)" = "0 events stored, 0 in the store" ] || fail "events were stored without a folder"
mkdir -p "$VEXORAPI_ROOT/opt/kestrel/raid/db"
first=$("$check_in" 2)
stored=${first%% *}
if ! [ "$stored" -gt 0 ] || [ "$first" != "$stored events stored, $stored in the store" ]; then
    fail "the first check-in says: $first"
fi
# The adapter-found events come again with every start; all others are known by their number.
second=$("$check_in" 2)
[ "$second" = "2 events stored, $((stored + 2)) in the store" ] || fail "the second says: $second"
# A store that is full keeps its number of events: what was stored is told by the sequence numbers.
rm -r "${VEXORAPI_ROOT:?}"/*
mkdir -p "$VEXORAPI_ROOT/opt/kestrel/raid/db"
cat >"$VEXORAPI_ROOT/vexorapi.ini" <<'EOF'
<config><EventLogConfig type="config" MaxNumOfEvent="3"/></config>
EOF
first=$("$check_in" 2)
[ "$first" = "$stored events stored, 3 in the store" ] || fail "a small store's first says: $first"
second=$("$check_in" 2)
[ "$second" = "2 events stored, 3 in the store" ] || fail "a full store's check-in says: $second"
code=0
"$check_in" 5 2>/dev/null || code=$?
[ "$code" = 2 ] || fail "5 adapters end with code $code"
