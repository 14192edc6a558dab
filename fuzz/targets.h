// What is fuzzed. Each target feeds one input to the library and returns null, or what it found
// wrong; what the sanitizers find ends the process.
#pragma once

#include <cstddef>
#include <cstdint>

/// A command text, and behind its NUL the bytes that the controller answers with.
const char* FuzzCommand(const std::uint8_t* data, std::size_t size);

/// A configuration file, of which every section is read.
const char* FuzzConfiguration(const std::uint8_t* data, std::size_t size);

/// An element's text, out of which numbers of every width are read.
const char* FuzzNumbers(const std::uint8_t* data, std::size_t size);
