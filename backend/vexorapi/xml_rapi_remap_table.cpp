// Reads a disk's whole remap table and cuts the window out of it.
#include "xml_rapi_remap_table.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "heap_block.h"

bool ReadRemapTable(VX_PD_GetRCT& record) {
    record.nn = record.n;
    record.ss = record.s;
    record.ee = record.e;
    record.RetVal = HX_PD_RCT_GetCount(record.AdapterID, record.HD_ID, &record.Count);
    if (record.RetVal != HX_SUCCESS) return true;

    const HX_U32 total = record.Count;
    record.n = std::min({record.n, total, static_cast<HX_U32>(kRemapRecords)});
    if (std::uint64_t{record.s} + record.n > total) record.s = total - record.n;
    if (record.e > total) record.e = total - 1;

    // At least one byte, so that the allocation for an empty table does not look like a failure.
    std::size_t bytes;
    if (__builtin_mul_overflow(std::size_t{total}, sizeof(RCT_Record), &bytes)) return false;
    const auto table = MakeZeroedBlock<RCT_Record>(bytes + 1);
    if (!table) return false;
    record.RetVal = HX_PD_GetRCT(record.AdapterID, record.HD_ID, table.get(), total);
    if (record.RetVal == HX_SUCCESS) {
        std::memcpy(record.record, table.get() + record.s, record.n * sizeof(RCT_Record));
    }
    return true;
}
