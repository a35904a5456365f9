#include "HostMessageFile.h"

#include <gtest/gtest.h>

namespace {

using Reports = VKMessengerReportsMngrInterface;

TEST(HostMessageFile, TakesTheChoicesAsTheyAreAnnounced)
{
    vk::HostMessageFile file;
    file.vecResponseChoices = {{"On my way: 5 min", VKMessageFile::kNonTerminalAction}, {"Done", 0}};
    const struct
    {
        const char* response;
        bool taken;
        int type;
    } cases[] = {
        {"On my way- 5 min", true, VKMessageFile::kNonTerminalAction},
        {"ON MY WAY: 5 MIN", true, VKMessageFile::kNonTerminalAction},
        {"done", true, 0},
        {"CONFIRM", true, 0},
        {"REFUSE", true, 0},
        {"confirm", false, 0},
        {"Don", false, 0},
        {"", false, 0},
    };
    for (const auto& row : cases) {
        const std::size_t before = file.vecReceivedResponses.size();
        EXPECT_EQ(file.AddReceivedResponse(row.response), row.taken) << row.response;
        EXPECT_EQ(file.vecReceivedResponses.size(), before + (row.taken ? 1 : 0)) << row.response;
        if (row.taken) {
            EXPECT_EQ(file.GetResponseActionType(static_cast<int>(before)), row.type) << row.response;
        }
    }
    EXPECT_EQ(file.GetResponseActionType(-1), 0);
    EXPECT_EQ(file.GetResponseActionType(99), 0);
}

TEST(HostMessageFile, AMessageWithoutChoicesTakesAnyText)
{
    vk::HostMessageFile file;
    EXPECT_TRUE(file.AddReceivedResponse("anything"));
    EXPECT_NE(file.GetResponseActionType(0), VKMessageFile::kNonTerminalAction);
}

TEST(HostMessageFile, EachReportKeepsWhatStoodWhenItWasMade)
{
    vk::HostMessageFile file;
    const auto push = [&](Reports::ReportsStatus status, bool open, const char* text) {
        file.eReportStatus = status;
        file.bKeepOpen = open;
        file.SetStatusText(text);
    };
    file.SetDeliveryStatus("DELIVERED-RECEIVED");
    push(Reports::RS_DELIVERED, true, ": RECEIVED");
    file.AddReceivedResponse("Yes");
    push(Reports::RS_REPLIED_WITH, true, "");
    file.SetDeliveryStatus("DELIVERED-READ");
    push(Reports::RS_DELIVERED, false, ": READ");

    for (const char* expected : {"6 open ': RECEIVED' DELIVERED-RECEIVED ''", "5 open '' DELIVERED-RECEIVED 'Yes'",
                                 "6 final ': READ' DELIVERED-READ ''"}) {
        const auto report = file.TakeReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(std::to_string(report->status) + (report->keepOpen ? " open '" : " final '") + report->text + "' " +
                      report->deliveryStatus + " '" + report->response + "'",
                  expected);
    }
    EXPECT_FALSE(file.TakeReport());
}

} // namespace
