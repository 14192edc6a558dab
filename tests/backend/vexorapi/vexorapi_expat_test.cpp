// The run of expat over a text: what a document type may declare, and what is no document.
#include "vexorapi_expat.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "vexorapi_parse_fixture.h"

namespace {

using ExpatRun = Parse;
using LoggedExpatRun = ParseLog;

// ---- document types ----------------------------------------------------------------------------

std::string Declaring(int count, const std::string& declaration) {
    std::string text = "<!DOCTYPE r [";
    for (int i = 0; i < count; ++i) {
        std::string one = declaration;
        for (std::size_t at; (at = one.find('@')) != std::string::npos;) {
            one.replace(at, 1, std::to_string(i));
        }
        text += one;
    }
    return text + "]><r/>";
}

struct Declared {
    const char* name;
    const char* form;
    friend void PrintTo(const Declared& it, std::ostream* os) { *os << it.form; }
};

class ExpatRunOfDeclarations : public LoggedExpatRun,
                               public testing::WithParamInterface<Declared> {};

TEST_P(ExpatRunOfDeclarations, Passes256) {
    EXPECT_EQ(1, Run(Declaring(256, GetParam().form)));
    EXPECT_EQ("Dir = r\nDir = r\n", log.Text());
}

TEST_P(ExpatRunOfDeclarations, StopsAtThe257th) {
    EXPECT_EQ(0, Run(Declaring(257, GetParam().form)));
    EXPECT_EQ("XML_Error:parsing aborted at line 1", log.Text());
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ExpatRunOfDeclarations,
    testing::Values(Declared{"Entities", "<!ENTITY e@ \"text\">"},
                    Declared{"ExternalEntities", "<!ENTITY e@ SYSTEM \"file\">"},
                    Declared{"ParameterEntities", "<!ENTITY % e@ \"text\">"},
                    Declared{"Elements", "<!ELEMENT e@ (#PCDATA)>"},
                    Declared{"AttributeLists", "<!ATTLIST e@ a CDATA #IMPLIED>"},
                    Declared{"Notations", "<!NOTATION n@ SYSTEM \"file\">"}),
    [](const testing::TestParamInfo<Declared>& at) { return std::string(at.param.name); });

TEST_F(ExpatRun, CountsDeclarationsOfAllKindsTogether) {
    const char* const four =
        "<!ENTITY e@ \"t\"><!ELEMENT e@ EMPTY><!ATTLIST e@ a CDATA \"\"><!NOTATION n@ SYSTEM "
        "\"f\">";
    EXPECT_EQ(1, Run(Declaring(64, four)));
    ResetElement(elmt);
    EXPECT_EQ(0, Run(Declaring(65, four)));
}

TEST_F(ExpatRun, CountsAnewForEachCommand) {
    for (int i = 0; i < 3; ++i) {
        ResetElement(elmt);
        EXPECT_EQ(1, Run(Declaring(200, "<!ENTITY e@ \"text\">")));
    }
}

TEST_F(ExpatRun, SurvivesALongChainOfEntities) {
    std::string text = "<!DOCTYPE r [<!ENTITY e0 \"x\">";
    for (int i = 1; i < 100000; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
    }
    EXPECT_EQ(0, Run(text + "]><r>&e99999;</r>"));
}

TEST_F(ExpatRun, SurvivesTheLongestChainOfEntitiesThatPasses) {
    std::string text = "<!DOCTYPE r [<!ENTITY e0 \"x\">";
    for (int i = 1; i < 256; ++i) {
        text += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
    }
    EXPECT_EQ("end a at 1 r text 1 [x]", TextAtEnd(text + "]><r><a>&e255;</a></r>"));
}

TEST_F(ExpatRun, RefusesAnEntityThatHoldsItself) {
    EXPECT_EQ(0, Run("<!DOCTYPE r [<!ENTITY a \"&b;\"><!ENTITY b \"&a;\">]><r>&a;</r>"));
}

TEST_F(ExpatRun, NeverReadsAnExternalEntity) {
    const TemporaryRoot root;
    root.Write("/secret", "secret");
    EXPECT_EQ("end a at 1 r text 2 [12]",
              TextAtEnd("<!DOCTYPE r [<!ENTITY e SYSTEM \"" + root.Path("/secret") +
                        "\">]><r><a>1&e;2</a></r>"));
}

TEST_F(ExpatRun, NeverReadsAnExternalSubset) {
    const TemporaryRoot root;
    root.Write("/types", "<!ENTITY e \"secret\">");
    EXPECT_EQ("end a at 1 r text 2 [12]",
              TextAtEnd("<!DOCTYPE r SYSTEM \"" + root.Path("/types") + "\"><r><a>1&e;2</a></r>"));
}

// ---- texts that are no document ----------------------------------------------------------------

TEST_F(LoggedExpatRun, TellsWhatIsWrongAndInWhichLine) {
    EXPECT_EQ(0, Run("<r>\n\n<a></b></r>"));
    EXPECT_EQ("Dir = r\nDir = r.a\nXML_Error:mismatched tag at line 3", log.Text());
}

TEST_F(LoggedExpatRun, TellsThatThereIsNoElement) {
    EXPECT_EQ(0, Run(""));
    EXPECT_EQ("XML_Error:no element found at line 1", log.Text());
}

TEST_F(LoggedExpatRun, TellsOfJunkBehindTheRoot) {
    EXPECT_EQ(0, Run("<r/>\n<r/>"));
    EXPECT_EQ("Dir = r\nDir = r\nXML_Error:junk after document element at line 2", log.Text());
}

TEST_F(LoggedExpatRun, TellsOfAMissingEnd) {
    EXPECT_EQ(0, Run("<r>"));
    EXPECT_EQ("Dir = r\nXML_Error:no element found at line 1", log.Text());
}

TEST_F(LoggedExpatRun, RefusesATextLongerThanExpatTakes) {
    // Cut to expat's int, the first length is negative, which expat refuses itself; the last one
    // would be the length of the text.
    std::vector<std::size_t> lengths{std::size_t{INT_MAX} + 1, SIZE_MAX};
    if constexpr (sizeof(std::size_t) > 4) lengths.push_back((std::size_t{1} << 32) + 4);
    for (const std::size_t length : lengths) {
        EXPECT_EQ(0, RunExpat("<r/>", length, &elmt, elmt.Guard,
                              {RA_StartElement, RA_EndElement, RA_CharacterDataHandler,
                               DeclarationWatch<XMLElement>::Doctype}));
        EXPECT_EQ("", log.Text()) << length;
    }
    EXPECT_EQ(0, elmt.Depth);
}

}  // namespace
