#include <gmock/gmock.h>

#include "ReceiverDatabase.h"
#include "VKBALexception.h"

namespace {

class VKReceiverAllTest : public ReceiverDatabase
{
protected:
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

    static void Put(Receivers& list, const char* name, const char* pin, const ColumnValues& values = {})
    {
        const Receiver receiver(name, pin, values);
        AddReceiver(&list, &receiver);
    }
};

TEST_P(VKReceiverAllTest, AListIsStoredWholeOrNotAtAll)
{
    const unsigned long mobile = AddCarrier("mobile", VKProtocolMxpTwoWay), tone = AddCarrier("tone", 1);
    SetLimits(true, 10); // without it a department keeps no limit
    const unsigned long ward = AddDepartment("ward", 2);
    const auto onWard = [&](unsigned long carrier) {
        return ColumnValues{{"carrier_id", carrier}, {"department_id", ward}, {"guest", ward}};
    };
    Receivers list;
    Put(list, "Ann", "a@x", onWard(mobile));
    Put(list, "Bob", "A@X", onWard(mobile)); // Ann's address
    Put(list, "Cid", "a@x", onWard(tone));   // one too many, unless one of the others goes
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

    Receivers late;
    Put(late, "Dan", "d@x", onWard(mobile));
    EXPECT_EQ(Refused(late, false), "0") << "the ward was full before";
}

TEST_P(VKReceiverAllTest, AFailureWithinTheListTakesTheOthersBack)
{
    Receivers list;
    Put(list, "Ann", "a");
    Put(list, "Bob", "b", {{"misc_settings", std::string(3000, 'x')}}); // more than a statement holds
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
    const auto put = [](AttributeValues& values, unsigned long attribute, const char* text) {
        const VK_RECEIVER_ATTRIBUTE value = AttributeValue(0, attribute, text);
        AddReceiverAttribute(&values, &value);
    };
    AttributeValues values;
    put(values, floor.id, "2");
    ASSERT_TRUE(receivers->ReplaceReceiverAttributes(ann, &values));
    AttributeValues wrong;
    put(wrong, floor.id, "3");
    put(wrong, floor.id + 1, "3");
    EXPECT_THROW(receivers->ReplaceReceiverAttributes(ann, &wrong), VKDBexception);
    AttributeValues stored;
    receivers->GetReceiverAttributeByRcvID(&stored, ann);
    ASSERT_EQ(stored.count, 1) << "what was there stays";
    EXPECT_STREQ(stored.list[0].attribute_values, "2");
}

VK_ON_BOTH_BACKENDS(VKReceiverAllTest);

} // namespace
