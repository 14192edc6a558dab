// A library and a controller that answer as a test says, and a log that keeps its lines.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"
#include "service/hxs_log.h"
#include "service/hxs_source.h"

class KeptLog : public hxservice::Log {
public:
    void Say(const std::string& line) override { lines.push_back(line); }
    std::vector<std::string> lines;
};

/// Has queued events, which CheckIn moves into a store that holds `capacity` of them.
class ScriptedSource : public hxservice::Source {
public:
    unsigned adapters = 1;
    std::string trouble;     // of the controller; empty: it answers
    std::string closed;      // why the store cannot be written; empty: it can
    std::string unreadable;  // why the store cannot be read; empty: it can
    hxconditions::Store look = GoodStore();
    std::uint64_t capacity = 1000;
    std::vector<std::string> queue;
    std::vector<unsigned> check_ins;  // with how many adapters
    std::map<std::uint64_t, std::string> store;
    std::uint64_t next = 0;
    hxconditions::Event event;      // each of the events is such a one
    hxconditions::Answers answers;  // of the machine
    hxservice::Facts facts;
    int looks = 0;

    static hxconditions::Store GoodStore() {
        return {.state = hxconditions::Store::State::kGood,
                .path = "/db/vx_hx_raid.ev",
                .folder = "/db",
                .reason = ""};
    }
    void ResetStore() {
        store.clear();
        next = 0;
    }

    unsigned CountAdapters() override {
        if (!trouble.empty()) throw hxservice::SourceError(trouble);
        return adapters;
    }
    std::optional<std::string> WhyStoreIsClosed(unsigned /*adapters*/) override {
        return closed.empty() ? std::nullopt : std::optional(closed);
    }
    void CheckIn(unsigned count) override {
        check_ins.push_back(count);
        for (std::string& text : queue) store[next++] = std::move(text);
        queue.clear();
        while (store.size() > capacity) store.erase(store.begin());
    }
    hxconditions::Store LookAtStore() override { return look; }
    hxservice::StoreExtent ReadExtent() override {
        if (!unreadable.empty()) throw hxservice::SourceError(unreadable);
        return {store.empty() ? next : store.begin()->first, next};
    }
    std::vector<hxservice::StoredEvent> ReadEvents(std::uint64_t first,
                                                   std::uint64_t end) override {
        std::vector<hxservice::StoredEvent> events;
        for (std::uint64_t number = first; number < end; ++number) {
            events.push_back({number, "info", store.at(number), event});
        }
        return events;
    }
    hxconditions::Answers LookAtMachine() override {
        ++looks;
        return answers;
    }
    hxservice::Facts FactsOfLastLook() override { return facts; }
    Descriptor WatchForChanges() override { return {}; }
};
