#include "model/event_store.h"

#include <algorithm>

#include "common/address.h"
#include "model/event_catalogue.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/result_tree.h"

namespace vexorctl {

namespace {

// asctime's form has this many characters, then a blank.
constexpr std::size_t kTimeLength = 25;

// Classes whose DeviceID is the number of an object with an address.
enum EventClass { kVirtualDisk = 1, kDisk = 2, kEnclosure = 8, kDiskGroup = 13 };

std::string ObjectOf(const Value& record) {
    Address address{.adapter = static_cast<unsigned>(record.Number("AdapterID")),
                    .id = static_cast<unsigned>(record.Number("DeviceID"))};
    switch (record.Number("Class")) {
        case kVirtualDisk:
            address.kind = ObjectKind::kVirtualDisk;
            break;
        case kDisk:
            address.kind = ObjectKind::kDisk;
            break;
        case kEnclosure:
            address.kind = ObjectKind::kEnclosure;
            break;
        case kDiskGroup:
            address.kind = ObjectKind::kDiskGroup;
            break;
        default:
            address.id = 0;
    }
    return address.Text();
}

std::string Trimmed(std::string text) {
    const std::size_t last = text.find_last_not_of(" \r\n");
    text.erase(last == std::string::npos ? 0 : last + 1);
    text.erase(0, text.find_first_not_of(' '));
    return text;
}

StoredEvent MakeEvent(std::uint64_t sequence, Value record) {
    StoredEvent event;
    event.sequence = sequence;
    std::string line = record.Text("Event");
    line.erase(0, kTimeLength);
    for (std::size_t part = 0; !line.empty(); ++part) {
        const std::size_t end = line.find('|');
        const std::string text = Trimmed(line.substr(0, end));
        line.erase(0, end == std::string::npos ? end : end + 1);
        if (part == 0) {
            event.key = text;
        } else if (part > 1 && !(line.empty() && text.empty())) {
            event.values.push_back(text);
        }
    }
    event.object = ObjectOf(record);
    event.record = std::move(record);
    return event;
}

Fields Query(std::uint64_t n, std::uint64_t s, std::uint64_t e) {
    return {{"n", std::to_string(n)}, {"s", std::to_string(s)}, {"e", std::to_string(e)}};
}

}  // namespace

std::string StoredEvent::Text() const {
    const std::string phrase = FindEventPhrase(key);
    if (phrase.empty()) return Raw();
    return FillEventPhrase(phrase, object, values);
}

std::string StoredEvent::Raw() const {
    std::string text = key;
    for (const std::string& value : values) text.append("|").append(value);
    return text;
}

std::string StoredEvent::Fingerprint() const {
    std::string text;
    for (const char* field : {"TimeStamp", "Class", "Code", "AdapterID", "DeviceID"}) {
        text += std::to_string(record.Number(field)) + ".";
    }
    for (const std::uint64_t number : record.Numbers("Params"))
        text += std::to_string(number) + ".";
    return text;
}

Extent AskExtent(Controller& controller) {
    const Answer answer = controller.Ask({"VX_HX_EVT_GetEvents", Query(0, 0, 0)});
    if (answer.exit != Exit::kDone) {
        throw Failure(answer.exit, "the events cannot be read: " + answer.complaint);
    }
    const std::uint64_t count = answer.result.Number("n");
    if (count == 0) {
        // A store that cannot be read has the same extent as an empty one; but asked for an event,
        // it answers with one of zeros, where the empty one answers with none.
        const Answer probe = controller.Ask({"VX_HX_EVT_GetEvents", Query(1, 0, 0)});
        const Value* const event = probe.result.Find("Event");
        if (event != nullptr && event->Number("TimeStamp") == 0) {
            throw Failure(Exit::kUnavailable,
                          "the event store cannot be read; the event service makes it when it "
                          "stores the first event");
        }
    }
    const std::uint64_t first = answer.result.Number("s");
    return {first, first + count};
}

std::vector<StoredEvent> ReadEvents(Controller& controller, std::uint64_t first,
                                    std::uint64_t count, std::uint64_t& page) {
    std::vector<StoredEvent> events;
    while (count != 0) {
        const std::uint64_t asked = std::min(count, page);
        const Command command{"VX_HX_EVT_GetEvents", Query(asked, first, first + asked - 1)};
        Answer answer = controller.Ask(command);
        if (answer.exit == Exit::kUndelivered && asked > 1) {
            page = asked / 2;
            continue;
        }
        if (answer.exit != Exit::kDone) {
            controller.Note({.function = "VX_HX_EVT_GetEvents",
                             .message = "event " + std::to_string(first) + ": " + answer.complaint},
                            Exit::kRefused);
            ++first;
            --count;
            continue;
        }
        // Asked for numbers below the oldest, the store answers from its oldest.
        std::uint64_t sequence = answer.result.Number("s");
        const std::uint64_t got = answer.result.Number("n");
        for (Value& child : answer.result.children) {
            if (child.name == "Event") events.push_back(MakeEvent(sequence++, std::move(child)));
        }
        if (got == 0) break;
        const std::uint64_t taken = std::max(sequence, first + 1) - first;
        first += taken;
        count -= std::min(count, taken);
    }
    return events;
}

}  // namespace vexorctl
