#include "model/ask_controller.h"

#include <algorithm>
#include <new>

#include "library_fields.h"
#include "model/failure.h"
#include "model/library_functions.h"
#include "model/xml_text.h"

namespace vexorctl {

namespace {

// The library takes up to 32767 at a time; this many of the largest record fill half a result.
constexpr unsigned kPage = 128;
constexpr std::uint64_t kListComplete = 65535;
constexpr std::uint64_t kByIndex = 1;

// All results have their status under the same name.
constexpr std::string_view kStatus = calls::HX_AdapterMute::Result::RetVal.name;

// The RetVal of these functions is a number but no status: the first is a count, the second a
// constant.
constexpr std::string_view kRetValIsNoStatus[] = {
    calls::HX_Adapter_GetCount::kName,
    calls::VX_HX_EVT_GetChangeCounters::kName,
};

// All paged lists have the same head.
using ListHead = calls::HX_LD_GetInfo;

Command PageOf(unsigned adapter, std::string_view function, std::uint64_t index, unsigned items) {
    return {function,
            {{ListHead::AdapterID.name, std::to_string(adapter)},
             {ListHead::requestType.name, std::to_string(kByIndex)},
             {ListHead::startingIndexOrId.name, std::to_string(index)},
             {ListHead::numRequested.name, std::to_string(items)}}};
}

// Where the next page starts; 0 when the result does not say.
std::uint64_t NextIndex(const Value& result) {
    return View<ListHead::Result>(&result,
                                  Presence::kThere)[ListHead::Result::RequestHeader]
                                                   [fields::RequestHeader::nextStartingIndex]
                                                       .value_or(0);
}

// The codes of a controller that serves nobody name no file and no cause.
void AppendTrouble(std::string& complaint) {
    if (const std::string trouble = ControllerTrouble(); !trouble.empty()) {
        complaint.append(": ").append(trouble);
    }
}

}  // namespace

std::optional<std::uint64_t> StatusOf(const Value& result) {
    if (std::ranges::find(kRetValIsNoStatus, result.name) != std::end(kRetValIsNoStatus)) return 0;
    const Value* const status = result.Find(kStatus);
    if (status != nullptr) return status->type == "string" ? 0 : status->Number();
    const FunctionRow* const function = FindFunction(result.name);
    if (function != nullptr && function->has_status) return std::nullopt;
    return 0;
}

std::string CommandText(const Command& command) {
    std::string text = "<";
    text.append(command.function).append(" type=\"function\">");
    for (const auto& [name, value] : command.values) AppendXmlElement(text, name, value);
    return text.append("</").append(command.function).append(">");
}

Session& Controller::session() {
    if (!session_) session_.emplace();
    return *session_;
}

void Controller::UseCodesFile(std::string path) {
    codes_path_ = std::move(path);
    codes();
}

const ControllerCodes& Controller::codes() {
    if (!codes_) {
        using Function = calls::HX_API_Version;
        codes_.emplace();  // Ask() needs codes already, for a refusal of this question
        const auto answer = Ask(Request<Function>{});
        // Every library has this function, so that something is wrong here; the codes' names would
        // be missing for no reason that anybody sees.
        if (answer.exit == Exit::kUndelivered) {
            codes_.reset();
            throw Failure(Exit::kUndelivered,
                          "which controller answers cannot be told: " + answer.complaint);
        }
        const auto identity = answer[Function::Result::RetVal];
        codes_.emplace(answer.exit == Exit::kDone ? identity.value_or("") : "", codes_path_);
    }
    return *codes_;
}

Fault Controller::FaultOf(const Command& command, const Answer& answer) {
    return {.function = std::string(command.function),
            .code = answer.status,
            .name = answer.status == 0 ? std::string()
                                       : std::string(codes().NameOfRefusal(answer.status)),
            .message = answer.complaint};
}

Answer Controller::Ask(const Command& command) {
    const std::string text = CommandText(command);
    const Reply reply = session().Send(text);
    Answer answer;
    switch (reply.outcome) {
        case Outcome::kNotParsed:
            // The library answers a want of memory alike.
            if (InspectXml(text).well_formed) throw std::bad_alloc();
            answer.exit = Exit::kUndelivered;
            answer.complaint = "a value holds what a command cannot hold";
            return answer;
        case Outcome::kDeclined:
            answer.exit = Exit::kUndelivered;
            answer.complaint = "the library has no function of that name, or no memory for it";
            return answer;
        case Outcome::kDidNotFit:
            answer.exit = Exit::kUndelivered;
            answer.complaint = "the result did not fit, or there was no memory for it";
            return answer;
        case Outcome::kDelivered:
            break;
    }
    ParsedResult parsed = ParseResult(reply.result);
    const std::optional<std::uint64_t> status = StatusOf(parsed.root);
    answer.status = status.value_or(0);
    answer.result = std::move(parsed.root);
    if (answer.status != 0) {
        answer.exit = codes().ExitOf(answer.status);
        answer.complaint = "refused: " + codes().RefusalText(answer.status);
        if (answer.exit == Exit::kUnavailable) AppendTrouble(answer.complaint);
    } else if (!parsed.well_formed) {
        answer.exit = Exit::kUndelivered;
        answer.complaint = "the result is not well-formed: line " + std::to_string(parsed.line) +
                           ": " + parsed.reason;
    } else if (!status) {
        answer.exit = Exit::kUndelivered;
        answer.complaint = "the result does not say whether it was done: it has no RetVal";
    }
    return answer;
}

void Controller::Note(Fault fault, Exit exit) {
    faults_.push_back(std::move(fault));
    exit_ = MoreSerious(exit_, exit);
}

std::optional<Fault> Controller::TakeBack(std::size_t faults, Exit exit) {
    exit_ = exit;
    if (faults_.size() <= faults) return std::nullopt;
    Fault first = std::move(faults_[faults]);
    faults_.resize(faults);
    return first;
}

void Controller::NoteAnswer(std::string_view address, std::string_view function,
                            const Answer& answer) {
    if (!chosen_ && codes().IsAbsence(answer.status)) return;
    Fault fault = FaultOf({function}, answer);
    fault.address = address;
    Note(std::move(fault), answer.exit == Exit::kUnavailable ? answer.exit : Exit::kRefused);
}

void Controller::NoteLeftOut(const RawSource& source, const std::string& item,
                             const std::string& reason) {
    Note({.address = source.address,
          .function = std::string(source.function),
          .name = "unreadable",
          .message = "the item at " + item + " was left out: " + reason},
         Exit::kRefused);
}

// The page ended inside its only item.
void Controller::NoteBrokenItem(const RawSource& source, std::uint64_t index,
                                const Answer& answer) {
    const Value* const broken = answer.result.Find(source.item);
    const auto id = broken == nullptr ? std::nullopt : source.id_of(*broken);
    NoteLeftOut(source,
                "index " + std::to_string(index) +
                    (id ? " (ID " + std::to_string(*id) + ")" : std::string()),
                answer.complaint);
}

void Controller::TakeItems(const RawSource& source, std::uint64_t index, Value& result,
                           RawList& list) {
    for (Value& each : result.children) {
        if (each.name != source.item) continue;
        if (const auto id = source.id_of(each)) {
            list.items.emplace_back(*id, std::move(each));
        } else {
            NoteLeftOut(source, "index " + std::to_string(index), "it has no ID");
            list.presence = Presence::kUnknown;
        }
        ++index;
    }
}

Controller::RawList Controller::ReadRawList(const RawSource& source) {
    RawList list;
    std::uint64_t index = 0;
    unsigned page = kPage;
    while (index != kListComplete) {
        Answer answer = Ask(PageOf(source.adapter, source.function, index, page));
        // Whether a page was cut shows only when it is parsed; a smaller one may fit, or may be
        // clear of an item that cannot be parsed.
        if (answer.exit == Exit::kUndelivered && page > 1) {
            page /= 2;
            continue;
        }
        const std::uint64_t next = NextIndex(answer.result);
        // The header stands before the items: when it was read, the item alone is at fault.
        if (answer.exit == Exit::kUndelivered && next > index) {
            NoteBrokenItem(source, index, answer);
            list.presence = Presence::kUnknown;
            page = kPage;
        } else if (answer.exit != Exit::kDone) {
            NoteAnswer(source.address, source.function, answer);
            list.presence = codes().IsAbsence(answer.status) && index == 0 ? Presence::kNotOffered
                                                                           : Presence::kUnknown;
            break;
        } else {
            TakeItems(source, index, answer.result, list);
        }
        if (next <= index) {
            Note({.address = source.address,
                  .function = std::string(source.function),
                  .message = "the list does not go on behind index " + std::to_string(index)},
                 Exit::kRefused);
            list.presence = Presence::kUnknown;
            break;
        }
        index = next;
    }
    return list;
}

// A controller that could not be opened has no adapters either. Whether it is open shows only when
// it is asked for one.
void Controller::RefuseIfNotOpen() {
    using Function = calls::HX_Adapter_GetInfo;
    const Request<Function> request{{Function::AdapterID, 0}};
    const auto answer = Ask(request);
    if (answer.exit != Exit::kUnavailable) return;
    const std::string trouble = ControllerTrouble();
    const std::string message =
        "the controller could not be opened: " + (trouble.empty() ? answer.complaint : trouble);
    Fault fault = FaultOf(request, answer);
    fault.message = message;
    throw Failure(Exit::kUnavailable, message, std::move(fault));
}

const std::vector<unsigned>& Controller::Adapters() {
    if (!adapters_) {
        using Function = calls::HX_Adapter_GetCount;
        const auto answer = Ask(Request<Function>{});
        const auto count = answer[Function::Result::RetVal];
        if (answer.exit != Exit::kDone || !count) {
            throw Failure(Exit::kUnavailable,
                          "the controller cannot be asked: " +
                              (answer.exit == Exit::kDone ? "it does not tell its adapters"
                                                          : answer.complaint));
        }
        if (*count == 0) RefuseIfNotOpen();
        adapters_.emplace();
        const std::uint64_t most = std::min<std::uint64_t>(*count, 255);
        for (unsigned adapter = 0; adapter < most; ++adapter) adapters_->push_back(adapter);
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

}  // namespace vexorctl
