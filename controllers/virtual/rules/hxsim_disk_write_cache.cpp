// The write cache of a disk.
#include "rules/hxsim_disk_write_cache.h"

#include "rules/hxsim_event_queue.h"

namespace hxsim {

void SetWriteCache(Adapter& adapter, Time now, HX_U16 id, bool on) {
    Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr || disk->write_cache == on) return;
    disk->write_cache = on;
    Queue(adapter, now, EventKind::kDiskCacheModeChanged, id);
}

}  // namespace hxsim
