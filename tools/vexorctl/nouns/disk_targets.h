// Which disks are meant by a target of the noun disk, and where a disk hangs.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "library_fields.h"
#include "model/disks.h"
#include "model/library_record.h"
#include "shell/invocation.h"

namespace vexorctl::disk_noun {

/// Stands for no object in the library's lists.
inline constexpr std::uint64_t kNoObject = 65535;

/// The state of a spare, of the adapter or of a group, ends so.
inline constexpr std::string_view kSpareEnding = "_spare";

/// The two ends of a disk's link.
View<fields::Link_Endpoint> SelfOf(const Disk& disk);
View<fields::Link_Endpoint> ParentOf(const Disk& disk);

using IsMeant = std::function<bool(const Disk&)>;

/// What a target that is no disk itself says of the disks: those of a virtual disk, those that
/// serve a disk group, those in an enclosure. Null for a disk and an adapter. Throws Failure and
/// UsageError.
IsMeant DisksMeantBy(Invocation& invocation, const std::string& typed);

/// The same of a target that names a disk or an adapter.
IsMeant DisksNamedBy(Invocation& invocation, const std::string& typed);

}  // namespace vexorctl::disk_noun
