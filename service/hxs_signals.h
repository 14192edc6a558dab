// The real time and the real signals: SIGUSR1 checks in now, SIGHUP reads the settings again,
// SIGTERM and SIGINT end the loop.
#pragma once

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "descriptor.h"
#include "service/hxs_loop.h"

namespace hxservice {

class Signals : public Outside {
public:
    /// Blocks the signals, which arrive in Wait from now on; one that comes during a check-in
    /// waits for its end. Throws vexortools::Failure.
    Signals();
    Wake Wait(Duration longest) override;
    void WakeForChange(Descriptor changes) override { changes_ = std::move(changes); }
    Duration Now() override;
    hxconditions::Now Clocks() override;
    Duration Random(Duration most) override;

    /// The conditions' clocks stand at that time, in seconds since 1970; how much time has passed
    /// since an earlier look is the difference of the two.
    void SetClocks(std::int64_t real) { set_clock_ = real; }

    /// Wait ends when that descriptor is readable, too.
    void WakeFor(int descriptor) { others_.push_back(descriptor); }

private:
    Descriptor signals_;
    std::vector<int> others_;
    Descriptor changes_;
    std::string boot_id_;
    std::optional<std::int64_t> set_clock_;
    std::minstd_rand random_{std::random_device()()};
};

}  // namespace hxservice
