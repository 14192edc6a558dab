#include "output/streams.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "common/terminal_text.h"

namespace vexorctl {

void PrintResult(std::string_view result) {
    const bool written = std::fwrite(result.data(), 1, result.size(), stdout) == result.size() &&
                         std::fputc('\n', stdout) != EOF && std::fflush(stdout) == 0;
    if (!written) throw OutputError(std::strerror(errno));
}

void PrintText(std::string_view text) {
    const bool written =
        std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
    if (!written) throw OutputError(std::strerror(errno));
}

void ReportFailure(std::string_view subject, std::string_view message) {
    std::string line = "vexorctl: ";
    if (!subject.empty()) line.append(subject).append(": ");
    line += message;
    line = vexortools::Printable(line) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace vexorctl
