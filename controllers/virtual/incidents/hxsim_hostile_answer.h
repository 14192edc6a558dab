// Answers like those of broken firmware.
#pragma once

#include <cstddef>

#include "hxraid.h"

namespace hxsim {

/// Corrupts a filled page as broken firmware does: wrong counts, indices and texts. Stays inside
/// the header and `bytes` bytes of records.
void MakePageHostile(RequestHeader& header, void* records, std::size_t bytes);

/// Corrupts records that have no header. Stays inside `bytes` bytes.
void MakeRecordHostile(void* record, std::size_t bytes);

}  // namespace hxsim
