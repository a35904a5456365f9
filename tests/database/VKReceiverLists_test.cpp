#include <ctime>
#include <gmock/gmock.h>

#include "ReceiverDatabase.h"
#include "VKRecipientRights.h"

namespace {

class VKReceiverListsTest : public ReceiverDatabase
{
protected:
    /// The names that the filter set by `set` leaves, in each kind of list.
    template <class Set> std::string Filtered(Set&& set)
    {
        receivers->ClearFilter();
        set();
        Receivers plain;
        receivers->Get(&plain);
        ReceiverViews views;
        receivers->Get(&views);
        Receivers favorites;
        receivers->GetForFavorites(&favorites);
        std::vector<VK_NAME_RECORD> names;
        receivers->GetNamesList(names);
        std::map<unsigned long, unsigned long> departments;
        receivers->GetDepartmentList(departments);
        EXPECT_EQ(NamesOf(views), NamesOf(plain));
        EXPECT_EQ(NamesOf(favorites), NamesOf(plain));
        EXPECT_EQ(names.size(), static_cast<std::size_t>(plain.count));
        EXPECT_EQ(departments.size(), static_cast<std::size_t>(plain.count));
        return NamesOf(plain);
    }
    std::string ByText(const char* name, const char* pin, const char* cover, FltNameLetter letter = FltAnyLetter)
    {
        return Filtered([&] { receivers->SetFilter(name, pin, 0, 0, 0, cover, letter); });
    }
    std::string ByIds(unsigned long carrier, int protocol, unsigned long department)
    {
        return Filtered([&] { receivers->SetFilter("", "", carrier, protocol, department, "*", FltAnyLetter); });
    }
    std::string ByState(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging)
    {
        return Filtered([&] { receivers->SetFilter(available, voice, advancedMessaging); });
    }

    const long now = time(nullptr);
};

} // namespace

TEST_P(VKReceiverListsTest, FiltersNarrowEveryListUntilTheyAreCleared)
{
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    const unsigned long mxp = AddCarrier("clients", VKProtocolMxpOneWay);
    const unsigned long north = AddDepartment("North");
    const unsigned long south = AddDepartment("South");
    const unsigned long anna = Store("Anna", {{"carrier_id", mxp}, {"department_id", north}, {"owner_id", 7},
                                              {"advanced_messaging", true}, {"guest", south},
                                              {"guest", AddDepartment("East")}});
    const unsigned long ben = Store("ben", {{"department_id", south}, {"status_code", 2}, {"disable_start_date", 1},
                                            {"forward_to_id", anna}});
    const unsigned long ward = Store("1 ward", {{"voice_enable", true}, {"voice_number", "112"}});
    Receiver account("a_x", "pin%", {{"acct_name", "Login"}, {"acct_pwd", "it's"}});
    ASSERT_TRUE(receivers->Add(&account, true));

    EXPECT_EQ(ByText("", "", ""), "1 ward Anna a_x ben");
    EXPECT_EQ(ByText("A", "*", ""), "Anna a_x");
    EXPECT_EQ(ByText("a_", "", ""), "a_x") << "no wild card";
    EXPECT_EQ(ByText("", "PIN.", ""), "1 ward Anna ben");
    EXPECT_EQ(ByText("", "", "ann"), "ben");
    EXPECT_EQ(ByText("", "", "", FltOnlyLetters), "Anna a_x ben");
    EXPECT_EQ(ByText("", "", "", FltNoLetters), "1 ward");
    EXPECT_EQ(ByIds(mxp, 0, 0), "Anna");
    EXPECT_EQ(ByIds(0, VKProtocolMxpOneWay, 0), "Anna");
    EXPECT_EQ(ByIds(0, VKProtocolMxpTwoWay, 0), "");
    EXPECT_EQ(ByIds(0, 0, south), "Anna ben") << "a guest, once";
    EXPECT_EQ(ByIds(mxp, 0, south), "Anna");
    EXPECT_EQ(ByState(FltOnlyEnabled, FltEither, FltEither), "1 ward Anna a_x");
    EXPECT_EQ(ByState(FltOnlyDisabled, FltEither, FltEither), "ben");
    EXPECT_EQ(ByState(FltEither, FltOnlyEnabled, FltEither), "1 ward");
    EXPECT_EQ(ByState(FltEither, FltOnlyDisabled, FltOnlyEnabled), "Anna");
    EXPECT_EQ(Filtered([&] { receivers->SetFilterOwner(7); }), "Anna");
    EXPECT_EQ(Filtered([&] { receivers->SetFilterReceiverIDs({ben, ward, 99}); }), "1 ward ben");
    EXPECT_EQ(Filtered([&] { receivers->SetFilterReceiverIDs({}); }), "");
    EXPECT_EQ(Filtered([&] { receivers->SetFilterAccount("LOGIN", "it's"); }), "a_x");
    EXPECT_EQ(Filtered([&] { receivers->SetFilterAccount("Login", "IT'S"); }), "");

    VK_DEPT_PERMISSION rights[2];
    rights[0].department_id = south;
    rights[0].send_receiver = true;
    rights[1].department_id = north;
    rights[1].mod_receiver = 2;
    VK_USER_GROUP group;
    group.dept_perms = {2, rights};
    const auto byGroup = [&](bool full, DeptPerm right) {
        return Filtered([&] { receivers->SetFilter(&group, full, right); });
    };
    EXPECT_EQ(byGroup(false, DeptPermSendReceiver), "Anna ben");
    EXPECT_EQ(byGroup(false, DeptPermModReceiver), "Anna");
    EXPECT_EQ(byGroup(false, DeptPermSendGroup), "");
    EXPECT_EQ(byGroup(true, DeptPermSendGroup), "1 ward Anna a_x ben");
    VK_FAVORITE marked[3] = {{1, 5, ben, 1}, {2, 6, ward, 1}, {3, 5, anna, 2}};
    VK_FAVORITE_LIST favorites{3, marked};
    EXPECT_EQ(Filtered([&] { receivers->SetFilter(&favorites, 5); }), "ben") << "of that user, and a receiver";
    VK_RECIP_PERM allowed[2] = {{1, 5, ward, 1}, {2, 5, anna, 1}};
    VK_RECIP_PERM_LIST permissions{2, allowed};
    EXPECT_EQ(Filtered([&] { receivers->SetFilter(&permissions, 5); }), "1 ward Anna");

    EXPECT_EQ(Filtered([] {}), "1 ward Anna a_x ben");
    EXPECT_EQ(receivers->GetTotalRecordCount(), 4);
}

TEST_P(VKReceiverListsTest, ListsCarryWhatTheirReadersNeed)
{
    VKDBiReceiver::s_bIsCoverByAllowed = true;
    const unsigned long mxp = AddCarrier("clients", VKProtocolMxpTwoWay);
    const unsigned long north = AddDepartment("North");
    const unsigned long ann = Store("ann", {{"carrier_id", mxp}, {"department_id", north}, {"two_way", true},
                                            {"is_secure", true}, {"guest", AddDepartment("Guest")},
                                            {"misc_settings", R"({"MXP":{"DeviceID":"d1"}})"}});
    const unsigned long fax =
        Store("fax", {{"carrier_id", VK_FAX_CARRIER_ID}, {"type", VKReceiverFax}, {"time_zone_id", 3}});
    Store("off", {{"status_code", 3}, {"disable_start_date", now - 9}, {"disable_end_date", now + 900}});
    Store("open", {{"status_code", 3}, {"disable_start_date", now + 9}});
    Store("with cover",
          {{"status_code", 2}, {"disable_start_date", 1}, {"forward_to_id", ann}, {"type", VKReceiverNumeric}});
    VK_ONDUTY_SCHEDULE schedule;
    schedule.owner_id = ann;
    vk::SetText(schedule.name, "nights", "name");
    ASSERT_TRUE(receivers->AddSchedule(&schedule));

    Receivers send;
    ASSERT_TRUE(receivers->GetForSend(&send, true, true, true, false));
    ASSERT_EQ(NamesOf(send), "ann fax off open with cover");
    const VK_RECEIVER& first = send.list[0];
    EXPECT_EQ(first.protocol_id, static_cast<unsigned int>(VKProtocolMxpTwoWay));
    EXPECT_EQ(first.dept_rights_count, 1);
    ASSERT_EQ(first.schedule_count, 1);
    EXPECT_STREQ(first.schedules[0].name, "nights");
    EXPECT_STREQ(first.mxp->device_id, "d1");
    EXPECT_EQ(send.list[1].protocol_id, 0u);
    Receivers enabled;
    receivers->GetForSend(&enabled, false, false, false, true);
    EXPECT_EQ(NamesOf(enabled), "ann fax with cover") << "an open end counts as disabled at all times";
    EXPECT_EQ(enabled.list[0].schedule_count + enabled.list[0].dept_rights_count, 0);
    receivers->GetOnlyEnabled(&enabled);
    EXPECT_EQ(NamesOf(enabled), "ann fax with cover");

    const auto disabled = [&] {
        Receivers list;
        receivers->GetForScheduler(&list, true);
        std::string text;
        for (int i = 0; i < list.count; ++i) {
            text += list.list[i].disabled ? "1" : "0";
            Receiver one;
            EXPECT_TRUE(receivers->GetByNameForScheduler(&one, list.list[i].name));
            EXPECT_EQ(one.disabled, list.list[i].disabled) << one.name;
            EXPECT_EQ(one.schedule_count, list.list[i].schedule_count);
        }
        return text;
    };
    EXPECT_EQ(disabled(), "00110");
    VKDBiReceiver::s_bIsCoverByAllowed = false;
    EXPECT_EQ(disabled(), "00100") << "an open end counts as ended, and so does the cover's";
    receivers->GetOnlyEnabled(&enabled);
    EXPECT_EQ(NamesOf(enabled), "ann fax open with cover");

    Receivers members;
    receivers->GetForMemberDetails(&members);
    EXPECT_STREQ(members.list[0].pin, "pin.ann");
    EXPECT_EQ(members.list[0].protocol_id, static_cast<unsigned int>(VKProtocolMxpTwoWay));
    EXPECT_EQ(members.list[0].misc_settings, nullptr);
    Receivers some;
    receivers->GetByIDs(&some, {fax, 99, ann});
    EXPECT_EQ(NamesOf(some), "ann fax");
    ReceiverViews views;
    receivers->Get(&views);
    EXPECT_STREQ(views.list[0].carrier_name, "clients");
    EXPECT_STREQ(views.list[0].department_name, "North");
    EXPECT_STREQ(views.list[1].carrier_name, "Fax");
    EXPECT_STREQ(views.list[4].forward_to_name, "ann");
    std::vector<VKReceProperty> properties;
    receivers->GetReceiverProperties(properties);
    ASSERT_EQ(properties.size(), 5u);
    EXPECT_TRUE(properties[0].two_way && properties[0].device && properties[0].secure && !properties[0].numeric);
    EXPECT_TRUE(properties[4].numeric && !properties[4].device);
    EXPECT_TRUE(receivers->IsFaxReceiverPresent());
    EXPECT_FALSE(receivers->IsVoiceReceiverPresent());
    EXPECT_TRUE(receivers->IsTimeZoneBeingUsed(3));
    EXPECT_FALSE(receivers->IsTimeZoneBeingUsed(4));
    EXPECT_TRUE(receivers->IsCarrierBeingUsed(mxp));
}

TEST_P(VKReceiverListsTest, AttributesAreNamedOnceAndFoundByAllTheirValues)
{
    const auto add = [&](const char* name, int order) {
        VK_ATTRIBUTE attribute;
        vk::SetText(attribute.name, name, "name");
        attribute.attr_order = order;
        attribute.attr_values = strdup("a'b|c");
        const std::string error = ErrorOf([&] { receivers->AddAttribute(&attribute); });
        const unsigned long id = attribute.id;
        EmptyAttribute(&attribute);
        return error.empty() ? std::to_string(id) : error;
    };
    const unsigned long floor = std::stoul(add("Floor", 2));
    const unsigned long skill = std::stoul(add("skill", 1));
    for (const char* bad : {"FLOOR", "", "a/b"})
        EXPECT_THAT(add(bad, 3), testing::StartsWith("1000 The attribute name is")) << bad;
    Attributes attributes;
    receivers->GetAllAttributes(&attributes);
    ASSERT_EQ(NamesOf(attributes), "skill Floor");
    EXPECT_STREQ(attributes.list[0].attr_values, "a'b|c");
    attributes.list[0].attr_order = 9;
    EXPECT_TRUE(receivers->ModifyAttribute(&attributes.list[0]));
    std::vector<VK_NAME_RECORD> names;
    receivers->GetAttributesNameList(names);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0].name, "Floor");

    const unsigned long ann = Store("ann");
    const unsigned long bob = Store("bob");
    const auto give = [&](unsigned long receiver, unsigned long attribute, const char* text) {
        VK_RECEIVER_ATTRIBUTE value = AttributeValue(receiver, attribute, text);
        return ErrorOf([&] { receivers->AddReceiverAttribute(&value); });
    };
    EXPECT_EQ(give(ann, floor, "3"), "");
    EXPECT_EQ(give(ann, skill, "it's"), "");
    EXPECT_EQ(give(bob, floor, "3"), "");
    EXPECT_EQ(give(bob, floor, "3"), "") << "has it already";
    EXPECT_EQ(give(99, floor, "3"), "1000 Foreign Key constraints failed.");
    EXPECT_EQ(give(ann, 99, "3"), "1000 Foreign Key constraints failed.");
    const auto having = [&](const std::map<unsigned long, std::string>& values) {
        return Filtered([&] { receivers->SetFilterAttribute(values); });
    };
    EXPECT_EQ(having({{floor, "3"}}), "ann bob");
    EXPECT_EQ(having({{floor, "3"}, {skill, "IT'S"}}), "ann") << "all values";
    EXPECT_EQ(having({{skill, "3"}}), "");

    AttributeValues values;
    EXPECT_TRUE(receivers->GetReceiverAttributeByRcvID(&values, ann));
    EXPECT_EQ(values.count, 2);
    EXPECT_FALSE(receivers->GetReceiverAttributeByRcvID(&values, 0));
    receivers->GetReceiversAttributesList(&values);
    EXPECT_EQ(values.count, 3);
    EXPECT_EQ(receivers->GetAssociatedRecvCountByAttribute(floor), 2);
    EXPECT_EQ(ErrorOf([&] { receivers->DeleteAttributeByID(floor); }), "1000 Foreign Key constraints failed.");
    EXPECT_TRUE(receivers->DeleteReceiverAttributeByAttribID(floor));
    EXPECT_FALSE(receivers->IsAttribBeingUsed(floor));
    EXPECT_TRUE(receivers->DeleteAttributeByID(floor));
    EXPECT_TRUE(receivers->DeleteReceiverAttributeByRcvID(ann));
    EXPECT_FALSE(receivers->DeleteReceiverAttributeByRcvID(ann));
}

TEST_P(VKReceiverListsTest, SchedulesHaveNamesOfTheirOwnUnlessTheyAreArchived)
{
    const unsigned long ann = Store("ann");
    VK_ONDUTY_SCHEDULE nights;
    nights.owner_id = ann;
    vk::SetText(nights.name, "Night's", "name");
    nights.start_hour = 22;
    nights.scd_type = 1;
    nights.week_days_or_day_of_month = 31;
    ASSERT_TRUE(receivers->AddSchedule(&nights));
    EXPECT_FALSE(receivers->IsUniqueScheduleName("NIGHT'S", ann, 0));
    EXPECT_TRUE(receivers->IsUniqueScheduleName("NIGHT'S", ann, nights.id));
    EXPECT_TRUE(receivers->IsUniqueScheduleName("Night's", ann + 1, 0));
    nights.archived = true;
    EXPECT_TRUE(receivers->ModifySchedule(&nights));
    EXPECT_TRUE(receivers->IsUniqueScheduleName("Night's", ann, 0));
    VK_ONDUTY_SCHEDULE read;
    ASSERT_TRUE(receivers->GetSchedule(&read, nights.id));
    EXPECT_STREQ(read.name, "Night's");
    EXPECT_EQ(read.week_days_or_day_of_month, 31);
    EXPECT_TRUE(read.archived);
    EXPECT_FALSE(receivers->DeleteSchedule(ann, 4, 1));
    EXPECT_TRUE(receivers->DeleteSchedule(ann, 0, 0));
    EXPECT_FALSE(receivers->DeleteSchedule(nights.id));
}

VK_ON_BOTH_BACKENDS(VKReceiverListsTest);
