// Answers as broken firmware gives them.
#pragma once

#include <cstddef>

#include "hxraid.h"

namespace hxsim {

/// Makes a page that has been filled into one of broken firmware: counts, indices and texts that
/// nobody asked for. Stays inside the header and `bytes` bytes of records.
void MakePageHostile(RequestHeader& header, void* records, std::size_t bytes);

/// Does the same to records that no header counts. Stays inside `bytes` bytes.
void MakeRecordHostile(void* record, std::size_t bytes);

}  // namespace hxsim
