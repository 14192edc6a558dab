// One page of a list: the loop shared by all list functions.
#pragma once

#include <cstddef>
#include <vector>

#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Decides for each listed row in turn whether a request asks for it.
class Selection {
public:
    explicit Selection(const RequestHeader& header)
        : by_id_(header.requestType == HX_REQUEST_BY_ID), from_(header.startingIndexOrId) {}

    bool Wants(HX_U16 id) {
        const std::size_t place = place_++;
        return by_id_ ? id == from_ : place >= from_;
    }

private:
    const bool by_id_;
    const HX_U16 from_;
    std::size_t place_ = 0;  // index of the next listed row
};

/// Answers a list request with some of the adapter's rows, which ascend by ID.
///
/// `rows` is the list in the adapter, `is_listed(adapter, row)` tells whether callers see a row,
/// and `describe(adapter, row, now, record)` fills a record. Never writes more than numRequested
/// records. An index past the last object gives an empty last page; an ID that no listed object has
/// is refused with `missing`.
template <class Request, class Record, class Row, class IsListed, class Describe>
HX_U8 List(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1],
           std::vector<Row> Adapter::*rows, Status missing, IsListed is_listed, Describe describe) {
    return Look(call, adapter_id, [&](const Adapter& adapter, Time now) -> Status {
        if (request == nullptr) return Status::kNullAddress;
        RequestHeader& header = request->header;
        const bool by_id = header.requestType == HX_REQUEST_BY_ID;
        if (!by_id && header.requestType != HX_REQUEST_BY_INDEX) return Status::kBadRequestType;

        Record* const records = request->*list;
        std::size_t count = 0;
        Selection selection(header);
        bool found = false;
        bool more = false;
        for (const Row& row : adapter.*rows) {
            if (!is_listed(adapter, row) || !selection.Wants(row.id)) continue;
            found = true;
            if (count == header.numRequested) {
                more = !by_id;
                break;
            }
            records[count] = Record{};
            describe(adapter, row, now, records[count]);
            ++count;
        }
        if (by_id && !found) return missing;
        header.numReturned = static_cast<HX_U16>(count);
        header.nextStartingIndex =
            more ? static_cast<HX_U16>(header.startingIndexOrId + count) : HX_U16{HX_LIST_COMPLETE};
        if (IsHostile()) MakePageHostile(header, records, count * sizeof(Record));
        return Status::kSuccess;
    });
}

/// The same with every row listed.
template <class Request, class Record, class Row, class Describe>
HX_U8 List(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1],
           std::vector<Row> Adapter::*rows, Status missing, Describe describe) {
    const auto every = [](const Adapter&, const Row&) { return true; };
    return List(call, adapter_id, request, list, rows, missing, every, describe);
}

/// The same with the Describe overload for the row and the record, whose header the caller has
/// included.
template <class Request, class Record, class Row>
HX_U8 List(const char* call, HX_U8 adapter_id, Request* request, Record (Request::*list)[1],
           std::vector<Row> Adapter::*rows, Status missing) {
    return List(call, adapter_id, request, list, rows, missing,
                [](const Adapter& adapter, const Row& row, Time now, Record& record) {
                    Describe(adapter, row, now, record);
                });
}

}  // namespace hxsim
