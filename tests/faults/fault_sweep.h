// The sweep: a scenario is run once undisturbed, and then again for every call to the system that
// it makes, with that call failing, alone and with all that follow.
#pragma once

#include <string>
#include <vector>

/// What is run. Only `run` runs under faults; it allocates nothing of its own.
struct FaultScenario {
    const char* name;
    const char* usual;         // stands in the undisturbed outcome
    void (*prepare)();         // the same machine and files before each run
    void (*run)();             // the calls under test
    std::string (*outcome)();  // what they answered and left in files
    // Whether the outcome is one that the interface documents for trouble of this kind; `usual` is
    // the undisturbed one, which always is.
    bool (*is_documented)(int kind, const std::string& usual, const std::string& seen);
    void (*tidy)() = nullptr;  // gives back, without faults, what the run may keep
    long most = 100;           // calls of a kind that fail when not all are asked for
};

/// Runs the sweep, each kind of call in a process of its own, and reports what is wrong as failures
/// of the current test: an undocumented outcome, bytes or descriptors that stay, an end by a
/// signal, and a run afterwards that is not the usual one. Every call is made to fail when the
/// environment has FAULTS=all, and else at most `most` of a kind, chosen evenly.
void ExpectDocumentedUnderFaults(const FaultScenario& scenario);
