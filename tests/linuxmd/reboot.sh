#!/bin/sh
# Disks and arrays keep their numbers when the machine starts again with its disks in another order and one of
# them away.
# boots: 2
# images: 5
# after the first boot away: disk1

# named SERIAL: the kernel's name of a disk.
named() { basename "$(dirname "$(grep -lx "$1" /sys/block/vd*/serial)")"; }
modprobe ext4 2>/dev/null
if [ "$(cat /test/boot)" -eq 1 ]; then
    mke2fs -q "/dev/$(named disk4)" >/dev/null || fail "mke2fs"
fi
mount -t ext4 "/dev/$(named disk4)" /var/lib/vexorapi || fail "the file system of the state file"
settled
if [ "$(cat /test/boot)" -eq 1 ]; then
    fast
    same "the first look" events <<'EOF'
0,9 0 0
EOF
    mdadm --quiet --create /dev/md127 --run --homehost=guest --name=r5 --level=5 --force --raid-devices=3 \
        "/dev/$(named disk0)" "/dev/$(named disk1)" "/dev/$(named disk2)" || fail "mdadm --create"
    wait_for idle md127
    same "a new array" events <<'EOF'
1,2 0 0
EOF
    content md127 >/var/lib/vexorapi/content
    same "the numbers before" disks_now <<'EOF'
a0/pd0,disk0,configured,a0/vd0
a0/pd1,disk1,configured,a0/vd0
a0/pd2,disk2,configured,a0/vd0
a0/pd3,disk3,configured,
a0/pd4,disk4,configured,
EOF
    mdadm --quiet --stop /dev/md127
    umount /var/lib/vexorapi
    exit 0
fi
is "the disks are in another order" disk4 "$(cat /sys/block/vda/serial)"
mdadm --quiet --assemble --run /dev/md5 "/dev/$(named disk0)" "/dev/$(named disk2)" || fail "mdadm --assemble"
same "the array has its number, and lacks a disk" vds <<'EOF'
a0/vd0,degraded,raid5,79691776,exhausted,none,idle,"0:a0/pd0:optimal:,1:::,2:a0/pd2:optimal:"
EOF
same "the disks have their numbers, also the one that is away" disks_now <<'EOF'
a0/pd0,disk0,configured,a0/vd0
a0/pd1,disk1,missing,
a0/pd2,disk2,configured,a0/vd0
a0/pd3,disk3,configured,
a0/pd4,disk4,configured,
EOF
is "what has changed since then, with the numbers of events going on" "3 12,16 1 0
4 12,17 0 0
5 1,4 0 0" "$(read_events)"
is "the content is what it was" "$(cat /var/lib/vexorapi/content)" "$(content md5)"
