// The simulated device as a program that takes attachments, beside a core manager that sends them.

#include "AttachmentScene.h"
#include "RunningProgram.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;
using testing::Not;

struct Transfer
{
    const char* word;
    bool streamHost; ///< whether the server has one
    const char* over;
};

class DeviceTransfers : public Attachments, public ::testing::WithParamInterface<Transfer>
{
};

TEST_P(DeviceTransfers, TakeWhatTheWordAllows)
{
    RunningProgram device("vkmxpdevice", {"--server", "127.0.0.1", "--port", std::to_string(s_server->Port()), "--jid",
                                          s_server->Jid("alice"), "--password", "pw", "--json", "--count", "1",
                                          "--transfer", GetParam().word});
    ASSERT_TRUE(device.AwaitOut("\"online\"")) << device.Err();
    Connect(GetParam().streamHost ? FreePort() : 0);
    SendFiles("4711", {MakeFile("a/plan.pdf", "Floor plan of building 7"), MakeFile("b/plan.pdf", Random(200000))});
    const bool taken = GetParam().over[0] != '\0';
    if (taken) {
        EXPECT_EQ(statuses.WaitFor("4711").status, 3);
    }
    EXPECT_EQ(device.Wait(), 0) << device.Err();
    EXPECT_THAT(device.Out(), HasSubstr("\"body\":\"see the plans\""));
    if (!taken) {
        EXPECT_THAT(device.Out(), Not(HasSubstr("sha256")));
        EXPECT_FALSE(statuses.Has("4711")) << "its message stays as it was";
        return;
    }
    EXPECT_THAT(device.Out(), HasSubstr(std::string("\"over\":\"") + GetParam().over));
    EXPECT_THAT(device.Out(), HasSubstr("\"name\":\"plan.pdf\""));
    EXPECT_THAT(device.Out(), HasSubstr("\"size\":200000"));
    EXPECT_THAT(device.Out(), HasSubstr("0a2164a39ce31cbb13802341e2445c50fe9d8494941ee071b45930b0f0016bdf"));
}

INSTANTIATE_TEST_SUITE_P(Vkmxpdevice, DeviceTransfers,
                         ::testing::Values(Transfer{"socks5", true, "socks5"}, Transfer{"inband", true, "inband"},
                                           Transfer{"both", true, "socks5"}, Transfer{"both", false, "inband"},
                                           Transfer{"none", true, ""}),
                         [](const auto& info) {
                             return std::string(info.param.word) + (info.param.streamHost ? "" : "WithoutStreamHost");
                         });

} // namespace
