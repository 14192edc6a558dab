// Reads what a result says about its command.
#pragma once

#include <optional>
#include <string>
#include <string_view>

struct ResultSummary {
    std::string function;            // the name of the result's root element
    std::optional<unsigned> status;  // RetVal, where it is a status
    bool well_formed = false;
    unsigned long line = 0;  // where and why reading ended, when it is not well-formed
    std::string reason;
};

/// Reads the result to its end. A RetVal that is no status (a text, or a count) is left out; one
/// that stands before the place where a broken result breaks is there all the same.
/// Throws std::bad_alloc when the parser has no memory.
ResultSummary Summarize(std::string_view result);
