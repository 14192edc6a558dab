#include "command_parser.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>

namespace hxsimctl {

void ParseWords(CLI::App& app, std::vector<std::string> words) {
    std::ranges::reverse(words);  // the parser takes them from the end
    try {
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) throw;  // help was asked for
        throw UsageError(error.what());
    }
}

}  // namespace hxsimctl
