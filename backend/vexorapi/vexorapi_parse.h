// The parse of one command: expat's callbacks, which track the path, select the function at the
// root and pass the three levels below it to the function's handlers.
#pragma once

#include "vexorapi_element.h"

void XMLCALL RA_StartElement(void* userData, const XML_Char* name, const XML_Char** atts);
void XMLCALL RA_EndElement(void* userData, const XML_Char* name);
void XMLCALL RA_CharacterDataHandler(void* userData, const XML_Char* s, int len);

/// Prepares a context for one command: no handlers, no record, empty path and text.
void ResetElement(XMLElement& elmt);

/// Frees the record at the end of a command. The record of a function that takes a password is
/// wiped first, and so is the text of the element that was parsed last.
void FreeRecord(XMLElement& elmt);
