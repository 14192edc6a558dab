// The expat run: the parser's hash salt, the wiping of its memory, its error.
#include "vexorapi_expat.h"

#include <malloc.h>
#include <sys/random.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "vx_dbg.h"

namespace {

// The seed of expat's hash tables, drawn once per process. Without it expat would ask the kernel
// for every parser.
constinit unsigned long hash_salt = 0;

void SaltHashes(XML_Parser parser) {
    if (hash_salt == 0 &&
        getrandom(&hash_salt, sizeof hash_salt, GRND_NONBLOCK) != sizeof hash_salt) {
        hash_salt = 0;  // no entropy yet: expat finds its own salt, and the next run asks again
    }
    if (hash_salt != 0) XML_SetHashSalt(parser, hash_salt);
}

// Whether the blocks of the parser that is being freed are wiped.
constinit bool wipe_freed_blocks = false;

[[gnu::cold, gnu::noinline]] void WipeAndFreeParserBlock(void* block) {
    explicit_bzero(block, malloc_usable_size(block));
    std::free(block);
}

// Checks for null first, because most of the 74 blocks that XML_ParserFree frees were never
// allocated.
void FreeParserBlock(void* block) {
    if (block == nullptr) return;
    if (wipe_freed_blocks) [[unlikely]]
        return WipeAndFreeParserBlock(block);
    std::free(block);
}

constexpr XML_Memory_Handling_Suite kParserMemory{std::malloc, std::realloc, FreeParserBlock};

void FreeParser(XML_Parser parser, bool wipe) {
    wipe_freed_blocks = wipe;
    XML_ParserFree(parser);
    wipe_freed_blocks = false;
}

}  // namespace

int RunExpat(const char* text, std::size_t length, void* context, ParseGuard& guard,
             const ParseHandlers& handlers) {
    if (length > INT_MAX) return 0;
    const XML_Parser parser = XML_ParserCreate_MM(nullptr, &kParserMemory, nullptr);
    if (parser == nullptr) return 0;
    guard = {parser, 0, false};
    SaltHashes(parser);
    XML_SetUserData(parser, context);
    XML_SetElementHandler(parser, handlers.start, handlers.end);
    XML_SetCharacterDataHandler(parser, handlers.text);
    XML_SetStartDoctypeDeclHandler(parser, handlers.doctype);
    const int ok = XML_Parse(parser, text, static_cast<int>(length), 1) == XML_STATUS_OK ? 1 : 0;
    if (!ok) {
        // The message has no line end.
        VX_DBG_TRACE("XML_Error:%s at line %d", XML_ErrorString(XML_GetErrorCode(parser)),
                     static_cast<int>(XML_GetCurrentLineNumber(parser)));
    }
    FreeParser(parser, guard.secret || ok == 0);
    return ok;
}
