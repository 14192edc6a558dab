#!/bin/sh
# The story of scripts/demo --linuxmd: a disk of a real array is lost and another one takes its place.
run() {
    echo
    echo "--- $*"
    "$@" 2>&1 | sed 's/^/    /'
}
disks 4 40
settled
check_in 1 >/dev/null
fast
run vexorctl vd create a0/pd0 a0/pd1 a0/pd2 --raid 5 --name data1 --yes
wait_for idle md127
run vexorctl vd list
run vexorctl disk list
run check_in 1
dd if=/dev/urandom of=/dev/md127 bs=1M count=60 conv=fsync 2>/dev/null
beginning() { dd if=/dev/md127 bs=1M count=60 2>/dev/null | md5sum; }
before=$(beginning)
echo
echo "=== A disk is pulled out"
pull sdb
run vexorctl vd list
run vexorctl disk list
run vexorctl check
echo
echo "=== Another one takes its place, by the hand of mdadm"
slowly
dd if=/dev/zero of=/dev/md127 bs=1M seek=60 count=1 conv=fsync 2>/dev/null
run mdadm --add /dev/md127 /dev/sdd
run vexorctl task list
fast
wait_for idle md127
run vexorctl vd list
run check_in 1
run vexorctl event list
echo
is "the content is what it was" "$before" "$(beginning)"
