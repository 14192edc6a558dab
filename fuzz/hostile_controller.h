// A controller library whose answers are the fuzzer's.
#pragma once

#include <cstddef>
#include <cstdint>

/// Lets every function of the scripted controller answer from these bytes, over and over, or with
/// zeros when there are none: codes, counts, pages and records as they come, whatever sense they
/// make. It keeps to the room that its caller gives it, and to nothing else. The bytes must live as
/// long as the calls.
void AnswerFrom(const std::uint8_t* bytes, std::size_t size);
