// The sentences for a state file of the virtual controller that cannot be used.
#include "store/hxsim_sqlite.h"

namespace hxsim {
namespace {

std::string SentenceOf(hxsqlite::Trouble trouble, const std::string& path, const std::string& why) {
    switch (trouble) {
        case hxsqlite::Trouble::kBusy:
            return path + " has been kept by another process for " +
                   std::to_string(hxsqlite::kPatience / 1000) +
                   " seconds; end that process, or try again.";
        case hxsqlite::Trouble::kFull:
            return path + " cannot grow: the disk is full. Make room and try again.";
        case hxsqlite::Trouble::kDamaged:
            return path + " is damaged or no state file of the virtual controller (" + why +
                   "); move it away and run: hxsimctl init";
        case hxsqlite::Trouble::kClosed:
            return path + " cannot be opened for writing (" + why +
                   "); make it writable, or name another file in HXSIM_STATE.";
        case hxsqlite::Trouble::kOther:
            break;
    }
    return path + " cannot be used (" + why +
           "); see to its disk, or name another file in HXSIM_STATE.";
}

}  // namespace

Connection::Connection(const std::string& path)
    : hxsqlite::Connection(path, hxsqlite::Access::kWrite, SentenceOf) {}

void ThrowStoreError(const std::string& path, int code, int system_error, std::string_view detail) {
    hxsqlite::ThrowStoreError(SentenceOf, path, code, system_error, detail);
}

}  // namespace hxsim
