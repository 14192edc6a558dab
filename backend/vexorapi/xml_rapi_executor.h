// The executor: carries out a parsed request of a vendor function.
#pragma once

#include "XMLWriter.h"
#include "vexorapi_element.h"

/// Carries out the request in `elmt` and writes its result into `doc`.
/// Returns 1 when the function is one of the vendor's, whatever its RetVal, 0 otherwise.
int VX_XMLFunc_HX_RApi(XMLElement* elmt, XMLWR_Doc* doc);
