#!/bin/sh
# A RAID 5 loses a disk, is rebuilt onto another one, loses a member once more and takes it back. Each
# change is seen at the next look, each event is told once.
disks 5 40
settled
same "the first look" events <<'EOF'
0,9 0 0
EOF

slowly
mdadm --create /dev/md127 --run --homehost=guest --name=r5 --level=5 --force --raid-devices=3 \
    /dev/sda /dev/sdb /dev/sdc || fail "mdadm --create"
same "a new array synchronises its disks" events <<'EOF'
1,2 0 0
1,30 0 0
EOF
same "a new array has all its redundancy by its state" vds <<'EOF'
a0/vd0,optimal,raid5,79691776,full,fix,running,"0:a0/pd0:optimal:,1:a0/pd1:optimal:,2:a0/pd2:optimal:"
EOF
fast
wait_for idle md127
same "the end of the synchronisation" events <<'EOF'
1,35 0 0
EOF
same "the disks of the array, and those that nobody has proved free" disks_now <<'EOF'
a0/pd0,2000,configured,a0/vd0
a0/pd1,4000,configured,a0/vd0
a0/pd2,6000,configured,a0/vd0
a0/pd3,8000,configured,
a0/pd4,10000,configured,
EOF
dd if=/dev/urandom of=/dev/md127 bs=1M count=76 2>/dev/null
sync
before=$(content md127)

pull sdb
is "MD itself has not noticed yet" "in_sync" "$(cat /sys/block/md127/md/dev-sdb/state)"
same "a pulled disk is missed before anything is written" vds <<'EOF'
a0/vd0,degraded,raid5,79691776,exhausted,none,idle,"0:a0/pd0:optimal:,1:a0/pd1:offline:,2:a0/pd2:optimal:"
EOF
same "the loss" events <<'EOF'
2,0 1 0
1,4 0 0
EOF
same "a pulled disk keeps its place" disks_now <<'EOF'
a0/pd0,2000,configured,a0/vd0
a0/pd1,4000,missing,a0/vd0
a0/pd2,6000,configured,a0/vd0
a0/pd3,8000,configured,
a0/pd4,10000,configured,
EOF
dd if=/dev/md127 of=/tmp/last bs=1M skip=75 count=1 2>/dev/null
dd if=/tmp/last of=/dev/md127 bs=1M seek=75 count=1 conv=fsync 2>/dev/null
faulty() { grep -q faulty /sys/block/md127/md/dev-sdb/state; }
wait_for faulty
same "that MD has noticed it, too, is no news" events </dev/null

slowly
mdadm --quiet --add /dev/md127 /dev/sdd || fail "mdadm --add"
same "the rebuild has begun" events <<'EOF'
1,70 0 0
EOF
same "the rebuild runs onto the new disk" vds <<'EOF'
a0/vd0,degraded,raid5,79691776,exhausted,rebuild,running,"0:a0/pd0:optimal:,1:a0/pd3:rebuilding:,2:a0/pd2:optimal:"
EOF
fast
wait_for idle md127
same "the rebuild has ended" events <<'EOF'
1,75 0 0
1,1 0 0
EOF
is "the content is what it was" "$before" "$(content md127)"

mdadm --quiet --fail /dev/md127 /dev/sdc || fail "mdadm --fail"
same "a member has failed" events <<'EOF'
2,2 2 0
1,4 0 0
EOF
same "the failed disk" disks_now <<'EOF'
a0/pd0,2000,configured,a0/vd0
a0/pd2,6000,failed,a0/vd0
a0/pd3,8000,configured,a0/vd0
a0/pd4,10000,configured,
EOF
mdadm --quiet --remove /dev/md127 /dev/sdc || fail "mdadm --remove"
same "a failed member was removed" events </dev/null
mdadm --quiet --add /dev/md127 /dev/sdc || fail "mdadm --add"
wait_for idle md127
same "a rebuild that ended between two looks is told by what it left" events <<'EOF'
1,70 0 0
1,75 0 0
1,1 0 0
EOF
same "all is well" vds <<'EOF'
a0/vd0,optimal,raid5,79691776,full,none,idle,"0:a0/pd0:optimal:,1:a0/pd3:optimal:,2:a0/pd2:optimal:"
EOF
is "the content is what it was at the end" "$before" "$(content md127)"
