#include "nouns/raw_command.h"

#include <algorithm>
#include <new>

#include "model/library_session.h"
#include "model/result_tree.h"
#include "model/xml_text.h"
#include "output/streams.h"

namespace vexorctl {

namespace {

std::string Malformed(unsigned long line, const std::string& reason) {
    return "malformed: " + std::to_string(line) + ": " + reason;
}

Exit ReportNul(std::string_view subject, const std::string& command, std::size_t position) {
    const auto nul = command.begin() + static_cast<std::ptrdiff_t>(position);
    const auto line = 1 + std::count(command.begin(), nul, '\n');
    ReportFailure(subject, Malformed(static_cast<unsigned long>(line),
                                     "NUL byte, where the library would stop reading"));
    return Exit::kUndelivered;
}

Exit ReportNotParsed(std::string_view subject, const std::string& command) {
    const XmlInspection inspection = InspectXml(command);
    // The command itself is valid, so the library had no memory for it.
    if (inspection.well_formed) throw std::bad_alloc();
    if (inspection.too_many_declarations) {
        ReportFailure(subject, "document type with more than " + std::to_string(kMaxDeclarations) +
                                   " declarations");
    } else {
        ReportFailure(subject, Malformed(inspection.line, inspection.reason));
    }
    return Exit::kUndelivered;
}

Exit ReportDeclined(std::string_view subject, const std::string& command) {
    const XmlInspection inspection = InspectXml(command);
    if (inspection.root_is_function) {
        ReportFailure(subject, "declined: no function is named \"" + inspection.root +
                                   "\"; check the root element's name, letter case included");
    } else {
        ReportFailure(subject, "declined: check the root element \"" + inspection.root +
                                   "\": it lacks the attribute type=\"function\"");
    }
    return Exit::kUndelivered;
}

Exit PrintDelivered(Controller& controller, std::string_view subject, std::string_view result) {
    PrintResult(result);
    const ParsedResult parsed = ParseResult(result);
    const std::optional<std::uint64_t> status = StatusOf(parsed.root);
    Exit exit = Exit::kDone;
    if (status.value_or(0) != 0) {
        ReportFailure(subject, "refused: " + parsed.root.name + " answered " +
                                   controller.codes().RefusalText(*status));
        exit = MoreSerious(exit, Exit::kRefused);
    }
    if (!status && parsed.well_formed) {
        ReportFailure(subject, "result does not say whether it was done: it has no RetVal");
        exit = MoreSerious(exit, Exit::kUndelivered);
    }
    // A result can be broken: the library cuts it where its document is full, and does not escape
    // some texts.
    if (!parsed.well_formed) {
        ReportFailure(subject, "result is not well-formed: " + std::to_string(parsed.line) + ": " +
                                   parsed.reason);
        exit = MoreSerious(exit, Exit::kUndelivered);
    }
    return exit;
}

}  // namespace

Exit RunCommand(Controller& controller, std::string_view subject, const std::string& command) {
    if (command.empty()) {
        ReportFailure(subject, "empty command");
        return Exit::kUndelivered;
    }
    if (const std::size_t nul = command.find('\0'); nul != std::string::npos) {
        return ReportNul(subject, command, nul);
    }
    const Reply reply = controller.session().Send(command);
    switch (reply.outcome) {
        case Outcome::kNotParsed:
            return ReportNotParsed(subject, command);
        case Outcome::kDeclined:
            return ReportDeclined(subject, command);
        case Outcome::kDidNotFit:
            ReportFailure(subject, "result did not fit, or there was no memory for it");
            return Exit::kUndelivered;
        case Outcome::kDelivered:
            break;
    }
    return PrintDelivered(controller, subject, reply.result);
}

}  // namespace vexorctl
