// Paged lists: the headers of their requests, and the call row that collects a list page by page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "hxraid.h"

// Counts are entries. Each of the four changes the header and nothing else.

/// Asks for `numRequested` entries from `startingIndexOrId` on; every other field becomes 0.
void setRequestHeader(RequestHeader* pReq, HX_U8 requestType, HX_U16 startingIndexOrId,
                      HX_U16 numRequested);

/// Goes back to the first entry of the list.
void ResetRequestHeader(RequestHeader* pReq);

/// Cuts numRequested to what the adapter and the interface can move in one call.
void AdjustRequestNum(RequestHeader* pReq, HX_U16 maxAdapterSupport, HX_U16 maxAPISupport);

/// Sets the size of the next page after `numreturned` of the `maxRequested` entries: the missing
/// ones, limited as by AdjustRequestNum; 0 when none are missing. Leaves a complete list unchanged.
void ResetnumRequestOfRequestHead(RequestHeader* pReq, HX_U16 maxAdapterSupport,
                                  HX_U16 maxRequested, HX_U16 numreturned, HX_U16 maxAPISupport);

/// KiB that the adapter can move in one call; 0 when it has no limit, when the call fails, and for
/// HX_ALL_ADAPTERS.
HX_U16 Get_Adapter_MaxBuffersize(HX_U8 AdapterID);

/// Collects a list page by page. `fetch` is called with the adapter and the request's header,
/// behind which the controller puts at most a page of items.
template <class R, class Fetch>
struct PagesCall {
    using Page = decltype(R::Request);
    using Item = std::remove_all_extents_t<decltype(Page::items)>;
    static constexpr std::size_t kLimit = std::extent_v<decltype(Page::items)>;

    Fetch fetch;
    std::size_t cleared;  // bytes of the data area that are cleared before each page

    bool operator()(R& record) const {
        RequestHeader& header = record.Request.header;
        const HX_U16 requested = header.numRequested;
        // Room for all items that were requested, at most 65535. calloc, because unused room of it
        // costs no memory.
        auto* const list = static_cast<std::byte*>(
            std::calloc(1, sizeof(RequestHeader) + std::size_t{requested} * sizeof(Item)));
        if (list == nullptr) return false;
        record.Result = reinterpret_cast<RequestHeader*>(list);

        const HX_U16 kibibytes = Get_Adapter_MaxBuffersize(record.AdapterID);
        // Truncated to 16 bits on purpose, because controllers have always been asked this way:
        // 65536 items become 0, and a buffer of 1024 KiB lists nothing when an item has 8 or 16
        // bytes.
        const auto page_limit = static_cast<HX_U16>(
            kibibytes == 0 ? kLimit : std::size_t{kibibytes} * 1024 / sizeof(Item));
        AdjustRequestNum(&header, page_limit, kLimit);

        if (cleared < sizeof record.Request.items) {
            std::memset(static_cast<void*>(record.Request.items), 0, sizeof record.Request.items);
        }
        HX_U16 collected = 0;
        // Signed and 16 bits wide: a request for 32768 or more items returns nothing.
        auto wanted = static_cast<std::int16_t>(requested);
        while (header.nextStartingIndex != HX_LIST_COMPLETE && wanted >= 1) {
            std::memset(static_cast<void*>(record.Request.items), 0, cleared);
            record.RetVal = fetch(record.AdapterID, &header);
            if (record.RetVal != HX_SUCCESS) break;
            const HX_U16 returned = header.numReturned;
            if (returned == 0 || returned > wanted || returned > kLimit) break;
            std::memcpy(list + sizeof header + collected * sizeof(Item), record.Request.items,
                        returned * sizeof(Item));
            collected = static_cast<HX_U16>(collected + returned);
            wanted = static_cast<std::int16_t>(wanted - returned);
            ResetnumRequestOfRequestHead(&header, page_limit, requested, collected, kLimit);
            header.startingIndexOrId = header.nextStartingIndex;
        }
        *record.Result = header;
        record.Result->numReturned = collected;
        record.Result->numRequested = requested;
        return true;
    }

    /// Called after the result has been written.
    static void Release(R& record) { std::free(record.Result); }
};

/// Calls one function of the controller library for a page; its request begins with the header.
template <auto function>
struct FetchPage;
template <class Request, HX_U8 (*function)(HX_U8, Request*)>
struct FetchPage<function> {
    HX_U8 operator()(HX_U8 adapter, RequestHeader* header) const {
        return function(adapter, reinterpret_cast<Request*>(header));
    }
};

/// One call of `function` per page. The whole data area, or `cleared` bytes of it, is cleared
/// before each.
template <auto function, class R>
constexpr PagesCall<R, FetchPage<function>> Pages(std::size_t cleared = sizeof R::Request.items) {
    return {{}, cleared};
}

/// One call of `fetch` per page.
template <class R, class Fetch>
constexpr PagesCall<R, Fetch> PagesBy(Fetch fetch) {
    return {fetch, sizeof R::Request.items};
}
