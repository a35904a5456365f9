// Many messages of all kinds, with files and without, over one connection.

#include "AttachmentScene.h"
#include "XmppPeer.h"

namespace {

constexpr int kBoth = FilePeer::kSocks5 | FilePeer::kInBand;

/// One kind of message of the mixture, and how it ends.
struct Kind
{
    const char* user;
    std::vector<std::string> files;
    int status;
    std::size_t arriving;
};

TEST_F(Attachments, OfAllKindsTravelAmongPlainMessages)
{
    const int rounds = Rounds(10, 125); // of eight messages each
    s_server->AddAccounts({{"carol", "pw"}, {"dave", "pw"}});
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), FilePeer::kInBand);
    FilePeer carol(s_server->Jid("carol") + "/mxp", s_server->Port(), kBoth, FilePeer::Manner::Refuse);
    XmppPeer dave(s_server->Jid("dave") + "/mxp", "pw", s_server->Port());
    for (FilePeer* peer : {&alice, &bob, &carol})
        ASSERT_TRUE(peer->WaitUntilOnline());
    ASSERT_TRUE(dave.WaitUntilOnline());
    Connect(FreePort(), 60);
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("dave"), "files", "mxp", false), nullptr);
    const std::string small = MakeFile("a/plan", "small");
    const std::string large = MakeFile("b/plan", Random(300000));
    const std::string empty = MakeFile("empty", "");
    const Kind kinds[] = {
        {"alice", {small}, 3, 1}, {"bob", {small}, 3, 1},        {"alice", {small, empty, large}, 3, 2},
        {"carol", {small}, 2, 0}, {"bob", {small, small}, 3, 2}, {"alice", {empty}, 3, 0}};
    std::map<std::string, std::size_t> arriving;
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t kind = 0; kind < std::size(kinds); ++kind) {
            SendFiles(std::to_string(round) + "." + std::to_string(kind), kinds[kind].files, kinds[kind].user);
            arriving[kinds[kind].user] += kinds[kind].arriving;
        }
        const std::string offered = "upload " + std::to_string(round);
        ASSERT_TRUE(manager->Send(offered, s_server->Jid("dave"), "files"));
        alice.Offer(s_server->Jid("server") + "/vk", "photo", "pixels", offered,
                    round % 2 == 0 ? FilePeer::kSocks5 : FilePeer::kInBand);
        for (std::size_t kind = 0; kind < std::size(kinds); ++kind) {
            const std::string job = std::to_string(round) + "." + std::to_string(kind);
            ASSERT_EQ(statuses.WaitFor(job).status, kinds[kind].status) << job;
        }
        VKMXPCoreManager::FileList uploaded;
        ASSERT_TRUE(Until([&] { return manager->GetAttachedFiles("files", offered, uploaded); })) << offered;
        ASSERT_EQ(dave.WaitForBodies(static_cast<std::size_t>(round) + 1).size(), static_cast<std::size_t>(round) + 1);
        if (round == 1) {
            descriptors = Entries("/proc/self/fd");
            threads = Entries("/proc/self/task");
        }
    }
    EXPECT_EQ(alice.WaitForFiles(arriving["alice"]).size(), arriving["alice"]);
    EXPECT_EQ(bob.WaitForFiles(arriving["bob"]).size(), arriving["bob"]);
    EXPECT_TRUE(Until([&] { return Entries("/proc/self/fd") <= descriptors; })) << descriptors;
    EXPECT_EQ(Entries("/proc/self/task"), threads);
}

} // namespace
