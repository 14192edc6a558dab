// Which databases are taken for state files, and the steps from version to version.
#include "store/hxsim_upgrade.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "controllers/virtual/store/tables_of_version_1.h"
#include "store/hxsim_sqlite.h"
#include "store/hxsim_store_error.h"
#include "store/hxsim_tables.h"

namespace hxsim {
namespace {

class StateFileVersion : public testing::Test {
protected:
    std::int64_t Version() { return connection_.Number("PRAGMA user_version"); }

    Connection connection_{":memory:"};
};

// Every column of every table: "disk.id INTEGER", whether it may be null and its place in the key.
std::vector<std::string> ColumnsOf(const Connection& connection) {
    Statement statement = connection.Prepare(
        "SELECT tables.name || '.' || columns.name || ' ' || columns.type || ' ' || "
        "columns.\"notnull\" || ' ' || columns.pk FROM sqlite_schema AS tables, "
        "pragma_table_info(tables.name) AS columns ORDER BY 1");
    std::vector<std::string> names;
    while (statement.Step()) names.emplace_back(statement.Bytes(0));
    return names;
}

// A column that is added without a step, or whose step makes something else, leaves every state
// file of a release unreadable.
TEST_F(StateFileVersion, OfTheFirstFilesLeadsToTodaysTables) {
    connection_.Execute(kTablesOfVersion1);
    connection_.Execute("PRAGMA user_version = 1");
    Upgrade(connection_, "file", kUpgradeSteps, kSchemaVersion);
    const Connection today(":memory:");
    MakeTables(today);
    const std::vector<std::string> made = ColumnsOf(today);
    const std::vector<std::string> upgraded = ColumnsOf(connection_);
    ASSERT_FALSE(made.empty());
    std::vector<std::string> different;
    std::ranges::set_symmetric_difference(made, upgraded, std::back_inserter(different));
    EXPECT_THAT(different, testing::IsEmpty());
}

constexpr UpgradeStep kSteps[] = {
    {1, "CREATE TABLE shelf (colour TEXT NOT NULL)"},
    {2, "INSERT INTO shelf VALUES ('grey')"},
};

class UpgradeByTwoSteps : public StateFileVersion {
protected:
    void ExpectUpgraded() {
        Upgrade(connection_, "file", kSteps, 3);
        EXPECT_EQ(Version(), 3);
        EXPECT_EQ(connection_.Number("SELECT count(*) FROM shelf"), 1);
    }
};

TEST_F(UpgradeByTwoSteps, TakesTheFirstVersionThroughBoth) {
    connection_.Execute("PRAGMA user_version = 1");
    ExpectUpgraded();
}

TEST_F(UpgradeByTwoSteps, SkipsThoseBeforeTheVersion) {
    connection_.Execute("CREATE TABLE shelf (colour TEXT NOT NULL)");
    connection_.Execute("PRAGMA user_version = 2");
    ExpectUpgraded();
}

TEST_F(StateFileVersion, ThatIsWantedNeedsNoStep) {
    connection_.Execute("PRAGMA user_version = 3");
    Upgrade(connection_, "file", {}, 3);
    EXPECT_EQ(Version(), 3);
}

TEST_F(StateFileVersion, BehindWhichNoStepBeginsIsRefused) {
    EXPECT_THROW(Upgrade(connection_, "file", kSteps, 3), StoreError);
    EXPECT_EQ(Version(), 0);
}

TEST_F(StateFileVersion, OfANewerProgramIsRefused) {
    connection_.Execute("PRAGMA user_version = 4");
    EXPECT_THROW(Upgrade(connection_, "file", kSteps, 3), StoreError);
    EXPECT_EQ(Version(), 4);
}

TEST_F(StateFileVersion, CountsOnlyInAStateFile) {
    EXPECT_FALSE(IsStateFile(connection_, "file")) << "empty";
    connection_.Execute("CREATE TABLE diary (day TEXT)");
    EXPECT_THROW(IsStateFile(connection_, "file"), StoreError);
    connection_.Execute("PRAGMA application_id = " + std::to_string(kApplicationId));
    EXPECT_TRUE(IsStateFile(connection_, "file"));
}

}  // namespace
}  // namespace hxsim
