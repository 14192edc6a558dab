// The executor.
#include "xml_rapi_executor.h"

#include <cstddef>

#include "vexorapi_functions.h"
#include "vx_dbg.h"
#include "xml_rapi_functions.h"

namespace {

template <class... Entry>
void ExecuteAt(std::size_t wanted, XMLElement* elmt, XMLWR_Doc* doc, const std::tuple<Entry...>&) {
    std::size_t position = 0;
    (void)((position++ == wanted && (Entry::Execute(elmt, doc), true)) || ...);
}

}  // namespace

int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc) {
    const auto* const request = static_cast<const XML_RA_FuncData*>(elmt->Ext);
    VX_DBG_TRACE("pFD->FuncName=%s\n\n", request->FuncName);
    const std::size_t found = FindFunction(request->FuncName);
    if (found == kFunctionCount) return 0;
    ExecuteAt(found, elmt, doc, kFunctions);
    return 1;
}
