// One page of a list: the loop shared by all list functions.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

#include "calls/hxmd_session.h"
#include "codes/status.h"
#include "hxraid.h"

namespace hxmd {

/// Writes the text, cut to the field or padded with NULs.
template <std::size_t size>
void SetText(char (&field)[size], std::string_view text) {
    text = text.substr(0, size);
    std::ranges::fill(field, '\0');
    std::ranges::copy(text, field);
}

/// Writes the requested records into the request. `all` ascends by ID, which `id_of(record)`
/// returns. An index past the last record gives an empty last page; an unknown ID is refused with
/// `missing`.
template <class Request, class Record, class IdOf>
HX_U8 WritePage(Request& request, Record (Request::*list)[1], const std::vector<Record>& all,
                IdOf id_of, HX_U8 missing) {
    RequestHeader& header = request.header;
    const bool by_id = header.requestType == HX_REQUEST_BY_ID;
    if (!by_id && header.requestType != HX_REQUEST_BY_INDEX) {
        return hxcodes::NumberOf(hxcodes::Status::kBadRequestType);
    }
    std::size_t first = header.startingIndexOrId;
    std::size_t last = all.size();
    if (by_id) {
        const auto found = std::ranges::find(all, header.startingIndexOrId, id_of);
        if (found == all.end()) return missing;
        first = static_cast<std::size_t>(found - all.begin());
        last = first + 1;
    }
    first = std::min(first, last);
    const std::size_t count = std::min<std::size_t>(last - first, header.numRequested);
    std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(first), count, request.*list);
    const bool more = !by_id && first + count < last;
    header.numReturned = static_cast<HX_U16>(count);
    header.nextStartingIndex = more ? static_cast<HX_U16>(first + count) : HX_U16{HX_LIST_COMPLETE};
    return HX_SUCCESS;
}

/// Answers a list request. `describe(view)` returns all records.
template <class Request, class Record, class Describe, class IdOf>
HX_U8 List(HX_U8 adapter, Request* request, Record (Request::*list)[1], Describe describe,
           IdOf id_of, HX_U8 missing) {
    return OnView(adapter, [&](const View& view) -> HX_U8 {
        if (request == nullptr) return hxcodes::NumberOf(hxcodes::Status::kNullAddress);
        return WritePage(*request, list, std::vector<Record>(describe(view)), id_of, missing);
    });
}

/// The same with one record for each disk, array and so on of the machine.
template <class Request, class Record, class Thing, class Describe, class IdOf>
HX_U8 ListEach(HX_U8 adapter, Request* request, Record (Request::*list)[1],
               std::vector<Thing> Machine::*things, Describe describe, IdOf id_of, HX_U8 missing) {
    const auto all = [&](const View& view) {
        std::vector<Record> records;
        for (const Thing& thing : view.machine.*things) records.push_back(describe(view, thing));
        return records;
    };
    return List(adapter, request, list, all, id_of, missing);
}

}  // namespace hxmd
