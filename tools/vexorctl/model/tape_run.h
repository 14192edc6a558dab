// What a program needs that runs over a tape: the library that stands between, and what is asked of
// it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tape/hxt_tape.h"

namespace vexorctl {

using Variables = std::vector<std::pair<std::string, std::string>>;

/// Makes a new tape, readable by its owner alone. Throws Failure, also for a file that is there.
void MakeTape(const std::string& path, bool anonymous);

/// A new tape for the place `path`. Where it is to replace a file, it is beside that until Keep.
class NewTape {
public:
    /// Throws Failure, also for a file that is there unless it is to be replaced.
    NewTape(std::string path, bool anonymous, bool replace);

    /// Removes the tape unless it was kept; a file that it was to replace stays.
    ~NewTape();
    NewTape(const NewTape&) = delete;
    NewTape& operator=(const NewTape&) = delete;

    /// Where it is recorded.
    const std::string& file() const { return file_; }

    /// Puts it into its place. Throws Failure.
    void Keep();

private:
    std::string place_;
    std::string file_;
    bool is_kept_ = false;
};

/// Reads a tape. Throws Failure.
hxtape::Tape LoadTape(const std::string& path);

/// The programs of one run; they share a private folder, which goes with it.
class TapeRun {
public:
    /// Throws Failure when the library is not installed, or when this process is over a tape
    /// itself.
    TapeRun();
    ~TapeRun();
    TapeRun(const TapeRun&) = delete;
    TapeRun& operator=(const TapeRun&) = delete;

    const std::string& folder() const { return folder_; }

    /// What records on the tape that was made there. Throws Failure.
    Variables Recording(const std::string& tape, bool anonymous) const;

    /// What plays the tape back.
    Variables Replaying(const std::string& tape) const;

    /// Why the tape that was recorded is not whole; empty when it is.
    std::string Trouble() const;

    /// The calls that the tape had no answer to, each with its request, in their order.
    std::vector<std::string> Missed() const;

    /// Whether anything was asked of the tape that was played back.
    bool WasPlayed() const;

private:
    std::string folder_;
    std::string controller_;  // the library that would be used otherwise
    std::string library_;     // the folder of the one that stands between
};

}  // namespace vexorctl
