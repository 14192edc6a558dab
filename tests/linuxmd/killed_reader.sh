#!/bin/sh
# A reader of events that is killed at any moment neither loses a change nor has one told twice.
disks 3 24
settled
fast
read_events >/tmp/told
mdadm --quiet --create /dev/md127 --run --homehost=guest --name=m1 --level=1 --raid-devices=2 /dev/sda /dev/sdb \
    || fail "mdadm --create"
wait_for idle md127

# kill_after MILLISECONDS: the reader looks and leaves the events in the queue; it is killed in the middle.
killed=0
kill_after() {
    read_events 0 &
    reader=$!
    usleep $(($1 * 1000))
    kill -9 $reader 2>/dev/null
    wait $reader 2>/dev/null
    [ $? -ne 137 ] || killed=$((killed + 1))
    read_events 0 || fail "the state file after SIGKILL"
}
kill_after 0
cat >/tmp/expected <<'EOF'
0,9 0 0
1,2 0 0
EOF
for delay in 5 10 20 40 60 80 120 160; do
    mdadm --quiet --fail /dev/md127 /dev/sdb
    kill_after $delay
    mdadm --quiet --remove /dev/md127 /dev/sdb
    mdadm --quiet --add /dev/md127 /dev/sdb
    wait_for idle md127
    kill_after $delay
    cat >>/tmp/expected <<'EOF'
2,2 1 0
1,4 0 0
1,70 0 0
1,75 0 0
1,1 0 0
EOF
done
echo "$killed of 17 readers were killed"
[ $killed -gt 0 ] || fail "no reader was killed"
read_events >>/tmp/told
is "no number is missing, and none comes twice" "$(seq 1 "$(wc -l </tmp/told)")" "$(cut -d' ' -f1 /tmp/told)"
is "the events are the changes" "$(cat /tmp/expected)" "$(cut -d' ' -f2- /tmp/told)"
