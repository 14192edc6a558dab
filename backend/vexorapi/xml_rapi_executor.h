// The executor: carries out a parsed request of a vendor function.
#pragma once

#include "XMLWriter.h"
#include "vexorapi_element.h"
#include "xml_rapi_function_list.h"

/// Carries out the request in `elmt` and writes its result into `doc`.
/// Returns 1 when the function is one of the vendor's, whatever its RetVal, 0 otherwise.
int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc);

// The result writer of each function, XML_HX_<name>_Ret: writes the whole function element for the
// request's record.
#define DECLARE_WRITER(function) void XML_##function##_Ret(XMLElement* elmt, XMLWR_Doc* doc);
VENDOR_FUNCTIONS(DECLARE_WRITER)
#undef DECLARE_WRITER
