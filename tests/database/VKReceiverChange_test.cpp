#include <ctime>
#include <gmock/gmock.h>

#include "ReceiverDatabase.h"
#include "VKBALMessages.h"
#include "VKRDBReceiver.h"
#include "VKSQLite3Database.h"
#include "VKSQLite3Receiver.h"

namespace {

class VKReceiverChangeTest : public ReceiverDatabase
{
};

/// A text that would end, continue or change a statement, or match others, if it were not conditioned; as long as its
/// field. Four-byte UTF-8 is counted in bytes on a file and in characters on a server, so that it fits both.
std::string Hostile(std::size_t length)
{
    std::string text = "'\"\\%_;--\n";
    if (text.size() + 10 <= length)
        text += "\xF0\x9F\x9A\x91{}$1?";
    while (text.size() + 2 <= length)
        text += "''";
    return text.size() > length ? text.substr(0, length) : text;
}

} // namespace

TEST_P(VKReceiverChangeTest, EveryFieldComesBackAsItWasAddedAndAsItWasModified)
{
    Receiver receiver("x", "y");
    const unsigned long id = Store("x");
    int number = 0;
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        Value& value = field.of(receiver);
        ++number;
        if constexpr (std::is_same_v<Value, bool>)
            value = number % 2 == 0;
        else if constexpr (std::is_same_v<Value, char*>)
            value = strdup(R"({"MXP":{"DeviceID":"it's \"so\""}})");
        else if constexpr (!std::is_array_v<Value>)
            value = static_cast<Value>(number * 10);
    });
    receiver.id = id;
    receiver.department_id = AddDepartment("Home");
    const unsigned long guest = AddDepartment("Guest");
    receiver.status_code = 1;
    receiver.disabled = false; // read, never written
    receiver.use_alter_carrier = receiver.voice_enable = receiver.email_cc = receiver.email_fail_over = false;
    receiver.advanced_messaging = false;
    receiver.disable_start_date = receiver.disable_end_date = 0;
    AddDeptRights(&receiver, guest);
    vk::SetText(receiver.description, Hostile(sizeof receiver.description - 1), "description");
    vk::SetText(receiver.security_code, "'%_\\\";--", "security_code");
    ASSERT_TRUE(receivers->Modify(&receiver, receiver.department_id, false, nullptr, nullptr, true));
    Receiver read;
    ASSERT_TRUE(receivers->GetByID(&read, receiver.id));
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        if constexpr (std::is_array_v<Value> || std::is_same_v<Value, char*>)
            EXPECT_STREQ(field.of(read), field.of(receiver)) << field.name;
        else
            EXPECT_EQ(field.of(read), field.of(receiver)) << field.name;
    });
    ASSERT_EQ(read.dept_rights_count, 1);
    EXPECT_EQ(read.dept_rights[0].department_id, guest);
    Receiver missing("missing", "1");
    missing.id = 99;
    EXPECT_FALSE(receivers->Modify(&missing, 0, false, nullptr, nullptr, true));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 1);
}

TEST_P(VKReceiverChangeTest, HostileTextIsStoredAndFoundAsGivenOrRefusedByName)
{
    const std::string hostile = Hostile(sizeof(VK_RECEIVER::pin) - 1);
    const unsigned long id = Store("hostile", [&](Receiver& receiver) { vk::SetText(receiver.pin, hostile, "pin"); });
    Store("other", [](Receiver& receiver) { vk::SetText(receiver.pin, "'\"\\xy;--", "pin"); });
    Receiver read;
    ASSERT_TRUE(receivers->GetByPin(&read, hostile));
    EXPECT_EQ(read.id, id);
    EXPECT_EQ(read.pin, hostile);
    EXPECT_FALSE(receivers->GetByPin(&read, "' OR '1'='1"));
    receivers->SetFilter("", "'\"\\%_;", 0, 0, 0, "", FltAnyLetter);
    Receivers list;
    receivers->Get(&list);
    EXPECT_EQ(NamesOf(list), "hostile") << "backslash and underscore are no wild cards";
    receivers->ClearFilter();

    EXPECT_THAT(ErrorOf([&] { receivers->GetByName(&read, std::string("a\0b", 3)); }),
                testing::HasSubstr("holds a zero byte"));
    Receiver endless("endless", "1");
    std::fill(std::begin(endless.first_name), std::end(endless.first_name), 'x');
    EXPECT_THAT(ErrorOf([&] { receivers->Add(&endless, false); }), testing::HasSubstr("'first_name' has no end"));
    Receiver wide("wide", "1");
    vk::SetText(wide.email, std::string(255, '\''), "email");
    wide.misc_settings = strdup(std::string(1500, 's').c_str());
    EXPECT_THAT(ErrorOf([&] { receivers->Modify(&wide, 0, false, nullptr, nullptr, true); }), testing::Eq(""));
    EXPECT_THAT(ErrorOf([&] { receivers->Add(&wide, false); }), testing::HasSubstr("at most 2047 are run"));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 2);
}

TEST_P(VKReceiverChangeTest, SettingsMayGrowBeyondWhatAStatementThatAddsHolds)
{
    const unsigned long id = Store("mobile", [](Receiver& receiver) {
        receiver.misc_settings = strdup(R"({"MXP":{"DeviceID":"old","DevicePushService":"fcm"},"other":1})");
    });
    Receiver receiver;
    ASSERT_TRUE(receivers->GetByID(&receiver, id));
    NeedAdvMessaging(&receiver)->settings.m_optPassword = std::string(3000, '\'');
    EXPECT_TRUE(receivers->SaveAdvMessagingData(&receiver));
    ASSERT_TRUE(receivers->GetByID(&receiver, id));
    NeedMxpFields(&receiver)->device_id_set = true;
    vk::SetText(receiver.mxp->device_id, std::string(255, 'd'), "device_id");
    EXPECT_TRUE(receivers->Modify(&receiver, 0, false, nullptr, nullptr, true));
    ASSERT_TRUE(receivers->GetAdvMessagingData(&receiver, id));
    EXPECT_EQ(receiver.adv_messaging->settings.m_optPassword->size(), 3000u);
    ASSERT_TRUE(ConvertJSONToMXPFieldsData(&receiver));
    EXPECT_EQ(receiver.mxp->device_id, std::string(255, 'd'));
    EXPECT_STREQ(receiver.mxp->device_push_service, "fcm") << "what is not named stays";
    EXPECT_THAT(receiver.misc_settings, testing::HasSubstr("\"other\":1"));
}

TEST_P(VKReceiverChangeTest, AFullDepartmentRefusesToBeMovedIntoButNotToBeWorkedIn)
{
    SetLimits(true, 10);
    const unsigned long small = AddDepartment("Small", 1);
    const unsigned long large = AddDepartment("Large", 9);
    const auto into = [](unsigned long id) { return [id](Receiver& receiver) { receiver.department_id = id; }; };
    Store("inside", into(small));
    Store("outside", into(large));
    EXPECT_EQ(ErrorOf([&] { Store("third", into(small)); }), "100 Department maximum receivers limit exceeds.");
    Receiver outside;
    ASSERT_TRUE(receivers->GetByName(&outside, "outside"));
    outside.department_id = small;
    const std::string full = "100 Department maximum receivers limit exceeds.";
    EXPECT_EQ(ErrorOf([&] { receivers->Modify(&outside, large, false, nullptr, nullptr, true); }), full);
    EXPECT_EQ(ErrorOf([&] { receivers->ModifyDepartment(&outside, large, false, nullptr, nullptr, true); }), full);
    Receiver inside;
    ASSERT_TRUE(receivers->GetByName(&inside, "inside"));
    vk::SetText(inside.description, "changed", "description");
    EXPECT_TRUE(receivers->Modify(&inside, small, false, nullptr, nullptr, true));
    inside.department_id = large;
    vk::SetText(inside.description, "not written", "description");
    AddDeptRights(&inside, small);
    EXPECT_TRUE(receivers->ModifyDepartment(&inside, small, false, nullptr, nullptr, true));
    ASSERT_TRUE(receivers->GetByName(&inside, "inside"));
    EXPECT_EQ(inside.department_id, large);
    EXPECT_STREQ(inside.description, "changed");
    EXPECT_EQ(inside.dept_rights_count, 1);
    EXPECT_FALSE(receivers->IsDepartmentRecvLimitReached(small));
    EXPECT_TRUE(receivers->IsDepartmentBeingUsed(small)) << "by its guest";
}

TEST_P(VKReceiverChangeTest, GroupsCountAndTakeNamesWhenThereAreAny)
{
    const char* const columns = " (id INTEGER, name VARCHAR(50), department_id INTEGER)";
    const char* const row = " VALUES (1, 'On Call', 1)";
    SetLimits(true, 10);
    const unsigned long department = AddDepartment("Small", 2);
    ASSERT_EQ(department, 1u);
    VKDBiDepartment::s_bCountGrp = true;
    Store("first", [&](Receiver& receiver) { receiver.department_id = department; });
    EXPECT_FALSE(receivers->IsDepartmentRecvLimitReached(department)) << "no groups yet";
    EXPECT_FALSE(receivers->IsGroupName("on call"));
    if (OnFiles()) {
        VKSQLite3Database groups(dir / "recipient_groups.sdb", true);
        VKSQLite3ResultSet result;
        groups.ExecuteUpdateQuery(std::string("CREATE TABLE recipient_group") + columns, result);
        groups.ExecuteUpdateQuery(std::string("INSERT INTO recipient_group") + row, result);
    } else {
        server->ExecuteCommand(std::string("CREATE TABLE VK_RECIPIENT_GROUP") + columns);
        server->ExecuteCommand(std::string("INSERT INTO VK_RECIPIENT_GROUP") + row);
    }
    EXPECT_TRUE(receivers->IsDepartmentRecvLimitReached(department));
    const auto second = [&](Receiver& receiver) { receiver.department_id = department; };
    EXPECT_EQ(ErrorOf([&] { Store("second", second); }), "100 Department maximum receivers limit exceeds.");
    VKDBiDepartment::s_bCountGrp = false;
    Store("second", second);
    SetLimits(false, 0);
    EXPECT_EQ(ErrorOf([&] { Store("ON CALL"); }), "1000 " + std::string(vk::MessageText(1114)) + "\n");
}

TEST_P(VKReceiverChangeTest, EveryTextIsStoredAsGiven)
{
    std::unique_ptr<vk::SqlReceiver> store; // behind the rules, which refuse some of them
    if (OnFiles())
        store = std::make_unique<VKSQLite3Receiver>();
    else
        store = std::make_unique<VKRDBReceiver>();
    ASSERT_TRUE(store->Initialize(&system));
    Receiver receiver;
    Receiver read;
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        if constexpr (std::is_array_v<Value>)
            vk::SetText(field.of(receiver), Hostile(std::min<std::size_t>(sizeof(Value) - 1, 24)), field.name);
    });
    receiver.misc_settings = strdup(Hostile(500).c_str());
    ASSERT_TRUE(store->Add(&receiver, false));
    ASSERT_TRUE(store->GetByName(&read, receiver.name));
    vk::ForEachField(vk::kReceiverTable.fields, [&](const auto& field) {
        using Value = typename std::decay_t<decltype(field)>::Value;
        if constexpr (std::is_array_v<Value> || std::is_same_v<Value, char*>) {
            EXPECT_STREQ(field.of(read), field.of(receiver)) << field.name;
        }
    });
    store->SetFilterAccount(std::string(40, 'x'), "secret");
    Receivers none;
    store->Get(&none, false, false, false);
    EXPECT_EQ(none.count, 0);
}

TEST_P(VKReceiverChangeTest, TheHistoryFollowsTheStatusUnlessItIsGiven)
{
    const long ahead = time(nullptr) + 1000;
    const std::string period = "100-" + std::to_string(ahead) + " ";
    Receiver receiver("ann", "1");
    ASSERT_TRUE(receivers->Add(&receiver, false));
    const auto modify = [&](int status, long start, long end, VK_DISABLE_HISTORY* update = nullptr,
                            VK_DISABLE_HISTORY* add = nullptr, bool keep = true) {
        receiver.status_code = status;
        receiver.disable_start_date = start;
        receiver.disable_end_date = end;
        EXPECT_TRUE(receivers->Modify(&receiver, 0, false, update, add, keep));
        return Periods(receiver.id);
    };
    EXPECT_EQ(modify(3, 100, ahead), period) << "leaving status 1";
    EXPECT_EQ(modify(2, 200, 0), period) << "from one absence to another";
    const std::string closed = modify(1, 200, ahead);
    EXPECT_THAT(closed, testing::AllOf(testing::StartsWith("100-"), testing::Ne(period))) << "ended today";
    EXPECT_EQ(receiver.disable_start_date + receiver.disable_end_date, 0) << "an available receiver has no dates";
    EXPECT_EQ(modify(3, 300, 0, nullptr, nullptr, false), closed) << "told to leave it";
    modify(1, 0, 0, nullptr, nullptr, false);
    VK_DISABLE_HISTORY update;
    update.disable_start_date = 7;
    update.disable_end_date = 8;
    VK_DISABLE_HISTORY add;
    add.disable_start_date = 9;
    EXPECT_EQ(modify(3, 400, 0, &update, &add), "7-8 9-0 ");
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    receiver.forward_to_id = Store("cover");
    modify(1, 0, 0, nullptr, nullptr, false);
    EXPECT_EQ(modify(2, 500, 0), "7-8 9-0 ") << "a cover stands in";

    update.disable_end_date = 10;
    receiver.status_code = 4;
    receiver.disable_start_date = 600;
    EXPECT_TRUE(receivers->ChangeStatus(&receiver, nullptr, &update, true));
    EXPECT_EQ(Periods(receiver.id), "7-8 7-10 9-0 ");
    Receiver read;
    ASSERT_TRUE(receivers->GetByID(&read, receiver.id));
    EXPECT_EQ(read.status_code, 4);
    EXPECT_EQ(read.disable_start_date, 600);
    EXPECT_EQ(read.forward_to_id, 0u) << "a change of status ends the cover";
    Histories within;
    receivers->GetDisableHistory(&within, 0, 9, 9);
    EXPECT_EQ(within.count, 2) << "the open one and the one that ends later";
}

TEST_P(VKReceiverChangeTest, DeletingTakesAllThatBelongsToIt)
{
    const unsigned long guest = AddDepartment("Guest");
    const unsigned long id = Store("gone", [guest](Receiver& receiver) {
        AddDeptRights(&receiver, guest);
        receiver.status_code = 2;
        receiver.disable_start_date = 50;
    });
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
    Store("covered", [&](Receiver& receiver) {
        receiver.status_code = 2;
        receiver.disable_start_date = 1;
        receiver.forward_to_id = cover;
    });
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
    const auto on = [](unsigned long carrier, const char* pin) {
        return [=](Receiver& receiver) {
            receiver.carrier_id = carrier;
            vk::SetText(receiver.pin, pin, "pin");
        };
    };
    Store("a", on(mxp, "ann@Old.org"));
    Store("b", on(mxp, "bob@old.org/phone"));
    Store("c", on(mxp, "old.org@other.org"));
    Store("d", on(xmpp, "dan@old.org"));
    Store("e", [&](Receiver& receiver) {
        receiver.use_alter_carrier = true;
        receiver.bk_carrier_id = mxp;
        vk::SetText(receiver.bk_pin, "eve@old.org", "bk_pin");
    });
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
                testing::HasSubstr("'bk_pin' is 64 bytes long"));
    Receiver read;
    receivers->GetByName(&read, "a");
    EXPECT_STREQ(read.pin, "ann@it's.new") << "all or none";

    EXPECT_TRUE(receivers->UpdateReceiverSecureStatus(read.id, true));
    receivers->GetByName(&read, "a");
    EXPECT_TRUE(read.is_secure);
    EXPECT_FALSE(receivers->UpdateReceiverSecureStatus(99, true));
}

TEST_P(VKReceiverChangeTest, APartOfTheClientsSettingsLeavesTheOthersAsTheyAre)
{
    Receiver receiver("mobile", "1");
    receiver.misc_settings =
        strdup(R"({"AdvMsgng":{"settings":{"show_time":true,"mine":[1]}},"MXP":{"DeviceID":"kept"},"more":1})");
    ASSERT_TRUE(receivers->Add(&receiver, false));
    Receiver change;
    change.id = receiver.id;
    VK_ADV_MESSAGING& data = *NeedAdvMessaging(&change);
    data.settings.m_optPassword = "<\"\\'\xC3\xBC>";
    data.settings.m_objCritical.m_optTone = 7;
    data.permissions.m_optSendMessage = false;
    ASSERT_TRUE(receivers->SaveAdvMessagingData(&change));
    data = {};
    data.settings.m_objCritical.m_optCounter = 3;
    ASSERT_TRUE(receivers->SaveAdvMessagingData(&change));

    Receiver read;
    ASSERT_TRUE(receivers->GetAdvMessagingData(&read, receiver.id));
    const VKMXPPolicySettings& settings = read.adv_messaging->settings;
    EXPECT_EQ(settings.m_optPassword, "<\"\\'\xC3\xBC>");
    EXPECT_EQ(settings.m_objCritical.m_optTone, 7);
    EXPECT_EQ(settings.m_objCritical.m_optCounter, 3);
    EXPECT_EQ(settings.m_optShowMessageTime, true);
    EXPECT_FALSE(settings.m_optAutoDelete);
    EXPECT_EQ(read.adv_messaging->permissions.m_optSendMessage, false);
    EXPECT_THAT(read.misc_settings, testing::AllOf(testing::HasSubstr(R"("mine":[1],"new":true)"),
                                                   testing::HasSubstr(R"("MXP":{"DeviceID":"kept"},"more":1})")));
    EXPECT_TRUE(ConvertJSONToMiscSettingsData(&read));
    EXPECT_STREQ(read.mxp->device_id, "kept");
    change.id = 99;
    EXPECT_FALSE(receivers->SaveAdvMessagingData(&change));

    for (const char* bad : {"{", "[]", R"({"AdvMsgng":1})"}) {
        Receiver broken("broken", "1");
        broken.misc_settings = strdup(bad);
        ASSERT_TRUE(receivers->Add(&broken, false));
        EXPECT_EQ(ErrorOf([&] { receivers->GetAdvMessagingData(&read, broken.id); }),
                  "-1 Unable to parse Advanced Messaging Data for Receiver[ broken ].");
        Receivers all;
        EXPECT_TRUE(receivers->GetForSend(&all, false, false, true, false));
        EXPECT_EQ(NamesOf(all), "broken mobile") << "one broken text holds up nobody else";
        receivers->Delete(broken.id, 0);
    }
}

VK_ON_BOTH_BACKENDS(VKReceiverChangeTest);
