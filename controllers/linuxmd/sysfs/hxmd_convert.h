// What the texts of attributes mean. Whatever does not have the form that the kernel gives it is
// unknown.
#pragma once

#include <optional>
#include <string_view>

#include "model/hxmd_machine.h"

namespace hxmd {

/// Without the line end and the blanks around it.
std::string_view Trimmed(std::string_view text);

/// Decimal, nothing else; "none" is unknown, too.
Number ToNumber(std::string_view text);
/// Hexadecimal behind "0x".
Number ToAddress(std::string_view text);
/// Anything but the empty text.
Text ToText(std::string_view text);
/// The serial number of SCSI's vital product data page 0x80, a header of four bytes before it.
Text ToSerialPage(std::string_view bytes);
/// The 32 digits of a UUID, in whatever groups; lower case.
Text ToUuid(std::string_view text);

std::optional<ArrayState> ToArrayState(std::string_view text);
std::optional<SyncAction> ToSyncAction(std::string_view text);
std::optional<Completed> ToCompleted(std::string_view text);
std::optional<DiskCount> ToDiskCount(std::string_view text);
std::optional<MemberState> ToMemberState(std::string_view text);
/// The interface's code of "raid5"; unknown for what is no virtual disk.
Number ToLevel(std::string_view text);
/// The rows of a bad-block log.
Number ToRowCount(std::string_view text);

}  // namespace hxmd
