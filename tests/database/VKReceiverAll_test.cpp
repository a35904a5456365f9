#include <gmock/gmock.h>

#include "ReceiverDatabase.h"
#include "VKBALexception.h"

namespace {

using Values = OwnedList<VK_RECEIVER_ATTRIBUTE_LIST, EmptyReceiverAttributeList>;

class VKReceiverAllTest : public ReceiverDatabase
{
protected:
    ~VKReceiverAllTest() override
    {
        VKDBiDepartment::s_bRecLimit = false;
        VKDBiDepartment::s_lMaxMembers = 0;
    }

    /// The places of the list that are refused: "1 2".
    std::string Refused(Receivers& list, bool checkOnly)
    {
        std::vector<VKRefusedRecord> refused;
        const bool stored = receivers->AddAll(&list, checkOnly, refused);
        EXPECT_EQ(stored, refused.empty() && !checkOnly);
        std::string places;
        for (const VKRefusedRecord& record : refused)
            places += (places.empty() ? "" : " ") + std::to_string(record.index);
        return places;
    }

    static void Put(Receivers& list, const char* name, const char* pin, unsigned long carrier, unsigned long department)
    {
        Receiver receiver(name, pin);
        receiver.carrier_id = carrier;
        receiver.department_id = department;
        if (department != 0)
            AddDeptRights(&receiver, department);
        AddReceiver(&list, &receiver);
    }
};

TEST_P(VKReceiverAllTest, AListIsStoredWholeOrNotAtAll)
{
    const unsigned long mobile = AddCarrier("mobile", VKProtocolMxpTwoWay), tone = AddCarrier("tone", 1);
    VKDBiDepartment::s_bRecLimit = true; // without it a department keeps no limit
    VKDBiDepartment::s_lMaxMembers = 10;
    const unsigned long ward = AddDepartment("ward", 2);
    Receivers list;
    Put(list, "Ann", "a@x", mobile, ward);
    Put(list, "Bob", "A@X", mobile, ward); // Ann's address
    Put(list, "Cid", "a@x", tone, ward);   // one too many, unless one of the others goes
    EXPECT_EQ(Refused(list, false), "1 2");
    EXPECT_EQ(receivers->GetTotalRecordCount(), 0);

    vk::SetText(list.list[1].pin, "b@x", "pin");
    list.list[2].department_id = AddDepartment("other", 5);
    EXPECT_EQ(Refused(list, true), "");
    EXPECT_EQ(receivers->GetTotalRecordCount(), 0) << "only checked";
    EXPECT_EQ(Refused(list, false), "");
    EXPECT_EQ(receivers->GetTotalRecordCount(), 3);
    Receiver bob;
    ASSERT_TRUE(receivers->GetByID(&bob, list.list[1].id));
    EXPECT_STREQ(bob.name, "Bob");
    ASSERT_EQ(bob.dept_rights_count, 1);
    EXPECT_EQ(bob.dept_rights[0].department_id, ward);
}

TEST_P(VKReceiverAllTest, AFailureWithinTheListTakesTheOthersBack)
{
    Receivers list;
    Put(list, "Ann", "a", 0, 0);
    Put(list, "Bob", "b", 0, 0);
    const std::string tooLong(3000, 'x');
    list.list[1].misc_settings = strdup(tooLong.c_str()); // more than a statement holds
    std::vector<VKRefusedRecord> refused;
    EXPECT_THROW(receivers->AddAll(&list, false, refused), VKDBexception);
    EXPECT_EQ(receivers->GetTotalRecordCount(), 0);
    EXPECT_EQ(list.list[0].id, 0UL) << "an id of a row that is not there";
}

TEST_P(VKReceiverAllTest, AllValuesOfAReceiverAreReplacedAtOnce)
{
    const unsigned long ann = Store("Ann");
    VK_ATTRIBUTE floor;
    vk::SetText(floor.name, "Floor", "name");
    ASSERT_TRUE(receivers->AddAttribute(&floor));
    Values values;
    VK_RECEIVER_ATTRIBUTE value;
    value.attribute_id = floor.id;
    vk::SetText(value.attribute_values, "2", "attribute_values");
    AddReceiverAttribute(&values, &value);
    ASSERT_TRUE(receivers->ReplaceReceiverAttributes(ann, &values));

    Values wrong;
    vk::SetText(value.attribute_values, "3", "attribute_values");
    AddReceiverAttribute(&wrong, &value);
    value.attribute_id = floor.id + 1;
    AddReceiverAttribute(&wrong, &value);
    EXPECT_THROW(receivers->ReplaceReceiverAttributes(ann, &wrong), VKDBexception);
    Values stored;
    receivers->GetReceiverAttributeByRcvID(&stored, ann);
    ASSERT_EQ(stored.count, 1) << "what was there stays";
    EXPECT_STREQ(stored.list[0].attribute_values, "2");
}

VK_ON_BOTH_BACKENDS(VKReceiverAllTest);

} // namespace
