#include "service/hxs_library_source.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <utility>

#include "codes/event_class.h"
#include "codes/named.h"
#include "conditions/hxc_object.h"
#include "examples/event_store_check.h"
#include "library/wake.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/disks.h"
#include "model/event_store.h"
#include "model/event_store_file.h"
#include "model/failure.h"
#include "model/health_answers.h"
#include "model/library_session.h"

#include "vexorapi.h"

namespace hxservice {

namespace {

constexpr unsigned kEventsPerCall = 50;  // of a check-in, from each adapter

constexpr std::size_t kComplaintSize = 4096 + 256;  // the longest path, and why

bool IsNotThereYet(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) != 0 && errno == ENOENT;
}

std::string SeverityOf(const vexorctl::StoredEvent& event) {
    const auto severity = event.record[vexorctl::fields::Event::Severity];
    if (!severity) return "?";
    const std::string_view name = hxcodes::NameOf(hxcodes::kSeverityNames, *severity);
    return name.empty() ? std::to_string(*severity) : std::string(name);
}

hxconditions::Event EventOf(const vexorctl::StoredEvent& stored) {
    using vexorctl::fields::Event;
    const auto number = [&](const auto& field) {
        return static_cast<std::uint32_t>(stored.record[field].value_or(0));
    };
    hxconditions::Event event;
    event.sequence = static_cast<std::uint32_t>(stored.sequence);
    event.adapter = number(Event::AdapterID);
    event.event_class = number(Event::Class);
    event.code = number(Event::Code);
    event.device = number(Event::DeviceID);
    event.time = number(Event::TimeStamp);
    const auto params = stored.record[Event::Params].value_or(std::vector<std::uint64_t>());
    for (std::size_t index = 0; index < std::min(params.size(), std::size(event.params)); ++index) {
        event.params[index] = static_cast<std::uint32_t>(params[index]);
    }
    return event;
}

std::string VersionOf(const vexorctl::View<vexorctl::fields::Version_Info>& version) {
    using V = vexorctl::fields::Version_Info;
    std::string text;
    for (const auto& part : {V::VerMajor, V::VerMinor, V::VerOEM, V::VerBuild}) {
        const auto number = version[part];
        if (!number) return "";
        text += (text.empty() ? "" : ".") + std::to_string(*number);
    }
    return text;
}

using LibraryCounters = vexorctl::fields::VX_HX_ChangeCounters;
constexpr std::pair<vexorctl::NumberField<LibraryCounters>, const char*> kCounters[] = {
    {LibraryCounters::Whatever_Change, "any"},
    {LibraryCounters::Adapter_Change, "adapter"},
    {LibraryCounters::LD_Change, "virtual_disk"},
    {LibraryCounters::HD_Change, "disk"},
    {LibraryCounters::PM_Change, "port_multiplier"},
    {LibraryCounters::Expander_Change, "expander"},
    {LibraryCounters::MDD_Change, "metadata"},
    {LibraryCounters::BSL_Change, "bad_sectors"},
    {LibraryCounters::SAS_Change, "sas"},
    {LibraryCounters::ENCL_Change, "enclosure"},
    {LibraryCounters::BAT_Change, "battery"},
    {LibraryCounters::FLASH_Change, "flash"},
    {LibraryCounters::CACHE_Change, "cache"},
    {LibraryCounters::MISC_Change, "misc"},
    {LibraryCounters::ARRAY_Change, "disk_group"},
};

Facts FactsOf(const vexorctl::MachineLook& look) {
    using vexorctl::fields::Adapter_Info;
    using vexorctl::fields::HD_Info;
    Facts facts;
    for (const vexorctl::Adapter& each : look.adapters) {
        facts.adapters.push_back({each.address.adapter,
                                  VersionOf(each.info[Adapter_Info::FirmwareVersion]),
                                  VersionOf(each.info[Adapter_Info::DriverVersion]),
                                  VersionOf(each.info[Adapter_Info::BIOSVersion])});
    }
    for (const vexorctl::Disk& each : look.disks) {
        facts.disks.push_back({each.address.adapter, each.address.id,
                               hxconditions::Harmless(each.info[HD_Info::Model].value_or("")),
                               hxconditions::Harmless(each.info[HD_Info::FWVersion].value_or(""))});
    }
    return facts;
}

// Runs `work` and turns the exceptions of the asking functions into SourceError.
template <class Work>
auto Asking(Work work) {
    try {
        return work();
    } catch (const vexorctl::Failure& failure) {
        throw SourceError(failure.what());
    } catch (const vexorctl::Unavailable& failure) {
        throw SourceError((failure.subject.empty() ? "" : failure.subject + ": ") + failure.what());
    }
}

}  // namespace

vexorctl::Controller& LibrarySource::Opened() {
    if (!controller_) controller_.emplace();
    return *controller_;
}

unsigned LibrarySource::CountAdapters() {
    try {
        return Asking([this] {
            Opened().BeginLook();
            return static_cast<unsigned>(Opened().Adapters().size());
        });
    } catch (const SourceError&) {
        controller_.reset();
        throw;
    }
}

std::optional<std::string> LibrarySource::WhyStoreIsClosed(unsigned adapters) {
    std::array<char, kComplaintSize> complaint{};
    if (EventStoreTakes(adapters * kEventsPerCall, complaint.data(), complaint.size()) != 0) {
        return std::nullopt;
    }
    return complaint.data();
}

void LibrarySource::CheckIn(unsigned adapters) {
    VX_EvFile_CheckIn(static_cast<std::uint8_t>(adapters));
}

hxconditions::Store LibrarySource::LookAtStore() {
    return Asking([] { return vexorctl::LookAtEventStore(); });
}

StoreExtent LibrarySource::ReadExtent() {
    return Asking([this]() -> StoreExtent {
        if (IsNotThereYet(vexorctl::EventStorePath())) return {};
        const vexorctl::Extent extent = vexorctl::AskExtent(Opened());
        return {extent.first, extent.next};
    });
}

std::vector<StoredEvent> LibrarySource::ReadEvents(std::uint64_t first, std::uint64_t next) {
    return Asking([&] {
        std::uint64_t page = next - first;
        std::vector<StoredEvent> events;
        for (const vexorctl::StoredEvent& each :
             vexorctl::ReadEvents(Opened(), first, next - first, page)) {
            events.push_back({each.sequence, SeverityOf(each), each.Text(), EventOf(each)});
        }
        return events;
    });
}

hxconditions::Answers LibrarySource::LookAtMachine() {
    Opened().BeginLook();
    vexorctl::MachineLook look = vexorctl::LoadMachine(Opened());
    vexorctl::TakeRemapped(Opened(), look.answers);
    facts_ = FactsOf(look);
    TakeCounters();
    return std::move(look.answers);
}

Descriptor LibrarySource::WatchForChanges() {
    // Looked up in whichever controller library is loaded: the vendor's does not have it.
    const auto wake =
        reinterpret_cast<decltype(&hx_wake)>(dlsym(RTLD_DEFAULT, hxlibrary::kWakeFunction));
    return Descriptor(wake == nullptr || !controller_ ? -1 : wake());
}

void LibrarySource::TakeCounters() {
    using Function = vexorctl::calls::VX_HX_EVT_GetChangeCounters;
    const auto answer = Opened().Ask(vexorctl::Request<Function>{});
    for (const auto& [field, name] : kCounters) {
        std::optional<std::uint64_t> count;
        if (answer.exit == vexorctl::Exit::kDone) {
            count = answer[Function::Result::ChangeCounters][field];
        }
        facts_.counters.push_back({name, count});
    }
}

}  // namespace hxservice
