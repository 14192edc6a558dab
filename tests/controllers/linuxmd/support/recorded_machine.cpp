// The attributes of a recorded machine.
#include "controllers/linuxmd/support/recorded_machine.h"

#include <cctype>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

struct Recorded {
    const char* attribute;
    const char* text;
};

constexpr Recorded kDisk[] = {
    {"size", "2097152\n"},
    {"removable", "0\n"},
    {"ro", "0\n"},
    {"hidden", "0\n"},
    {"queue/logical_block_size", "512\n"},
    {"queue/rotational", "1\n"},
    {"queue/write_cache", "write back\n"},
    {"diskseq", "5\n"},
};

constexpr Recorded kScsiDevice[] = {
    {"queue_depth", "32\n"}, {"vendor", "TARNWELL\n"}, {"model", "T-1000          \n"},
    {"rev", "A101\n"},       {"state", "running\n"},   {"type", "0\n"},
};

constexpr Recorded kArray[] = {
    {"md/array_state", "clean\n"},
    {"md/chunk_size", "524288\n"},
    {"md/layout", "2\n"},
    {"md/component_size", "1046528\n"},
    {"md/degraded", "0\n"},
    {"md/sync_action", "idle\n"},
    {"md/sync_completed", "none\n"},
    {"md/resync_start", "none\n"},
    {"md/reshape_position", "none\n"},
    {"md/mismatch_cnt", "0\n"},
    {"md/sync_min", "0\n"},
    {"md/last_sync_action", "none\n"},
    {"md/metadata_version", "1.2\n"},
    {"size", "4186112\n"},
    {"queue/logical_block_size", "512\n"},
    {"queue/read_ahead_kb", "2048\n"},
};

constexpr Recorded kMember[] = {
    {"offset", "2048\n"}, {"size", "1046528\n"}, {"recovery_start", "none\n"},
    {"errors", "0\n"},    {"bad_blocks", ""},    {"unacknowledged_bad_blocks", ""},
};

}  // namespace

RecordedMachine::RecordedMachine() {
    for (const char* folder : {"/sys/block", "/sys/devices", "/run/udev/data"}) {
        fs::create_directories(root_.Path(folder));
    }
    root_.Write("/proc/mdstat", "Personalities : [raid1] [raid6]\nunused devices: <none>\n");
    root_.Write("/proc/uptime", "600.25 1200.50\n");
    root_.Write("/proc/sys/kernel/osrelease", "6.1.0-42-amd64\n");
    root_.Write("/proc/sys/kernel/random/boot_id", "5a6e4f1e-93c8-4a5c-8c7a-2d3f0e9b1a77\n");
}

std::string RecordedMachine::Place(const std::string& device) const {
    return "/" +
           fs::relative(fs::canonical(root_.Path("/sys/block/" + device)), root_.Path("")).string();
}

void RecordedMachine::AddBareDisk(const std::string& name, const std::string& way) {
    const std::string device = root_.Path("/sys/devices/" + way);
    fs::create_directories(device + "/block/" + name);
    fs::create_symlink("../..", device + "/block/" + name + "/device");
    fs::create_symlink("../devices/" + way + "/block/" + name, root_.Path("/sys/block/" + name));
    for (const Recorded& row : kDisk) Set(name, row.attribute, row.text);
    Set(name, "dev", "8:" + std::to_string(static_cast<unsigned char>(name.back())) + "\n");
    Note(name, "");
}

void RecordedMachine::AddDisk(const std::string& name, const std::string& digits) {
    AddBareDisk(name, "pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/" + name);
    for (const Recorded& row : kScsiDevice) {
        Set(name, std::string("device/") + row.attribute, row.text);
    }
    AddDevice(name, 2097152);
    Set(name, "device/wwid", "naa.50000000000000" + digits + "\n");
    Set(name, "device/vpd_pg80", std::string("\0\x80\0\x08", 4) + "TW0000" + digits);
}

void RecordedMachine::AddDevice(const std::string& name, std::uint64_t sectors) {
    root_.Write("/dev/" + name, "");
    fs::resize_file(root_.Path("/dev/" + name), sectors * 512);  // without blocks
}

void RecordedMachine::AddPartition(const std::string& disk, const std::string& partition) {
    for (const auto& [attribute, text] :
         {Recorded{"partition", "1\n"}, {"start", "2048\n"}, {"size", "2095104\n"}}) {
        Set(disk, partition + "/" + attribute, text);
    }
    Note(disk, "E:ID_PART_TABLE_TYPE=gpt\n");
}

void RecordedMachine::Pull(const std::string& disk) {
    fs::remove_all(root_.Path(Place(disk)));
    fs::remove(root_.Path("/sys/block/" + disk));
}

void RecordedMachine::Note(const std::string& disk, const std::string& lines) {
    std::string number = root_.Read("/sys/block/" + disk + "/dev");
    number.pop_back();
    root_.Write("/run/udev/data/b" + number, "S:disk/by-path/x\nI:1234567\n" + lines);
}

void RecordedMachine::AddArray(const std::string& name, const std::string& level, unsigned places,
                               char digit) {
    const std::string way = "/sys/devices/virtual/block/" + name;
    fs::create_directories(root_.Path(way));
    fs::create_symlink("../devices/virtual/block/" + name, root_.Path("/sys/block/" + name));
    for (const Recorded& row : kArray) Set(name, row.attribute, row.text);
    Set(name, "md/level", level + "\n");
    Set(name, "md/raid_disks", std::to_string(places) + "\n");
    Set(name, "md/uuid", std::string("cbf9fd12-1c59-8599-9101-14523274669") + digit + "\n");
    Set(name, "dev", std::string("9:") + digit + "\n");
    Note(name, "E:MD_NAME=host:data\n");
}

void RecordedMachine::AddMember(const std::string& array, const std::string& device,
                                const std::string& slot, const std::string& state) {
    std::string disk = device;
    while (std::isdigit(static_cast<unsigned char>(disk.back())) != 0 &&
           !fs::exists(root_.Path("/sys/block/" + disk))) {
        disk.pop_back();
    }
    const std::string folder = root_.Path(Place(array) + "/md/dev-" + device);
    const std::string target = Place(disk) + (disk == device ? "" : "/" + device);
    fs::create_directories(folder);
    fs::create_symlink(fs::relative(root_.Path(target), folder), folder + "/block");
    for (const Recorded& row : kMember) SetMember(array, device, row.attribute, row.text);
    SetMember(array, device, "slot", slot + "\n");
    SetMember(array, device, "state", state + "\n");
    fs::create_directories(root_.Path(target + "/holders/" + array));
}

void RecordedMachine::AddMirror() {
    AddDisk("sda", "0a");
    AddDisk("sdb", "0b");
    AddPartition("sdb", "sdb1");
    AddArray("md127", "raid1", 2);
    AddMember("md127", "sda", "0");
    AddMember("md127", "sdb1", "1");
}

void RecordedMachine::RemoveMember(const std::string& array, const std::string& device) {
    fs::remove_all(root_.Path("/sys/block/" + array + "/md/dev-" + device));
}

void RecordedMachine::Set(const std::string& device, const std::string& attribute,
                          std::string_view text) {
    root_.Write("/sys/block/" + device + "/" + attribute, text);
}

void RecordedMachine::SetMember(const std::string& array, const std::string& member,
                                const std::string& attribute, std::string_view text) {
    Set(array, "md/dev-" + member + "/" + attribute, text);
}

void RecordedMachine::Forget(const std::string& device, const std::string& attribute) {
    fs::remove_all(root_.Path("/sys/block/" + device + "/" + attribute));
}

void RecordedMachine::AddEnclosure(const std::string& name, const std::string& identifier) {
    const std::string folder = "/sys/class/enclosure/" + name;
    root_.Write(folder + "/id", identifier + "\n");
    root_.Write(folder + "/device/vendor", "TARNWELL\n");
    root_.Write(folder + "/device/model", "SHELF 12        \n");
    root_.Write(folder + "/device/rev", "0100\n");
}

void RecordedMachine::AddSlot(const std::string& enclosure, const std::string& slot,
                              const std::string& disk) {
    const std::string folder = "/sys/class/enclosure/" + enclosure + "/" + slot;
    root_.Write(folder + "/locate", "0\n");
    root_.Write(folder + "/fault", "0\n");
    root_.Write(folder + "/active", "1\n");
    root_.Write(folder + "/status", disk.empty() ? "not installed\n" : "OK\n");
    if (!disk.empty()) fs::create_directories(root_.Path(folder + "/device/block/" + disk));
}
