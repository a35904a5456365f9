// Files that cannot be secured, that change under way, and names that two transfers want.

#include "AttachmentScene.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPMessageHandlerIface.h"
#include "VKMXPRequestHandlerIface.h"
#include "VKMXPSecureFiles.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmSendMsg.h"

#include <csignal>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kBoth = FilePeer::kSocks5 | FilePeer::kInBand;

/// While it lives, no file of this process can grow beyond that size, as on a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit full = m_before;
        full.rlim_cur = bytes;
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit m_before{};
};

enum class Trouble { Missing, Directory, TwoGiB, DiskFull };

struct Case
{
    const char* name;
    Trouble trouble;
    const char* reason;
};

class UnsecurableFiles : public Attachments, public ::testing::WithParamInterface<Case>
{
protected:
    void MakeTrouble()
    {
        if (GetParam().trouble == Trouble::Directory)
            std::filesystem::create_directory(path);
        else if (GetParam().trouble != Trouble::Missing)
            MakeFile("bad", Random(3U << 20));
        if (GetParam().trouble == Trouble::TwoGiB) // without taking that much of the disk
            std::filesystem::resize_file(path, std::uintmax_t{1} << 31);
        if (GetParam().trouble == Trouble::DiskFull)
            disk = std::make_unique<FullDisk>(1U << 20);
    }
    void EndTrouble()
    {
        disk.reset();
        if (GetParam().trouble == Trouble::DiskFull)
            return;
        std::filesystem::remove(path);
        MakeFile("bad", "good now");
    }

    std::unique_ptr<FullDisk> disk;
    std::string path = files.Path() / "bad";
};

TEST_P(UnsecurableFiles, WaitForBetterTimesAndLeaveNoCopyBehind)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(bob.WaitUntilOnline());
    Connect(FreePort());
    MakeTrouble();
    SendFiles("bad", {MakeFile("first", "secured before the bad one"), path});
    EXPECT_TRUE(Until([] { return s_logger.Has(GetParam().reason); }));
    SendFiles("good", {MakeFile("good", "for bob")}, "bob");
    EXPECT_EQ(statuses.WaitFor("good").status, kSent) << "nobody else waits";
    EXPECT_FALSE(statuses.Has("bad"));
    EXPECT_TRUE(Until([] { return CopiesLeft() == 0; }));
    EndTrouble();
    EXPECT_EQ(statuses.WaitFor("bad").status, kSent);
    EXPECT_EQ(alice.WaitForFiles(2).size(), 2U);
    EXPECT_EQ(CopiesLeft(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Files, UnsecurableFiles,
                         ::testing::Values(Case{"Missing", Trouble::Missing, "/bad: cannot be read: No such file"},
                                           Case{"Unreadable", Trouble::Directory, "/bad: is no file]"},
                                           Case{"TwoGiB", Trouble::TwoGiB, "/bad: is longer than 2 GiB]"},
                                           Case{"DiskFull", Trouble::DiskFull,
                                                "1_bad: cannot be written: File too large"}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(Attachments, AreSecuredWhileTheirPeerIsSilentAndHoldUpNobody)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(bob.WaitUntilOnline());
    Connect(FreePort());
    alice.Pause(true);
    SendFiles("late", {MakeFile("plan", "as it was")});
    EXPECT_TRUE(Until([] { return CopiesLeft() == 1; }));
    SendFiles("same name", {MakeFile("b/plan", "for bob")}, "bob");
    EXPECT_EQ(statuses.WaitFor("same name").status, kSent);
    EXPECT_FALSE(statuses.Has("late"));
    alice.Pause(false);
    EXPECT_EQ(statuses.WaitFor("late").status, kSent);
    ASSERT_EQ(alice.WaitForFiles(1).size(), 1U);

    alice.Pause(true);
    const std::string plan = MakeFile("plan", "as it was");
    SendFiles("changed", {plan});
    EXPECT_TRUE(Until([] { return CopiesLeft() == 1; }));
    MakeFile("plan", "changed meanwhile");
    alice.Pause(false);
    EXPECT_EQ(statuses.WaitFor("changed").status, kSent);
    EXPECT_EQ(Decrypted(alice.WaitForFiles(2).at(1)), "changed meanwhile");

    alice.Pause(true);
    SendFiles("never", {plan});
    EXPECT_TRUE(Until([] { return CopiesLeft() == 1; }));
    ASSERT_TRUE(manager->TerminateC2SConnection("files"));
    EXPECT_EQ(statuses.WaitFor("never").error, "Disconnection Error.");
    EXPECT_EQ(CopiesLeft(), 0U);
}

TEST_F(Attachments, TravelAsTheyWereWhenSecured)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), FilePeer::kInBand);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(0);
    const std::string content = Random(3U << 20);
    const std::string path = MakeFile("plan", content);
    const auto travels = [&](const char* job) {
        const int before = s_logger.CountContaining("Bytestream open");
        SendFiles(job, {path});
        return Until([&] { return s_logger.CountContaining("Bytestream open") > before; });
    };
    ASSERT_TRUE(travels("changed"));
    MakeFile("plan", "changed under way");
    EXPECT_EQ(statuses.WaitFor("changed").status, kSent);
    EXPECT_TRUE(Decrypted(alice.WaitForFiles(1).at(0)) == content);

    MakeFile("plan", content);
    ASSERT_TRUE(travels("cut"));
    std::filesystem::resize_file(Secured() / "1_plan", 10);
    EXPECT_EQ(statuses.WaitFor("cut").error, "File Transfer Error.") << "somebody has cut the copy";
    SendFiles("after", {MakeFile("other", "text")});
    EXPECT_EQ(statuses.WaitFor("after").status, kSent) << "the connection goes on";
}

TEST_F(Attachments, OfTwoTransfersOneHasAName)
{
    vk::SecureFiles::FileList first = {{MakeFile("a/plan", "one"), "key"}, {MakeFile("b/PLAN", "two"), "key"}};
    vk::SecureFiles::FileList second = {{MakeFile("c/plan", "three"), "key"}};
    const vk::SecureFiles::FileList asked = second;
    vk::SecureFiles one;
    vk::SecureFiles two;
    std::string error;
    ASSERT_TRUE(one.Make(first, error, {})) << error;
    EXPECT_EQ(first[1].first, Secured() / "2_PLAN");
    EXPECT_TRUE(two.MakeAhead(second, {}));
    EXPECT_FALSE(two.Make(second, error, {}));
    EXPECT_EQ(error, "") << "a matter of waiting";
    EXPECT_EQ(second, asked);
    EXPECT_EQ(CopiesLeft(), 3U);
    one.Delete();
    EXPECT_TRUE(two.Make(second, error, {})) << error;
    EXPECT_EQ(CopiesLeft(), 1U);
    two.Release();
    EXPECT_EQ(CopiesLeft(), 1U) << "in-band, they stay";
}

/// Says something at a port of this machine; the socket.
int SayAt(int port, const std::string& text)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    EXPECT_EQ(::connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::send(socket, text.data(), text.size(), MSG_NOSIGNAL), static_cast<ssize_t>(text.size()));
    return socket;
}

TEST_F(Attachments, AreNotTroubledByStrangersAtTheirStreamHost)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, FilePeer::Manner::ReadNothing);
    ASSERT_TRUE(alice.WaitUntilOnline());
    const int port = FreePort();
    Connect(port, 60);
    const std::size_t descriptors = Entries("/proc/self/fd");
    const int before = s_logger.CountContaining("Got new file.");
    SendFiles("first", {MakeFile("plan", Random(16U << 20))});
    ASSERT_TRUE(Until([&] { return s_logger.CountContaining("Got new file.") > before; }));
    for (const char* words : {"", "GET / HTTP/1.0\r\n\r\n", "\x05"})
        ::close(SayAt(port, words));
    const int stays = SayAt(port, "\x05\x01" + std::string(1, '\0'));
    char answer[2];
    EXPECT_EQ(::recv(stays, answer, sizeof answer, MSG_WAITALL), 2) << "it is spoken with";
    alice.Become(FilePeer::Manner::Accept);
    EXPECT_EQ(statuses.WaitFor("first").status, kSent);
    EXPECT_EQ(::recv(stays, answer, sizeof answer, 0), 0) << "sent away behind the file";
    ::close(stays);
    SendFiles("second", {MakeFile("plan", "text")});
    EXPECT_EQ(statuses.WaitFor("second").status, kSent);
    EXPECT_TRUE(Until([&] { return Entries("/proc/self/fd") <= descriptors; }));
}

class KeepsRequests final : public VKMXPRequestHandlerIface
{
public:
    void HandleRequest(const std::string&, const std::string&, const std::string&, VKMXPmBase* packet) override
    {
        const std::unique_ptr<VKMXPmBase> owned(packet);
        const std::lock_guard<std::mutex> lock(m_guard);
        m_files = packet->GetAttachedFiles();
        ++m_count;
    }
    bool Has(int count)
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_count >= count;
    }
    VKMXPmBase::FileList Files()
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_files;
    }

private:
    std::mutex m_guard;
    int m_count = 0;
    VKMXPmBase::FileList m_files;
};

TEST_F(Attachments, OfADeviceComeWithItsOwnRequest)
{
    KeepsRequests requests;
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(bob.WaitUntilOnline());
    Connect(0);
    ASSERT_TRUE(manager->RegisterForRequest("send-msg", "", "", &requests));
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("alice"), "files", "mxp", false), nullptr);
    const std::string server = s_server->Jid("server") + "/vk";
    const std::string photo = Random(90000);
    alice.Offer(server, "photo.jpg", photo, "77", FilePeer::kSocks5);
    alice.Offer(server, "note.txt", "in-band", "77");
    const auto arrived = [](int count) {
        return Until([&] { return s_logger.CountContaining("with Description [77] to Received File Map") == count; });
    };
    EXPECT_TRUE(arrived(2));
    bob.Offer(server, "intruder", "of another sender", "77");
    EXPECT_TRUE(arrived(3));

    auto request = std::make_unique<VKMXPmSendMsg>();
    request->m_iSequence = 77;
    request->m_strMessage = "see the photo";
    request->m_vecRecipients = {"fire brigade"};
    request->m_bValid = true;
    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.Add(request.get()));
    static_cast<void>(request.release());
    alice.Say(server, envelope.GenerateXML());
    ASSERT_TRUE(Until([&] { return requests.Has(1); }));
    EXPECT_TRUE(manager->RegisterForRequest("send-msg", "", "", nullptr));
    std::map<std::string, std::string> got;
    for (const auto& [path, hash] : requests.Files()) {
        std::ifstream stream(path, std::ios::binary);
        got[std::filesystem::path(path).filename()] = {std::istreambuf_iterator<char>(stream), {}};
    }
    ASSERT_EQ(got.size(), 2U);
    EXPECT_TRUE(got["photo.jpg"] == photo);
    EXPECT_EQ(got["note.txt"], "in-band");
}

TEST_F(Attachments, OfADeviceThatFallsSilentAreGivenUp)
{
    const int limit = VKMXPConnGlooxImpl::s_iUploadLimitSeconds.exchange(1);
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, FilePeer::Manner::Silent);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(0);
    const std::size_t descriptors = Entries("/proc/self/fd");
    const int before = s_logger.CountContaining("File Transfer Error: Timeout has occurred.");
    for (const int type : {FilePeer::kInBand, FilePeer::kSocks5})
        alice.Offer(s_server->Jid("server") + "/vk", "photo", "pixels", "silent", type);
    EXPECT_TRUE(Until([&] { return s_logger.CountContaining("File Transfer Error: Timeout has occurred.") == before + 2; }));
    EXPECT_EQ(Entries(Received().c_str()), 0U);
    alice.Become(FilePeer::Manner::Accept);
    alice.Offer(s_server->Jid("server") + "/vk", "photo", "pixels", "sent");
    VKMXPCoreManager::FileList list;
    EXPECT_TRUE(Until([&] { return manager->GetAttachedFiles("files", "sent", list); }));
    EXPECT_TRUE(Until([&] { return Entries("/proc/self/fd") <= descriptors + 2; })) << "what the device itself keeps open";
    VKMXPConnGlooxImpl::s_iUploadLimitSeconds = limit;
}

/// Ends the connection from the work thread, and from the sender's thread asks for the lock that the work thread holds.
class EndsConnections final : public VKMXPMessageHandlerIface, public VKMXPAttachmentStatusHandlerIface
{
public:
    explicit EndsConnections(VKMXPCoreManager& manager) : m_manager(manager) {}
    void HandleMessage(const std::string&, const std::string& connectionId, const std::string&) override
    {
        m_ended = m_manager.TerminateC2SConnection(connectionId);
    }
    void HandleAttachmentStatus(const std::string& connectionId, const std::string&, int status,
                                const std::string&) override
    {
        m_manager.TerminateC2CSession("nobody@localhost", connectionId);
        m_status = status;
    }

    std::atomic<bool> m_ended{false};
    std::atomic<int> m_status{0};

private:
    VKMXPCoreManager& m_manager;
};

TEST_F(Attachments, DoNotHoldUpAHandlerThatEndsTheirConnection)
{
    EndsConnections handler(*manager);
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, FilePeer::Manner::Silent);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(FreePort(), 60);
    ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &handler));
    const int before = s_logger.CountContaining("Got new file.");
    SendFiles("under way", {MakeFile("plan", "text")});
    ASSERT_TRUE(Until([&] { return s_logger.CountContaining("Got new file.") > before; }));
    manager->SetGeneralMessageHandler(&handler);
    alice.Say(s_server->Jid("server") + "/vk", "end it");
    EXPECT_TRUE(Until([&] { return handler.m_status != 0; }));
    manager->SetGeneralMessageHandler(nullptr);
    EXPECT_TRUE(handler.m_ended);
    EXPECT_EQ(handler.m_status, 2);
    Connect(0); // under the same name
    alice.Become(FilePeer::Manner::Accept);
    SendFiles("anew", {MakeFile("plan", "text")});
    EXPECT_EQ(statuses.WaitFor("anew").status, kSent);
}

} // namespace
