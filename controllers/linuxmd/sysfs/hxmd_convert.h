// Converts the texts of attributes. A text that does not have the kernel's form gives an unknown
// value.
#pragma once

#include <optional>
#include <string_view>

#include "model/hxmd_machine.h"

namespace hxmd {

/// The text without surrounding blanks and line end.
std::string_view Trimmed(std::string_view text);

/// A decimal number; everything else, also "none", is unknown.
Number ToNumber(std::string_view text);
/// A hexadecimal number after "0x".
Number ToAddress(std::string_view text);
/// The text; unknown when empty.
Text ToText(std::string_view text);
/// The serial number in SCSI's vital product data page 0x80, after its header of four bytes.
Text ToSerialPage(std::string_view bytes);
/// The 32 digits of a UUID in lower case, however they are grouped.
Text ToUuid(std::string_view text);

std::optional<ArrayState> ToArrayState(std::string_view text);
std::optional<SyncAction> ToSyncAction(std::string_view text);
std::optional<Completed> ToCompleted(std::string_view text);
std::optional<DiskCount> ToDiskCount(std::string_view text);
std::optional<MemberState> ToMemberState(std::string_view text);
/// The interface's level code of "raid5" and the like; unknown for arrays that are no virtual
/// disks.
Number ToLevel(std::string_view text);
/// The number of rows of a bad-block log.
Number ToRowCount(std::string_view text);

}  // namespace hxmd
