// One page of a list: the one loop behind every list function.
#ifndef HXSIM_PAGE_H
#define HXSIM_PAGE_H

#include <algorithm>
#include <cstddef>
#include <span>

#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"
#include "hxsim_machine.h"

namespace hxsim {

/// Answers a list request with the adapter's objects of a kind. `describe(adapter, row, record)`
/// fills a record that is zero. Never writes more than numRequested records; an index past the last
/// object is the end of the list, and an ID that no object has is refused.
template <class Request, class Record, class Row, class Describe>
HX_U8 List(HX_U8 adapter, Request* request, Record (Request::*list)[1], const Kind<Row>& kind,
           Describe describe) {
    if (const HX_U8 status = CheckAdapter(adapter); status != HX_SUCCESS) return status;
    if (request == nullptr) return HXSIM_NULL_ADDRESS;

    RequestHeader& header = request->header;
    std::span<const Row> rows = MachineOf(adapter).*kind.rows;
    std::size_t first = header.startingIndexOrId;
    if (header.requestType == HX_REQUEST_BY_ID) {
        const Row* const row = Find(rows, header.startingIndexOrId);
        if (row == nullptr) return kind.missing;
        rows = std::span(row, 1);
        first = 0;
    } else if (header.requestType != HX_REQUEST_BY_INDEX) {
        return HXSIM_BAD_REQUEST_TYPE;
    }

    first = std::min(first, rows.size());
    const std::size_t count = std::min<std::size_t>(header.numRequested, rows.size() - first);
    Record* record = request->*list;
    for (const Row& row : rows.subspan(first, count)) {
        *record = Record{};
        describe(adapter, row, *record);
        ++record;
    }
    header.numReturned = static_cast<HX_U16>(count);
    const std::size_t next = first + count;
    header.nextStartingIndex = next < rows.size() && header.requestType == HX_REQUEST_BY_INDEX
                                   ? static_cast<HX_U16>(next)
                                   : HX_LIST_COMPLETE;
    return HX_SUCCESS;
}

}  // namespace hxsim

#endif
