// The table of the vendor functions: finds a function by its name in commands, and declares the
// handlers that read its parameters.
#pragma once

#include <expat.h>

#include <optional>

#include "xml_rapi_function_list.h"

/// The function called `name`, exactly, if it is one of them.
std::optional<VendorFunction> FindFunction(const char* name);

/// Selects the vendor function called `name`: stores its handlers and its record's size in the
/// XMLElement `userData` and returns 1, or changes nothing and returns 0.
int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char** atts);

// The handlers of each function: XML_HX_<name>_SEH for the start of an element, which logs the
// attributes and interprets none, and XML_HX_<name>_EEH for the end of one, which stores a
// parameter. `userData` is the request's XMLElement.
#define DECLARE_HANDLERS(function)                                          \
    void XMLCALL XML_##function##_SEH(void* userData, const XML_Char* name, \
                                      const XML_Char** atts);               \
    void XMLCALL XML_##function##_EEH(void* userData, const XML_Char* name);
VENDOR_FUNCTIONS(DECLARE_HANDLERS)
#undef DECLARE_HANDLERS
