// The file of a tape: a head, and one line for each call of the controller library with its request
// and its answer. docs/man/vexorapi-tape.5 has its form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace hxtape {

inline constexpr std::size_t kMaxTape = std::size_t{256} << 20;  // bytes of a file that is read

// What vexorctl tells the library that stands between, by environment variables.
inline constexpr char kRecordVariable[] = "HXT_RECORD";          // the tape that is written
inline constexpr char kControllerVariable[] = "HXT_CONTROLLER";  // the library that is recorded
inline constexpr char kKeyVariable[] = "HXT_KEY";        // of the pseudonyms; only then anonymous
inline constexpr char kReplayVariable[] = "HXT_REPLAY";  // the tape that is played back
// A folder that the processes of one run share; it may be missing.
inline constexpr char kFolderVariable[] = "HXT_FOLDER";
inline constexpr char kPositionsFile[] = "/positions";  // how far each call's answers were given
inline constexpr char kMissedFile[] = "/missed";        // a line for each call without an answer
inline constexpr char kTroubleFile[] = "/trouble";      // why the tape is not whole

struct TapeCall {
    std::string function;
    std::string request{};  // bytes
    std::uint8_t status = 0;
    std::string answer{};  // bytes; of a call that failed, its reason as a text

    bool operator==(const TapeCall&) const = default;
};

struct Tape {
    std::int64_t recorded = 0;  // seconds since 1970
    bool anonymous = false;
    std::vector<TapeCall> calls;

    bool operator==(const Tape&) const = default;
};

/// A tape cannot be used; what() is the reason, with the line where there is one.
struct TapeError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The lines of a tape's head, and of one call.
std::string HeadText(std::int64_t recorded, bool anonymous);
std::string LineOf(const TapeCall& call);

/// Bytes as lower-case hexadecimal digits; none as "-".
std::string HexOf(std::string_view bytes);

/// The tape with that text. Throws TapeError.
Tape ParseTape(std::string_view text);

/// The tape in that file, which is a regular one of at most kMaxTape bytes. Throws TapeError.
Tape ReadTape(const std::string& path);

}  // namespace hxtape
