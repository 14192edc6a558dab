// Folds and sorts conditions, and composes their sentences and next steps.
#include "conditions/hxc_overview.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "codes/disk.h"
#include "conditions/hxc_find_arrays.h"
#include "conditions/hxc_spares.h"

namespace hxconditions {

namespace {

constexpr std::int64_t kToldAfter = 60;  // seconds: "1 min ago"

// A shown condition while the overview is composed.
struct Entry {
    const Held* held = nullptr;
    const Row* row = nullptr;
    Condition condition{};
    Entry* into = nullptr;  // the head into which it folds
    std::vector<Entry*> folded{};

    const Finding& found() const { return held->found; }
    Code code() const { return held->found.code; }
};
using Entries = std::vector<Entry>;

unsigned RankOf(const Condition& condition) {
    constexpr unsigned kBand = 100;
    const Row& row = RowOf(condition.code);
    if (!condition.level_is_set_here) return row.rank;
    return (static_cast<unsigned>(condition.level) + 1) * kBand + row.rank % kBand;
}

bool Links(const Entry& head, const std::string& identity) {
    const std::vector<std::string>& links = head.found().links;
    return std::ranges::find(links, identity) != links.end();
}

bool AreOnOneAdapter(const Entry& left, const Entry& right) {
    const std::string& adapter = left.found().object.adapter_identity;
    return !adapter.empty() && adapter == right.found().object.adapter_identity;
}

bool IsArrayState(const Entry& entry) { return entry.row->family == Family::kVirtualDisk; }

bool IsMachineUnread(const Entry& entry) {
    return entry.code() == Code::kControllerUnreachable || entry.code() == Code::kControllerDenied;
}

bool IsBattery(const Entry& entry) { return entry.found().object.kind == Kind::kBattery; }

// Whether the condition only announces the failure of a disk, so that a failed disk explains it.
bool IsSignOfFailure(Code code) {
    return code == Code::kDiskPredictedFailure || code == Code::kDiskRemapFull ||
           code == Code::kDiskRemapNearlyFull || code == Code::kDiskMediaErrors ||
           code == Code::kDiskTimeouts;
}

std::string EnclosureOf(const Entry& entry) {
    const auto value = entry.found().values.find("enclosure");
    return value == entry.found().values.end() ? "" : value->second;
}

template <class Take>
Entry* FirstOf(Entries& entries, Take take) {
    for (Entry& each : entries) {
        if (take(each)) return &each;
    }
    return nullptr;
}

// The head for a stale condition or for a failed query.
Entry* HeadOfUnread(Entries& entries, const Entry& entry) {
    if (entry.found().object.adapter != kNoNumber) {
        if (Entry* const machine = FirstOf(entries, IsMachineUnread)) {
            const bool unread = entry.row->folds == Folds::kIntoUnreadable;
            if (entry.held->is_stale || unread) return machine;
        }
    }
    const auto takes = [&](Code code) {
        return FirstOf(entries, [&](const Entry& head) {
            return head.code() == code && &head != &entry && AreOnOneAdapter(head, entry);
        });
    };
    const bool unread = entry.row->folds == Folds::kIntoUnreadable;
    if (!entry.held->is_stale && !unread) return nullptr;
    if (entry.code() != Code::kAdapterGone) {
        if (Entry* const gone = takes(Code::kAdapterGone)) return gone;
    }
    if (entry.code() == Code::kAdapterGone || entry.code() == Code::kAdapterUnreadable) {
        return nullptr;
    }
    if (Entry* const unreadable = takes(Code::kAdapterUnreadable)) return unreadable;
    if (!unread || entry.code() == Code::kAnswerImplausible) return nullptr;
    const auto told = entry.found().values.find("number_of_code");
    const bool implausible = told != entry.found().values.end() && told->second == "is implausible";
    return implausible ? takes(Code::kAnswerImplausible) : nullptr;
}

Entry* HeadOfDisk(Entries& entries, const Entry& entry) {
    if (IsSignOfFailure(entry.code())) {
        Entry* const failed = FirstOf(entries, [&](const Entry& head) {
            return head.code() == Code::kDiskFailed &&
                   IsSameThing(head.found().object, entry.found().object);
        });
        if (failed != nullptr) return failed;
    }
    if (entry.code() != Code::kDiskMissing || EnclosureOf(entry).empty()) return nullptr;
    const auto missing = std::ranges::count_if(entries, [&](const Entry& each) {
        return each.code() == Code::kDiskMissing && EnclosureOf(each) == EnclosureOf(entry);
    });
    if (missing < 2) return nullptr;
    return FirstOf(entries, [&](const Entry& head) {
        return head.code() == Code::kEncGone && head.found().object.address == EnclosureOf(entry);
    });
}

// Entries are sorted, so the first head that fits is the worst.
Entry* HeadOf(Entries& entries, const Entry& entry) {
    if (Entry* const head = HeadOfUnread(entries, entry)) return head;
    if (entry.row->folds == Folds::kIntoVirtualDisk) {
        if (Entry* const head = HeadOfDisk(entries, entry)) return head;
        return FirstOf(entries, [&](const Entry& head) {
            return IsArrayState(head) && (Links(head, entry.found().object.identity) ||
                                          Links(entry, head.found().object.identity));
        });
    }
    if (entry.row->folds == Folds::kIntoBattery) {
        return FirstOf(entries, [&](const Entry& head) {
            return IsBattery(head) && AreOnOneAdapter(head, entry);
        });
    }
    if (entry.found().object.kind == Kind::kElement) {
        return FirstOf(entries, [&](const Entry& head) {
            return head.code() == Code::kEncGone &&
                   head.found().object.address == EnclosureOf(entry);
        });
    }
    return nullptr;
}

// ---- Sentences ----

void AddTimes(Values& values, const Held& held, std::int64_t real, bool is_watched) {
    const std::int64_t lasted = real - held.first_seen;
    const bool told = is_watched && held.first_seen != 0 && lasted >= kToldAfter;
    values.insert_or_assign("ago", told ? " " + DurationText(lasted) + " ago" : "");
    values.try_emplace("for", told ? " for " + DurationText(lasted) : "");
}

std::string PhraseOf(const Entry& entry, std::int64_t real, bool is_watched) {
    Values values = entry.found().values;
    AddTimes(values, *entry.held, real, is_watched);
    return Fill(entry.row->phrase, values);
}

bool IsDiskState(const Entry& entry) { return entry.row->family == Family::kDisk; }
bool IsHindrance(const Entry& entry) { return entry.row->family == Family::kHindrance; }

// Names the failed members and how they failed; a lost member without a condition of its own holds
// no valid data.
std::string CauseText(const Entry& head, const Entries& entries, std::int64_t real,
                      bool is_watched) {
    std::vector<std::string> texts;
    std::size_t unnamed = 0;
    for (const LostMember& lost : head.found().lost) {
        const auto cause = std::ranges::find_if(entries, [&](const Entry& each) {
            return IsDiskState(each) && !lost.identity.empty() &&
                   each.found().object.identity == lost.identity;
        });
        if (cause != entries.end()) {
            texts.push_back(PhraseOf(*cause, real, is_watched));
        } else if (lost.address.empty()) {
            ++unnamed;
        } else {
            texts.push_back(lost.address + " holds no valid data");
        }
    }
    if (unnamed == 1) texts.emplace_back("a disk is gone");
    if (unnamed > 1) texts.push_back(std::to_string(unnamed) + " disks are gone");
    for (const Entry* const each : head.folded) {
        const bool lost = std::ranges::any_of(head.found().lost, [&](const LostMember& member) {
            return member.identity == each->found().object.identity;
        });
        if (lost || IsHindrance(*each) || each->row->phrase.empty()) continue;
        if (each->found().object.kind != Kind::kDisk) continue;
        texts.push_back(PhraseOf(*each, real, is_watched));
    }
    return texts.empty() ? "the controller tells no cause" : Listed(texts);
}

const Entry* HindranceOf(const Entry& head) {
    for (const Entry* const each : head.folded) {
        if (IsHindrance(*each)) return each;
    }
    return nullptr;
}

// A disk that was pulled out can be put back, and one that was set offline be set online; one that
// has failed does not come back. The disk may be folded into another virtual disk.
void AdviseOffline(Entry& head, const Entries& entries) {
    const auto lost = [&](Code code) {
        return std::ranges::find_if(entries, [&](const Entry& each) {
            return each.code() == code &&
                   std::ranges::any_of(head.found().lost, [&](const LostMember& member) {
                       return member.identity == each.found().object.identity;
                   });
        });
    };
    if (lost(Code::kDiskMissing) != entries.end()) return;
    if (const auto offline = lost(Code::kDiskOffline); offline != entries.end()) {
        head.condition.next_step = Fill(offline->row->next_step, offline->found().values);
        head.condition.command = FillCommand(offline->row->command, offline->found().values);
        return;
    }
    if (lost(Code::kDiskFailed) == entries.end()) return;
    head.condition.next_step = "Replace the failed disks and restore from a backup";
}

void AddNextStep(Entry& head, const Entries& entries, const Values& values) {
    Condition& condition = head.condition;
    const auto own = values.find(kNextStep);
    condition.next_step =
        own == values.end() ? Fill(head.row->next_step, values) : Fill(own->second, values);
    condition.command = FillCommand(head.row->command, values);
    if (head.code() == Code::kVdOffline) AdviseOffline(head, entries);
    const bool asks_for_replacement =
        head.code() == Code::kVdNoRedundancy || head.code() == Code::kVdRedundancyReduced;
    if (!asks_for_replacement) return;
    const auto lost = values.find("lost");
    const bool named = lost != values.end() && !lost->second.empty();
    if (!named) condition.next_step = "Put a disk in that takes the lost one's place";
    const Entry* from = HindranceOf(head);
    if (from == nullptr) {
        const auto cause =
            std::ranges::find_if(head.folded, [](const Entry* each) { return IsDiskState(*each); });
        const bool other = cause != head.folded.end() && (*cause)->code() != Code::kDiskFailed;
        if (other) from = *cause;
    }
    if (from == nullptr) return;
    const std::vector<std::string> command = FillCommand(from->row->command, from->found().values);
    if (from->code() == Code::kSpareNone && command.empty()) return;
    condition.command = command;
    condition.next_step = Fill(from->row->next_step, from->found().values);
    if (from->code() != Code::kSpareNone || !named) return;
    condition.otherwise = "replace " + lost->second;
    condition.next_step += ", or " + condition.otherwise;
}

void Say(Entry& entry, const Entries& entries, std::int64_t real, bool is_watched) {
    Condition& condition = entry.condition;
    Values values = entry.found().values;
    AddTimes(values, *entry.held, real, is_watched);
    values.try_emplace("c", IsArrayState(entry) || entry.row->family == Family::kDiskGroup
                                ? CauseText(entry, entries, real, is_watched)
                                : "");
    const Entry* const hindrance = HindranceOf(entry);
    values["h"] = hindrance == nullptr ? "" : "; " + PhraseOf(*hindrance, real, is_watched);
    if (hindrance != nullptr) condition.hindrance = hindrance->code();
    for (const Entry* const each : entry.folded) {
        if (IsHindrance(*each) && each->found().object.kind == Kind::kVirtualDisk) continue;
        condition.causes.push_back(
            {each->code(), each->found().object.address, each->found().object.identity});
    }
    condition.sentence = Fill(entry.row->sentence, values);
    if (entry.held->is_stale) {
        condition.sentence += "; last seen " + TimeText(entry.held->last_seen);
    }
    if (entry.held->is_flapping) condition.sentence += "; it comes and goes";
    if (condition.level_is_set_here) condition.sentence += " (level set here)";
    const auto id = values.find("id");
    condition.label = condition.object.address;
    if (id != values.end()) {
        condition.label += id->second;
    } else if (!condition.object.name.empty()) {
        condition.label += (condition.label.empty() ? "" : " ") + condition.object.name;
    }
    if (IsHindrance(entry)) {
        const auto fits = values.find("fits");
        const bool told = fits != values.end() && fits->second.starts_with(": ");
        condition.detail = told ? fits->second.substr(2) : PhraseOf(entry, real, is_watched);
    }
    AddNextStep(entry, entries, values);
}

// A disk in several virtual disks folds into the worst of them, but its text names all.
void NameAllHeads(Entry& entry, Entries& entries) {
    if (entry.into == nullptr || entry.found().object.kind != Kind::kDisk) return;
    std::vector<std::string> heads;
    for (const Entry& each : entries) {
        if (IsArrayState(each) && Links(each, entry.found().object.identity)) {
            heads.push_back(each.found().object.address);
        }
    }
    if (heads.size() > 1) entry.condition.sentence += "; it concerns " + Listed(heads);
}

// ---- Composing the overview ----

Condition ConditionOf(const Held& held, const State& state, const Settings& settings,
                      std::int64_t real, bool is_watched) {
    const Row& row = RowOf(held.found.code);
    Condition condition;
    condition.code = held.found.code;
    condition.level = LevelOf(row);
    const auto level = settings.levels.find(condition.code);
    if (level != settings.levels.end() && level->second != condition.level && MayBeLowered(row)) {
        condition.level = level->second;
        condition.level_is_set_here = true;
    }
    condition.object = held.found.object;
    const bool is_dated = is_watched || held.since_is == SinceIs::kEvent;
    condition.since = is_dated ? held.since : 0;
    condition.since_is = held.since_is;
    condition.first_seen = is_watched ? held.first_seen : 0;
    condition.last_seen = is_watched ? held.last_seen : 0;
    condition.count = held.found.count;
    condition.is_stale = held.is_stale;
    condition.is_flapping = held.is_flapping;
    condition.acknowledged = held.acknowledged;
    condition.event = held.event;
    for (const Silence& silence : state.silences) {
        const bool meant =
            (!silence.code || *silence.code == condition.code) &&
            (silence.identity.empty() || silence.identity == condition.object.identity);
        if (!meant) continue;
        const std::int64_t until = real + (silence.until - state.now);
        condition.silenced_until = std::max(condition.silenced_until.value_or(until), until);
    }
    return condition;
}

void Count(Overview& overview) {
    overview.overall.reset();
    overview.critical = overview.unknown = overview.warning = overview.info = 0;
    overview.acknowledged = overview.silenced = 0;
    for (const Condition& head : overview.heads) {
        if (head.acknowledged) ++overview.acknowledged;
        if (head.silenced_until) ++overview.silenced;
        if (!overview.overall || head.level < *overview.overall) overview.overall = head.level;
        switch (head.level) {
            case Level::kCritical:
                ++overview.critical;
                break;
            case Level::kUnknown:
            case Level::kMinorUnknown:
                ++overview.unknown;
                break;
            case Level::kWarning:
                ++overview.warning;
                break;
            case Level::kInfo:
                ++overview.info;
                break;
        }
    }
}

// ---- What somebody else has found ----

bool IsOf(const Condition& left, const Condition& right) {
    return left.object.kind == right.object.kind && left.object.address == right.object.address;
}

bool IsUnder(const Condition& head, const Condition& found) {
    const Row& row = RowOf(found.code);
    const bool is_array = RowOf(head.code).family == Family::kVirtualDisk;
    if (row.family == Family::kHindrance) return is_array && IsOf(head, found);
    if (IsSignOfFailure(found.code) && head.code == Code::kDiskFailed) return IsOf(head, found);
    return is_array && std::ranges::any_of(
                           head.folded, [&](const Condition& each) { return IsOf(each, found); });
}

// What was last seen before it could not be read belongs to what cannot be read.
bool HidesUnread(const Condition& head, const Condition& found) {
    if (!found.is_stale || found.object.adapter == kNoNumber) return false;
    if (head.code == Code::kControllerUnreachable || head.code == Code::kControllerDenied) {
        return true;
    }
    return head.code == Code::kAdapterUnreadable && head.object.adapter == found.object.adapter;
}

Condition* HeadAmong(std::vector<Condition>& heads, const Condition& found) {
    const bool folds = RowOf(found.code).folds == Folds::kIntoVirtualDisk;
    const auto head = std::ranges::find_if(heads, [&](const Condition& each) {
        return HidesUnread(each, found) || (folds && IsUnder(each, found));
    });
    return head == heads.end() ? nullptr : &*head;
}

void PutUnder(Condition& head, const Condition& found) {
    head.folded.push_back(found);
    std::ranges::stable_sort(head.folded, ComesBefore);
    const bool hinders = RowOf(found.code).family == Family::kHindrance;
    if (!hinders || RowOf(head.code).family != Family::kVirtualDisk) return;
    if (head.hindrance && RowOf(*head.hindrance).rank < RowOf(found.code).rank) return;
    head.hindrance = found.code;
    head.sentence += "; " + found.sentence;
    head.next_step = found.next_step;
    head.command = found.command;
    head.otherwise.clear();
}

void Lend(Condition& condition, const std::vector<Condition>& watched) {
    const auto same = std::ranges::find_if(watched, [&](const Condition& each) {
        return each.code == condition.code && IsOf(each, condition) &&
               each.object.name == condition.object.name &&
               each.object.serial == condition.object.serial;
    });
    if (same == watched.end()) return;
    condition.since = same->since;
    condition.since_is = same->since_is;
    condition.first_seen = same->first_seen;
    condition.last_seen = same->last_seen;
    condition.acknowledged = same->acknowledged;
    condition.silenced_until = same->silenced_until;
}

// ---- Counting ----

void CountVirtualDisks(Counts& counts, const Answers& answers) {
    counts.virtual_disks = counts.offline = counts.unprotected = counts.reduced = 0;
    for (const Adapter& adapter : answers.adapters) {
        *counts.virtual_disks += adapter.virtual_disks.size();
        for (const VirtualDisk& each : adapter.virtual_disks) {
            const auto code = StateCodeOf(adapter, each);
            if (code == Code::kVdOffline) ++*counts.offline;
            if (code == Code::kVdNoRedundancy || code == Code::kVdRebuildingUnprotected ||
                code == Code::kVdDirtyDegraded) {
                ++*counts.unprotected;
            }
            if (code == Code::kVdRedundancyReduced || code == Code::kVdRebuilding) {
                ++*counts.reduced;
            }
        }
    }
}

void CountDisks(Counts& counts, const Answers& answers) {
    using hxcodes::DiskBit;
    constexpr unsigned kThere = DiskBit::kOnline | DiskBit::kForeign | DiskBit::kFailed;
    counts.disks = counts.spares = counts.failed = counts.missing = counts.predicted = 0;
    for (const Adapter& adapter : answers.adapters) {
        *counts.disks += adapter.disks.size();
        for (const Disk& each : adapter.disks) {
            const bool gone =
                (each.status & DiskBit::kUnavailable) != 0 && (each.status & kThere) == 0;
            if ((each.status & DiskBit::kFailed) != 0) ++*counts.failed;
            if (gone) ++*counts.missing;
            if (IsReadySpare(each)) ++*counts.spares;
            if (each.smart_alarm == true) ++*counts.predicted;
        }
    }
}

}  // namespace

bool ComesBefore(const Condition& left, const Condition& right) {
    const auto key = [](const Condition& each) {
        return std::tuple(each.silenced_until.has_value(), RankOf(each), each.object.adapter,
                          each.object.kind, each.object.id, each.object.element,
                          std::string_view(each.object.identity));
    };
    return key(left) < key(right);
}

Overview OverviewOf(const State& state, const Settings& settings, std::int64_t real,
                    bool is_watched) {
    Entries entries;
    Overview overview;
    for (const Held& held : state.held) {
        if (!held.is_shown) continue;
        if (settings.off.contains(held.found.code)) {
            ++overview.off;
            continue;
        }
        Entry& entry = entries.emplace_back();
        entry.held = &held;
        entry.row = &RowOf(held.found.code);
        entry.condition = ConditionOf(held, state, settings, real, is_watched);
    }
    std::ranges::sort(entries, [](const Entry& left, const Entry& right) {
        return ComesBefore(left.condition, right.condition);
    });
    for (Entry& entry : entries) entry.into = HeadOf(entries, entry);
    for (Entry& entry : entries) {
        while (entry.into != nullptr && entry.into->into != nullptr) {
            entry.into = entry.into->into;
        }
        if (entry.into != nullptr) entry.into->folded.push_back(&entry);
    }
    for (Entry& entry : entries) Say(entry, entries, real, is_watched);
    for (Entry& entry : entries) NameAllHeads(entry, entries);
    for (Entry& entry : entries) {
        if (entry.into != nullptr) continue;
        Condition& head = entry.condition;
        for (Entry* const folded : entry.folded) {
            head.folded.push_back(std::move(folded->condition));
        }
        overview.heads.push_back(std::move(head));
    }
    Count(overview);
    return overview;
}

Overview WithFound(Overview overview, const std::vector<Condition>& found) {
    std::vector<Condition> heads;
    for (const Condition& each : found) {
        Condition* const head = HeadAmong(overview.heads, each);
        if (head == nullptr) {
            heads.push_back(each);
        } else {
            PutUnder(*head, each);
        }
    }
    overview.heads.insert(overview.heads.end(), heads.begin(), heads.end());
    std::ranges::stable_sort(overview.heads, ComesBefore);
    Count(overview);
    return overview;
}

Overview WithWatched(Overview overview, const std::vector<Condition>& watched) {
    for (Condition& head : overview.heads) {
        Lend(head, watched);
        for (Condition& folded : head.folded) Lend(folded, watched);
    }
    std::ranges::stable_sort(overview.heads, ComesBefore);
    Count(overview);
    return overview;
}

Overview WithoutSilenced(Overview overview) {
    std::erase_if(overview.heads,
                  [](const Condition& head) { return head.silenced_until.has_value(); });
    overview.is_whole = false;
    const std::uint64_t silenced = overview.silenced;
    Count(overview);
    overview.silenced = silenced;  // they are left out and still told
    return overview;
}

Counts CountsOf(const Answers& answers) {
    Counts counts;
    if (!answers.machine.IsRead() || answers.adapters.empty()) return counts;
    counts.adapters = answers.adapters.size();
    const auto all_read = [&](Query Adapter::*query) {
        return std::ranges::all_of(
            answers.adapters, [&](const Adapter& adapter) { return (adapter.*query).IsRead(); });
    };
    if (all_read(&Adapter::virtual_disks_query)) CountVirtualDisks(counts, answers);
    if (!all_read(&Adapter::disks_query)) return counts;
    CountDisks(counts, answers);
    if (!all_read(&Adapter::smart)) counts.predicted.reset();
    return counts;
}

}  // namespace hxconditions
