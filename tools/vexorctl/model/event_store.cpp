#include "model/event_store.h"

#include <algorithm>
#include <utility>

#include "codes/code_table.h"
#include "codes/event.h"
#include "codes/event_class.h"
#include "codes/event_sentence.h"
#include "common/address.h"
#include "common/event_object.h"
#include "model/event_catalogue.h"
#include "model/event_store_file.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_record.h"

namespace vexorctl {

namespace {

// asctime's form has this many characters, then a blank.
constexpr std::size_t kTimeLength = 25;

using EventQuery = calls::VX_HX_EVT_GetEvents;

// The kind of object of an event whose code has no text, of which only the class is known.
ObjectKind KindOfClass(hxcodes::EventClass event_class) {
    switch (event_class) {
        case hxcodes::EventClass::kVirtualDisk:
            return ObjectKind::kVirtualDisk;
        case hxcodes::EventClass::kDisk:
            return ObjectKind::kDisk;
        case hxcodes::EventClass::kEnclosure:
            return ObjectKind::kEnclosure;
        case hxcodes::EventClass::kDiskGroup:
            return ObjectKind::kDiskGroup;
        case hxcodes::EventClass::kAdapter:
        case hxcodes::EventClass::kPortMultiplier:
        case hxcodes::EventClass::kExpander:
        case hxcodes::EventClass::kMetadata:
        case hxcodes::EventClass::kBadSectors:
        case hxcodes::EventClass::kSas:
        case hxcodes::EventClass::kBattery:
        case hxcodes::EventClass::kFlash:
        case hxcodes::EventClass::kCache:
        case hxcodes::EventClass::kMisc:
            break;
    }
    return ObjectKind::kAdapter;
}

// Events without a class of their own (a disk that is too small for a rebuild) name disks and
// virtual disks, too: the library's texts fix for every controller which.
ObjectKind KindOf(const hxcodes::EventFacts& event) {
    for (const hxcodes::EventRow& row : hxcodes::kEvents) {
        if (row.code == event.kind && !row.key.empty()) return vexortools::KindOf(row.subject);
    }
    const auto event_class = hxcodes::ToCode<hxcodes::EventClass>(hxcodes::ClassOf(event.kind));
    return event_class ? KindOfClass(*event_class) : ObjectKind::kAdapter;
}

// None when a part of it is unknown.
std::optional<hxcodes::EventFacts> FactsOf(const Record<fields::Event>& record) {
    const auto adapter = record[fields::Event::AdapterID];
    const auto device = record[fields::Event::DeviceID];
    const auto event_class = record[fields::Event::Class];
    const auto code = record[fields::Event::Code];
    if (!adapter || !device || !event_class || !code) return std::nullopt;
    hxcodes::EventFacts facts{.kind = static_cast<hxcodes::EventKind>(hxcodes::At(
                                  static_cast<HX_U16>(*event_class), static_cast<HX_U16>(*code))),
                              .adapter = static_cast<unsigned>(*adapter),
                              .device = static_cast<unsigned>(*device)};
    const auto params = record[fields::Event::Params].value_or(std::vector<std::uint64_t>());
    for (std::size_t i = 0; i < std::min(params.size(), facts.params.size()); ++i) {
        facts.params[i] = static_cast<HX_U32>(params[i]);
    }
    return facts;
}

std::string ObjectOf(const hxcodes::EventFacts& event, bool is_own) {
    Address address{.adapter = event.adapter, .kind = KindOf(event)};
    if (address.kind != ObjectKind::kAdapter) address.id = event.device;
    if (const auto element = hxcodes::ElementOf(event); element && is_own) {
        address.kind = ObjectKind::kElement;
        address.element = *element;
    }
    return address.Text();
}

std::string Trimmed(std::string text) {
    const std::size_t last = text.find_last_not_of(" \r\n");
    text.erase(last == std::string::npos ? 0 : last + 1);
    text.erase(0, text.find_first_not_of(' '));
    return text;
}

// With `is_own`, the event comes from a controller whose parameters are known.
StoredEvent MakeEvent(std::uint64_t sequence, Record<fields::Event> record, bool is_own) {
    StoredEvent event;
    event.sequence = sequence;
    const auto text = record[fields::Event::Event_];
    event.has_text = text.has_value();
    std::string line = text.value_or("");
    line.erase(0, kTimeLength);
    for (std::size_t part = 0; !line.empty(); ++part) {
        const std::size_t end = line.find('|');
        const std::string value = Trimmed(line.substr(0, end));
        line.erase(0, end == std::string::npos ? end : end + 1);
        if (part == 0) {
            event.key = value;
        } else if (part > 1 && !(line.empty() && value.empty())) {
            event.values.push_back(value);
        }
    }
    event.facts = FactsOf(record);
    if (event.facts) {
        event.object = ObjectOf(*event.facts, is_own);
        if (is_own) event.sentence = hxcodes::SentenceOf(*event.facts);
    }
    event.record = std::move(record);
    return event;
}

Request<EventQuery> RequestEvents(std::uint64_t n, std::uint64_t s, std::uint64_t e) {
    return {{EventQuery::n, n}, {EventQuery::s, s}, {EventQuery::e, e}};
}

constexpr int kTries = 3;  // of what a passing trouble was in the way of

bool IsOfZeros(const Record<fields::Event>& event) {
    return event[fields::Event::TimeStamp].value_or(1) == 0;
}

// Asks for events. Those that cannot be read are answered as zeros, like those whose writing has
// failed: what was in the way is told, or may have gone when they are asked for again.
auto AskForEvents(Controller& controller, std::uint64_t first, std::uint64_t count) {
    const auto request = RequestEvents(count, first, first + count - 1);
    auto answer = controller.Ask(request);
    for (int tried = 1; tried < kTries; ++tried) {
        if (!std::ranges::any_of(answer[EventQuery::Result::Event], IsOfZeros)) break;
        if (const auto reason = WhyNoEventStore(EventStorePath())) {
            throw Failure(Exit::kUnavailable, *reason);
        }
        answer = controller.Ask(request);
    }
    return answer;
}

}  // namespace

std::string StoredEvent::Text() const {
    if (sentence) return *sentence;
    const std::string phrase = FindEventPhrase(key);
    if (phrase.empty()) return Raw();
    return FillEventPhrase(phrase, object.value_or("?"), values);
}

std::string StoredEvent::Raw() const {
    std::string text = key;
    for (const std::string& value : values) text.append("|").append(value);
    return text;
}

std::string StoredEvent::Fingerprint() const {
    std::string text;
    for (const auto field : {fields::Event::TimeStamp, fields::Event::Class, fields::Event::Code,
                             fields::Event::AdapterID, fields::Event::DeviceID}) {
        const auto number = record[field];
        text += (number ? std::to_string(*number) : "?") + ".";
    }
    for (const std::uint64_t number :
         record[fields::Event::Params].value_or(std::vector<std::uint64_t>())) {
        text += std::to_string(number) + ".";
    }
    return text;
}

Extent AskExtent(Controller& controller) {
    for (int tried = 0; tried < kTries; ++tried) {
        const auto answer = controller.Ask(RequestEvents(0, 0, 0));
        const auto count = answer[EventQuery::Result::n];
        const auto first = answer[EventQuery::Result::s];
        if (answer.exit != Exit::kDone || !count || !first) {
            throw Failure(
                answer.exit == Exit::kDone ? Exit::kUnavailable : answer.exit,
                "the events cannot be read: " + (answer.exit == Exit::kDone
                                                     ? "the result does not tell how many there are"
                                                     : answer.complaint));
        }
        if (*count != 0) return {*first, *first + *count};
        // A store that cannot be read has the same extent as an empty one; but asked for an event,
        // it answers with one of zeros, where the empty one answers with none.
        const auto probe = controller.Ask(RequestEvents(1, 0, 0));
        const auto event = First(probe[EventQuery::Result::Event]);
        if (!event.IsThere()) return {*first, *first};
        if (IsOfZeros(event)) {
            // A file that is fine was being made or reset meanwhile: it has no events yet.
            if (const auto reason = WhyNoEventStore(EventStorePath())) {
                throw Failure(Exit::kUnavailable, *reason);
            }
            return {*first, *first};
        }
        // There is an event, so that the extent was not read.
    }
    throw Failure(
        Exit::kUnavailable,
        "the events cannot be read: the event store says that it is empty, and it is not");
}

std::vector<StoredEvent> ReadEvents(Controller& controller, std::uint64_t first,
                                    std::uint64_t count, std::uint64_t& page) {
    const bool is_own = &controller.codes().table() == &hxcodes::OwnCodes();
    std::vector<StoredEvent> events;
    while (count != 0) {
        const std::uint64_t asked = std::min(count, page);
        const auto answer = AskForEvents(controller, first, asked);
        if (answer.exit == Exit::kUndelivered && asked > 1) {
            page = asked / 2;
            continue;
        }
        // Asked for numbers below the oldest, the store answers from its oldest.
        const auto start = answer[EventQuery::Result::s];
        const auto got = answer[EventQuery::Result::n];
        if (answer.exit != Exit::kDone || !start || !got) {
            controller.Note(
                {.function = std::string(EventQuery::kName),
                 .message = "event " + std::to_string(first) + ": " +
                            (answer.exit == Exit::kDone ? "the result does not tell its number"
                                                        : answer.complaint)},
                Exit::kRefused);
            ++first;
            --count;
            continue;
        }
        std::uint64_t sequence = *start;
        for (auto& record : answer[EventQuery::Result::Event]) {
            events.push_back(MakeEvent(sequence++, std::move(record), is_own));
        }
        if (*got == 0) break;
        const std::uint64_t taken = std::max(sequence, first + 1) - first;
        first += taken;
        count -= std::min(count, taken);
    }
    return events;
}

}  // namespace vexorctl
