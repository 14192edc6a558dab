#!/bin/sh
# A consistency check, a repair and a rebuild are seen while they run, when they are paused, when they go on,
# and by what they have found. A member comes back by its bitmap.
disks 4 40
settled
events >/dev/null
fast
mdadm --quiet --create /dev/md127 --run --homehost=guest --name=m1 --level=1 --raid-devices=2 --bitmap=internal \
    /dev/sda /dev/sdb || fail "mdadm --create"
wait_for idle md127
same "an array that was synchronised before anybody looked" events <<'EOF'
1,2 0 0
EOF
md=/sys/block/md127/md

slowly
echo check >$md/sync_action
same "a check has begun" events <<'EOF'
1,20 0 0
EOF
same "the check runs" vds <<'EOF'
a0/vd0,optimal,raid1,40894464,full,check,running,"0:a0/pd0:optimal:0,1:a0/pd1:optimal:0"
EOF
fast
wait_for idle md127
same "a check has ended and found nothing" events <<'EOF'
1,25 0 0
EOF
# 64 sectors of one member are overwritten behind MD's back, in its data. RAID 1 compares 128 at a time.
dd if=/dev/urandom of=/dev/sdb bs=512 seek=$(($(cat $md/dev-sdb/offset) + 8192)) count=64 conv=fsync \
    2>/dev/null
echo check >$md/sync_action
wait_for idle md127
same "a check that ended between two looks and found wrong sectors" events <<'EOF'
1,20 0 0
1,25 0 0
1,8 0 128
EOF
slowly
echo repair >$md/sync_action
same "a repair has begun" events <<'EOF'
1,30 0 0
EOF
fast
wait_for idle md127
same "the repair has ended" events <<'EOF'
1,35 0 0
1,7 0 0
EOF
slowly
echo check >$md/sync_action
same "one more check has begun" events <<'EOF'
1,20 0 0
EOF
fast
wait_for idle md127
same "the check finds nothing after the repair" events <<'EOF'
1,25 0 0
EOF

slowly
mdadm --quiet --fail /dev/md127 /dev/sdb || fail "mdadm --fail"
mdadm --quiet --remove /dev/md127 /dev/sdb || fail "mdadm --remove"
mdadm --quiet --add /dev/md127 /dev/sdc || fail "mdadm --add"
same "a rebuild has begun" events <<'EOF'
1,4 0 0
1,70 0 0
EOF
echo frozen >$md/sync_action
same "the rebuild was paused" events <<'EOF'
1,72 0 0
EOF
same "the paused rebuild" vds <<'EOF'
a0/vd0,degraded,raid1,40894464,exhausted,rebuild,paused,"0:a0/pd0:optimal:0,1:a0/pd2:rebuilding:0"
EOF
echo idle >$md/sync_action
same "the rebuild goes on" events <<'EOF'
1,73 0 0
EOF
fast
wait_for idle md127
same "the rebuild has ended" events <<'EOF'
1,75 0 0
1,1 0 0
EOF

mdadm --quiet --fail /dev/md127 /dev/sdc || fail "mdadm --fail"
same "a member has failed" events <<'EOF'
2,2 2 0
1,4 0 0
EOF
mdadm --quiet --remove /dev/md127 /dev/sdc || fail "mdadm --remove"
dd if=/dev/urandom of=/dev/md127 bs=1M count=1 conv=fsync 2>/dev/null
mdadm --quiet --re-add /dev/md127 /dev/sdc || fail "mdadm --re-add"
wait_for idle md127
same "a member came back by its bitmap" events <<'EOF'
1,70 0 0
1,75 0 0
1,1 0 0
EOF

mdadm --quiet --add /dev/md127 /dev/sdd || fail "mdadm --add"
same "a spare of the array" events <<'EOF'
2,9 3 0
EOF
slowly
echo want_replacement >$md/dev-sda/state
same "its content is copied to the spare" events <<'EOF'
1,90 0 0
2,10 3 0
EOF
fast
wait_for idle md127
same "nothing has failed by a copyback" events <<'EOF'
1,95 0 0
EOF
same "the spare has the place of the other disk" vds <<'EOF'
a0/vd0,optimal,raid1,40894464,full,none,idle,"0:a0/pd3:optimal:0,1:a0/pd2:optimal:0"
EOF
