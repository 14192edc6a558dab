#include "model/without_passwords.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vexorctl {
namespace {

constexpr std::string_view kLogon =
    "Dir = HX_LogonUser\n"
    "[Atts]type:function \n"
    "Dir = HX_LogonUser.lpszPassword\n"
    "[Atts]\n"
    "Dir = HX_LogonUser.lpszPassword\n"
    "[CD 13]:hunter\n"
    "two=2\n"
    "lpszPassword = hunter\n"
    "two=2\n"
    "Dir = HX_LogonUser\n"
    "[CD 13]:hunter\n"
    "two=2\n"
    "pFD->FuncName=HX_LogonUser\n"
    "\n";
constexpr std::string_view kCount =
    "Dir = HX_Adapter_GetCount\n"
    "[Atts]type:function \n"
    "Dir = HX_Adapter_GetCount\n"
    "pFD->FuncName=HX_Adapter_GetCount\n"
    "\n";

std::string Joined(std::string_view first, std::string_view second) {
    return std::string(first).append(second);
}

TEST(Password, OfTheDebugLogIsLeftOutWhereverItIsRepeated) {
    EXPECT_EQ(WithoutPasswords(Joined(kLogon, kCount)), Joined("Dir = HX_LogonUser\n"
                                                               "[Atts]type:function \n"
                                                               "Dir = HX_LogonUser.lpszPassword\n"
                                                               "***\n"
                                                               "pFD->FuncName=HX_LogonUser\n"
                                                               "\n",
                                                               kCount));
}

TEST(Password, OfACommandThatWasNeverServedHidesTheRestOfTheDebugLog) {
    const std::string log = "Dir = HX_LogonUser.lpszPassword\n[CD 6]:secret\nXML_Error:x at line 1";
    EXPECT_EQ(WithoutPasswords(log), "Dir = HX_LogonUser.lpszPassword\n***\n");
}

TEST(Password, BehindAKeyOrInAnElementIsStars) {
    EXPECT_EQ(WithoutPasswords("user = root\nPassword: x\nend"), "user = root\nPassword: ***\nend");
    EXPECT_EQ(WithoutPasswords("password=x"), "password= ***");
    EXPECT_EQ(WithoutPasswords("<a><lpszPassword>x</lpszPassword></a>\n"),
              "<a><lpszPassword>***</lpszPassword></a>\n");
    EXPECT_EQ(WithoutPasswords(""), "");
    EXPECT_EQ(WithoutPasswords("\n\n"), "\n\n");
}

TEST(NewestOf, ALogThatIsNotTooLongIsAllOfIt) {
    EXPECT_EQ(NewestOf(kLogon, kLogon.size()), kLogon);
    EXPECT_EQ(NewestOf("", 0), "");
}

TEST(NewestOf, TheDebugLogBeginsBehindAPasswordThatMayBeUnderWay) {
    const std::string log = Joined(kLogon, kCount);
    for (std::size_t most = kCount.size(); most < log.size(); ++most) {
        const std::string newest = NewestOf(log, most);
        EXPECT_TRUE(newest.starts_with("pFD->FuncName=")) << most << newest;
        EXPECT_EQ(newest.find("hunter"), std::string::npos) << most;
        EXPECT_TRUE(log.ends_with(newest)) << most;
    }
    EXPECT_EQ(NewestOf("Dir = F.lpszPassword\n[CD 6]:secret\nDir = F\n[CD 6]:secret\n", 40), "");
}

TEST(NewestOf, OtherLogsAreTheirLastBytes) {
    EXPECT_EQ(NewestOf("Sun one\nMon two\n", 8), "Mon two\n");
}

}  // namespace
}  // namespace vexorctl
