// Attachments against a real XMPP server: SOCKS5 straight to the stream host, and in-band through the server.

#include "FilePeer.h"
#include "ProsodyServer.h"
#include "RecordingLogger.h"
#include "VKConfiguration.h"
#include "VKEncryption.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmMessage.h"

#include <gtest/gtest.h>

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

} // namespace
