// What vexorctl prints: results on standard output, one line per failure on standard error.
#pragma once

#include <stdexcept>
#include <string_view>

namespace vexorctl {

/// Standard output takes no more. Nothing further is sent to the controller: its results would be
/// lost.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Writes the result exactly as it stands, and one line end, and flushes, so that a failure's line
/// that follows on standard error stands behind it where both go to one place.
/// Throws OutputError.
void PrintResult(std::string_view result);

/// Writes the text as it stands, and flushes. Throws OutputError.
void PrintText(std::string_view text);

/// Writes "vexorctl: SUBJECT: MESSAGE" to standard error, or "vexorctl: MESSAGE" when the subject
/// is empty. It stays one line, whatever a file's or an object's name holds: it is Printable.
void ReportFailure(std::string_view subject, std::string_view message);

}  // namespace vexorctl
