// Attachments against a real XMPP server: SOCKS5 straight to the stream host, and in-band through the server.

#include "AttachmentScene.h"
#include "XmppPeer.h"

#include <algorithm>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Manner = FilePeer::Manner;

struct Road
{
    const char* name;
    int peer;
    bool streamHost;
    bool copiesStay;
};

class AttachmentRoads : public Attachments, public ::testing::WithParamInterface<Road>
{
};

TEST_P(AttachmentRoads, CarryTwoFilesOfOneNameAndAnEmptyOne)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), GetParam().peer);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(GetParam().streamHost ? FreePort() : 0);
    const std::string first = Random(300000);
    const std::string second = "small";
    SendFiles("4711", {MakeFile("a/ground_floor.pdf", first), MakeFile("empty", ""),
                       MakeFile("b/ground_floor.pdf", second)});
    const auto status = statuses.WaitFor("4711");
    EXPECT_EQ(status.status, kSent) << status.error;
    EXPECT_EQ(status.error, "");

    const auto got = alice.WaitForFiles(2);
    ASSERT_EQ(got.size(), 2U) << "the empty one is not offered";
    EXPECT_EQ(got[0].name, "ground_floor.pdf");
    EXPECT_EQ(got[1].name, "ground_floor.pdf");
    EXPECT_EQ(got[0].packetId, "4711");
    EXPECT_TRUE(Decrypted(got[0]) == first);
    EXPECT_EQ(Decrypted(got[1]), second);
    EXPECT_EQ(CopiesLeft(), GetParam().copiesStay ? 3U : 0U);
}

INSTANTIATE_TEST_SUITE_P(Files, AttachmentRoads,
                         ::testing::Values(Road{"Socks5", kBoth, true, false},
                                           Road{"OnlySocks5", FilePeer::kSocks5, true, false},
                                           Road{"InBand", FilePeer::kInBand, true, true},
                                           Road{"InBandWithoutStreamHost", kBoth, false, true}),
                         [](const auto& info) { return std::string(info.param.name); });

struct Fault
{
    const char* name;
    Manner manner;
    int peer;
    bool streamHost;
    const char* error;
    bool connectionEnds;
    std::size_t size = 16U << 20;
};

class AttachmentFaults : public Attachments, public ::testing::WithParamInterface<Fault>
{
};

TEST_P(AttachmentFaults, AreReportedAndLeaveNothingBehind)
{
    const Fault& fault = GetParam();
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), fault.peer, fault.manner);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(fault.streamHost ? FreePort() : 0, 2);
    SendFiles("broken", {MakeFile("plan", Random(fault.size))});
    const auto status = statuses.WaitFor("broken");
    EXPECT_EQ(status.status, kFailed);
    EXPECT_EQ(status.error, fault.error);
    EXPECT_EQ(CopiesLeft(), fault.peer == kBoth && !fault.streamHost ? 1U : 0U) << "in-band it stays";

    const auto ended = [&] { return manager->GetSession(s_server->Jid("alice"), "files") == nullptr; };
    if (fault.connectionEnds) {
        EXPECT_TRUE(Until(ended));
        return;
    }
    EXPECT_FALSE(ended());
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(bob.WaitUntilOnline());
    SendFiles("whole", {MakeFile("other", "text")}, "bob");
    EXPECT_EQ(statuses.WaitFor("whole").status, kSent) << "the connection goes on";
}

INSTANTIATE_TEST_SUITE_P(
    Files, AttachmentFaults,
    ::testing::Values(Fault{"Refused", Manner::Refuse, kBoth, true, "File Transfer Error.", false},
                      Fault{"AcceptedAndNotOpenedInBand", Manner::Withdraw, kBoth, false, "File Transfer Error.", false},
                      Fault{"VanishedOverSocks5", Manner::Vanish, kBoth, true, "File Transfer Error.", false},
                      Fault{"VanishedInBand", Manner::Vanish, kBoth, false, "File Transfer Error.", false},
                      Fault{"NoAnswerToTheOffer", Manner::Silent, kBoth, true, "File Transfer Error.", true},
                      Fault{"NothingRead", Manner::ReadNothing, kBoth, true, "File Transfer Error.", true},
                      Fault{"NothingReadOfAHalfClosedStream", Manner::EndItsHalf, kBoth, true, "File Transfer Error.",
                            true, 3U << 20},
                      Fault{"NoCommonStream", Manner::Accept, FilePeer::kSocks5, false, "Disconnection Error.", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Attachments, HoldUpNobodyElseWhileTheyCannotGo)
{
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(bob.WaitUntilOnline());
    int held = -1;
    Connect(FreePort(&held)); // the stream host's port is taken: in-band remains
    EXPECT_TRUE(s_logger.Has("Socks5 Bytestream Server listening on port ["));
    SendFiles("offline", {MakeFile("a", "a")}, "alice"); // no device that could answer disco
    SendFiles("1 missing", {(files.Path() / "later").string()}, "bob");
    SendFiles("2 behind", {MakeFile("b", "b")}, "bob");
    FilePeer none(s_server->Jid("alice") + "/mxp", s_server->Port(), 0);
    ASSERT_TRUE(none.WaitUntilOnline());
    SendFiles("no features", {MakeFile("c", "c")}, "alice");
    EXPECT_TRUE(Until([] { return s_logger.Has("File transfer not supported."); }));
    EXPECT_TRUE(bob.WaitForFiles(1, 1s).empty()) << "what one peer gets keeps its order";

    MakeFile("later", "here it is");
    EXPECT_EQ(statuses.WaitFor("1 missing").status, kSent);
    EXPECT_EQ(statuses.WaitFor("2 behind").status, kSent);
    const auto got = bob.WaitForFiles(2);
    ASSERT_EQ(got.size(), 2U);
    EXPECT_EQ(Decrypted(got[0]), "here it is");
    EXPECT_FALSE(statuses.Has("no features")) << "its message stays as it was";
    ::close(held);
}

TEST_F(Attachments, AreReportedWhenTheirConnectionEnds)
{
    Connect(0);
    SendFiles("unsent", {MakeFile("a", "a")}, "bob");
    EXPECT_TRUE(Until([] { return s_logger.Has("Disco error from [" + s_server->Jid("bob")); }));
    ASSERT_TRUE(manager->TerminateC2SConnection("files"));
    ASSERT_TRUE(statuses.Has("unsent"));
    EXPECT_EQ(statuses.WaitFor("unsent").error, "Disconnection Error.");
}

TEST_F(Attachments, FollowEachOtherWithoutAPauseAndLeakNothing)
{
    const int transfers = Rounds(100, 1000);
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(FreePort());
    const std::string path = MakeFile("plan", Random(20000));
    SendFiles("first", {path});
    ASSERT_EQ(statuses.WaitFor("first").status, kSent);
    alice.WaitForFiles(1);
    const std::size_t descriptors = Entries("/proc/self/fd");
    const std::size_t threads = Entries("/proc/self/task");
    for (int i = 0; i < transfers; ++i)
        SendFiles(std::to_string(1000 + i), {path});
    const auto got = alice.WaitForFiles(static_cast<std::size_t>(transfers) + 1, 300s);
    ASSERT_EQ(got.size(), static_cast<std::size_t>(transfers) + 1);
    for (std::size_t i = 2; i < got.size(); ++i)
        EXPECT_EQ(got[i].packetId, std::to_string(999 + i)) << "in their order";
    EXPECT_LT(got.back().when - got[1].when, transfers * 100ms);
    EXPECT_EQ(statuses.WaitFor(std::to_string(999 + transfers)).status, kSent);
    alice.Say("nobody@localhost", "wakes the peer");
    EXPECT_TRUE(Until([&] { return Entries("/proc/self/fd") <= descriptors; }));
    EXPECT_EQ(Entries("/proc/self/task"), threads);
    EXPECT_FALSE(s_logger.Has("key-of-")) << "keys never reach a log";
}

TEST_P(AttachmentRoads, LetMessagesToOthersPass)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), GetParam().peer);
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(bob.WaitUntilOnline());
    Connect(GetParam().streamHost ? FreePort() : 0);
    const bool inBand = GetParam().copiesStay;
    const std::string content = Random(inBand ? 2U << 20 : 50U << 20);
    const std::string path = MakeFile("film", content);
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("bob"), "files", "mxp", false), nullptr);
    SendFiles("film", {path});
    std::vector<Clock::duration> times;
    while (!statuses.Has("film") && times.size() < 5000) {
        const auto begin = Clock::now();
        ASSERT_TRUE(manager->Send("ping", s_server->Jid("bob"), "files"));
        ASSERT_EQ(bob.WaitForBodies(times.size() + 1).size(), times.size() + 1);
        times.push_back(Clock::now() - begin);
    }
    EXPECT_EQ(statuses.WaitFor("film").status, kSent);
    ASSERT_FALSE(times.empty());
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2), times.end());
    // Wide enough for a sanitizer on a busy machine; a file that went first would hold them up for its whole length.
    EXPECT_LT(times[times.size() / 2], 100ms) << times.size() << " messages";
    const auto got = alice.WaitForFiles(1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_TRUE(Decrypted(got[0]) == content);
}

TEST_F(Attachments, OfferedToTheServerStayInTheReceiveDirectory)
{
    const std::filesystem::path directory = Received();
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(bob.WaitUntilOnline());
    Connect(0);
    const std::string server = s_server->Jid("server") + "/vk";
    const std::string names[] = {"../../x", "/etc/passwd", "..", "C:\\boot.ini", "tab\tbed", std::string(300, 'n') + ".pdf"};
    for (std::size_t i = 0; i < std::size(names); ++i)
        alice.Offer(server, names[i], "content of " + std::to_string(i), "packet " + std::to_string(i));
    const auto arrived = [&](std::size_t packet, VKMXPCoreManager::FileList& list) {
        return Until([&] { return manager->GetAttachedFiles("files", "packet " + std::to_string(packet), list); });
    };
    for (std::size_t i = 1; i < std::size(names); ++i) {
        VKMXPCoreManager::FileList list;
        ASSERT_TRUE(arrived(i, list)) << names[i];
        EXPECT_EQ(std::filesystem::path(list[0].first).parent_path(), directory) << names[i];
        std::ifstream stream(list[0].first);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "content of " + std::to_string(i));
    }
    VKMXPCoreManager::FileList both;
    EXPECT_TRUE(arrived(0, both));
    bob.Offer(server, "x", "of another client", "packet 0");
    EXPECT_EQ(bob.WaitUntilSent(1), 1);
    EXPECT_TRUE(Until([&] { return !manager->GetAttachedFiles("files", "packet 0", both); })) << "two clients used this id";
    EXPECT_EQ(Entries(directory.c_str()), std::size(names) + 1) << "nobody's file overwrites another's";
}

TEST(SafeFileName, NeverNamesAnythingElsewhere)
{
    const std::pair<const char*, const char*> names[] = {
        {"plan.pdf", "plan.pdf"}, {"../../x", "x"},        {"/etc/passwd", "passwd"}, {"..\\..\\boot.ini", "boot.ini"},
        {"..", "file"},           {"dir/", "file"},        {"", "file"},              {".", "file"},
        {"a\tb\x7f", "ab"},       {".hidden", ".hidden"},
    };
    for (const auto& [offered, safe] : names)
        EXPECT_EQ(vk::SafeFileName(offered), safe) << offered;
    EXPECT_EQ(vk::SafeFileName(std::string(300, 'n') + ".pdf").size(), 200U);
    std::string umlauts;
    for (int i = 0; i < 150; ++i)
        umlauts += "\u00e4";
    EXPECT_EQ(vk::SafeFileName("x" + umlauts).size(), 199U) << "never cut within a character";
}

} // namespace
