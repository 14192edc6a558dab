// Plays back: answers calls from a tape, and knows no controller.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tape/hxt_call.h"
#include "tape/hxt_tape.h"

namespace hxtape {

class Player {
public:
    /// Reads the tape. With a folder the processes of one run go on where the last one stopped, and
    /// what is missed is noted there. Throws TapeError.
    Player(const std::string& tape, std::string folder);

    /// The next recorded answer to this call; the last one again where a call that only reads is
    /// made more often than it was recorded. Null when there is none.
    const TapeCall* Next(const std::string& function, const std::string& request, Effect effect);

    /// Notes a call that the tape does not answer.
    void Miss(const std::string& function, const std::string& request);

private:
    struct Sequence {
        std::vector<const TapeCall*> calls;
        std::uint32_t given = 0;  // without a folder
        std::size_t number = 0;   // its place in the file of positions
    };
    std::uint32_t TakePosition(Sequence& sequence) const;

    Tape tape_;
    std::string folder_;
    std::map<std::pair<std::string, std::string>, Sequence> sequences_;
};

}  // namespace hxtape
