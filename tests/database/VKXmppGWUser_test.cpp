#include <gmock/gmock.h>

#include <future>

#include "BackendDatabase.h"
#include "DatabaseCells.h"
#include "RecordColumns.h"
#include "VKDBiXmppGWUser.h"
#include "VKRDBXmppGWUser.h"
#include "VKSQLite3Dialect.h"
#include "VKSQLite3XmppGWUser.h"
#include "VKSha256.h"
#include "VKUser.h"
#include "VKnetwork.h"

namespace {

VKXmppGWUser User(const std::string& login, const std::string& name)
{
    VKXmppGWUser user;
    user.type = VKXmppGWUserNormal;
    user.user_id = login;
    user.user_password = "secret of " + login;
    user.name = name;
    user.ip = "10.0.0.1";
    user.enabled = true;
    return user;
}

class VKXmppGWUserTest : public BackendDatabase
{
protected:
    unsigned long Add(VKXmppGWUser user)
    {
        EXPECT_TRUE(users->Add(&user, false));
        return user.id;
    }

    /// A user of the server; the entity for them is not needed to read their names.
    void AddServerUser(unsigned long id, const std::string& name)
    {
        VK_USER user;
        user.id = id;
        vk::SetText(user.name, name, "name");
        const vk::SqlDialect& dialect = OnFiles() ? static_cast<const vk::SqlDialect&>(vk::SQLite3Dialect::Get())
                                                  : vk::PostgreSqlDialect::Get();
        const std::string statement = vk::InsertText(dialect, vk::kUserTable, user, vk::RowId::FromRecord);
        if (OnFiles())
            RunOn(dir / "users.sdb", statement + ";");
        else
            server->ExecuteCommand(statement);
    }

    /// Logins of the visible accounts with their owners, in the view's order.
    std::string View(bool visibleOnly = true)
    {
        std::vector<VKXmppGWUserView> view;
        EXPECT_TRUE(users->Get(&view, visibleOnly));
        std::string shown;
        for (const VKXmppGWUserView& user : view)
            shown += user.user_id + (user.vk_user_name.empty() ? "" : "/" + user.vk_user_name) + " ";
        return shown;
    }

    std::unique_ptr<VKDBiXmppGWUser> users{VKDBiXmppGWUser::CreateInstance(&system)};
};

VK_ON_BOTH_BACKENDS(VKXmppGWUserTest);

} // namespace

TEST(VKXmppGWUserTable, ColumnsAreAsOtherProgramsKnowThem)
{
    EXPECT_STREQ(VKSQLite3XmppGWUser::tTableDesc[0].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, type INTEGER, user_id VARCHAR(50) NOT NULL, user_password "
                 "VARCHAR(128) NOT NULL, name VARCHAR(50) NOT NULL, nick_name VARCHAR(50), resource VARCHAR(50), ip "
                 "VARCHAR(50) NOT NULL, creation_time INTEGER, enabled BOOLEAN, vk_user_id INTEGER, enable_readonly "
                 "BOOLEAN, enable_hidden BOOLEAN, enable_roster BOOLEAN, enable_multi_login BOOLEAN, misc_settings "
                 "TEXT");
    const char* const words[] = {"None", "Emergency", "MXPCarrier", "Normal", "XmppGWUser"};
    for (int type = 0; type < 5; ++type) {
        EXPECT_EQ(VKDBiXmppGWUser::GetUserTypeString(static_cast<VKXmppGWUserType>(type)), words[type]);
        EXPECT_EQ(VKDBiXmppGWUser::GetUserType(words[type]), type);
    }
    EXPECT_EQ(VKDBiXmppGWUser::GetUserType("emergency"), VKXmppGWUserEmergency);
    EXPECT_EQ(VKDBiXmppGWUser::GetUserType("Robot"), VKXmppGWUserNone);
}

TEST_P(VKXmppGWUserTest, TheSystemMakesItsOwnAccountsOnce)
{
    std::vector<VKXmppGWUser> made;
    ASSERT_TRUE(users->Get(&made));
    ASSERT_EQ(made.size(), 3u);
    std::string accounts;
    for (const VKXmppGWUser& user : made) {
        EXPECT_EQ(user.user_password, vk::Sha256Text(user.user_id));
        EXPECT_GT(user.creation_time, 1700000000);
        accounts += Columns(vk::kXmppGWUserTable.fields, user,
                            "user_id name nick_name resource ip type enabled enable_readonly enable_hidden "
                            "enable_roster enable_multi_login") + "\n";
    }
    const std::string ip = VKutilGetLocalHostIp();
    EXPECT_EQ(accounts, "_vk_agent_ _vk_agent_  _vk_agent_ " + ip + " 4 1 1 1 0 0\n" +
                            "_vk_emerg_user_ _vk_emerg_user_    4 1 1 1 0 1\n" +
                            "_vk_msgr_user_ _vk_msgr_user_   " + ip + " 4 1 1 1 0 1\n");
    EXPECT_EQ(users->GetTotalRecordCount(true), 0);

    EXPECT_TRUE(users->Delete(made[1].id));
    VKDBiXmppGWUser::s_ulDefaultVKUserID = 7;
    users.reset(VKDBiXmppGWUser::CreateInstance(&system));
    EXPECT_EQ(users->GetTotalRecordCount(false), 3);
    VKXmppGWUser again;
    EXPECT_TRUE(users->GetByName(&again, "_VK_EMERG_USER_", false));
    EXPECT_GT(again.id, made[2].id);
    EXPECT_EQ(again.vk_user_id, 0u);
    EXPECT_TRUE(users->GetByID(made[0].id, &again, false)) << "what was there stays";
    EXPECT_TRUE(users->Delete(made[0].id) && users->PopulateDefaultUsers());
    EXPECT_TRUE(users->GetByName(&again, "_vk_agent_", false));
    EXPECT_EQ(again.vk_user_id, 7u);
    VKDBiXmppGWUser::s_ulDefaultVKUserID = 0;
}

TEST_P(VKXmppGWUserTest, EveryFieldComesBackAndLoginsAreFoundWhateverTheCase)
{
    VKXmppGWUser added;
    FillColumns(vk::kXmppGWUserTable.fields, added);
    added.type = VKXmppGWUserNormal;
    added.user_id = "Ann'1";
    added.creation_time = 5000000000;
    added.misc_settings = std::string(5000, 'x') + R"({"a":"it's"})";
    ASSERT_TRUE(users->Add(&added, false));
    const auto expectSame = [&] {
        VKXmppGWUser read;
        ASSERT_TRUE(users->GetByID(added.id, &read, false));
        EXPECT_EQ(AllColumns(vk::kXmppGWUserTable.fields, read), AllColumns(vk::kXmppGWUserTable.fields, added));
    };
    expectSame();
    added.name = "Anna";
    added.creation_time = 1;
    added.enable_hidden = !added.enable_hidden;
    added.type = VKXmppGWUserEmergency;
    ASSERT_TRUE(users->Modify(&added));
    added.enabled = !added.enabled;
    ASSERT_TRUE(users->UpdateStatus(added.id, added.enabled));
    expectSame();

    VKXmppGWUser read;
    EXPECT_TRUE(users->GetByName(&read, "ANN'1", false));
    EXPECT_FALSE(users->GetByName(&read, "Anna", false)) << "the login, not the name";
    EXPECT_EQ(read.id, 0u);
    EXPECT_EQ(users->GetIDByName("aNNa"), added.id);
    EXPECT_EQ(users->GetIDByName("ANN'1"), 0u);
    unsigned long holder = 0;
    EXPECT_FALSE(users->IsUniqueName("ann'1", &holder));
    EXPECT_EQ(holder, added.id);
    EXPECT_FALSE(users->IsUniqueName("ann'1", nullptr));
    EXPECT_TRUE(users->IsUniqueName("anna", &holder));
    std::map<unsigned long, std::string> names;
    EXPECT_TRUE(users->GetAllNameList(names));
    EXPECT_EQ(names.size(), 4u);
    EXPECT_EQ(names[added.id], "Anna");

    EXPECT_TRUE(users->IsXmppGWUserPresent(added.id));
    EXPECT_TRUE(users->Delete(added.id));
    EXPECT_FALSE(users->IsXmppGWUserPresent(added.id));
    EXPECT_FALSE(users->Delete(added.id) || users->Modify(&added) || users->UpdateStatus(added.id, 1));
}

TEST_P(VKXmppGWUserTest, WhatDoesNotFitIsRefusedByNameAndNoPasswordIsTold)
{
    VKXmppGWUser user = User(std::string(51, 'x'), "name");
    EXPECT_THAT(ErrorOf([&] { users->Add(&user, false); }), testing::HasSubstr("user_id"));
    user = User("zero", std::string("a\0b", 3));
    EXPECT_THAT(ErrorOf([&] { users->Add(&user, false); }), testing::HasSubstr("name"));
    user = User("ann", "Ann");
    user.user_password = "hunter2 ";
    user.misc_settings = std::string(70000, 'x');
    const std::string error = ErrorOf([&] { users->Add(&user, false); });
    EXPECT_NE(error, "");
    EXPECT_THAT(error, testing::Not(testing::HasSubstr("hunter2")));
    EXPECT_EQ(users->GetTotalRecordCount(true), 0);
}

TEST_P(VKXmppGWUserTest, TheViewIsFilteredSortedAndPaged)
{
    AddServerUser(1, "root");
    AddServerUser(2, "Operator");
    const auto add = [&](const char* login, const char* name, VKXmppGWUserType type, unsigned long owner,
                         bool enabled) {
        VKXmppGWUser user = User(login, name);
        user.type = type;
        user.vk_user_id = owner;
        user.enabled = enabled;
        Add(user);
    };
    add("a", "Cy_d", VKXmppGWUserNormal, 2, true);
    add("C", "ann", VKXmppGWUserEmergency, 0, true);
    add("b", "Bob%", VKXmppGWUserMXPCarrier, 1, false);
    EXPECT_EQ(View(), "C b/root a/Operator ") << "by name when nothing else is asked for";
    EXPECT_THAT(View(false), testing::HasSubstr("_vk_agent_ "));

    using Sort = VKDBiXmppGWUser::SortFld;
    const auto sorted = [&](Sort field, bool ascending) {
        users->SetSort(field, ascending);
        return View();
    };
    EXPECT_EQ(sorted(Sort::SortType, true), "C b/root a/Operator ");
    EXPECT_EQ(sorted(Sort::SortType, false), "a/Operator b/root C ");
    EXPECT_EQ(sorted(Sort::SortUserID, true), "a/Operator b/root C ");
    EXPECT_EQ(sorted(Sort::SortUserID, false), "C b/root a/Operator ");
    EXPECT_EQ(sorted(Sort::SortName, true), "C b/root a/Operator ");
    EXPECT_EQ(sorted(Sort::SortName, false), "a/Operator b/root C ");
    EXPECT_EQ(sorted(Sort::SortEnabled, true).substr(0, 6), "b/root");
    EXPECT_THAT(sorted(Sort::SortVKUserName, true), testing::HasSubstr("a/Operator b/root "));
    users->SetFilterAssignedVKUser(2);
    EXPECT_EQ(View(), "a/Operator ");
    users->SetFilterAssignedVKUser(0);

    const std::pair<const char*, const char*> filters[] = {{"*", "C b/root a/Operator "},
                                                           {"", "C b/root a/Operator "},
                                                           {"B", "b/root "},
                                                           {"bob%", "b/root "},
                                                           {"%", ""},
                                                           {"cy_", "a/Operator "},
                                                           {"b_", ""},
                                                           {"'", ""}};
    users->ClearSort();
    for (const auto& [filter, shown] : filters) {
        users->SetFilter(filter);
        EXPECT_EQ(View(), shown) << filter;
    }
    users->ClearFilter();

    users->SetSort(Sort::SortUserID, true);
    users->SetFilter(2, 2);
    EXPECT_EQ(View(), "C ");
    EXPECT_EQ(users->GetPageCount(), 2);
    EXPECT_EQ(users->GetTotalRecords(), 3);
    users->SetFilter(3, 1);
    EXPECT_EQ(View(), "a/Operator b/root C ");
    EXPECT_EQ(users->GetPageCount(), 1);
    users->SetFilter(0, 0);
    EXPECT_EQ(View(), "a/Operator b/root C ");
}

TEST_P(VKXmppGWUserTest, RecordsFromAnotherBackendKeepTheirIds)
{
    const auto store = MakeStore<vk::SqlXmppGWUser, VKSQLite3XmppGWUser, VKRDBXmppGWUser>();
    std::vector<VKXmppGWUser> moved = {User("a", "a"), User("b", "b")};
    moved[0].id = 70;
    moved[1].id = 71;
    ASSERT_TRUE(store->ConvertRecords(moved));
    EXPECT_EQ(store->GetIDByName("b"), 71u);
    EXPECT_GT(Add(User("c", "c")), 71u);
    moved[0].id = 90;
    EXPECT_THAT(ErrorOf([&] { store->ConvertRecords(moved); }),
                testing::HasSubstr("Execution of insert query failed."));
    EXPECT_FALSE(store->IsXmppGWUserPresent(90)) << "all or none";
}

/// A relational server keeps nobody out between looking and adding.
TEST_P(VKXmppGWUserTest, ManyThatStartAtOnceMakeTheAccountsOnce)
{
    std::vector<VKXmppGWUser> made;
    ASSERT_TRUE(users->Get(&made));
    for (const VKXmppGWUser& user : made)
        ASSERT_TRUE(users->Delete(user.id));
    VKDBsystem::mutiple_Connections = true; // each has a connection of its own
    std::vector<std::future<void>> starts;
    for (int i = 0; i < 6; ++i)
        starts.push_back(std::async(std::launch::async, [&] { delete VKDBiXmppGWUser::CreateInstance(&system); }));
    for (auto& start : starts)
        start.get();
    VKDBsystem::mutiple_Connections = false;
    EXPECT_EQ(users->GetTotalRecordCount(false), 3);
}
