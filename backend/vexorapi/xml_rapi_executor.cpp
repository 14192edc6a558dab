// The executor: carries out a parsed vendor-function request.
#include <algorithm>

#include "heap_block.h"
#include "xml_rapi_functions.h"

namespace {

template <class... Entry>
void ExecuteAt(std::size_t wanted, XMLElement* elmt, XMLWR_Doc* doc, const std::tuple<Entry...>&) {
    std::size_t position = 0;
    (void)((position++ == wanted && (Entry::Execute(elmt, doc), true)) || ...);
}

}  // namespace

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

    // At least one byte, so that a table without records is no failed allocation.
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

int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc) {
    const auto* const request = static_cast<const XML_RA_FuncData*>(elmt->Ext);
    VX_DBG_TRACE("pFD->FuncName=%s\n\n", request->FuncName);
    const std::size_t found = FindFunction(request->FuncName);
    if (found == kFunctionCount) return 0;
    ExecuteAt(found, elmt, doc, kFunctions);
    return 1;
}
