// The event store on files that are the fuzzer's, with every operation on them, beside a reading of
// the same bytes by the file's format alone.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "hxfake.h"
#include "input.h"
#include "support/temporary_root.h"
#include "targets.h"
#include "vxevent.h"

namespace {

constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr char kSeqNoFile[] = "/opt/kestrel/raid/db/vx_hx_seqnum.ev";
constexpr char kMagic[] = "Ombra Event File v0.1";
constexpr std::size_t kFirst = 512, kSlot = 192;  // where the slots begin, and how long they are
constexpr std::size_t kMostRoom = 300;            // events that a query may write

// The files of a damaged store can be sparse and of any length: only their beginning is compared.
constexpr std::uintmax_t kCompared = 65536;

struct Files {
    const TemporaryRoot root;

    std::string Head(const char* name) const {
        std::ifstream file(root.Path(name), std::ios::binary);
        const auto compared = std::min<std::uintmax_t>(kCompared, Size(name));
        std::string bytes(static_cast<std::size_t>(compared), '\0');
        file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return bytes;
    }
    std::uintmax_t Size(const char* name) const {
        std::error_code error;
        const std::uintmax_t size = std::filesystem::file_size(root.Path(name), error);
        return error ? 0 : size;
    }
};

std::uint32_t Number(const std::string& bytes, std::size_t at) {
    std::uint32_t number = 0;
    if (bytes.size() >= at + 4) std::memcpy(&number, bytes.data() + at, 4);
    return number;
}

bool IsStore(const std::string& bytes) {
    return bytes.size() >= 52 && std::memcmp(bytes.data(), kMagic, sizeof kMagic) == 0;
}

// An event file as its format says it is to be read.
struct Ring {
    explicit Ring(const std::string& file)
        : bytes(file),
          count(Number(file, 32)),
          slots(std::uint64_t{Number(file, 36)} + 1),
          start(Number(file, 40)),
          end(Number(file, 44)),
          first(Number(file, 48)) {}

    // What holds of every header that a writer has written.
    bool IsSound() const {
        return count < slots && start < slots && end < slots && (start + count) % slots == end;
    }
    Event At(std::uint32_t number) const {
        const std::uint64_t slot = (std::uint64_t{start} + (number - first)) % slots;
        const std::uint64_t at = kFirst + kSlot * slot + 8;
        Event event{};
        if (at < bytes.size()) {
            const std::string_view there =
                std::string_view(bytes).substr(static_cast<std::size_t>(at), sizeof event);
            std::memcpy(&event, there.data(), there.size());
        }
        return event;
    }

    const std::string& bytes;
    std::uint32_t count;
    std::uint64_t slots;
    std::uint32_t start, end, first;
};

const char* CheckClosed() {
    return g_VX_EventExt.fileEv == -1 && g_VX_EventExt.fileSeqNo == -1 ? nullptr
                                                                       : "a file was left open";
}

// A query, which never writes behind its room and never changes a file.
const char* Ask(const Files& files, HX_U32 n, HX_U32 s, HX_U32 e, HX_U32 room) {
    const std::string before = files.Head(kEventFile);
    const bool all_compared = files.Size(kEventFile) <= kCompared;
    std::vector<Event> events(kMostRoom + 1);
    std::memset(events.data(), 0xEE, events.size() * sizeof(Event));
    const Event untouched = events.back();
    HX_U32 got_n = n;
    HX_U32 got_s = s;
    HX_U32 got_e = e;
    if (VX_EvGetFirst(&got_n, &got_s, &got_e, events.data(), room) != 0) return "no success";
    if (std::memcmp(&events[room], &untouched, sizeof untouched) != 0) return "no room was left";
    if (files.Head(kEventFile) != before) return "a query has changed the file";
    if (!IsStore(before)) {
        const bool same = got_n == n && got_s == s && got_e == e;
        return same ? nullptr : "an unreadable store was answered from";
    }
    const Ring ring(before);
    if (!ring.IsSound() || !all_compared) return nullptr;
    // The documented answer.
    const HX_U32 newest = ring.count > 0 ? ring.count + ring.first - 1 : ring.first;
    HX_U32 want_n = std::min(n, ring.count);
    HX_U32 want_s = s;
    HX_U32 want_e = e;
    if (want_n == 0) {
        want_n = ring.count;
        want_s = ring.first;
        want_e = newest;
        return got_n == want_n && got_s == want_s && got_e == want_e ? nullptr
                                                                     : "the extent is another one";
    }
    // Numbers that pass 2^32 within one ring are left to the sanitizers.
    if (std::uint64_t{ring.first} + ring.count > 0xFFFFFFFE) return nullptr;
    if (want_s == kNewestEvents) {
        want_e = std::min(want_e, newest);
        want_s = want_e - want_n + 1;
    }
    want_s = std::max(want_s, ring.first);
    const std::uint64_t behind = std::uint64_t{ring.first} + ring.count;
    want_n = want_s >= behind
                 ? 0
                 : static_cast<HX_U32>(std::min<std::uint64_t>(want_n, behind - want_s));
    if (want_n > 0) want_e = want_s + want_n - 1;
    if (got_n != want_n || got_s != want_s || got_e != want_e) return "another page was answered";
    for (HX_U32 i = 0; i < std::min(want_n, room); ++i) {
        const Event expected = ring.At(want_s + i);
        if (std::memcmp(&expected, &events[i], sizeof expected) != 0) return "another event";
    }
    return nullptr;
}

// A check-in of `count` events. Of a sound ring every event arrives that is new.
const char* CheckIn(const Files& files, HX_U8 adapter, HX_U8 count, Input& input) {
    const std::string before = files.Head(kEventFile);
    const bool was_sound = !IsStore(before) || Ring(before).IsSound();
    std::vector<Event> events(count);
    HX_U32 number = input.U32();
    for (Event& event : events) {
        event.Class = input.U8() % 16;
        event.Code = input.U8() % 128;
        event.SequenceNo = number;
        number += input.U8() % 3u;
        event.Params[0] = input.U16();
    }
    bool delivered = false;
    hxfake::On<&HX_EVT_GetEvent>().Always([&](HX_U8 asked, HX_U8, HX_U8* returned, Event* room) {
        if (asked != adapter || delivered) return HX_U8{0};
        delivered = true;
        *returned = count;
        std::copy(events.begin(), events.end(), room);
        return HX_U8{0};
    });
    VX_EvFile_CheckIn(static_cast<HX_U8>(adapter + 1));
    if (const char* const wrong = CheckClosed()) return wrong;
    const std::string after = files.Head(kEventFile);
    if (count == 0) return after == before ? nullptr : "a check-in of nothing wrote something";
    if (!IsStore(after)) return "a check-in has left no store";
    const Ring ring(after);
    if (!was_sound) return nullptr;
    if (!ring.IsSound()) return "a check-in has left a header that contradicts itself";
    const Event& newest = events.back();
    const bool is_new = newest.SequenceNo == 0 || (newest.Class == 0 && newest.Code == 9);
    if (is_new && ring.count > 0 && files.Size(kEventFile) <= kCompared) {
        const Event stored = ring.At(ring.first + ring.count - 1);
        if (std::memcmp(&stored, &newest, sizeof stored) != 0) return "an event did not arrive";
    }
    return nullptr;
}

const char* Reset(const Files& files) {
    const std::string before = files.Head(kEventFile);
    const std::string numbers = files.Head(kSeqNoFile);
    VX_EvFile_Reset();
    const std::string after = files.Head(kEventFile);
    if (files.Head(kSeqNoFile) != numbers) return "a reset has changed the sequence numbers";
    if (!IsStore(before)) return after == before ? nullptr : "a foreign file was reset";
    if (after.size() != 112 || files.Size(kEventFile) != 112)
        return "a reset left more than a head";
    if (!IsStore(after) || Number(after, 32) != 0 || Number(after, 48) != 0) return "not empty";
    const std::string counters = before.size() >= 112 ? before.substr(52, 60) : after.substr(52);
    return after.substr(52) == counters ? nullptr : "a reset has changed the counters";
}

const char* Operate(const Files& files, Input& input) {
    switch (input.U8() % 8) {
        case 0:
        case 1: {
            const HX_U8 adapter = input.U8() % 4;
            const bool is_large = input.U8() % 8 == 0;
            const auto count = static_cast<HX_U8>(is_large ? input.U8() : input.U8() % 8);
            return CheckIn(files, adapter, count, input);
        }
        case 2:
            return Reset(files);
        case 3: {
            HX_U32 first = 0;
            HX_U32 count = 0;
            VX_EvGetInfo(&first, &count);
            return CheckClosed();
        }
        case 4: {
            VX_HX_ChangeCounters counters;
            const std::string before = files.Head(kEventFile);
            VX_EvGetChangeCounters(&counters);
            const bool stored = IsStore(before) && before.size() >= 112;
            if (stored && std::memcmp(&counters, before.data() + 52, 60) != 0) return "counters";
            return CheckClosed();
        }
        default: {
            const HX_U32 n = input.U8() % 4 == 0 ? input.U32() : input.U8();
            const HX_U32 s = input.U8() % 3 == 0 ? kNewestEvents : input.U32();
            const HX_U32 e = input.U8() % 3 == 0 ? kNewestEvents : input.U32();
            const char* const wrong =
                Ask(files, n, s, e, static_cast<HX_U32>(input.U16() % kMostRoom));
            return wrong != nullptr ? wrong : CheckClosed();
        }
    }
}

}  // namespace

const char* FuzzEventStore(const std::uint8_t* data, std::size_t size) {
    static const Files files;
    static const bool prepared = [] {
        hxfake::NoteCalls(false);
        std::filesystem::create_directories(files.root.Path("/opt/kestrel/raid/db"));
        return true;
    }();
    static_cast<void>(prepared);
    Input input(data, size);
    const std::uint8_t capacity = input.U8();
    const std::uint8_t present = input.U8();
    files.root.Write("/vexorapi.ini", "<c><EventLogConfig type=\"config\" MaxNumOfEvent=\"" +
                                          std::to_string(capacity) + "\"/></c>");
    std::filesystem::remove(files.root.Path(kEventFile));
    std::filesystem::remove(files.root.Path(kSeqNoFile));
    if (present % 2 == 1) files.root.Write(kSeqNoFile, input.Bytes(input.U8()));
    if (present % 4 >= 2) {
        std::string file = input.Bytes(input.U16());
        // Mostly with the magic that makes it one of ours.
        if (present < 200) {
            file.resize(std::max<std::size_t>(file.size(), 112));
            std::memcpy(file.data(), kMagic, sizeof kMagic);
        }
        files.root.Write(kEventFile, file);
    }
    VX_EvInit();
    const char* wrong = nullptr;
    for (int operations = 0; operations < 12 && wrong == nullptr && !input.IsEmpty();
         ++operations) {
        wrong = Operate(files, input);
    }
    VX_EvShutdown();
    return wrong;
}
