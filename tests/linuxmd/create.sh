#!/bin/sh
# A virtual disk is made by vexorctl on free disks, each with a partition table of its own, and deleted again.
disks 3 24
settled
fast
events >/dev/null
vexorctl vd create a0/pd0 a0/pd1 a0/pd2 --raid 5 --name r5 --yes || fail "vd create"
wait_for idle md127
same "the new virtual disk" vds <<'EOF'
a0/vd0,optimal,raid5,44040192,full,none,idle,"0:a0/pd0:optimal:,1:a0/pd1:optimal:,2:a0/pd2:optimal:"
EOF
is "its members are partitions" "sda1 sdb1 sdc1" "$(cd /sys/block/md127/md && echo dev-* | sed 's/dev-//g')"
is "its name" "../md127" "../$(basename "$(readlink /dev/md/r5)")"
same "it was told" events <<'EOF'
1,2 0 0
EOF
dd if=/dev/urandom of=/dev/md127 bs=1M count=42 2>/dev/null || fail "it cannot be written"

sync
mkdir -p /mnt
mke2fs -q /dev/md127 >/dev/null
mount -t ext4 /dev/md127 /mnt || fail "mount"
before=$(md5sum </dev/sda)
vexorctl vd delete a0/vd0 --yes && fail "a mounted array was deleted"
is "a mounted array was not touched" "$before" "$(md5sum </dev/sda)"
umount /mnt
vexorctl vd delete a0/vd0 --yes || fail "vd delete"
is "no array is left" "" "$(ls -d /sys/block/md* 2>/dev/null)"
is "no virtual disk is left" "" "$(vds)"
is "no partition is left" "" "$(ls -d /sys/block/sd?/sd* 2>/dev/null)"
same "its deletion was told" events <<'EOF'
1,3 0 0
EOF
