// What a controller library gives back when it is unloaded.
//
// The C++ runtime in it (it is linked statically) keeps a reserve of 72 KiB for exceptions that are
// thrown when memory has run out. A process that loads and unloads the library would lose one each
// time.

// The names are the runtime's.
namespace __gnu_cxx {  // NOLINT(bugprone-reserved-identifier)

// Declared in no header of the runtime; made for programs that look for leaks.
void __freeres();  // NOLINT(bugprone-reserved-identifier)

}  // namespace __gnu_cxx

namespace {

[[gnu::destructor]] void GiveBackReserve() { __gnu_cxx::__freeres(); }

}  // namespace
