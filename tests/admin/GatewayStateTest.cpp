#include "VkadminRun.h"

#include "VKConfiguration.h"
#include "VKMsgStatusManager.h"

namespace {

using testing::HasSubstr;

TEST_F(Vkadmin, AJobsStateIsShown)
{
    Init();
    VKConfiguration::getVKConfiguration()->setConfDirectory(dir / "root/config");
    VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    VKMsgStatusManager store;
    ASSERT_TRUE(store.Initialize()) << store.GetLastError();
    VKMsgStatusManager::VKMessageStatusData data;
    data.job_id = "20240101120000_1";
    data.time_stamp = 1700000000;
    data.status = VKMsgStatusManager::MsgStatusReplied;
    ASSERT_TRUE(store.Add(data));

    const Json::Value shown = Lines(Admin({"--json", "job-status", "show", data.job_id}).out).at(0);
    EXPECT_EQ(shown["job_id"].asString(), data.job_id);
    EXPECT_EQ(shown["status"].asString(), "Replied");
    EXPECT_EQ(shown["time_stamp"].asInt64(), 1700000000);
    ExpectOneLine(Admin({"job-status", "show", "2"}), 1, "there is no state of job '2'");
    ExpectOneLine(Admin({"job-status", "show", "2' OR '1'='1"}), 1, "quote");
    dir.Write("root/report/report_msg_status.sdb", "somebody's own file, and no database");
    ExpectOneLine(Admin({"job-status", "show", "2"}), 3, "report_msg_status.sdb");
}

} // namespace
