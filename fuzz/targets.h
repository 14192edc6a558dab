// What is fuzzed. Each target feeds one input to the code and returns null, or what it found wrong;
// what the sanitizers find ends the process.
#pragma once

#include <cstddef>
#include <cstdint>

// The library ---------------------------------------------------------------------------------

/// A command text, and behind its NUL the bytes that the controller answers with.
const char* FuzzCommand(const std::uint8_t* data, std::size_t size);

/// A configuration file, of which every section is read.
const char* FuzzConfiguration(const std::uint8_t* data, std::size_t size);

/// The capacity of a new store, the two files of the event store, and operations on them.
const char* FuzzEventStore(const std::uint8_t* data, std::size_t size);

/// Events of 64 bytes each, whose texts are made.
const char* FuzzEventText(const std::uint8_t* data, std::size_t size);

/// An image's bytes and what the controller says while they are sent and received.
const char* FuzzImages(const std::uint8_t* data, std::size_t size);

/// A name, a password and the three databases of the host, with NULs between them.
const char* FuzzLogon(const std::uint8_t* data, std::size_t size);

/// Behind an even byte a version file, behind an odd one a log's name and a message.
const char* FuzzLogs(const std::uint8_t* data, std::size_t size);

/// An element's text, out of which numbers of every width are read.
const char* FuzzNumbers(const std::uint8_t* data, std::size_t size);

/// Calls of the document writer.
const char* FuzzWriter(const std::uint8_t* data, std::size_t size);

// The virtual controller and the tools --------------------------------------------------------

/// A result of the library.
const char* FuzzResult(const std::uint8_t* data, std::size_t size);

/// A scenario of hxsimctl.
const char* FuzzScenario(const std::uint8_t* data, std::size_t size);

/// Bytes that are put into a sound state file, each piece behind its place.
const char* FuzzStatePages(const std::uint8_t* data, std::size_t size);

/// Values that are put into the tables of a sound state file.
const char* FuzzStateRows(const std::uint8_t* data, std::size_t size);

/// A topology.
const char* FuzzTopology(const std::uint8_t* data, std::size_t size);
