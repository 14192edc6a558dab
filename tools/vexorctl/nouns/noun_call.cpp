// vexorctl call NAME [field=value]...: builds the command's text, after a check against the
// function's own fields, and sends it.
#include <charconv>
#include <string>
#include <string_view>

#include "model/exit_code.h"
#include "model/failure.h"
#include "model/library_functions.h"
#include "model/xml_text.h"
#include "nouns/nouns.h"
#include "nouns/raw_command.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl::call_noun {

namespace {

std::string FieldNames(const FunctionRow& function) {
    std::string names;
    for (const FieldRow& field : function.fields) {
        names.append(names.empty() ? "" : ", ").append(field.name);
    }
    return names.empty() ? "none" : names;
}

const FieldRow& FindField(const FunctionRow& function, std::string_view name) {
    for (const FieldRow& field : function.fields) {
        if (field.name == name) return field;
    }
    throw UsageError(std::string(function.name) + " has no field \"" + std::string(name) +
                     "\"; its fields: " + FieldNames(function));
}

// The library takes anything that is no digit for a separator and cuts what is too large; here both
// are errors.
std::size_t CheckNumbers(const FieldRow& field, std::string_view value) {
    const std::uint64_t most = field.bits >= 64 ? UINT64_MAX : (std::uint64_t{1} << field.bits) - 1;
    const char* at = value.data();
    const char* const end = at + value.size();
    std::size_t count = 0;
    while (at != end) {
        if (*at == ' ') {
            ++at;
            continue;
        }
        std::uint64_t number = 0;
        const auto [stop, error] = std::from_chars(at, end, number);
        if (error == std::errc::invalid_argument || (stop != end && *stop != ' ')) {
            throw UsageError(std::string(field.name) + ": \"" + std::string(value) +
                             "\" is no number");
        }
        if (error != std::errc() || number > most) {
            throw UsageError(std::string(field.name) + ": " + std::string(at, stop) +
                             " is too large; the most is " + std::to_string(most));
        }
        ++count;
        at = stop;
    }
    return count;
}

void CheckValue(const FieldRow& field, std::string_view value) {
    if (field.kind == FieldRow::Kind::kText || field.kind == FieldRow::Kind::kWholeText) {
        if (value.size() > field.count) {
            throw UsageError(std::string(field.name) + ": the text has " +
                             std::to_string(value.size()) + " characters; the most is " +
                             std::to_string(field.count));
        }
        return;
    }
    const std::size_t most = field.kind == FieldRow::Kind::kNumbers ? field.count : 1;
    const std::size_t count = CheckNumbers(field, value);
    if (count > most) {
        throw UsageError(std::string(field.name) + ": " + std::to_string(count) +
                         " numbers; the most is " + std::to_string(most));
    }
}

void AppendField(const FunctionRow& function, std::string& command, const std::string& argument) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) {
        throw UsageError("\"" + argument + "\" is not of the form field=value");
    }
    const FieldRow& field = FindField(function, std::string_view(argument).substr(0, equals));
    const std::string_view value = std::string_view(argument).substr(equals + 1);
    std::string element;
    AppendXmlElement(element, field.name, value);
    if (!InspectXml(element).well_formed) {
        throw UsageError("the value of \"" + std::string(field.name) +
                         "\" cannot be sent: it is not UTF-8 or holds control characters");
    }
    CheckValue(field, value);
    command += element;
}

Exit RunCall(Invocation& invocation) {
    const std::string& name = invocation.targets().front();
    const FunctionRow* const function = FindFunction(name);
    if (function == nullptr) {
        throw UsageError("no function is named \"" + name + "\", letter case included");
    }
    std::string command = "<" + name + " type=\"function\">";
    for (std::size_t i = 1; i < invocation.targets().size(); ++i) {
        AppendField(*function, command, invocation.targets()[i]);
    }
    command += "</" + name + ">";
    return RunCommand(invocation.controller(), name, command);
}

constexpr OptionRow kOptions[] = {kControllerOption};

constexpr CommandRow kCommands[] = {
    {.noun = "call",
     .verb = "",
     .summary = "Build a command from its fields, send it and print its result",
     .target = Target::kFunction,
     .arity = Arity::kMany,
     .target_name = "NAME [field=value]",
     .options = kOptions,
     .examples = {"vexorctl call HX_Adapter_GetInfo AdapterID=0",
                  "vexorctl call HX_PD_GetMBRInfo HDCount=3 \"HDIDs=0 1 2\""},
     .run = RunCall,
     .note = "Any function of the library with any of its fields, in order; a field that is left "
             "out is 0. A field that the function does not have, a number too large for its "
             "width and a list too long are refused before anything is sent."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::call_noun
