// How hxsimctl fails: the exit codes, and what is thrown on the way to them.
#pragma once

#include <stdexcept>
#include <string>

enum class Exit {
    kDone = 0,
    kRefused = 1,
    kUsage = 2,
    kNoObject = 3,
    kUnusable = 5,
};

/// A row of the closing text of --help.
struct ExitMeaning {
    Exit exit;
    const char* meaning;
};
inline constexpr ExitMeaning kExitMeanings[] = {
    {Exit::kDone, "done"},
    {Exit::kRefused, "refused, an expectation failed, or check found something"},
    {Exit::kUsage, "wrong usage, or a file that cannot be read"},
    {Exit::kNoObject, "the machine has no such object"},
    {Exit::kUnusable, "the state file or standard output cannot be used"},
};

/// The command fails with this exit code; what() says what, why, and what to do instead.
struct Failure : std::runtime_error {
    Failure(Exit how, const std::string& message) : std::runtime_error(message), exit(how) {}
    Exit exit;
};

struct UsageError : Failure {
    explicit UsageError(const std::string& message) : Failure(Exit::kUsage, message) {}
};

struct NoObject : Failure {
    explicit NoObject(const std::string& message) : Failure(Exit::kNoObject, message) {}
};

struct Refused : Failure {
    explicit Refused(const std::string& message) : Failure(Exit::kRefused, message) {}
};
