// Damping, identities, families, stale rows, conditions known only from events, and messages.
#include "conditions/hxc_look.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <set>
#include <utility>

#include "codes/activity.h"
#include "codes/event.h"
#include "codes/state.h"
#include "conditions/hxc_event_codes.h"
#include "conditions/hxc_memory.h"

namespace hxconditions {

namespace {

constexpr Ticks kAfterStart = 30;
constexpr Ticks kHour = 3600;
constexpr std::size_t kRaisesThatFlap = 3;
constexpr Ticks kQuietAfterFlapping = 30 * 60;

struct Ended {
    Held held;
    std::string reason;
};

// The inputs and intermediate results of one look.
struct Work {
    State& state;
    const Answers& answers;
    const Things& things;
    const std::vector<Event>& events;
    std::int64_t real;
    bool is_once;  // LookOnce: no memory, no damping
    std::vector<Ended> ended{};
};

// ---- Time ----

void Advance(State& state, const Now& now) {
    if (state.boot_id == now.boot_id && now.boot > state.boot) state.now += now.boot - state.boot;
    state.boot = now.boot;
    state.boot_id = now.boot_id;
    if (!state.started) state.started = state.now;
}

// ---- Held conditions ----

void Replace(std::string& text, const std::string& from, const std::string& to) {
    if (text.ends_with(from)) text.replace(text.size() - from.size(), from.size(), to);
}

void Rename(Finding& finding, const std::string& from, const std::string& to) {
    Replace(finding.object.identity, from, to);
    Replace(finding.object.adapter_identity, from, to);
    for (std::string& link : finding.links) Replace(link, from, to);
    for (LostMember& lost : finding.lost) Replace(lost.identity, from, to);
}

// An adapter whose identity is read for the first time was identified by its number until now.
void RenameAdapters(State& state, const Answers& answers, const Things& things) {
    for (const Adapter& adapter : answers.adapters) {
        const std::string number = "adapter number " + std::to_string(adapter.number);
        const std::string identity = things.Of(adapter).identity;
        if (identity == number || state.memory.numbers.contains(adapter.number)) continue;
        for (Held& held : state.held) Rename(held.found, number, identity);
        for (Silence& silence : state.silences) Replace(silence.identity, number, identity);
        std::map<std::string, Told> told;
        for (auto& [key, each] : state.told) {
            Rename(each.found, number, identity);
            told[KeyOf(each.found.code, each.found.object)] = std::move(each);
        }
        state.told = std::move(told);
    }
}

bool IsFamily(Code code) {
    const Family family = RowOf(code).family;
    return family != Family::kNone && family != Family::kHindrance;
}

Held* FindHeld(State& state, Code code, const Object& object) {
    const auto found = std::ranges::find_if(state.held, [&](const Held& each) {
        return each.found.code == code && IsSameThing(each.found.object, object);
    });
    return found == state.held.end() ? nullptr : &*found;
}

bool IsSibling(const Finding& left, const Finding& right) {
    return IsFamily(left.code) && left.code != right.code &&
           RowOf(left.code).family == RowOf(right.code).family &&
           IsSameThing(left.object, right.object);
}

void LendEvent(Held& held, const Work& work) {
    held.first_seen = work.real;
    held.since = work.real;
    for (const Event& event : work.events) {
        if (!Raises(event, held.found.code)) continue;
        if (!IsSameThing(ObjectOf(event, work.things), held.found.object)) continue;
        held.event = event;
        held.since = event.time;
        held.since_is = SinceIs::kEvent;
    }
}

// When an object's identity becomes known, the record of what was reported about it moves to the
// new key.
void MoveTold(State& state, const Finding& from, const Finding& to) {
    const std::string old = KeyOf(from.code, from.object);
    const std::string key = KeyOf(to.code, to.object);
    if (old == key || state.told.contains(key)) return;
    auto told = state.told.extract(old);
    if (told.empty()) return;
    told.key() = key;
    state.told.insert(std::move(told));
}

Held& Hold(Work& work, Finding finding) {
    if (Held* const held = FindHeld(work.state, finding.code, finding.object)) {
        MoveTold(work.state, held->found, finding);
        held->found = std::move(finding);
        return *held;
    }
    Held& held = work.state.held.emplace_back();
    held.found = std::move(finding);
    held.began = work.state.now;
    LendEvent(held, work);
    return held;
}

void Confirm(Work& work, Held& held) {
    held.is_stale = false;
    held.last_seen = work.real;
    held.good_since.reset();
    held.good_looks = 0;
    ++held.looks;
}

bool HasHeldLongEnough(const Held& held, const Work& work) {
    if (work.is_once) return true;
    const Damping up = held.found.up.value_or(RowOf(held.found.code).up);
    if (up.seconds == 0 && up.looks == 0) return true;
    if (up.seconds != 0 && work.state.now - *work.state.started < kAfterStart) return false;
    return work.state.now - held.began >= up.seconds && held.looks >= up.looks;
}

std::string RaiseKey(const Held& held) {
    return std::string(RowOf(held.found.code).name) + " of " + held.found.object.identity;
}

void Show(Held& held, Work& work) {
    held.is_shown = true;
    std::vector<Ticks>& raises = work.state.raises[RaiseKey(held)];
    raises.push_back(work.state.now);
    held.is_flapping = raises.size() >= kRaisesThatFlap;
}

void ShowWhatHasHeld(Work& work) {
    for (Held& held : work.state.held) {
        const Row& row = RowOf(held.found.code);
        if (held.is_shown || held.is_stale || held.looks == 0) continue;
        if (row.needs == Needs::kEvents && held.hits.size() < row.hits) continue;
        const bool replaces = std::ranges::any_of(work.state.held, [&](const Held& other) {
            return other.is_shown && IsSibling(other.found, held.found);
        });
        if (replaces || HasHeldLongEnough(held, work)) Show(held, work);
    }
}

bool HasBeenGoodLongEnough(const Held& held, const Work& work) {
    const Damping down = RowOf(held.found.code).down;
    const Ticks quiet = held.is_flapping ? kQuietAfterFlapping : Ticks{down.seconds};
    return work.state.now - *held.good_since >= quiet && held.good_looks >= down.looks;
}

bool IsReplaced(const Held& held, const Things& things) {
    const std::vector<Object>& all = things.All();
    const bool listed = std::ranges::any_of(
        all, [&](const Object& each) { return IsSameThing(held.found.object, each); });
    return !listed && std::ranges::any_of(all, [&](const Object& each) {
        return IsReplacedBy(held.found.object, each);
    });
}

// Whether a condition that was not found in this look has ended. It has not while its answers
// cannot be read.
std::optional<std::string> EndOf(Held& held, Work& work) {
    const Row& row = RowOf(held.found.code);
    if (IsReplaced(held, work.things)) return "replaced";
    if (!work.things.IsRead(held.found.object, row.rests_on)) {
        held.is_stale = true;
        return std::nullopt;
    }
    if (held.acknowledged && EndsByAcknowledgement(held)) return "acknowledged";
    held.is_stale = false;
    if (!held.is_shown) return "";
    if (!held.good_since) held.good_since = work.state.now;
    ++held.good_looks;
    return HasBeenGoodLongEnough(held, work) ? std::optional<std::string>("") : std::nullopt;
}

void End(Work& work, const Held& held, std::string reason) {
    work.ended.push_back({held, std::move(reason)});
}

// ---- Findings of this look ----

// Whether a milder condition of the same family must be ignored, because not all of its answers
// were read.
bool IsBetterByHalf(const Finding& finding, const Work& work) {
    if (work.things.IsRead(finding.object, RowOf(finding.code).rests_on)) return false;
    return std::ranges::any_of(work.state.held, [&](const Held& held) {
        return held.is_shown && IsSibling(held.found, finding) &&
               RowOf(held.found.code).rank < RowOf(finding.code).rank;
    });
}

void TakeFindings(Work& work, std::vector<Finding> findings, bool from_memory,
                  std::set<std::string>& found) {
    for (Finding& finding : findings) {
        if (IsBetterByHalf(finding, work)) continue;
        const bool by_events = RowOf(finding.code).needs == Needs::kEvents;
        Held& held = Hold(work, std::move(finding));
        if (!found.insert(RaiseKey(held)).second) continue;
        held.is_from_memory = from_memory;
        if (by_events) held.hits.assign(RowOf(held.found.code).hits, work.state.now);
        Confirm(work, held);
    }
}

// Whether another condition of the same family has replaced it. The new one is shown at once: with
// damping the object would look healthy in between.
bool PassOn(Work& work, const Held& held, const std::set<std::string>& found) {
    const auto next = std::ranges::find_if(work.state.held, [&](const Held& other) {
        return found.contains(RaiseKey(other)) && IsSibling(other.found, held.found);
    });
    if (next == work.state.held.end()) return false;
    next->is_shown = next->is_shown || held.is_shown;
    if (!next->acknowledged) next->acknowledged = held.acknowledged;
    return true;
}

void EndWhatWasNotFound(Work& work, const std::set<std::string>& found) {
    std::set<std::string> ended;
    for (Held& held : work.state.held) {
        if (RowOf(held.found.code).needs == Needs::kEvents || found.contains(RaiseKey(held))) {
            continue;
        }
        if (PassOn(work, held, found)) {
            ended.insert(RaiseKey(held));
            continue;
        }
        const auto reason = EndOf(held, work);
        if (!reason) continue;
        End(work, held, *reason);
        ended.insert(RaiseKey(held));
    }
    std::erase_if(work.state.held,
                  [&](const Held& held) { return ended.contains(RaiseKey(held)); });
}

// ---- Conditions known only from events ----

std::string BlockText(const Event& event) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "0x%08x%08x", event.params[0], event.params[1]);
    return text.data();
}

void AddHit(Work& work, Code code, const Event& event) {
    const Row& row = RowOf(code);
    const Object object = ObjectOf(event, work.things);
    Held* held = FindHeld(work.state, code, object);
    if (held == nullptr) {
        held = &work.state.held.emplace_back();
        held->found = FindingOf(code, object);
        held->began = work.state.now;
        held->first_seen = work.real;
        held->since = event.time;
        held->since_is = SinceIs::kEvent;
        held->event = event;
    }
    held->hits.push_back(work.state.now);
    std::erase_if(held->hits, [&](Ticks hit) {
        return work.state.now - hit > static_cast<Ticks>(row.hits_within_s);
    });
    Confirm(work, *held);
    Values& values = held->found.values;
    const bool tells_number = code == Code::kEventsLost || code == Code::kVdInconsistent;
    const std::uint32_t number = event.params[code == Code::kEventsLost ? 2 : 0];
    held->found.count =
        code == Code::kVdInconsistent ? number : held->found.count + (tells_number ? number : 1);
    values["n"] = std::to_string(row.hits_within_s != 0 ? held->hits.size() : held->found.count);
    values["block"] = BlockText(event);
    values["activity"] = ActivityText(ActivityOf(event));
    values["n_remapped"].clear();
    const Adapter* const adapter = work.things.FindAdapter(event.adapter);
    if (adapter == nullptr || object.kind != Kind::kDisk) return;
    const Disk* const disk = FindDisk(*adapter, object.id);
    values["id"] = disk == nullptr ? "" : DiskIdText(object, *disk);
}

void EndByEvent(Work& work, Code code, const Event& event) {
    const Object object = ObjectOf(event, work.things);
    std::vector<Held> kept;
    for (Held& held : work.state.held) {
        const bool same = held.found.code == code && IsSameThing(held.found.object, object) &&
                          (code != Code::kActivityFailed ||
                           held.found.values["activity"] == ActivityText(ActivityOf(event)));
        if (same) {
            End(work, held, "");
        } else {
            kept.push_back(std::move(held));
        }
    }
    work.state.held = std::move(kept);
}

// A check whose start and end were both seen proves the virtual disk consistent, unless it reported
// errors before its end.
void FollowCheck(Work& work, const Event& event) {
    const Object object = ObjectOf(event, work.things);
    const auto seen = work.state.memory.virtual_disks.find(object.identity);
    if (seen == work.state.memory.virtual_disks.end()) return;
    const auto step = [&](hxcodes::Step wanted) {
        const auto kind = hxcodes::EventOf(hxcodes::ActivityKind::kCheck, wanted);
        return hxcodes::ClassOf(*kind) == event.event_class && hxcodes::CodeOf(*kind) == event.code;
    };
    SeenVirtualDisk& memory = seen->second;
    if (step(hxcodes::Step::kStart) || step(hxcodes::Step::kRestart)) {
        memory.check_was_seen = true;
        memory.check_found = false;
    }
    if (Raises(event, Code::kVdInconsistent)) memory.check_found = true;
    if (!step(hxcodes::Step::kComplete)) return;
    memory.checked = work.state.now;
    if (memory.check_was_seen && !memory.check_found) {
        EndByEvent(work, Code::kVdInconsistent, event);
    }
    memory.check_was_seen = false;
}

void ForgetDeleted(Work& work, const Event& event) {
    const auto deleted = hxcodes::EventKind::kVirtualDiskDeleted;
    if (event.event_class != hxcodes::ClassOf(deleted) || event.code != hxcodes::CodeOf(deleted)) {
        return;
    }
    const std::string address = AddressOf(event.adapter, Kind::kVirtualDisk, event.device);
    std::erase_if(work.state.memory.virtual_disks,
                  [&](const auto& each) { return each.second.object.address == address; });
}

void NoteClock(Work& work) {
    std::map<unsigned, std::int64_t> newest;
    for (const Event& event : work.events) newest[event.adapter] = event.time;
    for (const auto& [number, time] : newest) {
        const Adapter* const adapter = work.things.FindAdapter(number);
        if (adapter == nullptr) continue;
        // At the first look events may be old, so a clock that is behind cannot be detected yet.
        const std::int64_t ahead = time - work.real;
        const std::int64_t behind = work.state.looks == 0 ? 0 : -ahead;
        work.state.memory.clock_differences[work.things.Of(*adapter).identity] =
            std::max(ahead, behind);
    }
}

// Of a store that was reset nobody knows how many events went with it.
void TakeLostEvents(Work& work) {
    constexpr std::string_view kUnknown = "an unknown number of";
    constexpr std::string_view kAtLeast = "at least ";
    const Store& store = work.answers.store;
    if (store.events_lost == 0 && !store.was_reset) return;
    const Object object = work.things.OfStore();
    const Held* const before = FindHeld(work.state, Code::kEventsLost, object);
    std::string told;
    if (before != nullptr) told = before->found.values.find("n")->second;
    const std::uint64_t lost = (before == nullptr ? 0 : before->found.count) + store.events_lost;
    const bool is_known = !store.was_reset && told != kUnknown && !told.starts_with(kAtLeast);
    Held& held = Hold(work, FindingOf(Code::kEventsLost, object));
    held.hits.push_back(work.state.now);
    held.found.count = lost;
    Values& values = held.found.values;
    values["n"] = (is_known ? "" : std::string(kAtLeast)) + std::to_string(lost);
    if (!is_known && lost == 0) values["n"] = kUnknown;
    values["o"] = "the event store";
    Confirm(work, held);
}

void TakeEvents(Work& work) {
    for (const Event& event : work.events) {
        const EventCodes codes = CodesOf(event);
        for (const Code code : CodesIn(codes.clears)) {
            if (RowOf(code).needs == Needs::kEvents) EndByEvent(work, code, event);
        }
        for (const Code code : CodesIn(codes.raises)) {
            if (RowOf(code).needs == Needs::kEvents) AddHit(work, code, event);
        }
        FollowCheck(work, event);
        ForgetDeleted(work, event);
    }
    NoteClock(work);
    TakeLostEvents(work);
}

bool IsMended(const Held& held, const Work& work) {
    if (held.found.code != Code::kRebuildFailed) return false;
    const Adapter* const adapter = work.things.FindAdapter(held.found.object.adapter_identity);
    if (adapter == nullptr || !work.things.IsRead(held.found.object, Source::kVirtualDisks)) {
        return false;
    }
    return std::ranges::any_of(adapter->virtual_disks, [&](const VirtualDisk& each) {
        return each.state == hxcodes::State::kOptimal &&
               IsSameThing(work.things.Of(*adapter, each), held.found.object);
    });
}

std::optional<std::string> EndOfEventRow(const Held& held, const Work& work) {
    const Row& row = RowOf(held.found.code);
    if (IsReplaced(held, work.things)) return "replaced";
    if (held.acknowledged && row.ends_by_ack) return "acknowledged";
    if (IsMended(held, work)) return "";
    const Ticks age = row.age_s != 0 ? row.age_s : row.hits_within_s;
    if (age != 0 && !held.hits.empty() && work.state.now - held.hits.back() >= age) return "";
    // For the remap table the condition of the fuller table wins.
    const bool outdone = std::ranges::any_of(work.state.held, [&](const Held& other) {
        return IsSibling(other.found, held.found) && other.looks != 0 &&
               RowOf(other.found.code).rank < row.rank &&
               RowOf(other.found.code).needs == Needs::kEvents;
    });
    return outdone ? std::optional<std::string>("") : std::nullopt;
}

void EndEventRows(Work& work) {
    std::vector<Held> kept;
    for (const Held& held : work.state.held) {
        const bool by_event = RowOf(held.found.code).needs == Needs::kEvents;
        const auto reason = by_event ? EndOfEventRow(held, work) : std::nullopt;
        if (reason) {
            End(work, held, *reason);
        } else {
            kept.push_back(held);
        }
    }
    work.state.held = std::move(kept);
}

// ---- Messages ----

std::vector<std::string> CausesOf(const Condition& condition) {
    std::vector<std::string> causes;
    for (const Cause& cause : condition.causes) {
        causes.push_back(std::string(RowOf(cause.code).name) + " of " + cause.identity);
    }
    std::ranges::sort(causes);
    return causes;
}

bool IsMore(const Condition& now, const Told& told) {
    if (now.count > told.count) return true;
    const std::vector<std::string> causes = CausesOf(now);
    return !std::ranges::includes(told.causes, causes);
}

void Note(Told& told, const Condition& head, const Held& held) {
    told.found = held.found;
    told.count = head.count;
    told.causes = CausesOf(head);
    told.first_seen = held.first_seen;
    told.since = held.since;
    told.since_is = held.since_is;
}

bool BreaksSilence(State& state, const Held& held) {
    bool quiet = false;
    std::erase_if(state.silences, [&](const Silence& silence) {
        const bool meant =
            (!silence.code || *silence.code == held.found.code) &&
            (silence.identity.empty() || silence.identity == held.found.object.identity);
        quiet = quiet || (meant && silence.is_sticky);
        return meant && !silence.is_sticky;
    });
    return !quiet;
}

void TellHead(std::vector<Message>& messages, State& state, Condition head) {
    Held* const held = FindHeld(state, head.code, head.object);
    if (held == nullptr) return;
    const std::string key = KeyOf(head.code, head.object);
    const auto told = state.told.find(key);
    const bool is_silenced = head.silenced_until.has_value();
    if (told == state.told.end()) {
        if (is_silenced) return;
        Told& first = state.told[key];
        Note(first, head, *held);
        first.began = state.now;
        messages.push_back({Change::kRaised, std::move(head), std::nullopt, 0, ""});
        return;
    }
    const Code was = told->second.found.code;
    const bool same = was == head.code;
    const bool worse = same ? IsMore(head, told->second) : RowOf(head.code).rank < RowOf(was).rank;
    const bool better = !same && !worse;
    Note(told->second, head, *held);
    if (!worse && !better) return;
    if (worse) {
        held->acknowledged.reset();
        head.acknowledged.reset();
        if (is_silenced && !BreaksSilence(state, *held)) return;
        head.silenced_until.reset();
    } else if (held->acknowledged || is_silenced) {
        return;
    }
    messages.push_back({worse ? Change::kWorse : Change::kBetter, std::move(head), was, 0, ""});
}

// The condition as it was last reported.
Condition LastConditionOf(const Told& told, const Settings& settings, std::int64_t real) {
    State alone;
    Held& held = alone.held.emplace_back();
    held.found = told.found;
    held.is_shown = true;
    held.first_seen = told.first_seen;
    held.since = told.since;
    held.since_is = told.since_is;
    held.last_seen = real;
    // It was told before it was switched off.
    Overview overview = OverviewOf(alone, {.levels = settings.levels, .off = {}}, real, true);
    return std::move(overview.heads.front());
}

void TellCleared(std::vector<Message>& messages, Work& work, const Settings& settings) {
    std::set<std::string> shown;
    for (const Held& held : work.state.held) {
        if (held.is_shown) shown.insert(KeyOf(held.found.code, held.found.object));
    }
    std::erase_if(work.state.told, [&](const auto& each) {
        if (shown.contains(each.first)) return false;
        Message message{Change::kCleared, LastConditionOf(each.second, settings, work.real),
                        std::nullopt, work.state.now - each.second.began, ""};
        for (const Ended& ended : work.ended) {
            if (KeyOf(ended.held.found.code, ended.held.found.object) == each.first) {
                message.reason = ended.reason;
            }
        }
        messages.push_back(std::move(message));
        return true;
    });
}

// Reports critical conditions that started and ended between two looks, since nothing else would
// report them.
void TellPassed(std::vector<Message>& messages, const Work& work, const Settings& settings) {
    for (auto raise = work.events.begin(); raise != work.events.end(); ++raise) {
        for (const Code code : CodesIn(CodesOf(*raise).raises)) {
            const Row& row = RowOf(code);
            if (row.needs == Needs::kEvents || LevelOf(row) != Level::kCritical) continue;
            if (settings.off.contains(code)) continue;
            const Object object = ObjectOf(*raise, work.things);
            const auto clear =
                std::find_if(std::next(raise), work.events.end(), [&](const Event& each) {
                    return Clears(each, code) && IsSameThing(ObjectOf(each, work.things), object);
                });
            const std::string key = KeyOf(code, object);
            const bool held = std::ranges::any_of(work.state.held, [&](const Held& each) {
                return KeyOf(each.found.code, each.found.object) == key;
            });
            const bool ended = std::ranges::any_of(work.ended, [&](const Ended& each) {
                return KeyOf(each.held.found.code, each.held.found.object) == key;
            });
            if (clear == work.events.end() || held || ended) continue;
            Told told;
            told.found = FindingOf(code, object);
            told.since = raise->time;
            told.since_is = SinceIs::kEvent;
            Message message{Change::kPassed, LastConditionOf(told, settings, work.real),
                            std::nullopt, clear->time - raise->time, ""};
            message.condition.sentence = TitleOf(object) + " was " + std::string(row.name) +
                                         " for " + DurationText(message.lasted_s);
            messages.push_back(std::move(message));
        }
    }
}

void EndSilences(State& state) {
    std::erase_if(state.silences, [&](const Silence& silence) {
        if (silence.until <= state.now) return true;
        if (silence.is_sticky) return false;
        return std::ranges::none_of(state.held, [&](const Held& held) {
            return (!silence.code || *silence.code == held.found.code) &&
                   (silence.identity.empty() || silence.identity == held.found.object.identity);
        });
    });
}

void ForgetOldRaises(State& state) {
    for (auto& [key, raises] : state.raises) {
        std::erase_if(raises, [&](Ticks raise) { return state.now - raise > kHour; });
    }
    std::erase_if(state.raises, [](const auto& each) { return each.second.empty(); });
}

constexpr std::string_view kChangeNames[] = {"raised", "worse", "better", "cleared", "passed"};

}  // namespace

std::string_view NameOf(Change change) { return kChangeNames[static_cast<std::size_t>(change)]; }

Look LookAt(State state, const Answers& answers, const std::vector<Event>& events, const Now& now,
            const Settings& settings) {
    Advance(state, now);
    ForgetOldRaises(state);
    const Things things(answers, state.memory.numbers);
    RenameAdapters(state, answers, things);
    Work work{state, answers, things, events, now.real, false};
    RememberProgress(state.memory, answers, things, state.now);
    TakeEvents(work);
    const RememberedMovement movement(state.memory, state.now);
    std::set<std::string> found;
    TakeFindings(work, FindAll(answers, things, &movement), false, found);
    TakeFindings(work, FindFromMemory(state.memory, answers, things, state.now), true, found);
    EndWhatWasNotFound(work, found);
    EndEventRows(work);
    ShowWhatHasHeld(work);
    Remember(state.memory, answers, things, state.now);
    EndSilences(state);
    ++state.looks;
    Look look;
    look.overview = OverviewOf(state, settings, now.real, true);
    for (const Condition& head : look.overview.heads) TellHead(look.messages, state, head);
    TellPassed(look.messages, work, settings);
    TellCleared(look.messages, work, settings);
    look.overview = OverviewOf(state, settings, now.real, true);
    look.state = std::move(state);
    return look;
}

Overview LookOnce(const Answers& answers, const Now& now, const Settings& settings,
                  const Movement* movement) {
    State state;
    const Things things(answers, {});
    const std::vector<Event> none;
    Work work{state, answers, things, none, now.real, true};
    std::set<std::string> found;
    TakeFindings(work, FindAll(answers, things, movement), false, found);
    ShowWhatHasHeld(work);
    return OverviewOf(state, settings, now.real, false);
}

}  // namespace hxconditions
