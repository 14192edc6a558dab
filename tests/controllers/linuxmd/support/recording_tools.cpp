// The scripts.
#include "controllers/linuxmd/support/recording_tools.h"

#include <filesystem>
#include <utility>

namespace {

// The kernel and udev find the first partition of each table.
constexpr char kUdevadm[] = R"sh(
[ "$1" = settle ] || exit 1
for disk in "$root"/dev/sd?; do
    name=${disk##*/}
    part="$root/sys/block/$name/${name}1"
    [ "$(dd if="$disk" bs=1 skip=512 count=8 2>/dev/null | tr -d '\0')" = "EFI PART" ] || continue
    set -- $(od -A n -t u8 -j 1056 -N 16 "$disk")
    [ "$1" != 0 ] && [ ! -e "$part" ] || continue
    mkdir -p "$part"
    echo 1 > "$part/partition"
    echo "$1" > "$part/start"
    echo $(($2 - $1 + 1)) > "$part/size"
    echo 259:1 > "$part/dev"
    truncate -s $((($2 - $1 + 1) * 512)) "$root/dev/${name}1"
done
)sh";

// One array can be made, with all its disks in sync, or stopped.
constexpr char kMdadm[] = R"sh(
line=
for word; do
    case $word in "$root"*) word=${word#"$root"} ;; esac
    line="$line $word"
done
echo "mdadm$line" >> "$root/runs"
fails=$(cat "$root/fails" 2>/dev/null)
if [ -n "$fails" ] && { [ "$fails" = "$1" ] || [ "$fails" = "$3" ]; }; then
    echo "mdadm: no" >&2
    exit 1
fi
md="$root/sys/devices/virtual/block/md126/md"
member() {
    mkdir -p "$md/dev-$1"
    echo "$2" > "$md/dev-$1/slot"
    echo "$3" > "$md/dev-$1/state"
    echo 2048 > "$md/dev-$1/offset"
    disk=$(echo "$1" | tr -d 0-9)
    ln -s "$(readlink -f "$root/sys/block/$disk/$1")" "$md/dev-$1/block"
}
case $1 in
--create)
    mkdir -p "$md"
    echo clean > "$md/array_state"
    echo idle > "$md/sync_action"
    echo cbf9fd12-1c59-8599-9101-145232746699 > "$md/uuid"
    echo 65536 > "$md/../size"
    echo 9:126 > "$md/../dev"
    slot=0
    for word; do
        case $word in
        --level=*) echo "raid${word#*=}" > "$md/level" ;;
        --raid-devices=*) echo "${word#*=}" > "$md/raid_disks" ;;
        --size=*) echo "${word#*=}" | tr -d K > "$md/component_size" ;;
        "$root"/dev/sd*) member "${word##*/}" $slot in_sync; slot=$((slot + 1)) ;;
        esac
    done
    truncate -s 33554432 "$root/dev/md126"
    ln -s ../devices/virtual/block/md126 "$root/sys/block/md126"
    ;;
--stop) rm "$root/sys/block/md126" ;;
--manage)
    case $3 in
    --remove) rm -r "$md/dev-${4##*/}" ;;
    *) member "${4##*/}" none spare ;;
    esac
    ;;
esac
exit 0
)sh";

}  // namespace

RecordingTools::RecordingTools(const RecordedMachine& machine) : machine_(machine) {
    const std::pair<const char*, const char*> scripts[] = {{"/sbin/mdadm", kMdadm},
                                                           {"/bin/udevadm", kUdevadm}};
    for (const auto& [path, script] : scripts) {
        machine.Root().Write(path, "#!/bin/sh\nroot='" + machine.Root().Path("") + "'\n" + script);
        std::filesystem::permissions(machine.Root().Path(path), std::filesystem::perms(0755));
    }
}

std::string RecordingTools::Runs() const { return machine_.Root().Read("/runs"); }

void RecordingTools::Fail(const std::string& first) const {
    machine_.Root().Write("/fails", first + "\n");
}
