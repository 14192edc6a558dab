// The vendor function table: a function's name, its handlers and what its record needs.
#include "vexorapi_functions.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>

#include "vexorapi_element.h"
#include "xml_rapi_functions.h"  // IWYU pragma: keep (its names are pasted together by the function list)

// Never defined: a function whose rows have another name calls it and does not compile, and the
// compiler's message names the reason.
void RowsBearAnotherName();

namespace {

struct TableRow {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    RecordNeeds needs;
};

template <class R>
consteval RecordNeeds NeedsOf(R XML_RA_FuncData::*) {
    constexpr std::size_t header = offsetof(XML_RA_FuncData, HX_API_Version);
    return {header + sizeof(R), header + kZeroedBytes<R>, kTakesPassword<R>};
}

template <const auto& kFunction>
consteval TableRow MakeRow(const char* name, XML_StartElementHandler start,
                           XML_EndElementHandler end) {
    if (std::string_view(kFunction.name) != name) RowsBearAnotherName();
    return {name, start, end, NeedsOf(kFunction.record)};
}

#define ROW(function) MakeRow<k##function>(#function, XML_##function##_SEH, XML_##function##_EEH),
constexpr TableRow kTable[] = {VENDOR_FUNCTIONS(ROW)};
#undef ROW
static_assert(std::size(kTable) == kFunctionCount);

constexpr bool NamesAreSound() {
    for (std::size_t i = 0; i < kFunctionCount; ++i) {
        const std::string_view name = kTable[i].name;
        if (name.size() >= sizeof XML_RA_FuncData::FuncName) return false;
        for (std::size_t k = 0; k < i; ++k) {
            if (name == kTable[k].name) return false;
        }
    }
    return true;
}
static_assert(NamesAreSound(), "every name fits FuncName and none comes twice");

// Names are looked up by hash; the seed is chosen at compile time so that no two names share a
// slot.
constexpr int kSlotBits = 10;
constexpr std::size_t kSlots = 1u << kSlotBits;

// `seed` is odd.
constexpr std::uint32_t Hash(std::uint32_t seed, const char* name) {
    std::uint32_t hash = 0;
    // Multiplies once after the loop, since each step would otherwise wait for the previous
    // multiplication.
    for (; *name != '\0'; ++name) hash = std::rotl(hash, 5) ^ static_cast<unsigned char>(*name);
    return hash * seed >> (32 - kSlotBits);
}

struct HashTable {
    std::uint32_t seed = 0;
    std::array<HX_U8, kSlots> rows{};  // the row's position plus 1, 0 for none
};

consteval HashTable MakeHashTable() {
    static_assert(kFunctionCount < 255);
    for (std::uint32_t seed = 0x9E3779B1;; seed += 2) {
        HashTable table{seed};
        bool distinct = true;
        for (std::size_t i = 0; distinct && i < kFunctionCount; ++i) {
            HX_U8& slot = table.rows[Hash(seed, kTable[i].name)];
            distinct = slot == 0;
            slot = static_cast<HX_U8>(i + 1);
        }
        if (distinct) return table;
    }
}

constexpr HashTable kHashTable = MakeHashTable();

}  // namespace

std::optional<VendorFunction> FindFunction(const char* name) {
    const HX_U8 slot = kHashTable.rows[Hash(kHashTable.seed, name)];
    if (slot == 0 || std::strcmp(name, kTable[slot - 1u].name) != 0) return std::nullopt;
    return static_cast<VendorFunction>(slot - 1u);
}

int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char**) {
    const std::optional<VendorFunction> found = FindFunction(name);
    if (!found) return 0;
    const TableRow& row = kTable[static_cast<std::size_t>(*found)];
    auto* const elmt = static_cast<XMLElement*>(userData);
    elmt->StartHandler = row.start;
    elmt->EndHandler = row.end;
    elmt->ExtNeeds = row.needs;
    return 1;
}

#define DEFINE_HANDLERS(function)                                                      \
    void XMLCALL XML_##function##_SEH(void*, const XML_Char*, const XML_Char** atts) { \
        PrintXMLAtts(atts);                                                            \
    }                                                                                  \
    void XMLCALL XML_##function##_EEH(void* userData, const XML_Char* name) {          \
        EndParameter<k##function>(userData, name);                                     \
    }
VENDOR_FUNCTIONS(DEFINE_HANDLERS)
#undef DEFINE_HANDLERS
