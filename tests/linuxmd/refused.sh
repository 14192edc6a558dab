#!/bin/sh
# A disk with anything on it is refused by every function that changes disks, and its bytes stay what they
# were: mounted, swap, LVM, LUKS, a file system that is not mounted, a partition table, another host's array.
disks 9 8
mkdir -p /mnt
# sda and sdb are free: an array is asked for of one of them and the disk in question.
mke2fs -q /dev/sdc >/dev/null
mount -t ext4 -o ro /dev/sdc /mnt || fail "mount"
mkswap /dev/sdd >/dev/null
swapon /dev/sdd || fail "swapon"
printf 'LABELONE\001\0\0\0\0\0\0\0\0\0\0\0\040\0\0\0LVM2 001' | dd of=/dev/sde bs=512 seek=1 conv=notrunc 2>/dev/null
printf 'LUKS\272\276\000\001' | dd of=/dev/sdf conv=notrunc 2>/dev/null
mke2fs -q /dev/sdg >/dev/null
echo ',,L' | sfdisk -q -X gpt /dev/sdh || fail "sfdisk"
mdadm --quiet --create /dev/md9 --run --homehost=other --name=x --level=1 --force --raid-devices=1 \
    --data-offset=1M /dev/sdi || fail "mdadm --create"
mdadm --quiet --stop /dev/md9 || fail "mdadm --stop"
sync
sums() { md5sum /dev/sd[a-i]; }
sums >/tmp/before
vexorctl disk list >/dev/null || fail "disk list"

# refused NAME FIELD=VALUE...: the function answers with anything but success.
refused() {
    answer=$(vexorctl call "$@" 2>/dev/null | sed -n 's/.*<RetVal type="U8">\([0-9]*\)<.*/\1/p')
    echo "$* answers $answer"
    case $answer in
    0 | '') fail "not refused: $*" ;;
    esac
}
for id in 2 3 4 5 6 7 8; do
    refused HX_LD_Create AdapterID=0 RaidMode=1 HDCount=2 StripeBlockSize=64 SectorCoefficient=1 \
        "HDIDs=0 $id" Name=bad
    refused HX_PD_FreeHD2GlobalSpare AdapterID=0 HD_ID=$id
done
# A disk of another host's array may be wiped by force; what is no array's may not.
for id in 2 3 4 5 6 7; do refused HX_PD_WipeHDMDD AdapterID=0 HD_ID=$id Force=1; done
same "every byte is what it was" sums </tmp/before
is "no array was made" "" "$(ls -d /sys/block/md* 2>/dev/null)"
