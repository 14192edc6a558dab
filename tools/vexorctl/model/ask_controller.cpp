#include "model/ask_controller.h"

#include <algorithm>

#include "codes/status.h"
#include "model/failure.h"
#include "model/xml_text.h"

namespace vexorctl {

namespace {

// The library takes up to 32767 at a time; this many of the largest record fill half a result.
constexpr unsigned kPage = 128;
constexpr std::uint64_t kListComplete = 65535;

// In these functions' results RetVal is a number, but a count and a constant instead of a status.
constexpr std::string_view kRetValIsNoStatus[] = {
    "HX_Adapter_GetCount",
    "VX_HX_EVT_GetChangeCounters",
};

Exit ExitOf(std::uint64_t status) {
    switch (status) {
        case 0:
            return Exit::kDone;
        case hxcodes::Status::kNotInitialized:
        case hxcodes::Status::kNoState:
        case hxcodes::Status::kNoMemory:
            return Exit::kUnavailable;
        case hxcodes::Status::kNoAdapter:
        case hxcodes::Status::kNoDisk:
        case hxcodes::Status::kNoBlock:
        case hxcodes::Status::kNoVirtualDisk:
        case hxcodes::Status::kNoDiskGroup:
        case hxcodes::Status::kNoEnclosure:
        case hxcodes::Status::kNoExpander:
        case hxcodes::Status::kNoPortMultiplier:
        case hxcodes::Status::kNoBattery:
            return Exit::kNoObject;
        default:
            return Exit::kRefused;
    }
}

// What an adapter simply does not have is nothing to complain about when nobody asked for it.
bool IsAbsence(std::uint64_t status) {
    return status == hxcodes::Status::kNotSupported || status == hxcodes::Status::kNoBattery;
}

std::string CountersText(const Answer& answer) {
    std::string text;
    const Value* const counters = answer.result.Find("ChangeCounters");
    if (counters == nullptr) return text;
    for (const Value& counter : counters->children) text += counter.text + " ";
    return text;
}

}  // namespace

std::uint64_t StatusOf(const Value& result) {
    const Value* const status = result.Find("RetVal");
    if (status == nullptr || status->type == "string") return 0;
    if (std::ranges::find(kRetValIsNoStatus, result.name) != std::end(kRetValIsNoStatus)) return 0;
    return result.Number("RetVal");
}

std::string CommandText(const Command& command) {
    std::string text = "<";
    text.append(command.function).append(" type=\"function\">");
    for (const auto& [name, value] : command.fields) AppendXmlElement(text, name, value);
    return text.append("</").append(command.function).append(">");
}

Fault FaultOf(const Command& command, const Answer& answer) {
    const hxcodes::StatusRow* const refusal =
        hxcodes::FindCode(hxcodes::kRefusals, static_cast<HX_U32>(answer.status));
    return {.function = std::string(command.function),
            .code = answer.status,
            .name = refusal == nullptr ? std::string() : std::string(refusal->name),
            .message = answer.complaint};
}

std::string RefusalText(std::uint64_t status) {
    const hxcodes::StatusRow* const refusal =
        hxcodes::FindCode(hxcodes::kRefusals, static_cast<HX_U32>(status));
    if (refusal == nullptr) return "code " + std::to_string(status);
    return std::string(refusal->sentence) + " (" + std::string(refusal->name) + ", code " +
           std::to_string(status) + ")";
}

Session& Controller::Opened() {
    if (!session_) session_.emplace();
    return *session_;
}

Answer Controller::Ask(const Command& command) {
    const std::string text = CommandText(command);
    const Reply reply = Opened().Send(text);
    Answer answer;
    switch (reply.outcome) {
        case Outcome::kNotParsed:
            answer.exit = Exit::kUndelivered;
            answer.complaint = "a value holds what a command cannot hold";
            return answer;
        case Outcome::kDeclined:
            answer.exit = Exit::kUndelivered;
            answer.complaint = "the library has no function of that name";
            return answer;
        case Outcome::kDidNotFit:
            answer.exit = Exit::kUndelivered;
            answer.complaint = "the result did not fit, or there was no memory for it";
            return answer;
        case Outcome::kDelivered:
            break;
    }
    ParsedResult parsed = ParseResult(reply.result);
    answer.result = std::move(parsed.root);
    answer.status = StatusOf(answer.result);
    if (answer.status != 0) {
        answer.exit = ExitOf(answer.status);
        answer.complaint = "refused: " + RefusalText(answer.status);
    } else if (!parsed.well_formed) {
        answer.exit = Exit::kUndelivered;
        answer.complaint = "the result is not well-formed: line " + std::to_string(parsed.line) +
                           ": " + parsed.reason;
    }
    return answer;
}

void Controller::Note(Fault fault, Exit exit) {
    faults_.push_back(std::move(fault));
    exit_ = MoreSerious(exit_, exit);
}

void Controller::NoteAnswer(std::string_view address, std::string_view function,
                            const Answer& answer) {
    if (!chosen_ && IsAbsence(answer.status)) return;
    Fault fault = FaultOf({function, {}}, answer);
    fault.address = address;
    Note(std::move(fault), answer.exit == Exit::kUnavailable ? answer.exit : Exit::kRefused);
}

std::optional<Value> Controller::Get(std::string_view address, const Command& command) {
    Answer answer = Ask(command);
    if (answer.exit == Exit::kDone) return std::move(answer.result);
    NoteAnswer(address, command.function, answer);
    return std::nullopt;
}

// The text is only half read where parsing ended, so the ID is told where it was whole.
void Controller::NoteUnreadable(std::string_view address, const ListSource& source,
                                std::uint64_t index, const Answer& answer) {
    std::string message = "the item at index " + std::to_string(index);
    const Value* const item = answer.result.Find(source.item);
    const std::string id = item == nullptr ? std::string() : item->Text(source.id);
    if (!id.empty()) message += " (ID " + id + ")";
    Note({.address = std::string(address),
          .function = std::string(source.function),
          .name = "unreadable",
          .message = message + " was left out: " + answer.complaint},
         Exit::kRefused);
}

std::vector<Value> Controller::List(unsigned adapter, const ListSource& source) {
    const std::string address = "a" + std::to_string(adapter);
    std::vector<Value> items;
    std::uint64_t index = 0;
    unsigned page = kPage;
    while (index != kListComplete) {
        const Command command{source.function,
                              {{"AdapterID", std::to_string(adapter)},
                               {"requestType", "1"},
                               {"startingIndexOrId", std::to_string(index)},
                               {"numRequested", std::to_string(page)}}};
        Answer answer = Ask(command);
        // Whether a page was cut shows only when it is parsed; a smaller one may fit, or may be
        // clear of an item that cannot be parsed.
        if (answer.exit == Exit::kUndelivered && page > 1) {
            page /= 2;
            continue;
        }
        const std::uint64_t next = answer.result.Number("RequestHeader/nextStartingIndex");
        // The header stands before the items: when it was read, the item alone is at fault.
        const bool item_is_unreadable = answer.exit == Exit::kUndelivered && next > index;
        if (item_is_unreadable) {
            NoteUnreadable(address, source, index, answer);
            page = kPage;
        } else if (answer.exit != Exit::kDone) {
            NoteAnswer(address, source.function, answer);
            break;
        } else {
            for (Value& each : answer.result.children) {
                if (each.name == source.item) items.push_back(std::move(each));
            }
        }
        if (next <= index) {
            Note({.address = address,
                  .function = std::string(source.function),
                  .message = "the list does not go on behind index " + std::to_string(index)},
                 Exit::kRefused);
            break;
        }
        index = next;
    }
    return items;
}

const std::vector<unsigned>& Controller::Adapters() {
    if (!adapters_) {
        const Answer answer = Ask({"HX_Adapter_GetCount", {}});
        if (answer.exit != Exit::kDone) {
            throw Failure(Exit::kUnavailable,
                          "the controller cannot be asked: " + answer.complaint);
        }
        adapters_.emplace();
        const std::uint64_t count = std::min<std::uint64_t>(answer.result.Number("RetVal"), 255);
        for (unsigned adapter = 0; adapter < count; ++adapter) adapters_->push_back(adapter);
    }
    return *adapters_;
}

const std::vector<unsigned>& Controller::Selected() { return selected_ ? *selected_ : Adapters(); }

void Controller::Select(const std::vector<unsigned>& adapters) {
    std::vector<unsigned> found;
    for (const unsigned adapter : adapters) {
        if (std::ranges::find(Adapters(), adapter) == Adapters().end()) {
            const std::string name = "a" + std::to_string(adapter);
            Note({.address = name,
                  .name = "no_adapter",
                  .message = "there is no adapter " + name + "; there are " +
                             std::to_string(Adapters().size())},
                 Exit::kNoObject);
        } else if (std::ranges::find(found, adapter) == found.end()) {
            found.push_back(adapter);
        }
    }
    selected_ = std::move(found);
    chosen_ = true;
}

void Controller::RememberCounters() {
    counters_ = CountersText(Ask({"VX_HX_EVT_GetChangeCounters", {}}));
}

bool Controller::CountersStand() {
    return !counters_ || *counters_ == CountersText(Ask({"VX_HX_EVT_GetChangeCounters", {}}));
}

}  // namespace vexorctl
