// The vendor function table: a function's name to its handlers and the size of its record.
#include "vexorapi_functions.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "vexorapi_element.h"
#include "xml_rapi_functions.h"

namespace {

struct TableRow {
    const char* name;
    XML_StartElementHandler start;
    XML_EndElementHandler end;
    RecordNeeds needs;
};

template <class... Entry>
consteval std::array<TableRow, sizeof...(Entry)> MakeTable(const std::tuple<Entry...>&) {
    constexpr auto needs_of = []<class R>(R XML_RA_FuncData::*) {
        constexpr std::size_t header = offsetof(XML_RA_FuncData, HX_API_Version);
        return RecordNeeds{header + sizeof(R), header + kZeroedBytes<R>, kTakesPassword<R>};
    };
    return {
        TableRow{Entry::kRows.name, Entry::kStart, Entry::kEnd, needs_of(Entry::kRows.record)}...};
}

constexpr auto kTable = MakeTable(kFunctions);

constexpr bool NamesAreSound() {
    for (std::size_t i = 0; i < kTable.size(); ++i) {
        const std::string_view name = kTable[i].name;
        if (name.size() >= sizeof XML_RA_FuncData::FuncName) return false;
        for (std::size_t k = 0; k < i; ++k) {
            if (name == kTable[k].name) return false;
        }
    }
    return true;
}
static_assert(NamesAreSound(), "every name fits FuncName and none comes twice");

// A name is looked up by its hash; the seed is chosen at compile time so that no two share a slot.
constexpr int kSlotBits = 10;
constexpr std::size_t kSlots = 1u << kSlotBits;

// `seed` is odd.
constexpr std::uint32_t Hash(std::uint32_t seed, const char* name) {
    std::uint32_t hash = 0;
    // Multiplied once behind the loop and not in every step, each of which would wait for the last.
    for (; *name != '\0'; ++name) hash = std::rotl(hash, 5) ^ static_cast<unsigned char>(*name);
    return hash * seed >> (32 - kSlotBits);
}

struct HashTable {
    std::uint32_t seed = 0;
    std::array<HX_U8, kSlots> rows{};  // the row's position plus 1, 0 for none
};

consteval HashTable MakeHashTable() {
    static_assert(kTable.size() < 255);
    for (std::uint32_t seed = 0x9E3779B1;; seed += 2) {
        HashTable table{seed};
        bool distinct = true;
        for (std::size_t i = 0; distinct && i < kTable.size(); ++i) {
            HX_U8& slot = table.rows[Hash(seed, kTable[i].name)];
            distinct = slot == 0;
            slot = static_cast<HX_U8>(i + 1);
        }
        if (distinct) return table;
    }
}

constexpr HashTable kHashTable = MakeHashTable();

}  // namespace

std::size_t FindFunction(const char* name) {
    const HX_U8 slot = kHashTable.rows[Hash(kHashTable.seed, name)];
    if (slot == 0 || std::strcmp(name, kTable[slot - 1u].name) != 0) return kFunctionCount;
    return slot - 1u;
}

int RA_FuncElementDispatcher(void* userData, const XML_Char* name, const XML_Char**) {
    const std::size_t found = FindFunction(name);
    if (found == kFunctionCount) return 0;
    auto* const elmt = static_cast<XMLElement*>(userData);
    elmt->StartHandler = kTable[found].start;
    elmt->EndHandler = kTable[found].end;
    elmt->ExtNeeds = kTable[found].needs;
    return 1;
}
