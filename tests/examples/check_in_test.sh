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

# refuses SAYS COMMAND...: check_in ends with 3, prints nothing, and its message holds SAYS.
refuses() {
    says=$1
    shift
    code=0
    "$@" >"$VEXORAPI_ROOT/output" 2>"$VEXORAPI_ROOT/message" || code=$?
    [ "$code" = 3 ] || fail "ends with code $code where this is wrong: $says"
    [ ! -s "$VEXORAPI_ROOT/output" ] || fail "prints a count where this is wrong: $says"
    grep -qF "$says" "$VEXORAPI_ROOT/message" || fail "says: $(cat "$VEXORAPI_ROOT/message"), not: $says"
}
# The user who runs this, without root's leave to pass over permissions.
ordinary() {
    if [ "$(id -u)" = 0 ]; then
        setpriv --bounding-set=-dac_override,-dac_read_search "$@"
    else
        "$@"
    fi
}

# An event that was taken and cannot be stored is lost, so that a store that cannot be written is told
# before the controllers are asked.
db=$VEXORAPI_ROOT/opt/kestrel/raid/db
refuses "$db: the event store's folder: No such file or directory" "$check_in" 2
mkdir -p "${db%/db}"
: >"$db"
refuses "$db: the event store's folder: Not a directory" "$check_in" 2
rm "$db"
mkdir -m 555 "$db"
refuses "$db: cannot make a file in the event store's folder: Permission denied" ordinary "$check_in" 2
chmod 755 "$db"
mkdir "$db/vx_hx_raid.ev"
refuses "$db/vx_hx_raid.ev: cannot write the event store: Is a directory" "$check_in" 2
rmdir "$db/vx_hx_raid.ev"
mkdir "$db/vx_hx_seqnum.ev"
refuses "$db/vx_hx_seqnum.ev: cannot write the event store: Is a directory" "$check_in" 2
rmdir "$db/vx_hx_seqnum.ev"
: >"$db/vx_hx_seqnum.ev"
chmod 444 "$db/vx_hx_seqnum.ev"
refuses "$db/vx_hx_seqnum.ev: cannot write the event store: Permission denied" ordinary "$check_in" 2
rm -f "$db/vx_hx_seqnum.ev"
ln -s nowhere/store.ev "$db/vx_hx_raid.ev"
refuses "$db/vx_hx_raid.ev: cannot write the event store: No such file or directory" "$check_in" 2
# A link that others may have put there is not followed by the library.
ln -sf other.ev "$db/vx_hx_raid.ev"
: >"$db/other.ev"
chmod 777 "$db"
refuses "$db/vx_hx_raid.ev: cannot write the event store: Operation not permitted" "$check_in" 2
chmod 755 "$db"
rm "$db/vx_hx_raid.ev" "$db/other.ev"
# What is no event file is not counted as one: the library would tell the numbers in it, or overwrite it.
store=$db/vx_hx_raid.ev
head -c 4096 /dev/urandom >"$store"
refuses "$store: the event store is damaged: it does not begin as an event file does; move it aside" \
    "$check_in" 2
[ "$(wc -c <"$store")" = 4096 ] || fail "a file that is no event store was overwritten"
printf 'Ombra Event File v0.1' >"$store"
refuses "$store: the event store is damaged: it is shorter than its header" "$check_in" 2
# 300,000,000 events in a ring of 3.
printf 'Ombra Event File v0.1\0\0\0\0\0\0\0\0\0\0\0\0\0\243\341\021\003\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0' >"$store"
refuses "$store: the event store is damaged: the numbers of its header contradict each other" "$check_in" 2
rm "$store"
# shellcheck disable=SC2016  # the inner shell expands it
# 8 blocks of 512 bytes; what 2 adapters can send at once takes 38 of them.
refuses "$db/vx_hx_raid.ev: the event store has no room for more events: File too large" \
    sh -c 'ulimit -f 8 && exec "$1" 2' sh "$check_in"
# The event file stands where the configuration says.
cat >"$VEXORAPI_ROOT/vexorapi.ini" <<EOF
<config><EventLogConfig type="config" Filename="$VEXORAPI_ROOT/elsewhere/store.ev"/></config>
EOF
refuses "$VEXORAPI_ROOT/elsewhere: the event store's folder: No such file or directory" "$check_in" 2
rm "$VEXORAPI_ROOT/vexorapi.ini" "$VEXORAPI_ROOT/output" "$VEXORAPI_ROOT/message"
[ -z "$(ls -A "$db")" ] || fail "a refusal left files behind: $(ls -A "$db")"

# One whose maker was killed before its first write holds nothing, and is made anew.
: >"$db/vx_hx_raid.ev"

# Nothing was taken by then: the first check-in stores as many as that of a machine that has seen no
# refusal, below.
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
