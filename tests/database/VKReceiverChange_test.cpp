#include <ctime>
#include <gmock/gmock.h>

#include "DatabaseCells.h"
#include "ReceiverDatabase.h"
#include "VKBALMessages.h"

using testing::HasSubstr;
using testing::Not;

namespace {

class VKReceiverChangeTest : public ReceiverDatabase
{
protected:
    bool Modify(Receiver& receiver, VK_DISABLE_HISTORY* update = nullptr, VK_DISABLE_HISTORY* add = nullptr,
                bool keepHistory = true)
    {
        return receivers->Modify(&receiver, 0, false, update, add, keepHistory);
    }
};

VK_DISABLE_HISTORY Period(long from, long to)
{
    VK_DISABLE_HISTORY period;
    period.disable_start_date = from;
    period.disable_end_date = to;
    return period;
}

constexpr const char* kFull = "100 Department maximum receivers limit exceeds.";

} // namespace

TEST_P(VKReceiverChangeTest, EveryFieldComesBackAsItWasAddedAndAsItWasModified)
{
    const unsigned long home = AddDepartment("Home");
    const unsigned long guest = AddDepartment("Guest");
    const auto store = MakeReceiverStore();
    Receiver written;
    FillColumns(vk::kReceiverTable.fields, written);
    written.Set({{"department_id", home}, {"status_code", 1}, {"guest", home}, {"guest", guest}});
    ASSERT_TRUE(store->Add(&written, false));
    written.disabled = false; // a column that this layer does not write
    Receiver read;
    ASSERT_TRUE(store->GetByName(&read, written.name));
    EXPECT_EQ(read.Text(), written.Text());
    ASSERT_EQ(read.dept_rights_count, 2);
    EXPECT_EQ(read.dept_rights[1].owner_id, written.id);

    Receiver copy;
    DuplicateReceiver(&copy, &read);
    EXPECT_NE(copy.dept_rights, read.dept_rights);
    EXPECT_NE(copy.misc_settings, read.misc_settings);
    Receivers list;
    AddReceiver(&list, &copy);
    EXPECT_EQ(static_cast<Receiver&>(list.list[0]).Text(), written.Text());

    Receiver changed;
    FillColumns(vk::kReceiverTable.fields, changed);
    changed.Set({{"id", written.id}, {"name", "x"}, {"first_name", "y"}, {"last_name", "z"}, {"acct_name", "a"},
                 {"email", ""}, {"voice_number", ""}, {"misc_settings", R"({"MXP":{"DeviceID":"it's \"so\""}})"},
                 {"department_id", guest}, {"carrier_id", 77}, {"status_code", 1}, {"disabled", false},
                 {"disable_start_date", 0}, {"disable_end_date", 0}, {"use_alter_carrier", false},
                 {"voice_enable", false}, {"email_cc", false}, {"email_fail_over", false},
                 {"advanced_messaging", false}, {"forward_to_id", 78}, {"guest", home}});
    ASSERT_TRUE(Modify(changed));
    Receiver readAgain;
    ASSERT_TRUE(receivers->GetByID(&readAgain, changed.id));
    EXPECT_EQ(readAgain.Text(), changed.Text());
    Receiver missing("missing", "1", {{"id", 99}});
    EXPECT_FALSE(Modify(missing));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 1);
}

TEST_P(VKReceiverChangeTest, NamesAndPinsAreFoundAsGivenWhateverTheCaseOrRefusedByName)
{
    const std::string hostile = Hostile(sizeof(VK_RECEIVER::pin) - 1);
    const unsigned long ann = Store("Ann [Pager] {1}", {{"pin", "Ann@Example.org"}});
    const unsigned long id = Store("hostile", {{"pin", hostile}});
    Store("other", {{"pin", "'\"\\xy;--"}});
    Receiver read;
    EXPECT_TRUE(receivers->GetByName(&read, "ANN [pager] {1}"));
    EXPECT_EQ(read.id, ann);
    EXPECT_TRUE(receivers->GetByPin(&read, "ann@EXAMPLE.org"));
    EXPECT_EQ(read.id, ann);
    EXPECT_TRUE(receivers->GetByPin(&read, hostile));
    EXPECT_EQ(read.id, id);
    EXPECT_EQ(read.pin, hostile);
    for (const char* unknown : {"' OR '1'='1", "'\"\\x_;--"})
        EXPECT_FALSE(receivers->GetByPin(&read, unknown)) << unknown;
    EXPECT_STREQ(read.name, "");
    EXPECT_FALSE(receivers->GetByID(&read, 99));
    unsigned long found = 0;
    EXPECT_TRUE(receivers->GetIDByName(found, "HOSTILE"));
    EXPECT_EQ(found, id);
    receivers->SetFilter("", "'\"\\%_;", 0, 0, 0, "", FltAnyLetter);
    Receivers list;
    receivers->Get(&list);
    EXPECT_EQ(NamesOf(list), "hostile") << "backslash and underscore are no wild cards";
    receivers->ClearFilter();

    EXPECT_THAT(ErrorOf([&] { receivers->GetByName(&read, std::string("a\0b", 3)); }), HasSubstr("holds a zero byte"));
    Receiver endless("endless", "1");
    std::fill(std::begin(endless.first_name), std::end(endless.first_name), 'x');
    EXPECT_THAT(ErrorOf([&] { receivers->Add(&endless, false); }), HasSubstr("'first_name' has no end"));
    Receiver wide("wide", "1", {{"email", std::string(255, '\'')}, {"misc_settings", std::string(1500, 's')}});
    EXPECT_EQ(ErrorOf([&] { Modify(wide); }), "");
    const std::string error = ErrorOf([&] { receivers->Add(&wide, false); });
    EXPECT_THAT(error, HasSubstr("at most 2047 are run [INSERT INTO "));
    EXPECT_THAT(error, Not(HasSubstr("sss")));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 3);
}

TEST_P(VKReceiverChangeTest, ThePasswordIsStoredAsDigestAndTheCallerKeepsTheClearOne)
{
    Receiver hashed("hashed", "1", {{"acct_pwd", "secret"}});
    ASSERT_TRUE(receivers->Add(&hashed, true));
    EXPECT_STREQ(hashed.acct_pwd, "secret");
    EXPECT_EQ(Stored(hashed.id, "acct_pwd"), "5ebe2294ecd0e0f08eab7690d2a6ee69");
    Receiver taken("hashed", "1", {{"acct_pwd", "secret"}});
    EXPECT_NE(ErrorOf([&] { receivers->Add(&taken, true); }), "");
    EXPECT_STREQ(taken.acct_pwd, "secret") << "also when the receiver was refused";
    Receiver plain("plain", "1");
    ASSERT_TRUE(receivers->Add(&plain, true));
    EXPECT_EQ(Stored(plain.id, "acct_pwd"), "");
}

TEST_P(VKReceiverChangeTest, ErrorsThatQuoteTheStatementOrTheRowShowNoSecrets)
{
    const ColumnValues secrets = {{"security_code", "s3cr3t"},
                                  {"acct_pwd", "0123456'789abcdef"},
                                  {"misc_settings", R"({"MXP":{"MxpPassword":"hush")" + std::string(200, ' ') + "}}"}};
    Receiver ann("Ann", "1", secrets);
    ASSERT_TRUE(receivers->Add(&ann, false));
    if (OnFiles())
        for (const std::string event : {"INSERT", "UPDATE"})
            RunOn(dir / "receivers.sdb", "CREATE TRIGGER refuse" + event + " BEFORE " + event +
                                             " ON receiver BEGIN SELECT RAISE(ABORT, 'refuse'); END;");
    else
        server->ExecuteCommand("ALTER TABLE VK_RECEIVER ADD CONSTRAINT refuse CHECK (pin <> '2')");
    Receiver bob("Bob", "2", secrets);
    ann.Set({{"pin", "2"}});
    const std::pair<const char*, std::function<void()>> failures[] = {
        {"'Bob'", [&] { receivers->Add(&bob, false); }},
        {"'Ann'", [&] { Modify(ann); }},
        {"UPDATE", [&] { OnFiles() ? Modify(ann) : server->ExecuteCommand("UPDATE VK_RECEIVER SET pin='2'"); }}};
    for (const auto& [shown, operation] : failures) {
        const std::string error = WholeErrorOf(operation);
        EXPECT_THAT(error, testing::AllOf(HasSubstr(shown), HasSubstr("refuse")));
        for (const char* secret : {"s3cr3t", "0123456", "789ab", "hush"})
            EXPECT_THAT(error, Not(HasSubstr(secret)));
    }
}

TEST_P(VKReceiverChangeTest, AFullDepartmentRefusesToBeMovedIntoButNotToBeWorkedIn)
{
    SetLimits(true, 10);
    const unsigned long small = AddDepartment("Small", 1);
    const unsigned long large = AddDepartment("Large", 9);
    const ColumnValues intoSmall = {{"department_id", small}};
    EXPECT_FALSE(receivers->IsDepartmentRecvLimitReached(small));
    Store("inside", intoSmall);
    Store("outside", {{"department_id", large}});
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(small));
    EXPECT_EQ(ErrorOf([&] { Store("third", intoSmall); }), kFull);
    EXPECT_EQ(ErrorOf([&] { Store("third"); }), "1000 " + std::string(vk::MessageText(1132)) + "\n")
        << "a receiver of no department would escape all limits";
    Receiver outside;
    ASSERT_TRUE(receivers->GetByName(&outside, "outside"));
    outside.department_id = small;
    EXPECT_EQ(ErrorOf([&] { receivers->Modify(&outside, large, false, nullptr, nullptr, true); }), kFull);
    EXPECT_EQ(ErrorOf([&] { receivers->ModifyDepartment(&outside, large, false, nullptr, nullptr, true); }), kFull);
    Receiver inside;
    ASSERT_TRUE(receivers->GetByName(&inside, "inside"));
    inside.Set({{"description", "changed"}});
    EXPECT_TRUE(receivers->Modify(&inside, small, false, nullptr, nullptr, true));
    inside.Set({{"department_id", large}, {"description", "not written"}, {"guest", small}});
    EXPECT_TRUE(receivers->ModifyDepartment(&inside, small, false, nullptr, nullptr, true));
    ASSERT_TRUE(receivers->GetByName(&inside, "inside"));
    EXPECT_EQ(inside["department_id description"], std::to_string(large) + " changed");
    EXPECT_EQ(inside.dept_rights_count, 1);
    EXPECT_FALSE(receivers->IsDepartmentRecvLimitReached(small));
    EXPECT_TRUE(receivers->IsDepartmentBeingUsed(small)) << "by its guest";
    SetLimits(false, 0);
    Store("third", intoSmall);
    Store("fourth", intoSmall);
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(small)) << "the department's own limit is still there";
}

TEST_P(VKReceiverChangeTest, GroupsCountAndTakeNamesWhenThereAreAny)
{
    SetLimits(true, 10);
    const unsigned long department = AddDepartment("Small", 2);
    ASSERT_EQ(department, 1u);
    VKDBiDepartment::s_bCountGrp = true;
    const ColumnValues into = {{"department_id", department}};
    Store("first", into);
    EXPECT_FALSE(receivers->IsDepartmentRecvLimitReached(department)) << "no groups yet";
    EXPECT_FALSE(receivers->IsGroupName("on call"));
    const std::string table = OnFiles() ? "recipient_group" : "VK_RECIPIENT_GROUP";
    const std::string statements[] = {"CREATE TABLE " + table + " (id BIGINT, name VARCHAR(50), department_id BIGINT)",
                                      "INSERT INTO " + table + " VALUES (1, 'On Call', 1)"};
    for (const std::string& statement : statements)
        if (OnFiles())
            RunOn(dir / "recipient_groups.sdb", statement);
        else
            server->ExecuteCommand(statement);
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(department));
    EXPECT_EQ(ErrorOf([&] { Store("second", into); }), kFull);
    VKDBiDepartment::s_bCountGrp = false;
    Store("second", into);
    SetLimits(false, 0);
    EXPECT_EQ(ErrorOf([&] { Store("ON CALL"); }), "1000 " + std::string(vk::MessageText(1114)) + "\n");
}

TEST_P(VKReceiverChangeTest, TheHistoryFollowsTheStatusUnlessItIsGiven)
{
    const long ahead = time(nullptr) + 1000;
    const std::string period = "100-" + std::to_string(ahead) + " ";
    Receiver receiver("ann", "1");
    ASSERT_TRUE(receivers->Add(&receiver, false));
    const auto modify = [&](int status, long start, long end, VK_DISABLE_HISTORY* update = nullptr,
                            VK_DISABLE_HISTORY* add = nullptr, bool keep = true) {
        receiver.Set({{"status_code", status}, {"disable_start_date", start}, {"disable_end_date", end}});
        EXPECT_TRUE(Modify(receiver, update, add, keep));
        return Periods(receiver.id);
    };
    EXPECT_EQ(modify(3, 100, ahead), period) << "leaving status 1";
    EXPECT_EQ(modify(2, 200, 0), period) << "from one absence to another";
    const std::string closed = modify(1, 200, ahead);
    EXPECT_THAT(closed, testing::AllOf(testing::StartsWith("100-"), testing::Ne(period))) << "ended today";
    EXPECT_EQ(receiver["disable_start_date disable_end_date"], "0 0") << "an available receiver has no dates";
    EXPECT_EQ(modify(3, 300, 0, nullptr, nullptr, false), closed) << "told to leave it";
    modify(1, 0, 0, nullptr, nullptr, false);
    VK_DISABLE_HISTORY update = Period(7, 8);
    VK_DISABLE_HISTORY add = Period(9, 0);
    EXPECT_EQ(modify(3, 400, 0, &update, &add), "7-8 9-0 ");
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    receiver.forward_to_id = Store("cover");
    modify(1, 0, 0, nullptr, nullptr, false);
    EXPECT_EQ(modify(2, 500, 0), "7-8 9-0 ") << "a cover stands in";

    update.disable_end_date = 10;
    receiver.Set({{"status_code", 4}, {"disable_start_date", 600}});
    EXPECT_TRUE(receivers->ChangeStatus(&receiver, nullptr, &update, true));
    EXPECT_EQ(Periods(receiver.id), "7-8 7-10 9-0 ");
    EXPECT_EQ(Stored(receiver.id, "status_code disable_start_date forward_to_id"), "4 600 0")
        << "a change of status ends the cover";
    Histories within;
    receivers->GetDisableHistory(&within, 0, 9, 9);
    EXPECT_EQ(within.count, 2) << "the open one and the one that ends later";

    const auto store = MakeReceiverStore(); // behind the rules: these dates are past
    const auto periodsOfNew = [&](const char* name, int status, unsigned long cover, long start) {
        Receiver added(name, "1", {{"status_code", status}, {"forward_to_id", cover}, {"disable_start_date", start},
                                   {"disable_end_date", 200}});
        EXPECT_TRUE(store->Add(&added, false));
        return Periods(added.id);
    };
    EXPECT_EQ(periodsOfNew("covered", 2, receiver.id, 100), "");
    EXPECT_EQ(periodsOfNew("available", 1, 0, 100), "");
    EXPECT_EQ(periodsOfNew("undated", 2, 0, 0), "");
    EXPECT_EQ(periodsOfNew("off", 2, 0, 100), "100-200 ");
}

TEST_P(VKReceiverChangeTest, DeletingTakesAllThatBelongsToIt)
{
    const unsigned long guest = AddDepartment("Guest");
    const unsigned long id = Store("gone", {{"guest", guest}, {"status_code", 2}, {"disable_start_date", 50}});
    VK_ONDUTY_SCHEDULE own;
    own.owner_id = id;
    VK_ONDUTY_SCHEDULE ofGroup = own; // of a member of the group with the same number
    ofGroup.member_id = 4;
    ASSERT_TRUE(receivers->AddSchedule(&own));
    ASSERT_TRUE(receivers->AddSchedule(&ofGroup));
    EXPECT_NE(Periods(id), "");
    EXPECT_TRUE(receivers->Delete(id, 0));
    EXPECT_FALSE(receivers->Delete(id, 0));
    EXPECT_EQ(Periods(id), "");
    EXPECT_FALSE(receivers->IsDepartmentBeingUsed(guest));
    EXPECT_FALSE(receivers->GetSchedule(&own, own.id));
    EXPECT_TRUE(receivers->GetSchedule(&ofGroup, ofGroup.id));
    EXPECT_EQ(ErrorOf([&] { receivers->Delete(0, 0); }), "1000 Receiver ID should be greater than zero.");

    VKDBiReceiver::s_bIsCoverByAllowed = true;
    const unsigned long cover = Store("cover");
    Store("covered", {{"status_code", 2}, {"disable_start_date", 1}, {"forward_to_id", cover}});
    EXPECT_EQ(ErrorOf([&] { receivers->Delete(cover, 0); }), "1000 Foreign Key constraints failed.");
}

TEST_P(VKReceiverChangeTest, GuestDepartmentsComeAndGo)
{
    const unsigned long department = AddDepartment("Guests");
    const unsigned long id = Store("guest");
    EXPECT_EQ(ErrorOf([&] { receivers->AddGuestDepartment(id, 99); }), "1000 foreign key constraints failed");
    EXPECT_EQ(ErrorOf([&] { receivers->AddGuestDepartment(99, department); }), "1000 foreign key constraints failed");
    EXPECT_TRUE(receivers->AddGuestDepartment(id, department));
    EXPECT_TRUE(receivers->AddGuestDepartment(id, department)) << "once is enough";
    Receiver read;
    ASSERT_TRUE(receivers->GetByID(&read, id));
    EXPECT_EQ(read.dept_rights_count, 1);
    EXPECT_TRUE(receivers->DeleteGuestDepartment(id, department));
    EXPECT_FALSE(receivers->DeleteGuestDepartment(id, department));
}

TEST_P(VKReceiverChangeTest, PinsMoveWithTheirServiceAndSecurityWithItsReceiver)
{
    const unsigned long mxp = AddCarrier("mxp", VKProtocolMxpTwoWay);
    const unsigned long xmpp = AddCarrier("xmpp", VKProtocolXmpp);
    const unsigned long ann = Store("a", {{"carrier_id", mxp}, {"pin", "ann@Old.org"}});
    Store("b", {{"carrier_id", mxp}, {"pin", "bob@old.org/phone"}});
    Store("c", {{"carrier_id", mxp}, {"pin", "old.org@other.org"}});
    Store("d", {{"carrier_id", xmpp}, {"pin", "dan@old.org"}});
    Store("e", {{"use_alter_carrier", true}, {"bk_carrier_id", mxp}, {"bk_pin", "eve@old.org"}});
    EXPECT_TRUE(receivers->UpdateMXPServiceName("old.org", "it's.new"));
    EXPECT_FALSE(receivers->UpdateMXPServiceName("old.org", "again"));
    EXPECT_TRUE(receivers->UpdateXMPPServiceName("old.org", "x"));
    Receivers list;
    receivers->Get(&list);
    std::string pins;
    for (int i = 0; i < 4; ++i)
        pins += list.list[i].pin + std::string(" ");
    EXPECT_EQ(pins, "ann@it's.new bob@it's.new/phone old.org@other.org dan@x ");
    EXPECT_STREQ(list.list[4].bk_pin, "eve@it's.new");
    EXPECT_THAT(ErrorOf([&] { receivers->UpdateMXPServiceName("it's.new", std::string(60, 'n')); }),
                HasSubstr("'bk_pin' is 64 bytes long"));
    EXPECT_EQ(Stored(ann, "pin is_secure"), "ann@it's.new 0") << "all or none";
    EXPECT_TRUE(receivers->UpdateReceiverSecureStatus(ann, true));
    EXPECT_EQ(Stored(ann, "is_secure"), "1");
    EXPECT_FALSE(receivers->UpdateReceiverSecureStatus(99, true));
}

TEST_P(VKReceiverChangeTest, MxpSettingsAreStoredBesideWhatElseIsThere)
{
    Receiver receiver("mobile", "ann@host",
                      {{"misc_settings", R"({"AdvMsgng":{"x":1},"MXP":{"DeviceID":"old","MxpPassword":"kept"}})"}});
    NeedMxpFields(&receiver)->device_id_set = true;
    vk::SetText(receiver.mxp->device_id, "\xC3\xBC \"1\"", "device_id");
    receiver.mxp->bk_mxp_password_set = true;
    vk::SetText(receiver.mxp->bk_mxp_password, "<p'w>", "bk_mxp_password");
    ASSERT_TRUE(receivers->Add(&receiver, false));
    Receiver read;
    ASSERT_TRUE(receivers->GetByID(&read, receiver.id));
    EXPECT_THAT(read.misc_settings, testing::StartsWith(R"({"AdvMsgng":{"x":1},"MXP":{)"));
    EXPECT_THAT(read.misc_settings, Not(HasSubstr("<p'w>"))) << "passwords are encoded";
    ASSERT_TRUE(ConvertJSONToMXPFieldsData(&read));
    Receiver copy;
    DuplicateReceiver(&copy, &read);
    EXPECT_STREQ(copy.mxp->device_id, "\xC3\xBC \"1\"");
    EXPECT_STREQ(copy.mxp->bk_mxp_password, "<p'w>");
    EXPECT_STREQ(copy.mxp->mxp_password, "kept");
    EXPECT_FALSE(copy.mxp->device_push_service_set);

    for (const std::string& bad :
         {std::string("{"), std::string("[]"), std::string(R"({"MXP":1})"), std::string(5000, '[')}) {
        Receiver broken("broken", "1", {{"misc_settings", bad}});
        NeedMxpFields(&broken);
        EXPECT_EQ(ErrorOf([&] { receivers->Add(&broken, false); }),
                  "-1 Unable to parse MXP Settings Data for Receiver[ broken ].");
        EXPECT_THROW(ConvertJSONToMXPFieldsData(&broken), VKDBexception);
    }
}

TEST_P(VKReceiverChangeTest, SettingsMayGrowBeyondWhatAStatementThatAddsHolds)
{
    const unsigned long id =
        Store("mobile", {{"misc_settings", R"({"MXP":{"DeviceID":"old","DevicePushService":"fcm"},"other":1})"}});
    Receiver receiver;
    ASSERT_TRUE(receivers->GetByID(&receiver, id));
    NeedAdvMessaging(&receiver)->settings.m_optPassword = std::string(3000, '\'');
    EXPECT_TRUE(receivers->SaveAdvMessagingData(&receiver));
    ASSERT_TRUE(receivers->GetByID(&receiver, id));
    NeedMxpFields(&receiver)->device_id_set = true;
    vk::SetText(receiver.mxp->device_id, std::string(255, 'd'), "device_id");
    EXPECT_TRUE(Modify(receiver));
    ASSERT_TRUE(receivers->GetAdvMessagingData(&receiver, id));
    EXPECT_EQ(receiver.adv_messaging->settings.m_optPassword->size(), 3000u);
    ASSERT_TRUE(ConvertJSONToMXPFieldsData(&receiver));
    EXPECT_EQ(receiver.mxp->device_id, std::string(255, 'd'));
    EXPECT_STREQ(receiver.mxp->device_push_service, "fcm") << "what is not named stays";
    EXPECT_THAT(receiver.misc_settings, HasSubstr("\"other\":1"));
}

TEST_P(VKReceiverChangeTest, APartOfTheClientsSettingsLeavesTheOthersAsTheyAre)
{
    const unsigned long id = Store(
        "mobile",
        {{"misc_settings",
          R"({"AdvMsgng":{"settings":{"show_time":true,"mine":[1]}},"MXP":{"DeviceID":"kept"},"more":1})"}});
    Receiver change;
    change.id = id;
    VK_ADV_MESSAGING& data = *NeedAdvMessaging(&change);
    data.settings.m_optPassword = "<\"\\'\xC3\xBC>";
    data.settings.m_objCritical.m_optTone = 7;
    data.permissions.m_optSendMessage = false;
    ASSERT_TRUE(receivers->SaveAdvMessagingData(&change));
    data = {};
    data.settings.m_objCritical.m_optCounter = 3;
    ASSERT_TRUE(receivers->SaveAdvMessagingData(&change));

    Receiver read;
    ASSERT_TRUE(receivers->GetAdvMessagingData(&read, id));
    const VKMXPPolicySettings& settings = read.adv_messaging->settings;
    EXPECT_EQ(settings.m_optPassword, "<\"\\'\xC3\xBC>");
    EXPECT_EQ(settings.m_objCritical.m_optTone, 7);
    EXPECT_EQ(settings.m_objCritical.m_optCounter, 3);
    EXPECT_EQ(settings.m_optShowMessageTime, true);
    EXPECT_FALSE(settings.m_optAutoDelete);
    EXPECT_EQ(read.adv_messaging->permissions.m_optSendMessage, false);
    EXPECT_THAT(read.misc_settings, testing::AllOf(HasSubstr(R"("mine":[1],"new":true)"),
                                                   HasSubstr(R"("MXP":{"DeviceID":"kept"},"more":1})")));
    EXPECT_TRUE(ConvertJSONToMiscSettingsData(&read));
    EXPECT_STREQ(read.mxp->device_id, "kept");
    change.id = 99;
    EXPECT_FALSE(receivers->SaveAdvMessagingData(&change));

    for (const char* bad : {"{", "[]", R"({"AdvMsgng":1})"}) {
        const unsigned long broken = Store("broken", {{"misc_settings", bad}});
        EXPECT_EQ(ErrorOf([&] { receivers->GetAdvMessagingData(&read, broken); }),
                  "-1 Unable to parse Advanced Messaging Data for Receiver[ broken ].");
        Receivers all;
        EXPECT_TRUE(receivers->GetForSend(&all, false, false, true, false));
        EXPECT_EQ(NamesOf(all), "broken mobile") << "one broken text holds up nobody else";
        receivers->Delete(broken, 0);
    }
}

VK_ON_BOTH_BACKENDS(VKReceiverChangeTest);
