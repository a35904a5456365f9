#include <gtest/gtest.h>

#include <filesystem>

#include "TempDir.h"
#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKSQLite3Database.h"
#include "VKXmppGWUserSessionDB.h"

namespace {

class VKXmppGWUserSessionDBTest : public testing::Test
{
protected:
    VKXmppGWUserSessionDBTest() { std::filesystem::create_directory(dir / "temp"); }

    VKXmppGWUserSessionDB& Store()
    {
        if (!store)
            store = std::make_unique<VKXmppGWUserSessionDB>(dir.Path().string());
        return *store;
    }
    unsigned long Add(unsigned long userId, const std::string& name, const std::string& jid)
    {
        VKXmppGWUserSession session;
        session.type = VKXmppGWSessionMXP;
        session.user_id = userId;
        session.user_name = name;
        session.jid = jid;
        session.activation_id = userId + 100;
        session.created_time = static_cast<long>(userId) * 10;
        EXPECT_TRUE(Store().Add(&session));
        return session.id;
    }
    /// The user names of the view, in its order.
    std::string View()
    {
        std::vector<VKXmppGWUserSession> sessions;
        EXPECT_TRUE(Store().GetForView(&sessions));
        return Names(sessions);
    }
    static std::string Names(const std::vector<VKXmppGWUserSession>& sessions)
    {
        std::string names;
        for (const VKXmppGWUserSession& session : sessions)
            names += session.user_name + ";";
        return names;
    }

    TempDir dir;
    std::unique_ptr<VKXmppGWUserSessionDB> store;
};

} // namespace

TEST_F(VKXmppGWUserSessionDBTest, TheTableIsAsOtherProgramsKnowIt)
{
    EXPECT_STREQ(VKXmppGWUserSessionDB::m_tTableDesc[0].columns,
                 "id INTEGER PRIMARY KEY AUTOINCREMENT, type INTEGER NOT NULL DEFAULT '0', user_id INTEGER NOT NULL "
                 "DEFAULT '0', user_name VARCHAR(50) NOT NULL, activation_id INTEGER NOT NULL DEFAULT '0', "
                 "is_suspended BOOLEAN, created_time INTEGER, suspended_time INTEGER, assigned_user_id INTEGER, "
                 "assigned_user_name VARCHAR(50) NOT NULL, is_emergency_mode BOOLEAN, user_ip_address VARCHAR(20), "
                 "user_platform VARCHAR(100), client_name VARCHAR(100), jid VARCHAR(256) NOT NULL, login_count INTEGER "
                 "NOT NULL DEFAULT '0'");
    Store();
    EXPECT_TRUE(VKSQLite3Database(dir / "temp/xmpp_user_sessions.sdb", true).IsTableExists("xmpp_user_sessions"));
}

TEST_F(VKXmppGWUserSessionDBTest, EveryFieldComesBackAndAChangeKeepsTheTimeOfCreation)
{
    const std::string odd = "O'Brien \"100%\" _\\ \xF0\x9F\x9A\x92 '); --";
    VKXmppGWUserSession session;
    int number = 1;
    vk::ForEachField(vk::kUserSessionTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        ++number;
        if constexpr (std::is_same_v<Value, std::string>)
            field.of(session) = odd + field.name;
        else if constexpr (std::is_same_v<Value, bool>)
            field.of(session) = true;
        else
            field.of(session) = static_cast<Value>(number * 7);
    });
    const auto expectSame = [](const VKXmppGWUserSession& read, const VKXmppGWUserSession& expected) {
        vk::ForEachField(vk::kUserSessionTable.fields,
                         [&](const auto& field) { EXPECT_EQ(field.of(read), field.of(expected)) << field.name; });
    };
    ASSERT_TRUE(Store().Add(&session));
    EXPECT_EQ(session.id, 1u);
    VKXmppGWUserSession read;
    ASSERT_TRUE(Store().GetByID(1, &read));
    expectSame(read, session);
    ASSERT_TRUE(Store().GetByName(session.user_name, &read));
    ASSERT_TRUE(Store().GetByJID(session.jid, &read));
    expectSame(read, session);

    const long created = std::exchange(session.created_time, 1);
    session.user_name = "changed";
    session.is_emergency_mode = false;
    ASSERT_TRUE(Store().Modify(&session));
    session.created_time = created;
    ASSERT_TRUE(Store().GetByUserID(session.user_id, &read));
    expectSame(read, session);
    session.jid = std::string("a\0b", 3);
    EXPECT_THROW(Store().Modify(&session), VKDBexception);
    EXPECT_TRUE(Store().Delete(read.jid));
    EXPECT_FALSE(Store().GetByID(1, &read));
    EXPECT_EQ(read.user_name, "");
}

TEST_F(VKXmppGWUserSessionDBTest, JidsAreFoundWithoutAndDeletedWithRegardToCase)
{
    Add(1, "ann", "ann@host.org/mxp");
    Add(1, "ann", "ann@host.org/home");
    Add(2, "eve", "ann@host.organic");
    VKXmppGWUserSession read;
    EXPECT_TRUE(Store().GetByJID("ANN@HOST.ORG/MXP", &read));
    EXPECT_TRUE(Store().Delete("ANN@HOST.ORG/MXP"));
    EXPECT_EQ(Store().GetTotalRecordCount(), 3);
    EXPECT_TRUE(Store().Delete("ann@host.org/mxp"));
    EXPECT_EQ(Store().GetTotalRecordCount(), 2);
    std::vector<VKXmppGWUserSession> sessions;
    EXPECT_TRUE(Store().GetAllByBareJID("Ann@host.org", &sessions));
    EXPECT_EQ(Names(sessions), "ann;eve;") << "a plain prefix finds the longer domain too";
    EXPECT_EQ(Store().GetJIDByActivationID(102), "ann@host.organic");
    EXPECT_EQ(Store().GetJIDByUserID(2), "ann@host.organic");
    EXPECT_EQ(Store().GetJIDByUserID(9), "");
    EXPECT_TRUE(Store().DoesUserExist(2));
    EXPECT_FALSE(Store().DoesUserExist(9));
    EXPECT_TRUE(Store().DeleteAll(102ul));
    EXPECT_FALSE(Store().DoesUserExist(2));
    EXPECT_TRUE(Store().DeleteAll(VKXmppGWSessionXMPP));
    EXPECT_EQ(Store().GetTotalRecordCount(), 1);
    EXPECT_TRUE(Store().DeleteAll(VKXmppGWSessionNone));
    EXPECT_EQ(Store().GetTotalRecordCount(), 0);
}

TEST_F(VKXmppGWUserSessionDBTest, GetNarrowsByIdsAndType)
{
    for (const unsigned long user : {3, 1, 2})
        Add(user, std::string(user % 2 ? "U" : "u") + std::to_string(user), "j");
    const struct
    {
        const char* activations;
        const char* users;
        VKXmppGWSessionType type;
        const char* names;
    } rows[] = {{"", "", VKXmppGWSessionNone, "U1;u2;U3;"},
                {"101,103", "", VKXmppGWSessionMXP, "U1;U3;"},
                {"", "2", VKXmppGWSessionNone, "u2;"},
                {"101, 102", "2,3", VKXmppGWSessionNone, "u2;"},
                {"101", "", VKXmppGWSessionXMPP, ""}};
    std::vector<VKXmppGWUserSession> sessions;
    for (const auto& row : rows) {
        Store().SetFilterActivationIDs(row.activations);
        Store().SetFilterUserIDs(row.users);
        EXPECT_TRUE(Store().Get(&sessions, row.type));
        EXPECT_EQ(Names(sessions), row.names) << row.activations << " / " << row.users;
    }
    Store().SetFilterUserIDs("1) OR (1=1");
    EXPECT_THROW(Store().Get(&sessions, VKXmppGWSessionNone), VKDBexception);
}

TEST_F(VKXmppGWUserSessionDBTest, TheViewIsFilteredAndSorted)
{
    const char* names[] = {"Bob", "ann", "1st", "b_b", "\xC3\xA9va"};
    for (unsigned long i = 0; i < 5; ++i)
        Add(i + 1, names[i], "j" + std::to_string(9 - i) + "@h");
    VKXmppGWUserSession session;
    ASSERT_TRUE(Store().GetByName("bob", &session));
    session.type = VKXmppGWSessionXMPP;
    session.is_emergency_mode = true;
    session.client_name = "phone";
    ASSERT_TRUE(Store().Modify(&session));

    EXPECT_EQ(View(), "1st;ann;Bob;b_b;\xC3\xA9va;");
    EXPECT_EQ(Store().GetTotalRecords(), 5);
    const struct
    {
        const char* user;
        const char* type;
        const char* client;
        const char* jid;
        long from, to;
        FltEnabled emergency, initial;
        const char* names;
    } rows[] = {
        {"*", "*", "*", "*", 0, 0, FltEither, FltEither, "1st;ann;Bob;b_b;\xC3\xA9va;"},
        {"B", "", "", "", 0, 0, FltEither, FltEither, "Bob;b_b;"},
        {"b_", "", "", "", 0, 0, FltEither, FltEither, "b_b;"},
        {"%", "", "", "", 0, 0, FltEither, FltEither, ""},
        {"'", "", "", "", 0, 0, FltEither, FltEither, ""},
        {"", "xmpp", "", "", 0, 0, FltEither, FltEither, "Bob;"},
        {"", "", "PHO", "j9@", 0, 0, FltEither, FltEither, "Bob;"},
        {"", "", "", "", 20, 30, FltEither, FltEither, "1st;ann;"},
        {"", "", "", "", 20, 20, FltEither, FltEither, "1st;ann;Bob;b_b;\xC3\xA9va;"},
        {"", "", "", "", 0, 0, FltOnlyEnabled, FltEither, "Bob;"},
        {"", "", "", "", 0, 0, FltOnlyDisabled, FltEither, "1st;ann;b_b;\xC3\xA9va;"},
        {"", "", "", "", 0, 0, FltEither, FltOnlyEnabled, "1st;\xC3\xA9va;"},
        {"", "", "", "", 0, 0, FltEither, FltOnlyDisabled, "ann;Bob;b_b;"},
    };
    for (const auto& row : rows) {
        Store().SetFilter(row.user, row.type, "*", "*", "*", row.client, row.jid, row.from, row.to, row.emergency,
                          row.initial);
        EXPECT_EQ(View(), row.names) << row.user << row.type << row.client << row.from;
    }
    Store().ClearFilter();
    Store().SetFilterActivationIDs("101,102");
    Store().SetFilterUserIDs("5"); // has no effect on the view
    EXPECT_EQ(View(), "ann;Bob;");
    Store().ClearFilter();
    for (int field = 0; field <= 9; ++field) {
        Store().SetSort(static_cast<VKXmppGWUserSessionDB::SortFld>(field), false);
        EXPECT_EQ(View().size(), std::string("1st;ann;Bob;b_b;\xC3\xA9va;").size()) << field;
    }
    EXPECT_EQ(View(), "\xC3\xA9va;b_b;Bob;ann;1st;") << "any other field sorts by name";
    Store().SetSort(VKXmppGWUserSessionDB::SortJid, true);
    EXPECT_EQ(View(), "\xC3\xA9va;b_b;1st;ann;Bob;");
}

TEST_F(VKXmppGWUserSessionDBTest, PagesAreCountedFromOne)
{
    for (unsigned long user = 0; user < 25; ++user)
        Add(user, std::string(1, static_cast<char>('a' + user)), "j");
    Store().SetFilter(10, 3);
    EXPECT_EQ(View(), "u;v;w;x;y;");
    EXPECT_EQ(Store().GetPageCount(), 3);
    EXPECT_EQ(Store().GetTotalRecords(), 25);
    Store().SetFilterActivationIDs("100,101,102,103,104,105,106,107,108,109,110,111,112,113,114,115,116,117,118,119");
    EXPECT_EQ(View(), "");
    EXPECT_EQ(Store().GetPageCount(), 2);
}

TEST_F(VKXmppGWUserSessionDBTest, StandsBelowTheRootOfTheInstallation)
{
    std::filesystem::create_directory(dir / "config");
    VKConfiguration::getVKConfiguration()->setConfDirectory(dir / "config");
    Add(5, "ann", "ann@h");
    EXPECT_TRUE(VKXmppGWUserSessionDB().DoesUserExist(5));
}

TEST_F(VKXmppGWUserSessionDBTest, AFileThatCannotBeOpenedMakesEveryAnswerFalse)
{
    const auto expectDead = [&](const char* why) {
        VKXmppGWUserSessionDB dead(dir.Path().string());
        EXPECT_NE(dead.GetOpenError().find(why), std::string::npos) << dead.GetOpenError();
        VKXmppGWUserSession session;
        std::vector<VKXmppGWUserSession> sessions(1);
        EXPECT_FALSE(dead.Add(&session));
        EXPECT_FALSE(dead.DoesUserExist(1));
        EXPECT_FALSE(dead.GetForView(&sessions));
        EXPECT_TRUE(sessions.empty());
        EXPECT_EQ(dead.GetTotalRecordCount(), 0);
        EXPECT_EQ(dead.GetJIDByUserID(1), "");
    };
    const std::string garbage(2000, 'g');
    dir.Write("temp/xmpp_user_sessions.sdb", garbage);
    expectDead("file is not a database");
    EXPECT_EQ(dir.Read("temp/xmpp_user_sessions.sdb"), garbage);
    std::filesystem::remove_all(dir / "temp");
    expectDead("temp/ does not exist");
}

TEST_F(VKXmppGWUserSessionDBTest, ANewStoreFindsTheFileThatStandsThereNow)
{
    Add(7, "old", "old@x");
    store.reset(); // its open handle waits for the next user
    const std::filesystem::path file = dir.Path() / "temp/xmpp_user_sessions.sdb";
    EXPECT_TRUE(Store().DoesUserExist(7));
    store.reset();

    std::filesystem::remove(file);
    EXPECT_FALSE(Store().DoesUserExist(7)) << "the gateway started anew with an empty file";
    Add(8, "new", "new@x");
    store.reset();

    std::filesystem::resize_file(file, 100);
    EXPECT_FALSE(Store().DoesUserExist(8));
    EXPECT_NE(Store().GetOpenError(), "") << "a file that was cut short is found out";
}

TEST(VKXmppGWUserSessionType, WordsInAnyCase)
{
    EXPECT_EQ(VKXmppGWUserSessionDB::GetUserType("mxp"), VKXmppGWSessionMXP);
    EXPECT_EQ(VKXmppGWUserSessionDB::GetUserType("xmpp"), VKXmppGWSessionXMPP);
    EXPECT_EQ(VKXmppGWUserSessionDB::GetUserType("none"), VKXmppGWSessionNone);
    EXPECT_EQ(VKXmppGWUserSessionDB::GetUserTypeString(VKXmppGWSessionNone), "None");
    EXPECT_EQ(VKXmppGWUserSessionDB::GetUserTypeString(VKXmppGWSessionXMPP), "XMPP");
}
