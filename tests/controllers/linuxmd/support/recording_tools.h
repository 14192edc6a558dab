// Programs in a recorded machine that note how they are run, and do to its files what mdadm and the
// kernel would do.
#pragma once

#include <string>

#include "controllers/linuxmd/support/recorded_machine.h"

class RecordingTools {
public:
    /// Puts mdadm and udevadm into the machine.
    explicit RecordingTools(const RecordedMachine& machine);

    /// Each run of mdadm so far, a line each, its paths as on the machine.
    std::string Runs() const;

    /// Makes runs of mdadm whose first or third argument is this one fail.
    void Fail(const std::string& first) const;

private:
    const RecordedMachine& machine_;
};
