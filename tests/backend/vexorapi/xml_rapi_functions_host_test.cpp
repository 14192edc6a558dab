// The functions that the library answers from the host: users and groups by its databases, flash
// images by its files. Here from command to result; what they do is tested where they are made.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "debug_log.h"
#include "hxfake.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "vxevent_golden.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Host : public testing::Test {
protected:
    Host() {
        // Memory that nobody has written is not zero by chance.
        mallopt(M_PERTURB, 0xA5);
        hxfake::Reset();
    }
    ~Host() override {
        hxfake::Reset();
        mallopt(M_PERTURB, 0);
    }

    static std::string Ask(const std::string& name, const std::string& children) {
        const Reply reply = Send("<" + name + " type=\"function\">" + children + "</" + name + ">");
        EXPECT_EQ(1, reply.ok);
        return reply.text;
    }
    static std::string Golden(const std::string& name) {
        std::string text = GoldenText("functions/" + name + ".xml");
        EXPECT_TRUE(text.ends_with(">\n"));
        text.pop_back();
        return text;
    }
    static std::string Element(const std::string& name, const std::string& text) {
        return "<" + name + ">" + text + "</" + name + ">";
    }

    TemporaryRoot root;
};

// ---- users -------------------------------------------------------------------------------------

// The result of a user function: one element, whatever its writers close.
std::string UserResult(const std::string& name, int code, const std::string& group) {
    return "<" + name +
           " type=\"function\">\n"
           "  <RetVal type=\"U8\">" +
           std::to_string(code) +
           "</RetVal>\n"
           "  <UserGroup type=\"string\">" +
           group + "</UserGroup>\n</" + name + ">";
}

class Users : public Host {
protected:
    Users() {
        // The password of both is "open sesame".
        constexpr char kHash[] =
            "$6$rounds=1000$kestrelsalt$"
            "n9AED6v1Xp5WQ2tr4LjXSy4/1iWG/dmJOjDAyXr4a37ow5Wxa9j4DUC.ud.muPSWXk/"
            "odT6YOlNo1EiTknmR10";
        const std::string hash = kHash;
        root.Write("/etc/shadow", "root:" + hash + ":19000:0:99999:7:::\n" + "guest:" + hash +
                                      ":19000:0:99999:7:::\n");
        root.Write("/etc/passwd",
                   "root:x:0:0::/root:/bin/sh\nguest:x:1000:1000::/home/guest:/bin/sh\n");
        root.Write("/etc/group", "root:x:0:\n");
    }

    static std::string Logon(const std::string& user, const std::string& password,
                             const std::string& more = "") {
        return Ask("HX_LogonUser", Element("lpszUsername", user) +
                                       Element("lpszDomain", "KESTREL") +
                                       Element("lpszPassword", password) + more);
    }
    static std::string GroupOf(const std::string& user) {
        return Ask("HX_GetUserGroup",
                   Element("lpszUsername", user) + Element("lpszDomain", "KESTREL"));
    }
};

TEST_F(Users, LogOnWithTheirPassword) {
    EXPECT_EQ(Golden("HX_LogonUser"), Logon("root", "open sesame"));
    EXPECT_EQ(UserResult("HX_LogonUser", 0, "ValidUser"), Logon("guest", "open sesame"));
}

TEST_F(Users, DoNotLogOnWithAnotherPassword) {
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "Administrator"), Logon("root", "open sesame!"));
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "ValidUser"), Logon("guest", "open"));
}

TEST_F(Users, DoNotLogOnWithoutAPassword) {
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "Administrator"),
              Ask("HX_LogonUser", Element("lpszUsername", "root")));
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "Administrator"), Logon("root", ""));
}

TEST_F(Users, DoNotLogOnWithoutAName) {
    EXPECT_EQ(UserResult("HX_LogonUser", 2, "UnknownUser"), Ask("HX_LogonUser", ""));
    EXPECT_EQ(UserResult("HX_LogonUser", 2, "UnknownUser"),
              Ask("HX_LogonUser", Element("lpszPassword", "open sesame")));
}

TEST_F(Users, AreTakenFromTheLastOfRepeatedElements) {
    EXPECT_EQ(Golden("HX_LogonUser"),
              Logon("guest", "wrong",
                    Element("lpszUsername", "root") + Element("lpszPassword", "open sesame")));
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "Administrator"),
              Logon("root", "open sesame", Element("lpszPassword", "open")));
}

TEST_F(Users, AreKeptFromElementsThatAreRepeatedEmpty) {
    EXPECT_EQ(Golden("HX_LogonUser"),
              Logon("root", "open sesame", "<lpszUsername/><lpszPassword></lpszPassword>"));
}

TEST_F(Users, AreTakenFromNestedElements) {
    EXPECT_EQ(Golden("HX_LogonUser"),
              Ask("HX_LogonUser", "<a><b>" + Element("lpszUsername", "root") +
                                      Element("lpszPassword", "open sesame") + "</b></a>"));
}

TEST_F(Users, AreNeverTakenForAPrefixOfWhatWasSent) {
    // 127 characters are the longest that the fields hold.
    const std::string name(127, 'n');
    const std::string blanks(128 - 11, ' ');
    EXPECT_EQ(UserResult("HX_LogonUser", 2, "UnknownUser"), Logon(name, "open sesame"));
    EXPECT_EQ(UserResult("HX_LogonUser", 2, "UnknownUser"), Logon(name + "n", "open sesame"));
    EXPECT_EQ(UserResult("HX_LogonUser", 3, "Administrator"),
              Logon("root", std::string(1500, 'p')));
    root.Write("/etc/passwd", name + ":x:1000:1000::/:/bin/sh\n");
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "ValidUser"), GroupOf(name));
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "UnknownUser"), GroupOf(name + "n"));
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "UnknownUser"), GroupOf(name + "nnnn"));
}

TEST_F(Users, HaveAGroupWithoutAPassword) {
    EXPECT_EQ(Golden("HX_GetUserGroup"), GroupOf("guest"));
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "Administrator"), GroupOf("root"));
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "UnknownUser"), GroupOf("nobody"));
    EXPECT_EQ(UserResult("HX_GetUserGroup", 0, "UnknownUser"), Ask("HX_GetUserGroup", ""));
}

TEST_F(Users, HaveNoGroupOnAHostWithoutTheGroupRoot) {
    root.Write("/etc/group", "wheel:x:10:\n");
    EXPECT_EQ(UserResult("HX_GetUserGroup", 1, "UnknownUser"), GroupOf("guest"));
    EXPECT_EQ(UserResult("HX_LogonUser", 0, "UnknownUser"), Logon("guest", "open sesame"));
}

TEST_F(Users, AreRootWhoeverAsks) {
    EXPECT_EQ(Golden("HX_GetUserName"), Ask("HX_GetUserName", ""));
    EXPECT_EQ(Golden("HX_GetUserName"),
              Ask("HX_GetUserName", Element("UserName", "guest") + Element("DomainName", "K")));
}

TEST_F(Users, AreNoAffairOfTheController) {
    Logon("root", "open sesame");
    GroupOf("root");
    Ask("HX_GetUserName", "");
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

// ---- texts in the debug log --------------------------------------------------------------------

class LoggedText : public Host {
protected:
    // The lines in which the log tells a text parameter.
    std::string Logged(const std::string& name, const std::string& children) const {
        const DebugLog log(root);
        Ask(name, children);
        std::string lines;
        const std::string text = log.Text();
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at);
            const std::string line = text.substr(at, end - at);
            // The numbers that are read, and the paths of the elements, have lines of their own.
            if (line.find(" = ") != std::string::npos && !line.starts_with("Dir = ")) {
                lines += line + "\n";
            }
            at = end == std::string::npos ? end : end + 1;
        }
        return lines;
    }
};

TEST_F(LoggedText, IsThatOfEachTextParameter) {
    EXPECT_EQ("lpszUsername = guest\nlpszDomain = K\nlpszPassword = open sesame\n",
              Logged("HX_LogonUser", Element("lpszUsername", "guest") + Element("lpszDomain", "K") +
                                         Element("lpszPassword", "open sesame")));
    EXPECT_EQ(
        "lpszUsername = guest\nlpszDomain = K\n",
        Logged("HX_GetUserGroup", Element("lpszUsername", "guest") + Element("lpszDomain", "K")));
    EXPECT_EQ("filepath = /a b\n", Logged("HX_Flash_Option", Element("filepath", "/a b")));
    EXPECT_EQ("filepath = /a b\n", Logged("HX_BIOS_Version", Element("filepath", "/a b")));
    for (const char* function :
         {"HX_LD_Create", "HX_LD_GetMaxSize", "HX_LD_SetConfig", "HX_LD_Create_OnDG",
          "HX_LD_Modify_OnDG", "HX_CreateOrModify_VD", "HX_DG_Create", "HX_DG_GetSizeOnly",
          "HX_DG_Modify", "HX_DG_SetConfig"}) {
        EXPECT_EQ("Name = mine\n", Logged(function, Element("Name", "mine"))) << function;
    }
}

TEST_F(LoggedText, IsWholeWhereItsFieldIsShorter) {
    EXPECT_EQ("Name = sixteen letters!\n",
              Logged("HX_DG_Create", Element("Name", "sixteen letters!")));
    EXPECT_EQ("lpszPassword = " + std::string(200, 'p') + "\n",
              Logged("HX_LogonUser", Element("lpszPassword", std::string(200, 'p'))));
}

TEST_F(LoggedText, IsNoneOfNumbersAndOfEmptyElements) {
    EXPECT_EQ("", Logged("HX_DG_Create", Element("RaidMode", "5") + Element("Name", "")));
}

// ---- flash images ------------------------------------------------------------------------------

class FlashImage : public Host {
protected:
    static std::string Status(int code) {
        return "<HX_Flash_Option type=\"function\">\n  <RetVal type=\"U8\">" +
               std::to_string(code) + "</RetVal>\n</HX_Flash_Option>";
    }
    // From a file to adapter 1, as image 3.
    static std::string Send15(const std::string& path, const std::string& more = "") {
        return Ask("HX_Flash_Option", Element("Actions", "15") + Element("AdapterID", "1") +
                                          Element("Type", "3") + Element("filepath", path) + more);
    }
};

TEST_F(FlashImage, GoesToTheAdapter) {
    root.Write("/image", "bytes");
    std::string sent;
    hxfake::On<&HX_Flash_Bin>().Inspect([&](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        sent.assign(reinterpret_cast<char*>(piece->Data), piece->DataLength);
    });
    EXPECT_EQ(Golden("HX_Flash_Option"), Send15(root.Path("/image")));
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Flash_Bin(1, 15, 3, &)"));
    EXPECT_EQ("bytes", sent);
}

TEST_F(FlashImage, ComesFromTheAdapter) {
    hxfake::On<&HX_Flash_Bin>().Always(0, [](HX_U8, HX_U8, HX_U8, Flash_Data* piece) {
        piece->Data[0] = 'x';
        piece->DataLength = 1;
        piece->isLastPage = 1;
    });
    EXPECT_EQ(Status(0), Ask("HX_Flash_Option",
                             Element("filepath", root.Path("/image")) + Element("Type", "259") +
                                 Element("AdapterID", "260") + Element("Actions", "496")));
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Flash_Bin(4, 240, 3, &)"));
    EXPECT_EQ("x", root.Read("/image"));
}

TEST_F(FlashImage, ReportsTheControllersCode) {
    root.Write("/image", "bytes");
    hxfake::On<&HX_Flash_Bin>().Always(201);
    EXPECT_EQ(Status(201), Send15(root.Path("/image")));
}

TEST_F(FlashImage, IsTakenFromTheLastOfRepeatedPaths) {
    root.Write("/image", "bytes");
    EXPECT_EQ(Status(0), Send15(std::string(300, '/'),
                                Element("filepath", root.Path("/image")) + "<filepath/>"));
    EXPECT_EQ(Status(1), Send15(root.Path("/image"), Element("filepath", root.Path("/other"))));
}

TEST_F(FlashImage, IsTakenFromANestedPath) {
    root.Write("/image", "bytes");
    Ask("HX_Flash_Option", "<a><b>" + Element("Actions", "15") +
                               Element("filepath", root.Path("/image")) + "</b></a>");
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Flash_Bin(0, 15, 0, &)"));
}

TEST_F(FlashImage, IsNotFoundByAPartOfItsPath) {
    // A path of 255 characters is the longest; slashes make it long.
    const std::string path = root.Path("/image");
    root.Write("/image", "bytes");
    EXPECT_EQ(Status(0), Send15(std::string(255 - path.size(), '/') + path));
    EXPECT_EQ(Status(1), Send15(std::string(256 - path.size(), '/') + path));
    EXPECT_EQ(Status(1), Send15(std::string(255 - path.size(), '/') + path + "X"));
    EXPECT_EQ(Status(1), Send15(std::string(1000, '/') + path));
}

TEST_F(FlashImage, NeedsAPath) {
    EXPECT_EQ(Status(1), Ask("HX_Flash_Option", Element("Actions", "15")));
    EXPECT_EQ(Status(1), Ask("HX_Flash_Option", Element("Actions", "240")));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(FlashImage, StaysWhereItIsWithoutAnAction) {
    EXPECT_EQ(Status(0), Ask("HX_Flash_Option", Element("filepath", root.Path("/image"))));
    EXPECT_EQ(Status(0), Ask("HX_Flash_Option",
                             Element("filepath", root.Path("/image")) + Element("Actions", "14")));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
    EXPECT_FALSE(root.Exists("/image"));
}

// ---- the version of a BIOS image
// -----------------------------------------------------------------

class BiosImage : public Host {
protected:
    // A header whose version is 3.1.0.12, of the subsystem beef:0a1b.
    void WriteImage() const {
        std::string header(64, '\0');
        header.replace(6, 8, std::string("3\0001\0000\00012", 8));
        header.replace(32, 4, "\xEF\xBE\x1B\x0A");
        root.Write("/bios", header);
    }
    static std::string Version(const std::string& path) {
        return Ask("HX_BIOS_Version", Element("filepath", path));
    }
    static constexpr char kNone[] =
        "<HX_BIOS_Version type=\"function\">\n"
        "  <RetVal type=\"U8\">1</RetVal>\n"
        "  <BIOSInfo type=\"struct VX_BIOS_Version\">\n"
        "    <BIOSVersion type=\"struct Version_Info\">\n"
        "      <VerMajor type=\"U16\">0</VerMajor>\n"
        "      <VerMinor type=\"U16\">0</VerMinor>\n"
        "      <VerOEM type=\"U16\">0</VerOEM>\n"
        "      <VerBuild type=\"U16\">0</VerBuild>\n"
        "    </BIOSVersion>\n"
        "    <VenID type=\"U16\">0</VenID>\n"
        "    <DevID type=\"U16\">0</DevID>\n"
        "  </BIOSInfo>\n"
        "</HX_BIOS_Version>";
};

TEST_F(BiosImage, TellsItsVersion) {
    WriteImage();
    EXPECT_EQ(Golden("HX_BIOS_Version"), Version(root.Path("/bios")));
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(BiosImage, HasNoVersionWhenItIsMissing) {
    EXPECT_EQ(kNone, Version(root.Path("/bios")));
    EXPECT_EQ(kNone, Ask("HX_BIOS_Version", ""));
}

TEST_F(BiosImage, HasNoVersionWhenItsHeaderIsCut) {
    root.Write("/bios", std::string(63, '1'));
    EXPECT_EQ(kNone, Version(root.Path("/bios")));
}

TEST_F(BiosImage, IsNotFoundByAPartOfItsPath) {
    WriteImage();
    const std::string path = root.Path("/bios");
    EXPECT_EQ(Golden("HX_BIOS_Version"), Version(std::string(255 - path.size(), '/') + path));
    EXPECT_EQ(kNone, Version(std::string(255 - path.size(), '/') + path + "X"));
}

}  // namespace
