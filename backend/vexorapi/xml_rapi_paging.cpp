// The headers of list requests: where a page starts and how many entries it may hold.
#include "xml_rapi_paging.h"

#include <algorithm>

void setRequestHeader(RequestHeader* pReq, HX_U8 requestType, HX_U16 startingIndexOrId,
                      HX_U16 numRequested) {
    *pReq = {};
    pReq->requestType = requestType;
    pReq->startingIndexOrId = startingIndexOrId;
    pReq->numRequested = numRequested;
}

void ResetRequestHeader(RequestHeader* pReq) {
    pReq->nextStartingIndex = 0;
    pReq->startingIndexOrId = 0;
}

void AdjustRequestNum(RequestHeader* pReq, HX_U16 maxAdapterSupport, HX_U16 maxAPISupport) {
    pReq->numRequested = std::min({pReq->numRequested, maxAdapterSupport, maxAPISupport});
}

void ResetnumRequestOfRequestHead(RequestHeader* pReq, HX_U16 maxAdapterSupport,
                                  HX_U16 maxRequested, HX_U16 numreturned, HX_U16 maxAPISupport) {
    if (pReq->nextStartingIndex == HX_LIST_COMPLETE) return;
    // Never negative: otherwise a controller that returned too many entries would be asked for
    // nearly 65536 more.
    const int missing = std::max(0, maxRequested - numreturned);
    pReq->numRequested = static_cast<HX_U16>(missing);
    AdjustRequestNum(pReq, maxAdapterSupport, maxAPISupport);
}

HX_U16 Get_Adapter_MaxBuffersize(HX_U8 AdapterID) {
    if (AdapterID == HX_ALL_ADAPTERS) return 0;
    HX_U8 count = 0;
    Adapter_Info info{};
    // When the call fails the record stays 0: no limit.
    static_cast<void>(HX_Adapter_GetInfo(AdapterID, &count, &info));
    return info.MaxBufferSize;
}
