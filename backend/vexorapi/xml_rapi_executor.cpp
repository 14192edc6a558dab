// The executor.
#include "xml_rapi_executor.h"

#include <optional>

#include "vexorapi_functions.h"
#include "vx_dbg.h"
#include "xml_rapi_functions.h"  // IWYU pragma: keep (its names are pasted together by the function list)

namespace {

// Performs a function on the request's record and writes its result.
template <const auto& kFunction>
void Execute(XMLElement* elmt, XMLWR_Doc* doc, void (*write)(XMLElement*, XMLWR_Doc*)) {
    auto& record = RequestRecord<kFunction>(elmt);
    if (!kFunction.call(record)) return;
    write(elmt, doc);
    if constexpr (requires { kFunction.call.Release(record); }) kFunction.call.Release(record);
}

}  // namespace

int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc) {
    const auto* const request = static_cast<const XML_RA_FuncData*>(elmt->Ext);
    VX_DBG_TRACE("pFD->FuncName=%s\n\n", request->FuncName);
    const std::optional<VendorFunction> found = FindFunction(request->FuncName);
    if (!found) return 0;
    switch (*found) {
#define EXECUTE(function)                                      \
    case VendorFunction::function:                             \
        Execute<k##function>(elmt, doc, XML_##function##_Ret); \
        break;
        VENDOR_FUNCTIONS(EXECUTE)
#undef EXECUTE
    }
    return 1;
}

#define DEFINE_WRITER(function)                                   \
    void XML_##function##_Ret(XMLElement* elmt, XMLWR_Doc* doc) { \
        WriteResult<k##function>(elmt, doc);                      \
    }
VENDOR_FUNCTIONS(DEFINE_WRITER)
#undef DEFINE_WRITER
