// Which controller library this process uses, and how another one is chosen.
#pragma once

#include <string>

namespace vexorctl {

/// The environment variable that chooses where --controller does not. Programs that run with
/// another user's rights ignore it.
inline constexpr char kControllerChoice[] = "VEXORAPI_CONTROLLER";

/// The file from which the function with that name was loaded, links resolved; empty when none was.
std::string FileOf(const char* function);

/// The folder of a file.
std::string FolderAround(const std::string& path);

/// The file of the controller library of this process.
std::string UsedController();

/// What made the loader take the controller library of this process: "--controller",
/// "VEXORAPI_CONTROLLER", "LD_LIBRARY_PATH", or "loader" for the folders in which it looks by
/// itself.
std::string WhyThisController();

/// Makes this process use the controller library `named`, else the one that VEXORAPI_CONTROLLER
/// names: "virtual", "linuxmd", or the path of a libhxraid.so or of its folder. The loader has
/// taken a library before main, so the program starts itself anew with the other one's folder in
/// front. Returns when that is the library already, or when nothing is named. Throws UsageError for
/// an unknown name, and Unavailable when there is no such library or the loader takes another one
/// all the same.
void ChooseController(const std::string* named);

}  // namespace vexorctl
