// Asking the virtual controller for its lists, for the tests that look at what they say.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

#include "hxraid.h"
#include "support/temporary_root.h"

/// A test during which the virtual controller is open.
class SimulatorTest : public testing::Test {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }
};

/// Has the virtual controller keep its machine in a file of a temporary folder, so that it outlives
/// the open library. Other tests have a new machine in memory each time that it is opened.
class StateFile {
public:
    // Below VEXORAPI_ROOT, where the first call makes the default machine; a file that HXSIM_STATE
    // names would have to be there.
    StateFile() { unsetenv("HXSIM_STATE"); }
    ~StateFile() { setenv("HXSIM_STATE", ":memory:", 1); }
    StateFile(const StateFile&) = delete;
    StateFile& operator=(const StateFile&) = delete;

private:
    TemporaryRoot root_;
};

/// What a list request is made of: its header and one record.
template <class Request>
struct RequestParts {
    static auto FirstOf(Request& request) {
        auto& [header, records] = request;
        static_assert(std::is_same_v<decltype(header), RequestHeader>);
        return records[0];
    }
    using Record = decltype(FirstOf(std::declval<Request&>()));
};

/// The answer to a list request: status, header and the records behind it, as many as it counts.
template <class Record>
struct Page {
    HX_U8 status;
    RequestHeader header;
    std::vector<Record> records;
};

/// Sends a list request with room for `wanted` records and not a byte more, which the memory
/// checkers watch.
template <class Request>
auto Ask(HX_U8 (*function)(HX_U8, Request*), HX_U8 adapter, HX_U8 type, HX_U16 start,
         HX_U16 wanted) {
    using Record = typename RequestParts<Request>::Record;
    std::vector<std::byte> bytes(sizeof(RequestHeader) + wanted * sizeof(Record), std::byte{0xA5});
    RequestHeader header{};
    header.requestType = type;
    header.startingIndexOrId = start;
    header.numRequested = wanted;
    std::memcpy(bytes.data(), &header, sizeof header);

    Page<Record> page{};
    page.status = function(adapter, reinterpret_cast<Request*>(bytes.data()));
    std::memcpy(&page.header, bytes.data(), sizeof page.header);
    if (page.status == HX_SUCCESS && page.header.numReturned <= wanted) {
        page.records.resize(page.header.numReturned);
        if (!page.records.empty()) {
            std::memcpy(page.records.data(), bytes.data() + sizeof header,
                        page.records.size() * sizeof(Record));
        }
    }
    return page;
}

/// All of an adapter's records, in one page.
template <class Request>
auto All(HX_U8 (*function)(HX_U8, Request*), HX_U8 adapter) {
    auto page = Ask(function, adapter, HX_REQUEST_BY_INDEX, 0, 512);
    EXPECT_EQ(0, page.status);
    EXPECT_EQ(HX_LIST_COMPLETE, page.header.nextStartingIndex);
    return page.records;
}

/// The same of both adapters.
template <class Request>
auto AllOfBoth(HX_U8 (*function)(HX_U8, Request*)) {
    auto records = All(function, 0);
    const auto more = All(function, 1);
    records.insert(records.end(), more.begin(), more.end());
    return records;
}

/// The record with that ID. Fails the test when there is none; then the record is zero.
template <class Request>
auto TheOne(HX_U8 (*function)(HX_U8, Request*), HX_U8 adapter, HX_U16 id) {
    auto page = Ask(function, adapter, HX_REQUEST_BY_ID, id, 1);
    EXPECT_EQ(0, page.status);
    EXPECT_EQ(1, page.header.numReturned);
    page.records.resize(1);
    return page.records[0];
}
