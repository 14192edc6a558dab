// The library, from its initialisation to its shutdown.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vexorctl {

/// The library or its configuration cannot be used. what() is the reason, `subject` the file it is
/// about, or empty.
struct Unavailable : std::runtime_error {
    Unavailable(std::string about, const std::string& reason)
        : std::runtime_error(reason), subject(std::move(about)) {}
    std::string subject;
};

/// The path of the library's configuration file, which need not be there.
std::string ConfigurationPath();

/// The attributes that are set in the configuration file, called SECTION.ATTRIBUTE, in its order;
/// none when there is no such file. Throws Unavailable.
std::vector<std::pair<std::string, std::string>> ReadConfiguration();

/// Why the controller library last could not be used, as it says itself; empty when nothing was in
/// the way, or when the library is another maker's and does not tell.
std::string ControllerTrouble();

enum class Outcome {
    kDelivered,  // the result is there
    kDidNotFit,  // a function took the command, but its result is lost
    kDeclined,   // well-formed, but no function takes it
    kNotParsed,  // the library could not read the command
};

struct Reply {
    Outcome outcome;
    std::string_view result;  // the library's text; valid until the next Send
};

/// One per process: the library keeps its state process-wide.
class Session {
public:
    /// Checks the configuration file, then initialises the library. The library itself would
    /// silently ignore a broken file and work with other files than the configured ones. Throws
    /// Unavailable.
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Sends one command, which holds no NUL byte.
    Reply Send(const std::string& command);

private:
    std::unique_ptr<char[]> result_;
};

}  // namespace vexorctl
