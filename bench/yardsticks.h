// What the library is measured against.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "XMLWriter.h"
#include "hxraid.h"

namespace yardstick {

/// What nobody who parses the command with expat can do without: a parser made, the text parsed
/// with handlers that do nothing, the parser freed. Returns whether the text is well-formed.
bool BareExpat(std::string_view text);

/// A whole request, served step by step as the first description of the library tells it, without
/// any thought for speed: the room for the configuration file allocated before anybody knows that
/// there is none, the document filled with zeros twice, each element's text buffer and the largest
/// function's record filled too, names compared one after the other, every piece of the result
/// formatted with vsnprintf. Serves HX_PD_FreeHD2GlobalSpare only. Takes and returns what vexorApi
/// does.
int LiteralRequest(const char* command, char* result, std::uint32_t size);

// Record writers, element by element and item by item through the literal document writer.
int LiteralHdInfo(XMLWR_Doc* doc, const char* element, HD_Info* records, unsigned count);
int LiteralDgInfo(XMLWR_Doc* doc, const char* element, const DG_Info* records, unsigned count);

/// Disks written by libxml2's xmlTextWriter, as a program that cares for no speed would use it:
/// every attribute and value by a call of its own. The text belongs to the writer's buffer.
class XmlTextWriterDisks {
public:
    XmlTextWriterDisks();
    ~XmlTextWriterDisks();
    XmlTextWriterDisks(const XmlTextWriterDisks&) = delete;
    XmlTextWriterDisks& operator=(const XmlTextWriterDisks&) = delete;

    /// Writes the records into a root element; returns what stands between its tags.
    std::string_view Write(const char* element, HD_Info* records, unsigned count);

private:
    void* buffer_;
};

}  // namespace yardstick
