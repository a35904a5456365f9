#include "VkadminRun.h"

#include <ctime>

namespace {

using testing::HasSubstr;
using testing::Not;

class VkadminReceivers : public Vkadmin
{
protected:
    void SetUp() override
    {
        Init();
        Add({"department", "add", "--name", "Surgery"});
        Add({"department", "add", "--name", "Garage"});
    }

    Json::Value Shown(const std::string& id) const
    {
        return Lines(Admin({"--json", "receiver", "show", "--id", id}).out).at(0);
    }

    std::string Names(std::vector<std::string> filter) const
    {
        filter.insert(filter.begin(), {"--json", "receiver", "list"});
        const ProgramRun run = Admin(std::move(filter));
        std::string names = run.err;
        for (const Json::Value& line : Lines(run.out))
            names += line["name"].asString() + " ";
        return names;
    }
};

TEST_F(VkadminReceivers, AChangeTouchesOnlyWhatIsGiven)
{
    const std::string password = dir.Write("password", "hunter2\n");
    Add({"receiver", "add", "--name", "Bob", "--pin", "b", "--type", "two-way", "--acct-name", "bob",
         "--account-password-file", password, "--can-update-rece", "true"});
    Add({"receiver", "add", "--name", "Al", "--pin", "a"});
    ASSERT_EQ(Admin({"receiver", "modify", "--name", "BOB", "--email", "b@x.org", "--department-id", "2"}).exitCode, 0);
    ASSERT_EQ(Admin({"receiver", "modify", "--id", "1", "--new-name", "Rob", "--first-name", "Robert"}).exitCode, 0);
    const Json::Value rob = Shown("1");
    EXPECT_EQ(rob["name"].asString() + rob["pin"].asString() + rob["first_name"].asString(), "RobbRobert");
    EXPECT_EQ(rob["email"].asString(), "b@x.org");
    EXPECT_TRUE(rob["two_way"].asBool() && rob["can_update_rece"].asBool());
    EXPECT_EQ(rob["department_id"].asInt(), 2);
    EXPECT_EQ(Names({"--acct-name", "bob", "--account-password-file", password}), "Rob ") << "the password is kept";
    const std::string other = dir.Write("other", "hunter3\n");
    ASSERT_EQ(Admin({"receiver", "modify", "--id", "1", "--account-password-file", other}).exitCode, 0);
    EXPECT_EQ(Names({"--acct-name", "bob", "--account-password-file", password}), "");
    EXPECT_EQ(Names({"--acct-name", "bob", "--account-password-file", other}), "Rob ");

    ExpectOneLine(Admin({"receiver", "modify", "--id", "2", "--new-name", "rob"}), 1, "already in use");
    ExpectOneLine(Admin({"receiver", "modify", "--id", "2", "--pin", std::string(256, 'x')}), 2, "--pin: is longer");
    ExpectOneLine(Admin({"receiver", "modify", "--id", "9", "--pin", "x"}), 1, "there is no receiver 9");
    ExpectOneLine(Admin({"receiver", "modify", "--pin", "x"}), 2, "give one of");
    ExpectOneLine(Admin({"receiver", "delete", "--name", "Zoe"}), 1, "there is no receiver 'Zoe'");
    EXPECT_EQ(Admin({"department", "delete", "--id", "2"}).exitCode, 1) << "a receiver belongs to it";
    EXPECT_THAT(Admin({"receiver", "delete", "--name", "ROB"}).out, HasSubstr("receiver 1 (Rob) deleted"));
    EXPECT_EQ(Admin({"department", "modify", "--id", "1", "--new-name", "Ward", "--description", "East"}).exitCode, 0);
    EXPECT_THAT(Admin({"department", "show", "--name", "ward"}).out, HasSubstr("name: Ward\ndescription: East\n"));
    EXPECT_EQ(Admin({"department", "delete", "--id", "2"}).exitCode, 0);
    EXPECT_EQ(Names({}), "Al ");
}

TEST_F(VkadminReceivers, WhatADeviceIsReachedWithIsStoredAndItsSecretsAreNotShown)
{
    const std::string secret = dir.Write("secret", "c0de\n");
    Add({"receiver", "add", "--name", "Al", "--pin", "al@t", "--device-id", "token-1", "--device-push-service", "fcm",
         "--security-code-file", secret, "--mxp-password-file", secret});
    const auto stored = [&](const char* text) {
        return dir.Read("root/config/receivers.sdb").find(text) != std::string::npos;
    };
    EXPECT_EQ(Shown("1")["device_push_service"].asString(), "fcm");
    EXPECT_TRUE(stored("c0de") && stored("\"DeviceID\":\"token-1\"") && stored("\"MxpPassword\":"));
    EXPECT_EQ(Admin({"receiver", "modify", "--id", "1", "--device-id", "token-2"}).exitCode, 0);
    EXPECT_TRUE(stored("\"DeviceID\":\"token-2\"") && stored("\"DevicePushService\":\"fcm\"")) << "the rest stays";
    EXPECT_THAT(Admin({"receiver", "show", "--id", "1", "--json"}).out,
                testing::AllOf(Not(HasSubstr("c0de")), Not(HasSubstr("token"))));
    ExpectOneLine(Admin({"receiver", "modify", "--id", "1", "--security-code-file", dir.Write("long", "12345678901\n")}), 2,
                  "--security-code-file: is longer than 10 bytes");
}

TEST_F(VkadminReceivers, AListShowsWhatTheFilterLeaves)
{
    Add({"receiver", "add", "--name", "Ann", "--pin", "10", "--department-id", "1", "--voice-enable", "true",
         "--voice-number", "555", "--owner-id", "4"});
    Add({"receiver", "add", "--name", "Bob", "--pin", "20", "--carrier-id", "7", "--department-id", "2"});
    Add({"receiver", "add", "--name", "9 Pager", "--pin", "21", "--advanced-messaging", "true"});
    Add({"attribute", "add", "--name", "Floor", "--attr-values", "1;2"});
    ASSERT_EQ(Admin({"receiver", "attributes", "--id", "2", "--set", "floor=2"}).exitCode, 0);
    ASSERT_EQ(Admin({"receiver", "guest-departments", "--id", "2", "--add", "1"}).exitCode, 0);
    const std::string future = std::to_string(std::time(nullptr) + 3600);
    ASSERT_EQ(Admin({"receiver", "status", "--id", "1", "--set", "unavailable", "--to", future}).exitCode, 0);
    const struct
    {
        std::vector<std::string> filter;
        const char* names;
    } cases[] = {
        {{}, "9 Pager Ann Bob "},
        {{"--name", "a"}, "Ann "},
        {{"--pin", "2"}, "9 Pager Bob "},
        {{"--pin", "2", "--initial", "letters"}, "Bob "},
        {{"--initial", "others"}, "9 Pager "},
        {{"--carrier-id", "7"}, "Bob "},
        {{"--protocol-id", "34"}, ""},
        {{"--department-id", "1"}, "Ann Bob "},
        {{"--cover-name", "A"}, ""},
        {{"--available", "false"}, "Ann "},
        {{"--available", "true"}, "9 Pager Bob "},
        {{"--voice-enable", "true"}, "Ann "},
        {{"--advanced-messaging", "true"}, "9 Pager "},
        {{"--owner-id", "4"}, "Ann "},
        {{"--id", "1", "--id", "3"}, "9 Pager Ann "},
        {{"--attribute", "FLOOR=2"}, "Bob "},
        {{"--attribute", "Floor=1"}, ""},
        {{"--attribute", "Wing=1"}, "vkadmin: --attribute: there is no attribute 'Wing'; there are 'Floor' (see "
                                    "vkadmin --help)\n"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Names(c.filter), c.names) << testing::PrintToString(c.filter);
    ExpectOneLine(Admin({"receiver", "list", "--attribute", "Floor"}), 2, "NAME=VALUE");
    ExpectOneLine(Admin({"receiver", "list", "--id", "x"}), 2, "--id: 'x'");
    ExpectOneLine(Admin({"receiver", "list", "--acct-name", "x"}), 2, "go together");
}

TEST_F(VkadminReceivers, AnAbsenceBeginsEndsAndIsRemembered)
{
    Add({"receiver", "add", "--name", "Ann", "--pin", "10"});
    const long now = std::time(nullptr);
    const auto status = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"--json", "receiver", "status", "--name", "ann"});
        return Lines(Admin(std::move(words)).out).at(0);
    };
    EXPECT_TRUE(status({})["available"].asBool());
    const std::string soon = std::to_string(now + 600), later = std::to_string(now + 3600);
    Json::Value shown = status({"--set", "unavailable", "--to", later});
    EXPECT_FALSE(shown["available"].asBool());
    EXPECT_EQ(shown["disable_end_date"].asInt64(), now + 3600);
    shown = status({"--set", "unavailable", "--from", soon, "--to", later});
    EXPECT_TRUE(shown["available"].asBool()) << "not yet";
    ASSERT_EQ(shown["periods"].size(), 1U) << "it is the same absence";
    EXPECT_EQ(shown["periods"][0]["disable_start_date"].asInt64(), now + 600);
    shown = status({"--set", "available"});
    EXPECT_EQ(shown["status_code"].asInt(), 1);
    ASSERT_EQ(shown["periods"].size(), 1U);
    EXPECT_EQ(shown["periods"][0]["disable_end_date"].asInt64(), now + 600) << "it never began";
    EXPECT_THAT(Admin({"receiver", "status", "--id", "1"}).out, HasSubstr("available: true\n"));

    ExpectOneLine(Admin({"receiver", "status", "--id", "1", "--set", "unavailable"}), 2, "--to is missing");
    ExpectOneLine(Admin({"receiver", "status", "--id", "1", "--set", "unavailable", "--to", "9"}), 2, "before now");
    ExpectOneLine(Admin({"receiver", "status", "--id", "1", "--set", "available", "--to", later}), 2, "go with");
    ExpectOneLine(Admin({"receiver", "status", "--id", "1", "--to", later}), 2, "go with");
}

TEST_F(VkadminReceivers, AttributesAndGuestDepartmentsAreSetAndTakenBack)
{
    Add({"receiver", "add", "--name", "Ann", "--pin", "10"});
    EXPECT_EQ(Add({"attribute", "add", "--name", "Floor", "--attr-order", "2"}), "1\n");
    EXPECT_EQ(Add({"attribute", "add", "--name", "Wing", "--attr-order", "1"}), "2\n");
    EXPECT_EQ(Admin({"attribute", "modify", "--id", "1", "--attr-values", "1;2;3"}).exitCode, 0);
    EXPECT_EQ(Admin({"attribute", "list"}).out, "id  name   attr_order  type  attr_values\n"
                                                "2   Wing   1           0\n"
                                                "1   Floor  2           0     1;2;3\n");
    ASSERT_EQ(Admin({"receiver", "attributes", "--id", "1", "--set", "Floor=2", "--set", "wing=a=b"}).exitCode, 0);
    EXPECT_EQ(Admin({"receiver", "attributes", "--name", "ann", "--set", "Floor=3"}).out, "attribute  value\n"
                                                                                          "Wing       a=b\n"
                                                                                          "Floor      3\n");
    ExpectOneLine(Admin({"attribute", "delete", "--id", "1"}), 1, "has a value at 1 receiver");
    EXPECT_EQ(Admin({"receiver", "attributes", "--id", "1", "--remove", "Floor"}).out, "attribute  value\nWing       a=b\n");
    EXPECT_EQ(Admin({"attribute", "delete", "--id", "1"}).exitCode, 0);
    ExpectOneLine(Admin({"attribute", "add", "--name", "WING"}), 1, "already in use");
    ExpectOneLine(Admin({"attribute", "modify", "--id", "9", "--name", "x"}), 1, "there is no attribute 9");
    ExpectOneLine(Admin({"receiver", "attributes", "--id", "1", "--set", "Wing=" + std::string(101, 'x')}), 2, "longer");

    EXPECT_EQ(Admin({"receiver", "guest-departments", "--id", "1", "--add", "1", "--add", "2", "--remove", "1"}).out,
              "department_id\n2\n");
    EXPECT_EQ(Shown("1")["guest_departments"][0].asInt(), 2);
    ExpectOneLine(Admin({"receiver", "guest-departments", "--id", "1", "--add", "7"}), 2, "there is no department 7");
}

TEST_F(VkadminReceivers, WhatIsExportedIsImportedElsewhere)
{
    const std::string password = dir.Write("password", "hunter2\n");
    Add({"receiver", "add", "--name", "Ann", "--pin", "10", "--description", " says \"hi\", twice\r\nand ü ", "--type",
         "two-way", "--department-id", "2", "--email", "=1+1"});
    Add({"receiver", "add", "--name", "Bob", "--pin", "20", "--acct-name", "bob", "--account-password-file", password});
    ASSERT_EQ(Admin({"receiver", "guest-departments", "--id", "1", "--add", "1", "--add", "2"}).exitCode, 0);
    const std::string file = dir / "receivers.csv";
    EXPECT_THAT(Admin({"receiver", "export", file}).out, HasSubstr("2 receivers written to "));
    const std::string text = dir.Read("receivers.csv");
    EXPECT_THAT(text, HasSubstr("\r\n1,Ann,\" says \"\"hi\"\", twice\r\nand ü \",10,=1+1,two-way,"));
    EXPECT_THAT(text, Not(HasSubstr("acct_pwd")));
    EXPECT_EQ(Admin({"receiver", "export", "-", "--name", "B"}).out.find("Ann"), std::string::npos);

    const std::string other = dir / "other";
    AdminOn(other, {"init"});
    AdminOn(other, {"department", "add", "--name", "A"});
    AdminOn(other, {"department", "add", "--name", "B"});
    EXPECT_EQ(AdminOn(other, {"receiver", "import", "--dry-run", file}).out, "2 receivers would be added\n");
    EXPECT_EQ(AdminOn(other, {"--json", "receiver", "list"}).out, "");
    EXPECT_EQ(AdminOn(other, {"receiver", "import", file}).out, "2 receivers added\n");
    EXPECT_EQ(AdminOn(other, {"receiver", "export", "-"}).out, text);
    ExpectOneLine(Admin({"receiver", "export", dir / "no/such/dir"}), 2, "no/such/dir");
}

TEST_F(VkadminReceivers, EveryRowThatCannotBeStoredIsToldAndThenNoneIs)
{
    Add({"receiver", "add", "--name", "Ann", "--pin", "10"});
    const struct
    {
        const char* text;
        const char* told; ///< the line and the beginning of the reason, in pairs; or the error of the whole file
    } cases[] = {
        {"name,pin\nBob,1\nann,2\n", "3 The device name is already in use"},
        {"name,pin\r\n\"Bob\r\nby\",1\r\nBo,2,3\r\n", "4 has 3 fields, the heading has 2"},
        {"name,pin\nBob,1\nBOB,2\n", "3 The device name is that of receiver 1 of the list"},
        {"name,pin,type,two_way\nBob,1,pager,true\nBo,2,fax,yes\n", "2 type: 'pager'|3 two_way: 'yes'"},
        {"name,pin,department_id,guest_departments,forward_to_id\nBob,1,9,8 1,7\n",
         "2 The field department_id names the department 9, which is not there"},
        {"name,pin,carrier_id\nBob,1,77\n", "2 The field carrier_id names the carrier 77"},
        {"name,pin\n,1\nBob, \n", "2 The device name is|3 The PIN is"},
        {"name,pin\nBob,\xFFz\nBo\"b,1\n\"Bo\"b,1\nBo,\"1\n", "2 pin: is no UTF-8 from byte 1|3 a quote stands|4 text "
                                                            "follows|5 a quoted field is never closed"},
        {"name,pin\n01234567890123456789012345678901234567890123456789x,1\n", "2 name: is longer than 50"},
        {"name,pin,acct_name,can_update_rece\nBob,1,bob,true\n", "2 The account has a name and no password"},
        {"name,pin,acct_pwd\nBob,1,x\n", "there is no column 'acct_pwd'; there are id, name, "},
        {"name,name,pin\n", "the column 'name' stands there twice"},
        {"name\nBob\n", "the column 'pin' is missing"},
        {"", "is empty"},
        {"na\"me,pin\n", "line 1: a quote stands"},
    };
    bool dryRun = false; // in turns: the rows are told either way
    for (const auto& c : cases) {
        const std::string file = dir.Write("rows.csv", c.text);
        dryRun = !dryRun;
        const ProgramRun run = dryRun ? Admin({"--json", "receiver", "import", "--dry-run", file})
                                      : Admin({"--json", "receiver", "import", file});
        std::string told;
        for (const Json::Value& line : Lines(run.out))
            told += "|" + line["line"].asString() + " " + line["reason"].asString();
        std::istringstream expected(c.told);
        for (std::string part; std::getline(expected, part, '|');)
            EXPECT_THAT(told.empty() ? run.err : told, HasSubstr((told.empty() ? "" : "|") + part)) << c.text;
        EXPECT_EQ(run.exitCode, told.empty() ? 2 : 1) << c.text;
    }
    EXPECT_EQ(Names({}), "Ann ");
    const std::string good = dir.Write("good.csv", "\xEF\xBB\xBFpin,name,id\r\n\r\n1,Bob,7\r\n2,\"Bo\"\r\n");
    EXPECT_THAT(Admin({"receiver", "import", good}).out, HasSubstr("4           has 2 fields"));
    EXPECT_EQ(Admin({"receiver", "import", dir.Write("good.csv", "\xEF\xBB\xBFpin,name,id\r\n\r\n1,Bob,7")}).out,
              "1 receiver added\n");
    EXPECT_EQ(Shown("2")["name"].asString(), "Bob") << "ids are given anew";
}

} // namespace
