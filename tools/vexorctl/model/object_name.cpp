#include "model/object_name.h"

#include "model/xml_text.h"

namespace vexorctl {

namespace {

constexpr std::size_t kMaxName = 15;

// C0, DEL, and C1, whose characters are the byte C2 and one from 80 to 9F in UTF-8.
bool HoldsControls(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (byte(i) < ' ' || byte(i) == 0x7F) return true;
        if (byte(i) == 0xC2 && i + 1 < text.size() && byte(i + 1) >= 0x80 && byte(i + 1) <= 0x9F) {
            return true;
        }
    }
    return false;
}

// UTF-8, and no character that XML 1.0 forbids.
bool IsXmlText(std::string_view text) {
    std::string element;
    AppendXmlElement(element, "Name", text);
    return InspectXml(element).well_formed;
}

}  // namespace

std::string NameFault(std::string_view name, NameMarkup markup) {
    constexpr std::string_view kReason = ", which the library's results cannot carry";
    if (HoldsControls(name)) return "holds a control character" + std::string(kReason);
    if (!IsXmlText(name)) {
        return "is not UTF-8, or holds a character that XML 1.0 forbids: the library's results "
               "cannot carry it";
    }
    if (name.find("]]>") != std::string_view::npos) return "holds \"]]>\"" + std::string(kReason);
    if (markup == NameMarkup::kBare && name.find_first_of("<&") != std::string_view::npos) {
        return "holds \"<\" or \"&\", which the library's results cannot carry in the name of a "
               "disk group";
    }
    if (name.starts_with(' ') || name.ends_with(' ')) {
        return "begins or ends with a blank, which the library drops";
    }
    if (name.size() > kMaxName) {
        return "has " + std::to_string(name.size()) + " bytes; a name has at most " +
               std::to_string(kMaxName);
    }
    return {};
}

}  // namespace vexorctl
