// Sinks that keep what is sent to them and answer as a test says.
#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "service/hxs_deliverer.h"

class ScriptedDeliverer : public hxservice::Deliverer {
public:
    struct Sent {
        std::string sink;
        vexortools::Duration at;
        hxservice::Letter letter;
    };
    std::vector<Sent> letters;
    std::map<std::string, std::string> errors;  // by sink: why it fails
    bool hangs = false;                         // deliveries do not end
    bool begins = true;                         // failed ones may have arrived
    vexortools::Duration wait{0};               // what a receiver asks for

    void Start(const hxservice::SinkSettings& sink, const hxservice::Letter& letter,
               vexortools::Duration now) override {
        letters.push_back({sink.name, now, letter});
        if (!hangs) ended_.push_back({sink.name, begins, errors[sink.name], "", false, wait});
    }
    std::vector<hxservice::Delivery> TakeEnded(vexortools::Duration /*now*/) override {
        return std::exchange(ended_, {});
    }
    std::optional<vexortools::Duration> Due() const override {
        return ended_.empty() ? std::nullopt : std::optional(vexortools::Duration(0));
    }

private:
    std::vector<hxservice::Delivery> ended_;
};

inline hxservice::SinkSettings SinkNamed(const std::string& name) {
    hxservice::SinkSettings sink;
    sink.name = name;
    sink.kind = hxservice::SinkKind::kCommand;
    sink.command = {"/bin/true"};
    return sink;
}
