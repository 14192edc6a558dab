// A list of records as a result holds it: in an empty document, below the function element.
#pragma once

#include <string_view>

#include "XMLWriter.h"

namespace bench {

/// Writes the list into `doc`, which it empties first, and returns the text.
template <auto writer, class R>
std::string_view Written(XMLWR_Doc& doc, const char* element, R* records, unsigned count) {
    XMLWR_Reset(doc);
    doc.Depth = 1;
    writer(&doc, element, records, count);
    return {doc.Buf, doc.CurPos};
}

}  // namespace bench
