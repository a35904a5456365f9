// Attachments against a real XMPP server: SOCKS5 straight to the stream host, and in-band through the server.

#include "FilePeer.h"
#include "ProsodyServer.h"
#include "RecordingLogger.h"
#include "VKConfiguration.h"
#include "VKEncryption.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmMessage.h"
#include "XmppPeer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <arpa/inet.h>
#include <map>
#include <netinet/in.h>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Manner = FilePeer::Manner;

constexpr int kSent = 3;
constexpr int kFailed = 2;
constexpr int kBoth = FilePeer::kSocks5 | FilePeer::kInBand;

/// Notes how the transfers ended.
class NotingStatuses final : public VKMXPAttachmentStatusHandlerIface
{
public:
    struct Status
    {
        int status;
        std::string error;
    };

    void HandleAttachmentStatus(const std::string&, const std::string& packetId, int status,
                                const std::string& error) override
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_seen[packetId] = {status, error};
        m_changed.notify_all();
    }

    /// -1 when none has come.
    Status WaitFor(const std::string& packetId, std::chrono::seconds limit = 30s)
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_changed.wait_for(lock, limit, [&] { return m_seen.count(packetId) != 0; });
        return m_seen.count(packetId) != 0 ? m_seen[packetId] : Status{-1, "no status"};
    }

    bool Has(const std::string& packetId)
    {
        const std::lock_guard<std::mutex> lock(m_guard);
        return m_seen.count(packetId) != 0;
    }

private:
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::map<std::string, Status> m_seen;
};

int FreePort(int* held = nullptr)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(socket, reinterpret_cast<sockaddr*>(&address), size), 0);
    ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size);
    if (held) {
        ::listen(socket, 1);
        *held = socket;
    }
    else
        ::close(socket);
    return ntohs(address.sin_port);
}

std::string Random(std::size_t size)
{
    std::mt19937 numbers(static_cast<unsigned>(size));
    std::string text(size, '\0');
    for (char& byte : text)
        byte = static_cast<char>(numbers());
    return text;
}

std::string Decrypted(const FilePeer::Got& file)
{
    std::string key;
    std::string error;
    unsigned char* out = nullptr;
    int length = 0;
    EXPECT_TRUE(VKEncryption::TransformKeyForCipher(file.key, key, VK_ENCRYPT_AES256_ECB));
    const auto* data = reinterpret_cast<const unsigned char*>(file.content.data());
    EXPECT_TRUE(VKEncryption::SharedKeyDecrypt(key, data, static_cast<int>(file.content.size()), out, length, error,
                                               VK_ENCRYPT_AES256_ECB))
        << error;
    const std::unique_ptr<unsigned char[]> owned(out);
    return {reinterpret_cast<char*>(out), static_cast<std::size_t>(length)};
}

class Attachments : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_root = std::make_unique<TempDir>();
        std::filesystem::create_directories(s_root->Path() / "config");
        VKConfiguration::getVKConfiguration()->setConfDirectory(*s_root / "config");
        s_server = std::make_unique<ProsodyServer>();
        s_server->AddAccounts({{"server", "pw"}, {"alice", "pw"}, {"bob", "pw"}});
        s_server->Start();
    }
    static void TearDownTestSuite()
    {
        s_server.reset();
        s_root.reset();
    }

    void SetUp() override
    {
        manager = VKMXPCoreManager::GetInstance(&s_logger, 10, 60);
        ASSERT_TRUE(manager->StartAsThread());
    }
    void TearDown() override
    {
        manager->TerminateC2SConnection("files");
        std::filesystem::remove_all(Secured());
    }

    static std::filesystem::path Secured()
    {
        return std::filesystem::path(VKConfiguration::getVKConfiguration()->getTempDirectory(false)) / "secure_files";
    }

    static std::size_t CopiesLeft()
    {
        std::error_code ignored;
        std::size_t count = 0;
        for (auto it = std::filesystem::directory_iterator(Secured(), ignored);
             it != std::filesystem::directory_iterator(); ++it)
            ++count;
        return count;
    }

    void Connect(int streamPort, int timeout = 15)
    {
        std::string error;
        ASSERT_TRUE(manager->StartC2SConnection("files", "127.0.0.1", s_server->Port(), s_server->Jid("server"), "pw",
                                                "vk", true, "127.0.0.1", streamPort, 65, timeout, &error))
            << error;
        ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &statuses));
    }

    std::string MakeFile(const std::string& name, const std::string& content)
    {
        const auto path = files.Path() / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

    void SendFiles(const std::string& jobId, const std::vector<std::string>& paths, const std::string& user = "alice")
    {
        ASSERT_NE(manager->StartC2CSession(s_server->Jid(user), "files", "mxp", false), nullptr);
        auto message = std::make_unique<VKMXPmMessage>();
        message->m_strJobID = jobId;
        message->m_strBody = "see the plans";
        message->m_bValid = true;
        VKMXPCoreManager::FileList list;
        for (const std::string& path : paths)
            list.emplace_back(path, "key-of-" + jobId);
        message->AttachFiles(list);
        int sequence = 0;
        ASSERT_TRUE(manager->Send(message.get(), s_server->Jid(user), "files", sequence));
        static_cast<void>(message.release());
    }

    static std::unique_ptr<ProsodyServer> s_server;
    static std::unique_ptr<TempDir> s_root;
    static vktest::RecordingLogger s_logger;
    VKMXPCoreManager* manager = nullptr;
    NotingStatuses statuses;
    TempDir files;
};

std::unique_ptr<ProsodyServer> Attachments::s_server;
std::unique_ptr<TempDir> Attachments::s_root;
vktest::RecordingLogger Attachments::s_logger;

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
    SendFiles("broken", {MakeFile("plan", Random(16U << 20))});
    const auto status = statuses.WaitFor("broken");
    EXPECT_EQ(status.status, kFailed);
    EXPECT_EQ(status.error, fault.error);
    EXPECT_EQ(CopiesLeft(), fault.manner == Manner::Vanish && !fault.streamHost ? 1U : 0U);

    const auto limit = Clock::now() + 10s;
    while (fault.connectionEnds && manager->GetSession(s_server->Jid("alice"), "files") && Clock::now() < limit)
        std::this_thread::sleep_for(1ms);
    EXPECT_EQ(manager->GetSession(s_server->Jid("alice"), "files") == nullptr, fault.connectionEnds);
    if (fault.connectionEnds)
        return;
    FilePeer bob(s_server->Jid("bob") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(bob.WaitUntilOnline());
    SendFiles("whole", {MakeFile("other", "text")}, "bob");
    EXPECT_EQ(statuses.WaitFor("whole").status, kSent) << "the connection goes on";
}

INSTANTIATE_TEST_SUITE_P(
    Files, AttachmentFaults,
    ::testing::Values(Fault{"Refused", Manner::Refuse, kBoth, true, "File Transfer Error.", false},
                      Fault{"VanishedOverSocks5", Manner::Vanish, kBoth, true, "File Transfer Error.", false},
                      Fault{"VanishedInBand", Manner::Vanish, kBoth, false, "File Transfer Error.", false},
                      Fault{"NoAnswerToTheOffer", Manner::Silent, kBoth, true, "File Transfer Error.", true},
                      Fault{"NothingRead", Manner::ReadNothing, kBoth, true, "File Transfer Error.", true},
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
    const auto limit = Clock::now() + 10s;
    while (!s_logger.Has("File transfer not supported.") && Clock::now() < limit)
        std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(s_logger.Has("File transfer not supported."));
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
    const auto limit = Clock::now() + 10s;
    while (!s_logger.Has("Disco error from [" + s_server->Jid("bob")) && Clock::now() < limit)
        std::this_thread::sleep_for(1ms);
    ASSERT_TRUE(manager->TerminateC2SConnection("files"));
    ASSERT_TRUE(statuses.Has("unsent"));
    EXPECT_EQ(statuses.WaitFor("unsent").error, "Disconnection Error.");
}

std::size_t Entries(const char* directory)
{
    const std::filesystem::directory_iterator first(directory);
    return static_cast<std::size_t>(std::distance(begin(first), end(first)));
}

TEST_F(Attachments, FollowEachOtherWithoutAPauseAndLeakNothing)
{
    constexpr int kTransfers = 100;
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Connect(FreePort());
    const std::string path = MakeFile("plan", Random(20000));
    SendFiles("first", {path});
    ASSERT_EQ(statuses.WaitFor("first").status, kSent);
    alice.WaitForFiles(1);
    const std::size_t descriptors = Entries("/proc/self/fd");
    const std::size_t threads = Entries("/proc/self/task");
    for (int i = 0; i < kTransfers; ++i)
        SendFiles(std::to_string(1000 + i), {path});
    const auto got = alice.WaitForFiles(kTransfers + 1, 60s);
    ASSERT_EQ(got.size(), kTransfers + 1U);
    for (std::size_t i = 2; i < got.size(); ++i)
        EXPECT_EQ(got[i].packetId, std::to_string(999 + i)) << "in their order";
    EXPECT_LT(got.back().when - got[1].when, kTransfers * 100ms);
    EXPECT_EQ(statuses.WaitFor(std::to_string(999 + kTransfers)).status, kSent);
    alice.Say("nobody@localhost", "wakes the peer");
    const auto limit = Clock::now() + 10s;
    while (Entries("/proc/self/fd") > descriptors && Clock::now() < limit)
        std::this_thread::sleep_for(1ms);
    EXPECT_LE(Entries("/proc/self/fd"), descriptors);
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
    const std::filesystem::path directory =
        std::filesystem::path(VKConfiguration::getVKConfiguration()->getTempDirectory(false)) / "received_files";
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
        const auto limit = Clock::now() + 10s;
        while (!manager->GetAttachedFiles("files", "packet " + std::to_string(packet), list) && Clock::now() < limit)
            std::this_thread::sleep_for(1ms);
        return !list.empty();
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
    const auto limit = Clock::now() + 10s;
    while (manager->GetAttachedFiles("files", "packet 0", both) && Clock::now() < limit)
        std::this_thread::sleep_for(1ms);
    EXPECT_FALSE(manager->GetAttachedFiles("files", "packet 0", both)) << "two clients used this id";
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
