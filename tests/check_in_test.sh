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
code=0
"$check_in" 5 2>/dev/null || code=$?
[ "$code" = 2 ] || fail "5 adapters end with code $code"
