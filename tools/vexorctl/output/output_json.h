// The JSON formats.
#pragma once

#include <string>

#include "output/output.h"

/// The whole report: {"schema":"vexorctl/1","command":...,"items":[...],"errors":[...]}.
std::string JsonDocument(const Report& report, const Style& style);

/// One row as one line, without a line end.
std::string JsonLine(const Report& report, std::size_t row, const Style& style);

/// One fault as one line: {"error":{...}}.
std::string JsonFaultLine(const Fault& fault);

/// The JSON schema of every command's document.
std::string JsonSchema();
