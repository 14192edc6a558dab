// Logon and groups against databases of the test's own, and once against the host's.
#include <crypt.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "support/failing_allocations.h"
#include "support/temporary_root.h"
#include "vexorapi.h"
#include "xml_rapi_user.h"

// What crypt_r answers instead of a hash, while `override_crypt` says so. The linker sends the
// library's calls here (--wrap).
namespace {
bool override_crypt = false;
char* crypt_answer = nullptr;
}  // namespace

extern "C" {
char* __real_crypt_r(const char* password, const char* setting, crypt_data* data);

char* __wrap_crypt_r(const char* password, const char* setting, crypt_data* data) {
    return override_crypt ? crypt_answer : __real_crypt_r(password, setting, data);
}
}

namespace {

constexpr char kSha512[] = "$6$";
constexpr char kYescrypt[] = "$y$";

// The stored hash of a password, at the lowest cost that the method offers.
std::string Hash(const std::string& password, const char* method = kSha512) {
    constexpr char kRandom[] = "sixteen bytes...sixteen bytes...";
    char setting[CRYPT_GENSALT_OUTPUT_SIZE];
    const unsigned long cost = method == kSha512 ? 1000 : 1;
    if (crypt_gensalt_rn(method, cost, kRandom, 32, setting, sizeof setting) == nullptr) {
        ADD_FAILURE() << "crypt offers no " << method;
        return {};
    }
    return crypt(password.c_str(), setting);
}

// A field of a request: the text and zeroes behind it, or, for a text that is too long for it, as
// much as it holds and no NUL.
std::array<HX_U8, kUserTextSize> Field(const std::string& text) {
    std::array<HX_U8, kUserTextSize> field{};
    std::copy_n(text.begin(), std::min(text.size(), field.size()), field.begin());
    return field;
}

struct Answer {
    int code;
    int group;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out) {
    *out << "code " << answer.code << ", group " << answer.group;
}

// What stands in *UG beforehand, so that a function that leaves it alone is noticed.
constexpr auto kUntouched = static_cast<UserGroup>(77);

Answer Logon(const std::string& user, const std::string& password) {
    auto user_field = Field(user);
    auto password_field = Field(password);
    auto domain = Field("KESTREL");
    UserGroup group = kUntouched;
    const int code = HX_LogonUser(user_field.data(), domain.data(), password_field.data(), 2, 0,
                                  nullptr, &group);
    return {code, static_cast<int>(group)};
}

Answer GroupOf(const std::string& user) {
    auto user_field = Field(user);
    auto domain = Field("KESTREL");
    UserGroup group = kUntouched;
    const int code = HX_GetUserGroup(user_field.data(), domain.data(), &group);
    return {code, static_cast<int>(group)};
}

constexpr Answer kAdmin{0, 1};
constexpr Answer kValid{0, 2};
constexpr Answer kUnknown{0, 3};
constexpr Answer kNoEntry{2, 3};

std::string Shadow(const std::string& user, const std::string& hash) {
    return user + ":" + hash + ":19000:0:99999:7:::\n";
}

std::string Passwd(const std::string& user, int group = 1000) {
    return user + ":x:1000:" + std::to_string(group) + "::/home/" + user + ":/bin/sh\n";
}

// alice and bob are listed administrators, carol is an ordinary user.
class User : public testing::Test {
protected:
    User() {
        root_.Write("/etc/passwd",
                    Passwd("root", 0) + Passwd("alice") + Passwd("carol", 0) + Passwd("bob"));
        root_.Write("/etc/shadow", Shadow("root", Hash("top")) + Shadow("alice", Hash("wonder")) +
                                       Shadow("carol", Hash("song", kYescrypt)) +
                                       Shadow("bob", Hash("build")));
        root_.Write("/etc/group", "daemon:x:1:carol\nroot:x:0:alice,bob\nusers:x:100:carol\n");
    }
    void WithShadow(const std::string& lines) { root_.Write("/etc/shadow", lines); }

    TemporaryRoot root_;
};

// ---- HX_LogonUser ----

using LogonUser = User;

TEST_F(LogonUser, RootIsAnAdministrator) { EXPECT_EQ(Logon("root", "top"), kAdmin); }

TEST_F(LogonUser, RootWithAWrongPasswordIsStillAnAdministrator) {
    EXPECT_EQ(Logon("root", "bottom"), (Answer{3, 1}));
}

TEST_F(LogonUser, MembersOfTheGroupRootAreAdministrators) {
    EXPECT_EQ(Logon("alice", "wonder"), kAdmin);
    EXPECT_EQ(Logon("bob", "build"), kAdmin);
}

TEST_F(LogonUser, AMemberWithAWrongPasswordIsStillAnAdministrator) {
    EXPECT_EQ(Logon("alice", "wondr"), (Answer{3, 1}));
}

TEST_F(LogonUser, AUserOutsideTheGroupIsValid) { EXPECT_EQ(Logon("carol", "song"), kValid); }

TEST_F(LogonUser, AUserOutsideTheGroupWithAWrongPasswordIsStillValid) {
    EXPECT_EQ(Logon("carol", "Song"), (Answer{3, 2}));
}

TEST_F(LogonUser, AUserWithoutAShadowEntryIsUnknown) {
    WithShadow(Shadow("bob", Hash("build")));
    EXPECT_EQ(Logon("alice", "wonder"), kNoEntry);
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
}

TEST_F(LogonUser, AUserOfTheShadowDatabaseAloneCanLogOn) {
    root_.Write("/etc/passwd", "");
    EXPECT_EQ(Logon("carol", "song"), kValid);
}

TEST_F(LogonUser, WithoutTheGroupRootARightPasswordBelongsToAnUnknownUser) {
    root_.Write("/etc/group", "users:x:100:carol\nrooted:x:5:alice\n");
    EXPECT_EQ(Logon("alice", "wonder"), kUnknown);
    EXPECT_EQ(Logon("alice", "wrong"), (Answer{3, 3}));
}

TEST_F(LogonUser, RootNeedsNoGroup) {
    std::filesystem::remove(root_.Path("/etc/group"));
    EXPECT_EQ(Logon("root", "top"), kAdmin);
}

TEST_F(LogonUser, AGroupWithoutMembersMakesNobodyAnAdministrator) {
    root_.Write("/etc/group", "root:x:0:\n");
    EXPECT_EQ(Logon("alice", "wonder"), kValid);
}

TEST_F(LogonUser, ThePrimaryGroupDoesNotCount) {
    root_.Write("/etc/passwd", Passwd("carol", 0));
    EXPECT_EQ(Logon("carol", "song"), kValid);
}

TEST_F(LogonUser, PartsOfAMembersNameDoNotCount) {
    WithShadow(Shadow("ali", Hash("a")) + Shadow("alice2", Hash("a")));
    EXPECT_EQ(Logon("ali", "a"), kValid);
    EXPECT_EQ(Logon("alice2", "a"), kValid);
}

TEST_F(LogonUser, NamesAreCaseSensitive) {
    WithShadow(Shadow("Root", Hash("top")));
    EXPECT_EQ(Logon("Root", "top"), kValid);
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
}

TEST_F(LogonUser, TheFirstEntryOfANameCounts) {
    WithShadow(Shadow("carol", Hash("first")) + Shadow("carol", Hash("second")));
    EXPECT_EQ(Logon("carol", "first"), kValid);
    EXPECT_EQ(Logon("carol", "second"), (Answer{3, 2}));
}

TEST_F(LogonUser, LinesThatAreNoEntriesAreSkipped) {
    WithShadow("# a comment\n\nnocolon\n" + Shadow("carol", Hash("song")));
    EXPECT_EQ(Logon("carol", "song"), kValid);
}

TEST_F(LogonUser, ALastLineWithoutALineEndCounts) {
    std::string lines = Shadow("carol", Hash("song"));
    lines.pop_back();
    WithShadow(lines);
    EXPECT_EQ(Logon("carol", "song"), kValid);
}

TEST_F(LogonUser, NothingButNameAndPasswordIsLookedAt) {
    auto user = Field("alice");
    auto password = Field("wonder");
    UserGroup group = kUntouched;
    int token = 0;
    EXPECT_EQ(
        HX_LogonUser(user.data(), nullptr, password.data(), 0xFFFFFFFF, 0xFFFFFFFF, &token, &group),
        0);
    EXPECT_EQ(group, AdminUser);
    EXPECT_EQ(token, 0);
}

TEST_F(LogonUser, TheTextsRemainAsTheyWere) {
    auto user = Field("alice");
    auto password = Field("wonder");
    UserGroup group = kUntouched;
    HX_LogonUser(user.data(), nullptr, password.data(), 0, 0, nullptr, &group);
    EXPECT_EQ(user, Field("alice"));
    EXPECT_EQ(password, Field("wonder"));
}

// ---- Passwords ----

using Password = User;

TEST_F(Password, OfEitherMethodIsChecked) {
    WithShadow(Shadow("sha", Hash("secret", kSha512)) + Shadow("yes", Hash("secret", kYescrypt)));
    EXPECT_EQ(Logon("sha", "secret"), kValid);
    EXPECT_EQ(Logon("yes", "secret"), kValid);
    EXPECT_EQ(Logon("sha", "secreT"), (Answer{3, 2}));
    EXPECT_EQ(Logon("yes", "secreT"), (Answer{3, 2}));
}

TEST_F(Password, IsNotItsPrefixAndNotItsContinuation) {
    EXPECT_EQ(Logon("carol", "son"), (Answer{3, 2}));
    EXPECT_EQ(Logon("carol", "songs"), (Answer{3, 2}));
    EXPECT_EQ(Logon("carol", ""), (Answer{3, 2}));
}

TEST_F(Password, OfBytesBeyondAsciiIsChecked) {
    WithShadow(Shadow("carol", Hash("\xC3\xBC\xFF\x01")));
    EXPECT_EQ(Logon("carol", "\xC3\xBC\xFF\x01"), kValid);
    EXPECT_EQ(Logon("carol", "\xC3\xBC\xFF\x02"), (Answer{3, 2}));
}

TEST_F(Password, ThatFillsItsFieldButForTheNulIsChecked) {
    const std::string longest(127, 'p');
    WithShadow(Shadow("carol", Hash(longest)));
    EXPECT_EQ(Logon("carol", longest), kValid);
    EXPECT_EQ(Logon("carol", std::string(126, 'p')), (Answer{3, 2}));
}

TEST_F(Password, ThatIsTooLongIsWrongAndNeverItsPrefix) {
    WithShadow(Shadow("cut", Hash(std::string(127, 'p'))) +
               Shadow("filled", Hash(std::string(128, 'p'))) +
               Shadow("whole", Hash(std::string(200, 'p'))));
    EXPECT_EQ(Logon("cut", std::string(200, 'p')), (Answer{3, 2}));
    EXPECT_EQ(Logon("filled", std::string(200, 'p')), (Answer{3, 2}));
    EXPECT_EQ(Logon("whole", std::string(200, 'p')), (Answer{3, 2}));
}

TEST_F(Password, ThatIsMissingIsWrong) {
    auto user = Field("carol");
    UserGroup group = kUntouched;
    EXPECT_EQ(HX_LogonUser(user.data(), nullptr, nullptr, 0, 0, nullptr, &group), 3);
    EXPECT_EQ(group, ValidUser);
}

TEST_F(Password, ThatIsEmptyIsCheckedLikeAnyOther) {
    WithShadow(Shadow("carol", Hash("")));
    EXPECT_EQ(Logon("carol", ""), kValid);
    EXPECT_EQ(Logon("carol", " "), (Answer{3, 2}));
}

class CryptAnswers {
public:
    explicit CryptAnswers(char* answer) {
        crypt_answer = answer;
        override_crypt = true;
    }
    ~CryptAnswers() { override_crypt = false; }
    CryptAnswers(const CryptAnswers&) = delete;
    CryptAnswers& operator=(const CryptAnswers&) = delete;
};

TEST_F(Password, ThatCryptCannotHashIsWrong) {
    const CryptAnswers nothing(nullptr);
    EXPECT_EQ(Logon("carol", "song"), (Answer{3, 2}));
}

// One libcrypt answers "*0" to what it cannot hash, whatever stands in the entry.
TEST_F(Password, IsWrongWhenCryptsFailureIsWhatIsStored) {
    WithShadow(Shadow("carol", "*0"));
    char failure[] = "*0";
    const CryptAnswers failures(failure);
    EXPECT_EQ(Logon("carol", "song"), (Answer{3, 2}));
}

TEST_F(Password, WithoutMemoryIsWrong) {
    const FailingAllocations no_memory(2);  // the two entries' texts
    EXPECT_EQ(Logon("alice", "wonder"), (Answer{3, 1}));
}

TEST_F(Password, LeavesNoCopyBehind) {
    const std::string hash = Hash("wonder");
    const std::string computed = hash.substr(hash.rfind('$'));
    int blocks = 0;
    std::string found;
    {
        const FreedBlocks look([&](const char* block, std::size_t size) {
            const std::string_view bytes(block, size);
            if (bytes.find("wonder") != bytes.npos) found += "the password; ";
            if (bytes.find(computed) != bytes.npos) found += "its hash; ";
            ++blocks;
        });
        EXPECT_EQ(Logon("alice", "wonder"), kAdmin);
    }
    EXPECT_EQ(blocks, 3);  // the texts of two entries, crypt's memory
    EXPECT_EQ(found, "");
}

// ---- Whole logon commands ----

struct LogonCommand {
    const char* name;
    std::string command;
    int ok;
    std::uint32_t room = VEXORAPI_MAX_RESULT;  // for the result
};

void PrintTo(const LogonCommand& command, std::ostream* out) { *out << command.name; }

const LogonCommand kLogonCommands[] = {
    {"Served",
     "<HX_LogonUser type=\"function\"><lpszUsername>alice</lpszUsername>"
     "<lpszPassword>wonder</lpszPassword></HX_LogonUser>",
     1},
    {"ServedButTheResultDoesNotFit",
     "<HX_LogonUser type=\"function\"><lpszPassword>wonder</lpszPassword></HX_LogonUser>", 1, 10},
    {"TooLongForItsField",
     "<HX_LogonUser type=\"function\"><lpszPassword>" + std::string(1000, 'w') +
         "wonder</lpszPassword></HX_LogonUser>",
     1},
    {"InAnotherEncoding",
     "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><HX_LogonUser type=\"function\">"
     "<lpszPassword>wonder</lpszPassword></HX_LogonUser>",
     1},
    {"FromAnEntity",
     "<!DOCTYPE HX_LogonUser [<!ENTITY p \"wonder\">]><HX_LogonUser type=\"function\">"
     "<lpszPassword>&p;</lpszPassword></HX_LogonUser>",
     1},
    {"MalformedBehindThePassword",
     "<HX_LogonUser type=\"function\"><lpszUsername>alice</lpszUsername>"
     "<lpszPassword>wonder</lpszPassword></HX_LogonUsr>",
     0},
    {"MalformedInThePassword", "<HX_LogonUser type=\"function\"><lpszPassword>wonder</wrong>", 0},
    {"CutOffInThePassword", "<HX_LogonUser type=\"function\"><lpszPassword>wonder", 0},
    {"MalformedBeforeItsFunctionIsKnown",
     "<HX_LogonUser type=\"function><lpszPassword>wonder</lpszPassword></HX_LogonUser>", 0},
};

class LogonMemory : public User, public testing::WithParamInterface<LogonCommand> {};

TEST_P(LogonMemory, IsGivenBackWithoutThePassword) {
    int blocks = 0;
    int with_password = 0;
    const auto look = [&](const char* block, std::size_t size) {
        ++blocks;
        if (std::string_view(block, size).find("wonder") != std::string_view::npos) ++with_password;
    };
    const auto& [name, command, ok, room] = GetParam();
    std::string result(room, '\0');
    {
        const FreedBlocks freed(look);
        EXPECT_EQ(vexorApi(command.c_str(), result.data(), room), ok);
    }
    EXPECT_GT(blocks, 5);  // the document, and the parser's blocks
    EXPECT_EQ(with_password, 0);
}

TEST_P(LogonMemory, IsGivenBackWithoutThePasswordWhereverMemoryEnds) {
    int with_password = 0;
    const auto look = [&](const char* block, std::size_t size) {
        if (std::string_view(block, size).find("wonder") != std::string_view::npos) ++with_password;
    };
    const auto& [name, command, ok, room] = GetParam();
    std::string result(room, '\0');
    for (std::size_t granted = 0; granted < 40; ++granted) {
        const FreedBlocks freed(look);
        const FailingAllocations no_memory(granted);
        vexorApi(command.c_str(), result.data(), room);
    }
    EXPECT_EQ(with_password, 0);
}

INSTANTIATE_TEST_SUITE_P(Commands, LogonMemory, testing::ValuesIn(kLogonCommands),
                         [](const auto& test) { return std::string(test.param.name); });

// What stands in the shadow database of a user who cannot log on.
class LockedEntry : public User, public testing::WithParamInterface<const char*> {};

TEST_P(LockedEntry, TakesNoPassword) {
    WithShadow(Shadow("carol", GetParam()));
    for (const char* const password : {"", "song", "!", "*", "x", "*0", "*1", GetParam()}) {
        EXPECT_EQ(Logon("carol", password), (Answer{3, 2})) << '"' << password << '"';
    }
}

INSTANTIATE_TEST_SUITE_P(Hashes, LockedEntry,
                         testing::Values("", "!", "!!", "*", "!*", "x", "*0", "*1", "*LK*", "$6$",
                                         "$y$", "$unknown$salt$hash", "NP"));

TEST_F(Password, OfALockedHashIsWrong) {
    WithShadow(Shadow("carol", "!" + Hash("song")));
    EXPECT_EQ(Logon("carol", "song"), (Answer{3, 2}));
}

TEST_F(Password, OfAHashThatWasCutIsWrong) {
    std::string hash = Hash("song");
    hash.pop_back();
    WithShadow(Shadow("carol", hash));
    EXPECT_EQ(Logon("carol", "song"), (Answer{3, 2}));
}

// ---- User names ----

using UserName = User;

TEST_F(UserName, ThatIsMissingIsUnknown) {
    auto password = Field("top");
    UserGroup group = kUntouched;
    EXPECT_EQ(HX_LogonUser(nullptr, nullptr, password.data(), 0, 0, nullptr, &group), 2);
    EXPECT_EQ(group, UnknownUser);
    group = kUntouched;
    EXPECT_EQ(HX_GetUserGroup(nullptr, nullptr, &group), 0);
    EXPECT_EQ(group, UnknownUser);
}

TEST_F(UserName, ThatIsEmptyIsUnknownWhateverTheDatabasesSay) {
    WithShadow(Shadow("", Hash("top")));
    root_.Write("/etc/passwd", Passwd(""));
    EXPECT_EQ(Logon("", "top"), kNoEntry);
    EXPECT_EQ(GroupOf(""), kUnknown);
}

TEST_F(UserName, ThatFillsItsFieldButForTheNulIsLookedUp) {
    const std::string longest(127, 'u');
    WithShadow(Shadow(longest, Hash("song")));
    root_.Write("/etc/passwd", Passwd(longest));
    EXPECT_EQ(Logon(longest, "song"), kValid);
    EXPECT_EQ(GroupOf(longest), kValid);
}

TEST_F(UserName, ThatIsTooLongIsUnknownAndNeverItsPrefix) {
    const std::string too_long(200, 'u');
    std::string shadow;
    std::string passwd;
    for (const std::size_t length : {127U, 128U, 200U}) {
        shadow += Shadow(too_long.substr(0, length), Hash("song"));
        passwd += Passwd(too_long.substr(0, length));
    }
    WithShadow(shadow);
    root_.Write("/etc/passwd", passwd);
    EXPECT_EQ(Logon(too_long, "song"), kNoEntry);
    EXPECT_EQ(GroupOf(too_long), kUnknown);
}

// ---- HX_GetUserGroup ----

using GetUserGroup = User;

TEST_F(GetUserGroup, AnUnknownNameIsAnUnknownUser) { EXPECT_EQ(GroupOf("dave"), kUnknown); }

TEST_F(GetUserGroup, RootIsAnAdministrator) { EXPECT_EQ(GroupOf("root"), kAdmin); }

TEST_F(GetUserGroup, MembersOfTheGroupRootAreAdministrators) {
    EXPECT_EQ(GroupOf("alice"), kAdmin);
    EXPECT_EQ(GroupOf("bob"), kAdmin);
}

TEST_F(GetUserGroup, ThePrimaryGroupDoesNotCount) { EXPECT_EQ(GroupOf("carol"), kValid); }

TEST_F(GetUserGroup, WithoutTheGroupRootIsAFailure) {
    root_.Write("/etc/group", "users:x:100:carol\n");
    EXPECT_EQ(GroupOf("alice"), (Answer{1, 3}));
    EXPECT_EQ(GroupOf("carol"), (Answer{1, 3}));
}

TEST_F(GetUserGroup, OfRootNeedsNoGroup) {
    std::filesystem::remove(root_.Path("/etc/group"));
    EXPECT_EQ(GroupOf("root"), kAdmin);
}

TEST_F(GetUserGroup, OfAnUnknownNameNeedsNoGroup) {
    std::filesystem::remove(root_.Path("/etc/group"));
    EXPECT_EQ(GroupOf("dave"), kUnknown);
}

TEST_F(GetUserGroup, LooksAtTheUserDatabaseAndNotAtThePasswords) {
    std::filesystem::remove(root_.Path("/etc/shadow"));
    EXPECT_EQ(GroupOf("alice"), kAdmin);
    root_.Write("/etc/passwd", Passwd("carol"));
    EXPECT_EQ(GroupOf("alice"), kUnknown);
}

TEST_F(GetUserGroup, WithoutMemoryIsUnknown) {
    const FailingAllocations no_memory;
    EXPECT_EQ(GroupOf("alice"), kUnknown);
}

// ---- Databases ----

using Databases = User;

TEST_F(Databases, ThatAreMissingHoldNobody) {
    std::filesystem::remove_all(root_.Path("/etc"));
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
    EXPECT_EQ(GroupOf("root"), kUnknown);
}

TEST_F(Databases, ThatAreEmptyHoldNobody) {
    WithShadow("");
    root_.Write("/etc/passwd", "");
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
    EXPECT_EQ(GroupOf("root"), kUnknown);
}

TEST_F(Databases, ThatAreNoFilesHoldNobodyAndAreNotWaitedFor) {
    std::filesystem::remove(root_.Path("/etc/shadow"));
    ASSERT_EQ(mkfifo(root_.Path("/etc/shadow").c_str(), 0600), 0);
    std::filesystem::remove(root_.Path("/etc/passwd"));
    std::filesystem::create_directory(root_.Path("/etc/passwd"));
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
    EXPECT_EQ(GroupOf("root"), kUnknown);
}

TEST_F(Databases, BelowAPathThatIsTooLongHoldNobody) {
    setenv("VEXORAPI_ROOT", std::string(5000, '/').c_str(), 1);
    EXPECT_EQ(Logon("root", "top"), kNoEntry);
    EXPECT_EQ(GroupOf("root"), kUnknown);
}

// A group whose last member is dave; its line has about `bytes` bytes.
std::string GroupOfLength(std::size_t bytes) {
    std::string line = "root:x:0:";
    while (line.size() < bytes) line += "member" + std::to_string(line.size()) + ",";
    return line + "dave\n";
}

TEST_F(Databases, MayHoldALargeGroup) {
    root_.Write("/etc/passwd", Passwd("dave"));
    root_.Write("/etc/group", GroupOfLength(200000) + "other:x:1:\n");
    EXPECT_EQ(GroupOf("dave"), kAdmin);
}

TEST_F(Databases, MayHoldALargeGroupBeforeTheOneWanted) {
    root_.Write("/etc/passwd", Passwd("erin"));
    root_.Write("/etc/group", "x" + GroupOfLength(200000) + "root:x:0:erin\n");
    EXPECT_EQ(GroupOf("erin"), kAdmin);
}

TEST_F(Databases, AGroupThatFitsNowhereCountsAsMissing) {
    root_.Write("/etc/passwd", Passwd("dave"));
    root_.Write("/etc/group", GroupOfLength(std::size_t{1} << 20));
    EXPECT_EQ(GroupOf("dave"), (Answer{1, 3}));
}

TEST_F(Databases, LeaveNoMemoryBehind) {
    const std::ptrdiff_t before = LiveBlocks();
    root_.Write("/etc/group", GroupOfLength(50000));
    Logon("alice", "wonder");
    Logon("nobody", "wonder");
    GroupOf("carol");
    EXPECT_EQ(LiveBlocks(), before);
}

// Without a root prefix the host's own databases are asked.

TEST(HostDatabases, KnowRootAsAnAdministrator) { EXPECT_EQ(GroupOf("root"), kAdmin); }

TEST(HostDatabases, DoNotKnowWhoIsNotInThem) {
    EXPECT_EQ(GroupOf("vexorapi-test-nobody"), kUnknown);
    EXPECT_EQ(Logon("vexorapi-test-nobody", "secret"), kNoEntry);
}

// ---- HX_GetUserName ----

TEST(GetUserName, IsAlwaysRoot) {
    std::array<HX_U8, 8> name{1, 2, 3, 4, 5, 6, 7, 8};
    std::array<HX_U8, 2> domain{1, 2};
    EXPECT_EQ(HX_GetUserName(name.data(), 128, domain.data(), 128), 0);
    EXPECT_EQ(name, (std::array<HX_U8, 8>{'r', 'o', 'o', 't', 0, 6, 7, 8}));
    EXPECT_EQ(domain, (std::array<HX_U8, 2>{1, 2}));
}

TEST(GetUserName, DoesNotLookAtSizesAndDomain) {
    std::array<HX_U8, 8> name{};
    EXPECT_EQ(HX_GetUserName(name.data(), 0, nullptr, 0), 0);
    EXPECT_EQ(name, (std::array<HX_U8, 8>{'r', 'o', 'o', 't', 0, 0, 0, 0}));
}

}  // namespace
