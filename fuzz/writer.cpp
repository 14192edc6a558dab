// Calls of the document writer in any order, beside a document that is a plain string.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "XMLWriter.h"
#include "input.h"
#include "targets.h"

namespace {

// What the writer promises, piece by piece.
class Expected {
public:
    explicit Expected(std::size_t filled) : text_(filled, '.') {}

    void Append(const std::string& piece) {
        if (piece.size() <= kDocCapacity - text_.size()) text_ += piece;
    }
    void Tabs() {
        for (int level = 0; level < depth; ++level) Append("  ");
    }
    void End(HX_U16 flags, const std::string& name) {
        if (--depth < 0) return;
        if ((flags & kNoIndent) == 0) Tabs();
        Append(Cut("</" + name + ">\n", kPieceSize));
    }
    void Start(HX_U16 flags, const std::string& name, const std::string& attributes) {
        Tabs();
        Append(Cut("<" + name, kPieceSize));
        Append(Cut(attributes, kAttributeSize));
        Append(">");
        ++depth;
        if ((flags & kEmptyElement) != 0) {
            End(kNoIndent, name);
        } else if ((flags & kNoNewLine) == 0) {
            Append("\n");
        }
    }
    void Text(HX_U16 flags, const std::string& text) {
        if ((flags & kNoIndent) == 0) Tabs();
        Append(Cut(text, kAttributeSize));
        if ((flags & kNoNewLine) == 0) Append("\n");
    }
    const std::string& All() const { return text_; }

    int depth = 0;

private:
    static std::string Cut(const std::string& piece, std::size_t room) {
        return piece.substr(0, room - 1);
    }
    std::string text_;
};

// A text of up to 2000 characters: the next bytes, over and over.
std::string Text(Input& input) {
    const std::size_t length = input.U16() % 2000;
    const std::string bytes = input.Until(0);
    std::string text;
    while (!bytes.empty() && text.size() < length) text += bytes;
    text.resize(std::min(text.size(), length));
    return text;
}

const char* Compare(const XMLWR_Doc& doc, const Expected& expected) {
    const std::string& text = expected.All();
    if (doc.CurPos != text.size()) return "the document has another length";
    if (doc.Depth != expected.depth) return "the document has another depth";
    if (std::memcmp(doc.Buf, text.data(), text.size()) != 0) return "the document differs";
    return nullptr;
}

const char* CopyOut(const XMLWR_Doc& doc, const Expected& expected, std::uint32_t room) {
    const std::unique_ptr<char[]> target(new char[room]);  // the sanitizer sees the byte behind it
    const std::uint32_t copied = XMLWR_StrCpy(&doc, target.get(), room);
    const std::string& text = expected.All();
    if (room == 0) return copied == 0 ? nullptr : "something was copied to nowhere";
    if (text.empty() || text.size() > room) {
        return copied == 0 && target[0] == '\0' ? nullptr : "what does not fit was copied";
    }
    if (copied != text.size() - 1 || target[copied] != '\0') return "the copy is not terminated";
    return std::memcmp(target.get(), text.data(), copied) == 0 ? nullptr : "the copy differs";
}

}  // namespace

const char* FuzzWriter(const std::uint8_t* data, std::size_t size) {
    static const auto doc = std::make_unique<XMLWR_Doc>();
    Input input(data, size);
    XMLWR_Reset(*doc);
    // Either an empty document or one with room for a few pieces only.
    const std::size_t left = input.U16();
    const std::size_t filled = left % 2 == 0 ? 0 : kDocCapacity - left;
    std::memset(doc->Buf, '.', filled);
    doc->CurPos = static_cast<std::uint32_t>(filled);
    Expected expected(filled);
    for (int calls = 0; calls < 200 && !input.IsEmpty(); ++calls) {
        const std::uint8_t call = input.U8();
        const HX_U16 flags = input.U8() % 8;
        const std::string text = Text(input);
        switch (call % 6) {
            case 0: {
                const std::string name = Text(input);
                XMLWR_ElmtStartPrintf(doc.get(), flags, name.c_str(), "%s", text.c_str());
                expected.Start(flags, name, text);
                break;
            }
            case 1:
                XMLWR_ElmtCharData(doc.get(), flags, "%s", text.c_str());
                expected.Text(flags, text);
                break;
            case 2:
                XMLWR_ElmtEnd(doc.get(), flags, text.c_str());
                expected.End(flags, text);
                // A depth below zero means nothing; writing goes on at none.
                if (expected.depth < 0) doc->Depth = 0, expected.depth = 0;
                break;
            case 3: {
                const int written =
                    XMLWR_MemCpy(doc.get(), text.data(), static_cast<HX_U16>(text.size()));
                XMLWR_AddCurPos(doc.get(), written);
                expected.Append(text);
                break;
            }
            case 4:
                XMLWR_PrintNewLine(doc.get());
                expected.Append("\n");
                break;
            default: {
                const auto room = static_cast<std::uint32_t>(expected.All().size() + call % 5);
                if (const char* const wrong = CopyOut(*doc, expected, room < 3 ? 0 : room - 3)) {
                    return wrong;
                }
            }
        }
        if (const char* const wrong = Compare(*doc, expected)) return wrong;
    }
    return nullptr;
}
