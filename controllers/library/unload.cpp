// Frees memory when a controller library is unloaded.
//
// The statically linked C++ runtime keeps a reserve of 72 KiB for exceptions thrown when memory has
// run out. A process that loads and unloads the library would leak one reserve each time.

// The runtime defines these names.
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier)

// Not declared in any header of the runtime; it exists for leak checkers.
void __freeres();  // NOLINT(bugprone-reserved-identifier)

}  // namespace __gnu_cxx

namespace {

[[gnu::destructor]] void GiveBackReserve() { __gnu_cxx::__freeres(); }

}  // namespace
