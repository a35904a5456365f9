#include "VKProtocolDriverInterface.h"

#include "FakeMessageFile.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <thread>
#include <vector>

namespace {

using Reports = VKMessengerReportsMngrInterface;

class PlainDriver : public VKProtocolDriverInterface
{
public:
    const char* GetName() override { return "PLAIN"; }
    const char* GetVersion() override { return "1.0"; }
    const char* GetProtocolName() override { return "PLAIN"; }
    const char* GetCarrierName() override { return "*"; }
    bool SendAMessage(VKMessageFile*, ReportsStatus&) override { return false; }
};

class NotingReports : public Reports
{
public:
    int WriteReport(VKMessageFile* file, ReportsStatus status, const std::string& text) override
    {
        files.push_back(file);
        statuses.push_back(status);
        texts.push_back(text);
        return answer;
    }

    int answer = 1;
    std::vector<VKMessageFile*> files;
    std::vector<ReportsStatus> statuses;
    std::vector<std::string> texts;
};

class DriverContract : public testing::Test
{
protected:
    DriverContract() { driver.m_pobjMsgFileQueue = &queue; }

    PlainDriver driver;
    VKMsgFileQueue queue;
    FakeMessageFile file;
};

TEST_F(DriverContract, PushBackStampsTheFileAndAppendsIt)
{
    file.bDelete = true;
    const auto before = std::time(nullptr);
    ASSERT_TRUE(driver.PushBackMsgFile(&file, Reports::RS_DELIVERED, true, ": READ"));

    EXPECT_EQ(file.eReportStatus, Reports::RS_DELIVERED);
    EXPECT_GE(file.tReportTime, before);
    EXPECT_LE(file.tReportTime, std::time(nullptr));
    EXPECT_TRUE(file.bKeepOpen);
    EXPECT_FALSE(file.bDelete);
    EXPECT_EQ(file.statusTexts, std::vector<std::string>{": READ"});
    ASSERT_EQ(queue.queFiles.size(), 1u);
    EXPECT_EQ(queue.queFiles.front(), &file);
}

TEST_F(DriverContract, PushBackWithoutAStatusKeepsTheLastOneAndClearsItsTime)
{
    file.eReportStatus = Reports::RS_SENT;
    file.tReportTime = 99;
    file.bKeepOpen = true;
    ASSERT_TRUE(driver.PushBackMsgFile(&file, Reports::RS_UNCHANGED, false, ""));

    EXPECT_EQ(file.eReportStatus, Reports::RS_SENT);
    EXPECT_EQ(file.tReportTime, 0);
    EXPECT_FALSE(file.bKeepOpen);
    EXPECT_EQ(file.statusTexts, std::vector<std::string>{""});
}

TEST_F(DriverContract, PushBackForDeletionChangesNothingElse)
{
    file.eReportStatus = Reports::RS_CONFIRMED;
    file.tReportTime = 99;
    file.bKeepOpen = true;
    ASSERT_TRUE(driver.PushBackMsgFileForDeletion(&file));

    EXPECT_TRUE(file.bDelete);
    EXPECT_EQ(file.eReportStatus, Reports::RS_CONFIRMED);
    EXPECT_EQ(file.tReportTime, 99);
    EXPECT_TRUE(file.bKeepOpen);
    EXPECT_TRUE(file.statusTexts.empty());
    EXPECT_EQ(queue.queFiles.size(), 1u);
}

TEST_F(DriverContract, AMissingFileOrQueueIsRefusedWithNothingDone)
{
    EXPECT_FALSE(driver.PushBackMsgFile(nullptr, Reports::RS_SENT, false, "x"));
    EXPECT_FALSE(driver.PushBackMsgFileForDeletion(nullptr));
    EXPECT_TRUE(queue.queFiles.empty());

    driver.m_pobjMsgFileQueue = nullptr;
    EXPECT_FALSE(driver.PushBackMsgFile(&file, Reports::RS_SENT, true, "x"));
    EXPECT_FALSE(driver.PushBackMsgFileForDeletion(&file));
    EXPECT_EQ(file.eReportStatus, Reports::RS_UNCHANGED);
    EXPECT_FALSE(file.bKeepOpen);
    EXPECT_FALSE(file.bDelete);
    EXPECT_TRUE(file.statusTexts.empty());
}

TEST_F(DriverContract, FilesComeBackFromManyThreadsAtOnce)
{
    constexpr int kThreads = 4;
    constexpr int kFiles = 250;
    std::vector<FakeMessageFile> files(kThreads * kFiles);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kFiles; ++i)
                driver.PushBackMsgFile(&files[t * kFiles + i], Reports::RS_SENT, false, "");
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(queue.queFiles.size(), files.size());
}

TEST_F(DriverContract, ReportsGoToTheReportsManagerWithTheStatusAsGiven)
{
    NotingReports reports;
    driver.m_pobjReportsMngr = &reports;
    EXPECT_TRUE(driver.WriteMessageReport(&file, Reports::RS_SENT, "went"));
    EXPECT_EQ(file.eReportStatus, Reports::RS_SENT);
    EXPECT_TRUE(driver.WriteMessageReport(&file, Reports::RS_UNCHANGED, ""));
    EXPECT_EQ(file.eReportStatus, Reports::RS_SENT);

    EXPECT_EQ(reports.files, (std::vector<VKMessageFile*>{&file, &file}));
    EXPECT_EQ(reports.statuses, (std::vector<Reports::ReportsStatus>{Reports::RS_SENT, Reports::RS_UNCHANGED}));
    EXPECT_EQ(reports.texts, (std::vector<std::string>{"went", ""}));
    EXPECT_TRUE(queue.queFiles.empty());
}

TEST_F(DriverContract, OnlyTheLowByteOfTheReportsManagersAnswerCounts)
{
    EXPECT_FALSE(driver.WriteMessageReport(&file, Reports::RS_SENT, ""));
    EXPECT_EQ(file.eReportStatus, Reports::RS_UNCHANGED);

    NotingReports reports;
    driver.m_pobjReportsMngr = &reports;
    const std::vector<std::pair<int, bool>> answers = {{0, false}, {1, true}, {2, true}, {0x100, false}, {0x180, true}};
    for (const auto& [answer, written] : answers) {
        reports.answer = answer;
        EXPECT_EQ(driver.WriteMessageReport(&file, Reports::RS_SENT, ""), written) << answer;
    }
}

TEST(DriverContractWords, EveryStatusHasItsWord)
{
    EXPECT_STREQ(vk::ReportsStatusWord(Reports::RS_SENT), "SENT");
    EXPECT_STREQ(vk::ReportsStatusWord(Reports::RS_DEVICE_OFFLINE), "DEVICE_OFFLINE");
    EXPECT_STREQ(vk::ReportsStatusWord(static_cast<Reports::ReportsStatus>(4)), "UNKNOWN");
}

} // namespace
