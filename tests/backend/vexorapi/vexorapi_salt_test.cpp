// The seed of expat's hash tables, which nobody who writes commands may know. A program of its own,
// because a process draws one only.
#include <expat.h>
#include <gtest/gtest.h>
#include <sys/types.h>

#include <cstddef>
#include <cstring>
#include <vector>

#include "vexorapi_parse.h"

namespace {

// What the kernel gives, and whether it gives anything.
bool kernel_gives = false;
constexpr unsigned long kGiven = 0x5EED1234;
int asked = 0;

std::vector<unsigned long> salts;

}  // namespace

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
ssize_t __wrap_getrandom(void* bytes, std::size_t size, unsigned) {
    ++asked;
    if (!kernel_gives || size != sizeof kGiven) return -1;
    std::memcpy(bytes, &kGiven, size);
    return static_cast<ssize_t>(size);
}

int __wrap_XML_SetHashSalt(XML_Parser, unsigned long salt) {
    salts.push_back(salt);
    return 1;
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

int Parse() {
    XMLElement elmt;
    ResetElement(elmt);
    return RunExpat("<r/>", 4, &elmt, elmt.Guard,
                    {RA_StartElement, RA_EndElement, RA_CharacterDataHandler,
                     DeclarationWatch<XMLElement>::Doctype});
}

TEST(HashSalt, IsDrawnFromTheKernelOncePerProcess) {
    // Without entropy expat finds its own salt, and the next parse asks again.
    EXPECT_EQ(1, Parse());
    EXPECT_EQ(1, asked);
    EXPECT_TRUE(salts.empty());

    kernel_gives = true;
    EXPECT_EQ(1, Parse());
    EXPECT_EQ(1, Parse());
    EXPECT_EQ(2, asked);
    EXPECT_EQ((std::vector<unsigned long>{kGiven, kGiven}), salts);
}

}  // namespace
