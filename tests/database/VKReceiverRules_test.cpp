#include <ctime>
#include <gmock/gmock.h>

#include "ReceiverDatabase.h"
#include "VKBALMessages.h"
#include "VKBALReceiver.h"
#include "VKBALUtility.h"
#include "VKPinTemplate.h"
#include "VKReceiverAvailability.h"

namespace {

/// The receivers' rules with the carriers that they speak of.
class VKReceiverRulesTest : public ReceiverDatabase
{
protected:
    VKReceiverRulesTest() { VKDBiReceiver::s_bIsCoverByAllowed = true; }

    VKBALReceiver& Rules() { return dynamic_cast<VKBALReceiver&>(*receivers); }

    /// The numbers of the rules that a record breaks, in the order told; a text that is in no message as it is.
    std::string Broken(const ColumnValues& values)
    {
        const Receiver receiver("new", "123", values);
        const std::string error = ErrorOf([&] { Rules().CheckBALConstraints(receiver, receiver.id == 0); });
        std::string numbers;
        std::istringstream lines(error.substr(0, 5) == "1000 " ? error.substr(5) : error);
        for (std::string told; std::getline(lines, told);) {
            for (int number = 1108; number <= 1172; ++number)
                if (told == vk::MessageText(number))
                    told = std::to_string(number);
            numbers += (numbers.empty() ? "" : " ") + told;
        }
        return numbers;
    }

    /// Not available from one time to another, in seconds from now.
    ColumnValues Away(int status, long from, long to, const ColumnValues& more = {}) const
    {
        ColumnValues values{
            {"status_code", status}, {"disable_start_date", now + from}, {"disable_end_date", now + to}};
        values.insert(values.end(), more.begin(), more.end());
        return values;
    }

    const unsigned long mxp = AddCarrier("mxp", VKProtocolMxpTwoWay);
    const unsigned long oai = AddCarrier("oai", VKProtocolOaiOneWay, "");
    const unsigned long voip = AddCarrier("voip", VKProtocolVoip);
    const unsigned long digits = AddCarrier("digits", 4, "3N");
    const long now = time(nullptr);
};

/// The receivers with their rules switched off.
class UncheckedReceivers : public VKBALReceiver
{
public:
    explicit UncheckedReceivers(std::unique_ptr<VKDBiReceiver> store) : VKBALReceiver(std::move(store))
    {
        m_iValidationMode = 2;
    }
};

} // namespace

TEST_P(VKReceiverRulesTest, EachRuleIsToldByItsNumberInOrder)
{
    const unsigned long taken = Store("Taken", Away(3, 0, 50));
    const std::pair<const char*, ColumnValues> rows[] = {
        {"", {}},
        {"1110 1113", {{"name", ""}, {"pin", ""}}},
        {"1110", {{"name", " \t"}}},
        {"1111", {{"name", "a/b"}}},
        {"1111", {{"name", "it's"}}},
        {"1111", {{"name", "Z\xC3\xBCrich"}}},
        {"1113", {{"pin", " \t "}}},
        {"1113 1114", {{"name", "TAKEN"}, {"pin", ""}}},
        {"1111 1113", {{"name", "<"}, {"pin", ""}}},
        {"1171", {{"carrier_id", digits}, {"advanced_messaging", true}}},
        {"", {{"carrier_id", mxp}, {"advanced_messaging", true}}},
        {"1115", {{"carrier_id", VK_FAX_CARRIER_ID}}},
        {"", {{"carrier_id", VK_FAX_CARRIER_ID}, {"type", VKReceiverFax}}},
        {"1116 1133", {{"carrier_id", VK_VOICE_CARRIER_ID}, {"type", VKReceiverNumeric}}},
        {"1117 1118", {{"voice_enable", true}, {"voice_number", "+1"}, {"email", "a b@c"}}},
        {"1119", {{"voice_enable", true}}},
        {"1120", {{"email_cc", true}}},
        {"1120", {{"email_fail_over", true}}},
        {"1165 1166", {{"first_name", "R2"}, {"last_name", "D_"}}},
        {"1121 1122", {{"use_alter_carrier", true}}},
        {"1172 1123", {{"use_alter_carrier", true}, {"carrier_id", mxp}, {"bk_carrier_id", mxp}}},
        {"1124 1125",
         {{"use_alter_carrier", true}, {"carrier_id", digits}, {"pin", "1234"}, {"bk_carrier_id", oai},
          {"bk_pin", "x"}}},
        {"1126", {{"can_update_rece", true}, {"acct_name", "ann"}}},
        {"1127", {{"can_update_schd", true}, {"acct_pwd", "p"}}},
        {"", {{"acct_name", "no log-in"}}},
        {"1128 1130", {{"status_code", 3}, {"disable_end_date", 100}}},
        {"1131", Away(3, 90, 50)},
        {"", {{"status_code", 1}, {"disable_end_date", 100}}},
        {"1153", {{"carrier_id", voip}, {"type", VKReceiverFax}}},
        {"1167", {{"acct_name", "a;b"}}},
        {"1168", Away(3, 90, 50, {{"id", taken}})}}; // the end is as it was
    for (const auto& [broken, values] : rows)
        EXPECT_EQ(Broken(values), broken) << &values - &rows[0].second;
    SetLimits(true, 5);
    EXPECT_EQ(Broken({}), "1132");

    EXPECT_EQ(ErrorOf([&] { Store("", {{"pin", ""}, {"department_id", 7}}); }),
              "1000 " + std::string(vk::MessageText(1110)) + "\n" + std::string(vk::MessageText(1113)) + "\n");
    EXPECT_EQ(receivers->GetTotalRecordCount(), 1);
}

TEST_P(VKReceiverRulesTest, ACoverIsThereAndFreeAndLeadsNotBack)
{
    const auto offDuty = [&](unsigned long cover, long from, long to) {
        return Away(2, from, to, {{"forward_to_id", cover}});
    };
    const auto as = [](unsigned long id, ColumnValues values) {
        values.push_back({"id", id});
        return values;
    };
    const unsigned long free = Store("free");
    const unsigned long away = Store("away", Away(3, 0, 500));
    EXPECT_EQ(Broken(offDuty(free, 0, 100)), "");
    EXPECT_EQ(Broken(offDuty(99, 0, 100)), "1109");
    EXPECT_EQ(Broken(offDuty(away, 0, 100)), "1108");
    EXPECT_EQ(Broken(offDuty(away, 600, 700)), "") << "back by then";
    const unsigned long covered = Store("covered", offDuty(free, 0, 100));
    EXPECT_EQ(Broken(offDuty(free, 0, 200)), "1108") << "covers another one for a shorter time";
    EXPECT_EQ(Broken(offDuty(free, 0, 50)), "");
    EXPECT_EQ(Broken(as(free, offDuty(covered, 0, 100))), "1169");
    EXPECT_EQ(Broken(as(away, offDuty(away, 0, 100))), "1169") << "itself";
    const unsigned long next = Store("next", offDuty(covered, 0, 100));
    EXPECT_EQ(Broken(as(free, offDuty(next, 0, 100))), "1169") << "by way of another one";
    EXPECT_EQ(Broken(as(free, offDuty(0, 50, 90))), "This receiver is a Cover by receiver for 'covered'");
    EXPECT_EQ(Broken(as(free, offDuty(0, 150, 190))), "") << "after that";
    VKDBiReceiver::s_bIsCoverByAllowed = false;
    EXPECT_EQ(Broken(offDuty(99, 0, 100)), "") << "covers are not looked at";
}

TEST_P(VKReceiverRulesTest, APinFitsItsCarrier)
{
    const unsigned long taken = Store("taken", {{"carrier_id", mxp}, {"pin", "Ann_%@host"}});
    Store("elsewhere", {{"pin", "bob@host"}});
    const struct
    {
        unsigned long carrier;
        unsigned long receiver;
        const char* pin;
        bool valid;
    } rows[] = {{0, 0, "any thing", true},
                {VK_FAX_CARRIER_ID, 0, " ", true},
                {VK_VOICE_CARRIER_ID, 0, "", true},
                {oai, 0, "270F", true},
                {oai, 0, "2710", false},
                {oai, 0, "00000270f", true},
                {oai, 0, "-1", false},
                {oai, 0, "1g", false},
                {oai, 0, "", false},
                {mxp, 0, "aNN_%@HOST", false},
                {mxp, taken, "ann_%@host", true},
                {mxp, 0, "annx%@host", true},
                {mxp, 0, "bob@host", true},
                {mxp, 0, "b ob@host", false},
                {mxp, 0, "bob@host\t", false},
                {digits, 0, "123", true},
                {digits, 0, "12", false},
                {digits, 0, "1234", false}};
    for (const auto& row : rows)
        EXPECT_EQ(Rules().ValidateReceiverPin(row.receiver, row.pin, row.carrier), row.valid)
            << row.carrier << " " << row.pin;
    for (const char* pin : {"0", "9999", "00012"})
        EXPECT_TRUE(VKBALReceiver::ValidatePinForOAIReceiver(pin)) << pin;
    for (const char* pin : {"", "10000", "12 ", " 12", "1a", "-1", "99999999999999999999"})
        EXPECT_FALSE(VKBALReceiver::ValidatePinForOAIReceiver(pin)) << pin;
}

TEST_P(VKReceiverRulesTest, WithoutValidationWhateverTheStoreTakesIsStored)
{
    UncheckedReceivers unchecked(MakeReceiverStore());
    Receivers list;
    for (const char* name : {"", "a/b"}) {
        const Receiver receiver(name, "");
        AddReceiver(&list, &receiver);
    }
    EXPECT_TRUE(unchecked.Add(&list.list[0], false));
    vk::SetText(list.list[0].name, "<>", "name");
    EXPECT_TRUE(unchecked.Modify(&list.list[0], 0, false, nullptr, nullptr, true));
    std::vector<VKRefusedRecord> refused;
    EXPECT_TRUE(unchecked.AddAll(&list, false, refused));
    EXPECT_EQ(receivers->GetTotalRecordCount(), 3);
}

VK_ON_BOTH_BACKENDS(VKReceiverRulesTest);

TEST(VKPinTemplate, SaysWhatAPinLooksLike)
{
    const struct
    {
        const char* pinTemplate;
        int tokens;
        std::vector<const char*> valid;
        std::vector<const char*> invalid;
    } rows[] = {{"", 0, {"", "any thing"}, {}},
                {" \t", 0, {"x"}, {}},
                {"3N", 1, {"123"}, {"12", "1234", "12a", ""}},
                {" 3n4a\t", 2, {"123ab1C"}, {"123ab1", "12aab1C", "123ab-1"}},
                {"N", 1, {"7", "0123456789", ""}, {"1a", " 1"}},
                {"0N", 1, {"", "12"}, {"a"}},
                {"a", 1, {"a1Z"}, {"a-", "\xC3\xBC"}},
                {"2NA", 2, {"12", "12ab"}, {"1", "ab"}},
                {"99N", 1, {}, {"1"}},
                {"1N1N1", -1, {}, {"111", ""}},
                {"2NN", -1, {}, {"12"}},
                {"N2A", -1, {}, {"1ab"}},
                {"NN", -1, {}, {"1"}},
                {"100N", -1, {}, {"1"}},
                {"99999999999999999999N", -1, {}, {"1"}},
                {"3X", -1, {}, {"123"}},
                {"3 N", -1, {}, {"123"}}};
    for (const auto& row : rows) {
        std::vector<VKPinToken> tokens;
        EXPECT_EQ(GetTokensFromPinTemplate(row.pinTemplate, tokens), row.tokens) << row.pinTemplate;
        for (const char* pin : row.valid)
            EXPECT_TRUE(ValidatePinAgainstPinTemplate(pin, row.pinTemplate)) << row.pinTemplate << " " << pin;
        for (const char* pin : row.invalid)
            EXPECT_FALSE(ValidatePinAgainstPinTemplate(pin, row.pinTemplate)) << row.pinTemplate << " " << pin;
    }
}

TEST(VKReceiverAvailability, DependsOnStatusCoverAndDates)
{
    const struct
    {
        int status;
        unsigned long cover;
        long start;
        long end;
        bool disabledAt50;  ///< with covers allowed
        bool withoutCovers; ///< at 50, with covers not allowed
        bool from10To20;    ///< with covers allowed
        bool from60To40;
    } rows[] = {{1, 0, 0, 100, false, false, false, false}, {0, 5, 0, 0, false, false, false, false},
                {2, 5, 0, 100, false, true, false, false},  {2, 5, 0, 0, false, false, false, false},
                {2, 0, 0, 0, true, false, true, true},      {3, 5, 0, -1, true, false, true, true},
                {3, 0, 50, 50, true, true, false, true},    {3, 0, 51, 99, false, false, false, true},
                {3, 0, 0, 49, false, false, true, true},    {3, 0, 15, 45, false, false, true, true},
                {3, 0, 0, 15, false, false, true, false}};
    for (const auto& row : rows) {
        VK_RECEIVER receiver;
        receiver.status_code = row.status;
        receiver.forward_to_id = row.cover;
        receiver.disable_start_date = row.start;
        receiver.disable_end_date = row.end;
        for (const bool covers : {true, false}) {
            VKDBiReceiver::s_bIsCoverByAllowed = covers;
            const bool expected = covers ? row.disabledAt50 : row.withoutCovers;
            EXPECT_EQ(IsReceiverDisabledAtTime(&receiver, 50), expected) << &row - rows << covers;
            EXPECT_EQ(IsReceiverDisabledAtTime(row.status, row.cover, row.start, row.end, 50), expected)
                << &row - rows << covers;
        }
        VKDBiReceiver::s_bIsCoverByAllowed = true;
        EXPECT_EQ(IsReceiverDisabledAtTime(&receiver, 10, 20), row.from10To20) << &row - rows;
        EXPECT_EQ(IsReceiverDisabledAtTime(&receiver, 60, 40), row.from60To40) << &row - rows;
    }
    VKDBiReceiver::s_bIsCoverByAllowed = false;
}

TEST(VKBALUtility, AUserNameIsPrintableAsciiWithoutSomeSigns)
{
    EXPECT_TRUE(VKBALUtility::IsValidUserName(""));
    EXPECT_TRUE(VKBALUtility::IsValidUserName(" ann@host_1!~"));
    for (const char refused : std::string("\"':\\/%<>#*?|;,\x1F\x7F\x80"))
        EXPECT_FALSE(VKBALUtility::IsValidUserName(std::string("a") + refused)) << refused;
}
