// Machines from topologies: a JSON text, read member by member, and what it leaves out.
//
// A member that is not known is an error like a wrong value: it is a misspelt one, most likely, and
// the machine would not be what was meant.
#include "topology/hxsim_topology.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <span>
#include <tuple>
#include <utility>

#include "hxsim_topologies.h"
#include "model/hxsim_adapter_model.h"
#include "model/hxsim_column.h"
#include "model/hxsim_home.h"
#include "model/hxsim_invariants.h"
#include "model/hxsim_level.h"
#include "model/hxsim_link.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_random.h"
#include "model/hxsim_space.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

using Json = nlohmann::json;

constexpr Sectors kGib = 2097152;
constexpr std::size_t kMostAdapters = 4;
constexpr std::size_t kMostElements = 255;  // of an enclosure

[[noreturn]] void Refuse(const std::string& where, const std::string& expected) {
    throw TopologyError("Topology: " + where + ": expected " + expected + '.');
}

// ---- Values ----

template <class Value>
requires std::is_integral_v<Value>
void Read(const Json& json, const std::string& where, Value& value) {
    constexpr auto kMost = std::numeric_limits<Value>::max();
    const bool fits = json.is_number_unsigned() && std::in_range<Value>(json.get<std::uint64_t>());
    if (!fits) Refuse(where, "a whole number from 0 to " + std::to_string(kMost));
    value = static_cast<Value>(json.get<std::uint64_t>());
}

void Read(const Json& json, const std::string& where, bool& value) {
    if (!json.is_boolean()) Refuse(where, "true or false");
    value = json.get<bool>();
}

void Read(const Json& json, const std::string& where, std::string& value) {
    if (!json.is_string()) Refuse(where, "a text");
    value = json.get<std::string>();
}

// The four parts of a version.
template <class Version, class Part>
void ReadVersion(const Json& json, const std::string& where, Version& version,
                 std::initializer_list<Part Version::*> parts) {
    if (!json.is_array() || json.size() != parts.size()) Refuse(where, "a list of four numbers");
    std::size_t i = 0;
    for (const auto part : parts) Read(json[i++], where, version.*part);
}
void Read(const Json& json, const std::string& where, Version_Info& version) {
    ReadVersion(json, where, version,
                {&Version_Info::VerMajor, &Version_Info::VerMinor, &Version_Info::VerOEM,
                 &Version_Info::VerBuild});
}
void Read(const Json& json, const std::string& where, Version_Info_CIM& version) {
    ReadVersion(json, where, version,
                {&Version_Info_CIM::MajorVersion, &Version_Info_CIM::MinorVersion,
                 &Version_Info_CIM::RevisionNumber, &Version_Info_CIM::BuildNumber});
}

template <class Value>
void Read(const Json& json, const std::string& where, std::vector<Value>& values) {
    if (!json.is_array()) Refuse(where, "a list");
    values.clear();
    for (std::size_t i = 0; i < json.size(); ++i) {
        Read(json[i], where + '[' + std::to_string(i) + ']', values.emplace_back());
    }
}

std::string Listed(std::span<const HxraidName> names) {
    std::string list;
    for (const HxraidName& each : names) {
        list += (list.empty() ? "\"" : ", \"") + std::string(each.name) + '"';
    }
    return list;
}

// A code by its name.
HX_U8 CodeOf(const Json& json, const std::string& where, std::span<const HxraidName> names) {
    const HxraidName* const found =
        json.is_string() ? HxraidFind(names, json.get_ref<const std::string&>()) : nullptr;
    if (found == nullptr) Refuse(where, "one of " + Listed(names));
    return static_cast<HX_U8>(found->code);
}

// ---- Objects ----

// An object of the text, and which of its members have been looked at.
class Object {
public:
    Object(const Json& json, std::string where) : json_(json), where_(std::move(where)) {
        if (!json.is_object()) Refuse(where_, "an object");
    }

    std::string Where(std::string_view member) const {
        return where_.empty() ? std::string(member) : where_ + '.' + std::string(member);
    }

    /// The member; null when it is left out.
    const Json* Find(const char* member) {
        known_.insert(member);
        const auto found = json_.find(member);
        return found == json_.end() ? nullptr : &*found;
    }
    const Json& Need(const char* member, const std::string& expected) {
        const Json* const found = Find(member);
        if (found == nullptr) Refuse(Where(member), expected + "; it is left out");
        return *found;
    }

    /// Reads the member; one that is left out leaves the value as it is, and false is returned.
    template <class Value>
    bool Take(const char* member, Value& value) {
        const Json* const found = Find(member);
        if (found == nullptr) return false;
        Read(*found, Where(member), value);
        return true;
    }
    template <class Value>
    void TakeNeeded(const char* member, Value& value) {
        Read(Need(member, "a value"), Where(member), value);
    }
    template <class Row, class... Columns>
    void TakeAll(const std::tuple<Columns...>& columns, Row& row) {
        std::apply([&](const Columns&... column) { (Take(column.name, row.*column.field), ...); },
                   columns);
    }
    void TakeCode(const char* member, std::span<const HxraidName> names, HX_U8& code) {
        if (const Json* const found = Find(member)) code = CodeOf(*found, Where(member), names);
    }
    /// A list of names for bits.
    void TakeBits(const char* member, std::span<const HxraidName> names, HX_U8& bits) {
        const Json* const found = Find(member);
        if (found == nullptr) return;
        if (!found->is_array()) Refuse(Where(member), "a list of " + Listed(names));
        bits = 0;
        for (const Json& each : *found) bits |= CodeOf(each, Where(member), names);
    }

    /// Calls visit(object) for each object of a list.
    template <class Visit>
    void ForEach(const char* member, Visit visit) {
        const Json* const list = Find(member);
        if (list == nullptr) return;
        if (!list->is_array()) Refuse(Where(member), "a list of objects");
        for (std::size_t i = 0; i < list->size(); ++i) {
            Object each((*list)[i], Where(member) + '[' + std::to_string(i) + ']');
            visit(each);
            each.Finish();
        }
    }

    /// All that is known has been looked at.
    void Finish() const {
        for (const auto& [name, value] : json_.items()) {
            if (known_.contains(name)) continue;
            std::string members;
            for (const std::string_view each : known_) {
                members += (members.empty() ? "" : ", ") + std::string(each);
            }
            Refuse(Where(name), "one of the members " + members);
        }
    }

private:
    const Json& json_;
    const std::string where_;
    std::set<std::string_view> known_;
};

// ---- Columns that a topology may set ----

constexpr std::tuple kInfoColumns{
    Col("DriverVersion", &Adapter_Info::DriverVersion),
    Col("BIOSVersion", &Adapter_Info::BIOSVersion),
    Col("FirmwareVersion", &Adapter_Info::FirmwareVersion),
    Col("BootLoaderVersion", &Adapter_Info::BootLoaderVersion),
    Col("SystemIOBusNumber", &Adapter_Info::SystemIOBusNumber),
    Col("SlotNumber", &Adapter_Info::SlotNumber),
    Col("InterruptLevel", &Adapter_Info::InterruptLevel),
    Col("InterruptVector", &Adapter_Info::InterruptVector),
    Col("VenID", &Adapter_Info::VenID),
    Col("SubVenID", &Adapter_Info::SubVenID),
    Col("DevID", &Adapter_Info::DevID),
    Col("SubDevID", &Adapter_Info::SubDevID),
    Col("RevisionID", &Adapter_Info::RevisionID),
    Col("MaxPDPerVD", &Adapter_Info::MaxPDPerVD),
    Col("StripeSizeSupported", &Adapter_Info::StripeSizeSupported),
    Col("AdvancedFeatures", &Adapter_Info::AdvancedFeatures),
    Col("MaxPDPerDG", &Adapter_Info::MaxPDPerDG),
    Col("MaxVDPerDG", &Adapter_Info::MaxVDPerDG),
    Col("MaxParityDisks", &Adapter_Info::MaxParityDisks),
    Col("PortCount", &Adapter_Info::PortCount),
    Col("PortSupportType", &Adapter_Info::PortSupportType),
    Col("Features", &Adapter_Info::Features),
    Col("AlarmSupport", &Adapter_Info::AlarmSupport),
    Col("MaxBlockPerPD", &Adapter_Info::MaxBlockPerPD),
    Col("MaxHD", &Adapter_Info::MaxHD),
    Col("MaxHD_Ext", &Adapter_Info::MaxHD_Ext),
    Col("MaxExpander", &Adapter_Info::MaxExpander),
    Col("MaxPM", &Adapter_Info::MaxPM),
    Col("MaxLogicalDrive", &Adapter_Info::MaxLogicalDrive),
    Col("LogicalDriverMode", &Adapter_Info::LogicalDriverMode),
    Col("DiskGroupSupport", &Adapter_Info::DiskGroupSupport),
    Col("MaxBufferSize", &Adapter_Info::MaxBufferSize),
};

constexpr std::tuple kConfigColumns{
    Col("AlarmOn", &Adapter_Config_V2::AlarmOn),
    Col("AutoRebuildOn", &Adapter_Config_V2::AutoRebuildOn),
    Col("BGARate", &Adapter_Config_V2::BGARate),
    Col("SyncRate", &Adapter_Config_V2::SyncRate),
    Col("InitRate", &Adapter_Config_V2::InitRate),
    Col("RebuildRate", &Adapter_Config_V2::RebuildRate),
    Col("MigrationRate", &Adapter_Config_V2::MigrationRate),
    Col("CopybackRate", &Adapter_Config_V2::CopybackRate),
    Col("PollSMARTStatus", &Adapter_Config_V2::PollSMARTStatus),
    Col("MediaPatrolRate", &Adapter_Config_V2::MediaPatrolRate),
    Col("CopyBack", &Adapter_Config_V2::CopyBack),
    Col("InterruptCoalescing", &Adapter_Config_V2::InterruptCoalescing),
    Col("ModuleConsolidate", &Adapter_Config_V2::ModuleConsolidate),
    Col("v_atapi_disable", &Adapter_Config_V2::v_atapi_disable),
};

constexpr std::tuple kExpanderColumns{
    Col("id", &Expander::id),
    Col("enclosure", &Expander::enclosure),
    Col("phys", &Expander::phy_count),
    Col("route_indexes", &Expander::route_indexes),
    Col("changes", &Expander::changes),
    Col("vendor", &Expander::vendor),
    Col("product", &Expander::product),
    Col("revision", &Expander::revision),
    Col("component_vendor", &Expander::component_vendor),
    Col("component", &Expander::component),
    Col("component_revision", &Expander::component_revision),
};

constexpr std::tuple kPortMultiplierColumns{
    Col("id", &PortMultiplier::id),
    Col("ports", &PortMultiplier::ports),
    Col("revision", &PortMultiplier::revision),
    Col("standards", &PortMultiplier::standards),
    Col("vendor", &PortMultiplier::vendor),
    Col("device", &PortMultiplier::device),
};

constexpr std::tuple kEnclosureColumns{
    Col("id", &Enclosure::id),
    Col("vendor", &Enclosure::vendor),
    Col("product", &Enclosure::product),
    Col("revision", &Enclosure::revision),
};

constexpr std::tuple kThresholdColumns{
    Col("high_critical", &Element::high_critical),
    Col("high_warning", &Element::high_warning),
    Col("low_critical", &Element::low_critical),
    Col("low_warning", &Element::low_warning),
};

constexpr std::tuple kBatteryColumns{
    Col("voltage", &BBU_Info::voltage),
    Col("supportMaxCapacity", &BBU_Info::supportMaxCapacity),
    Col("supportMinCapacity", &BBU_Info::supportMinCapacity),
    Col("maxCapacity", &BBU_Info::maxCapacity),
    Col("curCapacity", &BBU_Info::curCapacity),
    Col("recharge_cycle", &BBU_Info::recharge_cycle),
    Col("temperature", &BBU_Info::temperature),
    Col("volt_lowerbound", &BBU_Info::volt_lowerbound),
    Col("volt_upperbound", &BBU_Info::volt_upperbound),
    Col("temp_lowerbound", &BBU_Info::temp_lowerbound),
    Col("temp_upperbound", &BBU_Info::temp_upperbound),
    Col("percent_to_charge", &BBU_Info::percent_to_charge),
};

constexpr HxraidName kInterfaceNames[] = {{0, "sata"}, {1, "sas"}};

// ---- Disk models ----

struct DiskModel {
    std::string firmware;
    std::string serials;  // with what the serial numbers begin
    Sectors sectors = 0;
    bool sas = false;
    HX_U8 speed = HXSIM_SPEED_6_GBIT;
};
using DiskModels = std::map<std::string, DiskModel>;

// The sectors of a disk of so many gigabytes (of 10^9 bytes), as the makers have agreed on them.
constexpr Sectors SectorsOf(std::uint64_t gigabytes) {
    return 97696368 + 1953504 * (gigabytes - 50);
}

DiskModels ReadModels(Object& text) {
    DiskModels models;
    text.ForEach("disk_models", [&](Object& object) {
        std::string name;
        object.TakeNeeded("name", name);
        DiskModel model;
        object.Take("firmware", model.firmware);
        object.Take("serials", model.serials);
        HX_U32 gigabytes = 0;
        if (object.Take("gigabytes", gigabytes)) {
            if (gigabytes < 50) Refuse(object.Where("gigabytes"), "at least 50");
            model.sectors = SectorsOf(gigabytes);
        }
        object.Take("sectors", model.sectors);
        if (model.sectors <= kMetadata || model.sectors > kMostSectors) {
            Refuse(object.Where("sectors"), "gigabytes, or sectors from " +
                                                std::to_string(kMetadata + 1) + " to " +
                                                std::to_string(kMostSectors));
        }
        HX_U8 sas = 0;
        object.TakeCode("interface", kInterfaceNames, sas);
        model.sas = sas != 0;
        object.TakeCode("speed", kHxsimLinkSpeedNames, model.speed);
        models[name] = model;
    });
    return models;
}

// ---- An adapter ----

class AdapterReader {
public:
    AdapterReader(Object& text, const DiskModels& models, Machine& machine, Adapter& adapter)
        : text_(text), models_(models), machine_(machine), adapter_(adapter) {}

    void Run() {
        ReadInfo();
        text_.ForEach("port_multipliers", [&](Object& object) { ReadPortMultiplier(object); });
        text_.ForEach("expanders", [&](Object& object) { ReadExpander(object); });
        text_.ForEach("enclosures", [&](Object& object) { ReadEnclosure(object); });
        text_.ForEach("disks", [&](Object& object) { ReadDisks(object); });
        text_.ForEach("disk_groups", [&](Object& object) { ReadGroup(object); });
        text_.ForEach("virtual_disks", [&](Object& object) { ReadVirtualDisks(object); });
        ReadBattery();
        ReadImages();
        QueueStart();
    }

private:
    // ---- What it is ----

    void ReadInfo() {
        std::string name = "large";
        text_.Take("model", name);
        const AdapterModel* const model = FindAdapterModel(name);
        if (model == nullptr) Refuse(text_.Where("model"), std::string(kAdapterModelNames));
        adapter_.info = model->info;
        adapter_.config = model->config;
        TakeObject("info", kInfoColumns, adapter_.info);
        TakeObject("config", kConfigColumns, adapter_.config);
        if (adapter_.info.PortCount > HX_MAX_PORTS) {
            Refuse(text_.Where("info.PortCount"), "at most " + std::to_string(HX_MAX_PORTS));
        }
        std::string serial;
        if (!text_.Take("serial", serial)) serial = DrawSerial(machine_.random, "VC", 8);
        SetText(adapter_.info.SerialNo, serial);
        SetWorldWideName(adapter_.info.WWN, WorldWideName(HXSIM_DEVICE_ADAPTER, adapter_.id, 0, 0));
        for (unsigned port = 0; port < adapter_.info.PortCount; ++port) {
            SetWorldWideName(adapter_.info.PortSasAddress[port],
                             WorldWideName(HXSIM_DEVICE_ADAPTER, adapter_.id, 0, port + 1));
        }
    }

    template <class Columns, class Row>
    void TakeObject(const char* member, const Columns& columns, Row& row) {
        const Json* const found = text_.Find(member);
        if (found == nullptr) return;
        Object object(*found, text_.Where(member));
        object.TakeAll(columns, row);
        object.Finish();
    }

    // ---- Devices ----

    // What it hangs on: a port of the adapter, a phy of an expander or a port of a port multiplier.
    void ReadAttachment(Object& object, Attachment& at) const {
        constexpr const char* kExpected =
            "an object with \"port\", with \"expander\" and \"phy\", or with \"port_multiplier\" "
            "and \"phy\"";
        Object place(object.Need("at", kExpected), object.Where("at"));
        if (place.Take("port", at.phy)) {
            at.parent = HXSIM_DEVICE_ADAPTER;
            at.parent_id = adapter_.id;
        } else if (place.Take("expander", at.parent_id)) {
            at.parent = HXSIM_DEVICE_EXPANDER;
            place.TakeNeeded("phy", at.phy);
        } else if (place.Take("port_multiplier", at.parent_id)) {
            at.parent = HXSIM_DEVICE_PORT_MULTIPLIER;
            place.TakeNeeded("phy", at.phy);
        } else {
            Refuse(object.Where("at"), kExpected);
        }
        place.Take("phys", at.phys);
        place.Finish();
    }

    // Its ID, when the text leaves it out, follows that of the one before.
    template <class Rows>
    static HX_U16 NextId(const Rows& rows) {
        return rows.empty() ? HX_U16{0} : static_cast<HX_U16>(rows.back().id + 1);
    }

    // Lists ascend by ID, in the text as in the machine.
    template <class Rows, class Row>
    static void Append(const Object& object, Rows& rows, Row row) {
        if (row.id == kNoId || (!rows.empty() && row.id <= rows.back().id)) {
            Refuse(object.Where("id"), "a number above that of the one before, below 65535");
        }
        rows.push_back(std::move(row));
    }

    void ReadPortMultiplier(Object& object) {
        PortMultiplier row;
        row.id = NextId(adapter_.port_multipliers);
        ReadAttachment(object, row);
        object.TakeAll(kPortMultiplierColumns, row);
        Append(object, adapter_.port_multipliers, row);
    }

    void ReadExpander(Object& object) {
        Expander row;
        row.id = NextId(adapter_.expanders);
        ReadAttachment(object, row);
        object.TakeAll(kExpanderColumns, row);
        Append(object, adapter_.expanders, row);
    }

    void ReadEnclosure(Object& object) {
        Enclosure row;
        row.id = NextId(adapter_.enclosures);
        ReadAttachment(object, row);
        object.TakeAll(kEnclosureColumns, row);
        std::size_t number = 0;
        object.ForEach("elements", [&](Object& element) {
            for (unsigned count = CountOf(element); count > 0; --count) {
                if (number == kMostElements) {
                    Refuse(object.Where("elements"), "at most 255 elements");
                }
                Element each = ReadElement(element);
                each.enclosure = row.id;
                each.number = static_cast<HX_U8>(number++);
                adapter_.elements.push_back(each);
            }
        });
        Append(object, adapter_.enclosures, row);
    }

    // How many alike.
    static unsigned CountOf(Object& object) {
        HX_U8 count = 1;
        object.Take("count", count);
        if (count == 0) Refuse(object.Where("count"), "at least 1");
        return count;
    }

    static Element ReadElement(Object& object) {
        Element element;
        element.type = CodeOf(object.Need("type", "the kind of element"), object.Where("type"),
                              kHxsimElementTypeNames);
        if (element.type == HX_ELEMENT_FAN) {
            object.TakeNeeded("rpm", element.reading);
            element.nominal = element.reading;
            element.speed_code = 3;
            object.Take("nominal", element.nominal);
            object.Take("speed_code", element.speed_code);
        } else if (element.type == HX_ELEMENT_TEMPERATURE) {
            ReadTemperature(object, element);
        } else if (element.type == HX_ELEMENT_VOLTAGE) {
            object.TakeNeeded("centivolts", element.reading);
            element.nominal = element.reading;
            object.Take("nominal", element.nominal);
            // Half percents of the nominal voltage.
            element.high_critical = element.low_critical = 20;
            element.high_warning = element.low_warning = 10;
            object.TakeAll(kThresholdColumns, element);
        }
        return element;
    }

    // The text has degrees Celsius, the interface 20 more, so that a byte suffices.
    static void ReadTemperature(Object& object, Element& element) {
        constexpr HX_U8 kShift = 20;
        constexpr HX_U8 kMost = 235;
        element.high_critical = 60;
        element.high_warning = 50;
        element.low_critical = 0;
        element.low_warning = 5;
        object.TakeAll(kThresholdColumns, element);
        HX_U8 celsius = 0;
        object.TakeNeeded("celsius", celsius);
        for (HX_U8* const each : {&element.high_critical, &element.high_warning,
                                  &element.low_critical, &element.low_warning, &celsius}) {
            if (*each > kMost) Refuse(object.Where("celsius"), "temperatures up to 235");
            *each = static_cast<HX_U8>(*each + kShift);
        }
        element.reading = celsius;
    }

    // ---- Disks ----

    void ReadDisks(Object& object) {
        Disk first;
        first.id = NextId(adapter_.disks);
        object.Take("id", first.id);
        ReadAttachment(object, first);
        if (first.parent == HXSIM_DEVICE_EXPANDER) {
            const Expander* const expander = Find(adapter_.expanders, first.parent_id);
            if (expander == nullptr) Refuse(object.Where("at"), "an expander that there is");
            first.enclosure = expander->enclosure;
        }
        object.Take("enclosure", first.enclosure);
        object.Take("slot", first.slot);
        ReadModel(object, first);
        ReadSpare(object, first);
        object.Take("write_cache", first.write_cache);
        object.Take("has_mbr", first.has_mbr);
        object.Take("has_system", first.has_system);
        object.Take("foreign", first.foreign);
        const unsigned count = CountOf(object);
        for (unsigned i = 0; i < count; ++i) AddDisk(object, first, i, count);
    }

    void ReadModel(Object& object, Disk& disk) {
        constexpr const char* kExpected = "the name of one of disk_models";
        Read(object.Need("model", kExpected), object.Where("model"), disk.model);
        const auto found = models_.find(disk.model);
        if (found == models_.end()) Refuse(object.Where("model"), kExpected);
        const DiskModel& model = found->second;
        disk.firmware = model.firmware;
        disk.sectors = model.sectors;
        disk.sas = model.sas;
        disk.speed = model.speed;
        // The same calls for the same text, so that all disks are drawn alike.
        series_ = model.serials;
    }

    static void ReadSpare(Object& object, Disk& disk) {
        bool global = false;
        object.Take("global_spare", global);
        if (global) disk.spare = Spare::kGlobal;
        // That the group is there is checked when all are read.
        if (object.Take("group_spare", disk.spare_group)) disk.spare = Spare::kGroup;
    }

    // Of several disks alike, each has the phy and the slot behind the last one's.
    void AddDisk(Object& object, const Disk& first, unsigned i, unsigned count) {
        Disk disk = first;
        const unsigned phy = first.phy + i * first.phys;
        if (phy > 255 || first.id + i >= kNoId) {
            Refuse(object.Where("count"), "as many as there are phys and numbers");
        }
        disk.id = static_cast<HX_U16>(first.id + i);
        disk.phy = static_cast<HX_U8>(phy);
        if (first.slot != kNoId) disk.slot = static_cast<HX_U16>(first.slot + i);
        if (!object.Take("serial", disk.serial)) {
            do {
                disk.serial = DrawSerial(machine_.random, series_, 6);
            } while (std::ranges::count(adapter_.disks, disk.serial, &Disk::serial) != 0);
        } else if (count != 1) {
            Refuse(object.Where("serial"), "no serial number for several disks");
        }
        disk.wwn = WorldWideName(HXSIM_DEVICE_DISK, adapter_.id, disk.id, 0);
        TakeHexadecimal(object, "wwn", disk.wwn);
        if (adapter_.disks.size() == adapter_.info.MaxHD_Ext) {
            Refuse(object.Where("count"),
                   "at most " + std::to_string(adapter_.info.MaxHD_Ext) + " disks, as MaxHD_Ext");
        }
        const HX_U16 id = disk.id;
        Append(object, adapter_.disks, std::move(disk));
        ResetDisk(adapter_, id);
        object.ForEach("remaps", [&](Object& remap) { ReadRemap(remap, id); });
    }

    static void TakeHexadecimal(Object& object, const char* member, std::uint64_t& number) {
        std::string digits;
        if (!object.Take(member, digits)) return;
        const char* const end = digits.data() + digits.size();
        const auto [last, error] = std::from_chars(digits.data(), end, number, 16);
        if (error != std::errc{} || last != end) {
            Refuse(object.Where(member), "a text of up to 16 hexadecimal digits");
        }
    }

    void ReadRemap(Object& object, HX_U16 disk) {
        Remap remap;
        remap.disk = disk;
        remap.sectors = 1;
        object.TakeNeeded("lba", remap.lba);
        object.Take("sectors", remap.sectors);
        object.TakeCode("reason", kHxsimRemapReasonNames, remap.reason);
        adapter_.remaps.push_back(remap);
        std::ranges::sort(adapter_.remaps, {},
                          [](const Remap& each) { return std::tuple(each.disk, each.lba); });
    }

    // ---- Disk groups ----

    // Level, legs and stripes, of a disk group or a virtual disk.
    template <class Row>
    static void ReadLevel(Object& object, Row& row) {
        row.level =
            CodeOf(object.Need("level", "a RAID level"), object.Where("level"), kHxsimLevelNames);
        const bool asked = object.Take("legs", row.legs);
        object.Take("stripe_kib", row.stripe_kib);
        if (!asked && FindLevel(row.level)->legs) row.legs = 2;
    }

    // The disks that something is made of.
    std::vector<HX_U16> ReadMembers(Object& object, HX_U8 level, HX_U8 legs) {
        std::vector<HX_U16> disks;
        Read(object.Need("disks", "a list of disks"), object.Where("disks"), disks);
        std::vector<HX_U16> sorted = disks;
        std::ranges::sort(sorted);
        if (std::ranges::adjacent_find(sorted) != sorted.end()) {
            Refuse(object.Where("disks"), "no disk twice");
        }
        for (const HX_U16 disk : disks) {
            if (Find(adapter_.disks, disk) == nullptr) {
                Refuse(object.Where("disks"),
                       "disks that there are; " + std::to_string(disk) + " is none");
            }
        }
        if (disks.size() > HX_MAX_HDS ||
            !CanBeMade(*FindLevel(level), static_cast<unsigned>(disks.size()), legs)) {
            Refuse(object.Where("disks"), "as many disks as the level can be made of");
        }
        return disks;
    }

    void ReadGroup(Object& object) {
        DiskGroup group;
        group.id = NextId(adapter_.disk_groups);
        object.Take("id", group.id);
        object.Take("name", group.name);
        object.Take("write_cache", group.write_cache);
        ReadLevel(object, group);
        const std::vector<HX_U16> disks = ReadMembers(object, group.level, group.legs);
        group.width = static_cast<HX_U8>(disks.size());
        const HX_U16 id = group.id;
        Append(object, adapter_.disk_groups, std::move(group));
        SetHomes(adapter_, Owner::kDiskGroup, id, disks);
    }

    // ---- Virtual disks ----

    void ReadVirtualDisks(Object& object) {
        VirtualDisk first;
        first.id = NextId(adapter_.virtual_disks);
        object.Take("id", first.id);
        object.Take("name", first.name);
        object.TakeBits("cache", kHxsimCacheBits, first.cache);
        object.Take("foreign", first.foreign);
        object.Take("auto_rebuild", first.auto_rebuild);
        first.initialised = true;
        object.Take("initialised", first.initialised);
        if (first.foreign) first.state = HXSIM_STATE_FOREIGN;
        const std::vector<HX_U16> disks = ReadPlace(object, first);
        first.width = static_cast<HX_U8>(disks.size());
        const Sectors block = ReadBlock(object, first);
        const unsigned count = CountOf(object);
        for (unsigned i = 0; i < count; ++i) AddVirtualDisk(object, first, i, count, disks, block);
    }

    // The disks, the virtual disk's own or its group's.
    std::vector<HX_U16> ReadPlace(Object& object, VirtualDisk& row) {
        if (!object.Take("disk_group", row.group)) {
            ReadLevel(object, row);
            return ReadMembers(object, row.level, row.legs);
        }
        const DiskGroup* const group = Find(adapter_.disk_groups, row.group);
        if (group == nullptr) Refuse(object.Where("disk_group"), "a disk group that there is");
        row.level = group->level;
        row.legs = group->legs;
        row.stripe_kib = group->stripe_kib;
        object.Take("slot", row.slot);
        object.Take("stripe_kib", row.stripe_kib);
        return DisksOf(adapter_, Owner::kDiskGroup, row.group);
    }

    // The sectors of its block on each disk, from these or from the size of its data.
    static Sectors ReadBlock(Object& object, VirtualDisk& row) {
        constexpr Sectors kMost = Sectors{1} << 50;
        const Level& level = *FindLevel(row.level);
        if (row.stripe_kib == 0) Refuse(object.Where("stripe_kib"), "at least 1");
        Sectors block = 0;
        HX_U32 gib = 0;
        if (object.Take("gib", gib)) {
            block = BlockSectors(level, row.width, row.legs, row.stripe_kib, gib * kGib);
            row.size = gib * kGib;
        }
        if (object.Take("block_sectors", block) && block <= kMost) {
            row.size = DataSectors(level, row.width, row.legs, row.stripe_kib, block);
        }
        if (block == 0 || block > kMost || row.size == 0) {
            Refuse(object.Where("gib"), "a size in GiB, or block_sectors of at least a stripe");
        }
        return block;
    }

    // Of several virtual disks alike, each has the slot behind the last one's, and its number
    // behind the name.
    void AddVirtualDisk(Object& object, const VirtualDisk& first, unsigned i, unsigned count,
                        const std::vector<HX_U16>& disks, Sectors block) {
        VirtualDisk row = first;
        if (first.id + i >= kNoVirtualDisk) {
            Refuse(object.Where("id"), "numbers of virtual disks from 0 to 254");
        }
        row.id = static_cast<HX_U16>(first.id + i);
        row.slot = static_cast<HX_U8>(first.slot + i);
        if (count > 1) row.name += std::to_string(i);
        if (row.name.size() > HX_NAME_SIZE) {
            Refuse(object.Where("name"), "at most " + std::to_string(HX_NAME_SIZE) + " bytes");
        }
        const HX_U16 id = row.id;
        Append(object, adapter_.virtual_disks, std::move(row));
        CutBlocks(object, id, disks, block);
        if (first.group == kNoId) SetHomes(adapter_, Owner::kVirtualDisk, id, disks);
    }

    // At the first sector from which every disk has room: those of a disk group have their blocks
    // at the same place.
    void CutBlocks(const Object& object, HX_U16 id, const std::vector<HX_U16>& disks,
                   Sectors block) {
        for (std::size_t position = 0; position < disks.size(); ++position) {
            const Block* const free = FirstFree(adapter_, disks[position], block);
            const HX_U8 refusal = free == nullptr
                                      ? HX_U8{HXSIM_NO_SPACE}
                                      : CheckCut(adapter_, disks[position], free->start, block);
            if (refusal != HX_SUCCESS) {
                Refuse(object.Where("disks"), "room for a block of " + std::to_string(block) +
                                                  " sectors on disk " +
                                                  std::to_string(disks[position]));
            }
            Cut(adapter_, disks[position], free->start, block, id, static_cast<HX_U8>(position));
        }
    }

    // ---- Battery and flash ----

    void ReadBattery() {
        const Json* const found = text_.Find("battery");
        if (found == nullptr) return;
        Object object(*found, text_.Where("battery"));
        Battery battery;
        BBU_Info& info = battery.info;
        info.status = HXSIM_BATTERY_PRESENT | HXSIM_BATTERY_SAFE_FOR_WRITE_BACK;
        info.prev_status = HXSIM_BATTERY_PRESENT | HXSIM_BATTERY_CHARGING;
        info.voltage = 4012;
        info.supportMaxCapacity = 1900;
        info.supportMinCapacity = 600;
        info.maxCapacity = 1750;
        info.curCapacity = 1680;
        info.time_to_empty = 65535;
        info.time_to_full = 65535;
        info.recharge_cycle = 23;
        info.featureSupport = HXSIM_BATTERY_RELEARN | HXSIM_BATTERY_THRESHOLDS;
        info.temperature = 29;
        info.volt_lowerbound = 3600;
        info.volt_upperbound = 4250;
        info.temp_lowerbound = 5;
        info.temp_upperbound = 50;
        info.percent_to_charge = 80;
        object.TakeAll(kBatteryColumns, info);
        object.Finish();
        if (info.maxCapacity == 0 || info.curCapacity > info.maxCapacity) {
            Refuse(object.Where("curCapacity"), "a charge of at most maxCapacity, above 0");
        }
        info.percentage = static_cast<HX_U8>(100U * info.curCapacity / info.maxCapacity);
        battery.since = machine_.clock.start;
        battery.charge_at_since = info.curCapacity;
        adapter_.batteries.push_back(battery);
    }

    // All of them, as long as the text does not say otherwise. What they hold follows from the
    // adapter until somebody writes another one.
    void ReadImages() {
        const Json* const found = text_.Find("images");
        if (found != nullptr && !found->is_array()) {
            Refuse(text_.Where("images"), "a list of " + Listed(kHxsimImageNames));
        }
        std::set<HX_U8> types;
        if (found == nullptr) {
            for (const HxraidName& each : kHxsimImageNames) {
                types.insert(static_cast<HX_U8>(each.code));
            }
        } else {
            for (const Json& each : *found) {
                types.insert(CodeOf(each, text_.Where("images"), kHxsimImageNames));
            }
        }
        for (const HX_U8 type : types) {
            FlashImage image;
            image.type = type;
            adapter_.images.push_back(image);
        }
    }

    // ---- Events ----

    // What a controller tells when it comes up, in that order.
    void QueueStart() {
        const Time now = machine_.clock.start;
        Queue(adapter_, now, kAdapterFound, adapter_.id, {}, TextOf(adapter_.info.SerialNo));
        QueueForEach(adapter_.expanders, kExpanderPluggedIn);
        QueueForEach(adapter_.disks, kDiskOnline);
        if (!adapter_.batteries.empty()) Queue(adapter_, now, kBatteryPresent, 0);
        QueueForEach(adapter_.disk_groups, kDiskGroupCreated);
        QueueForEach(adapter_.virtual_disks, kVirtualDiskCreated);
    }

    template <class Rows>
    void QueueForEach(const Rows& rows, EventKind kind) {
        for (const auto& row : rows) Queue(adapter_, machine_.clock.start, kind, row.id);
    }

    Object& text_;
    const DiskModels& models_;
    Machine& machine_;
    Adapter& adapter_;
    std::string series_;  // of the serial numbers of the disks being read
};

// An adapter that is like an earlier one has what that one has, but for the members that it names;
// one that is null is as if left out.
Json WithLike(const Json& adapters, std::size_t i) {
    const Json& own = adapters[i];
    if (!own.is_object() || !own.contains("like")) return own;
    const std::string where = "adapters[" + std::to_string(i) + "].like";
    std::size_t like = 0;
    Read(own["like"], where, like);
    if (like >= i) Refuse(where, "the number of an adapter before this one");
    Json whole = WithLike(adapters, like);
    whole.merge_patch(own);
    whole.erase("like");
    return whole;
}

Json Parse(std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) {
        // The parser's own name stands in brackets before what it has to say.
        const std::string_view what = error.what();
        const std::size_t behind = what.find("] ");
        throw TopologyError(
            "Topology: no JSON text: " +
            std::string(behind == std::string_view::npos ? what : what.substr(behind + 2)));
    }
}

struct BuiltIn {
    std::string_view name;
    std::string_view text;
};
constexpr BuiltIn kBuiltIn[] = {
    {"default", kDefaultTopology},
    {"small", kSmallTopology},
    {"rack", kRackTopology},
};

}  // namespace

std::vector<std::string_view> BuiltInTopologies() {
    std::vector<std::string_view> names;
    for (const BuiltIn& each : kBuiltIn) names.push_back(each.name);
    return names;
}

std::string_view BuiltInTopology(std::string_view name) {
    const auto* const found = std::ranges::find(kBuiltIn, name, &BuiltIn::name);
    return found == std::end(kBuiltIn) ? std::string_view{} : found->text;
}

Machine MakeMachine(std::string_view topology, std::uint64_t seed, Time now) {
    const Json json = Parse(topology);
    Object text(json, "");
    Machine machine;
    machine.clock = {now, now, 1};
    machine.seed = seed;
    machine.random = seed;
    text.TakeNeeded("name", machine.topology);
    const DiskModels models = ReadModels(text);
    const Json& adapters = text.Need("adapters", "a list of 1 to 4 adapters");
    if (!adapters.is_array() || adapters.empty() || adapters.size() > kMostAdapters) {
        Refuse("adapters", "a list of 1 to 4 adapters");
    }
    for (std::size_t i = 0; i < adapters.size(); ++i) {
        const Json own = WithLike(adapters, i);
        Object object(own, "adapters[" + std::to_string(i) + ']');
        Adapter& adapter = machine.adapters.emplace_back();
        adapter.id = static_cast<HX_U8>(i);
        AdapterReader(object, models, machine, adapter).Run();
        object.Finish();
    }
    text.Finish();
    const std::vector<std::string> broken = Check(machine);
    if (!broken.empty())
        throw TopologyError("Topology: the machine would not be sound: " + broken[0]);
    return machine;
}

Machine DefaultMachine() {
    constexpr std::uint64_t kSeed = 1;  // the same machine everywhere
    return MakeMachine(BuiltInTopology("default"), kSeed, RealNow());
}

}  // namespace hxsim
