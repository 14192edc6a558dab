// vexorctl call NAME [field=value]...: builds the command's text and sends it.
#include <string>
#include <string_view>
#include <vector>

#include "arguments.h"
#include "commands.h"
#include "run_command.h"
#include "session.h"
#include "xml_text.h"

namespace {

void RequireName(std::string_view name) {
    if (!IsXmlName(name)) {
        throw UsageError("\"" + std::string(name) + "\" cannot be the name of an element");
    }
}

void AppendField(std::string& command, const std::string& argument) {
    const std::size_t equals = argument.find('=');
    if (equals == std::string::npos) {
        throw UsageError("\"" + argument + "\" is not of the form field=value");
    }
    const std::string field = argument.substr(0, equals);
    RequireName(field);
    std::string element;
    AppendXmlElement(element, field, std::string_view(argument).substr(equals + 1));
    if (!InspectXml(element).well_formed) {
        throw UsageError("the value of \"" + field +
                         "\" cannot be sent: it is not UTF-8 or holds control characters");
    }
    command += element;
}

std::string BuildCommand(const std::string& name, const std::vector<std::string>& fields) {
    RequireName(name);
    std::string command = "<" + name + " type=\"function\">";
    for (const std::string& field : fields) AppendField(command, field);
    return command + "</" + name + ">";
}

}  // namespace

void AddCall(CLI::App& app, Exit& exit) {
    CLI::App& command = *app.add_subcommand(
        "call", "Build a command from its fields, send it and print its result");
    const CLI::Option& name = *command.add_option("NAME", "The function, as in HX_Adapter_GetInfo")
                                   ->type_name("")
                                   ->expected(1)
                                   ->required();
    const CLI::Option& fields =
        *command
             .add_option("field=value",
                         "Its fields, in order, as in AdapterID=255 or \"PDIDs=3 4 5\"")
             ->type_name("")
             ->expected(kAnyNumber);
    command.callback([&exit, &name, &fields] {
        const std::string function = ArgumentsOf(name).front();
        const std::string text = BuildCommand(function, ArgumentsOf(fields));
        Session session;
        exit = RunCommand(session, function, text);
    });
}
