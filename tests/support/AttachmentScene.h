#pragma once

#include "FilePeer.h"
#include "FreePort.h"
#include "ProsodyServer.h"
#include "RecordingLogger.h"
#include "Until.h"
#include "VKConfiguration.h"
#include "VKEncryption.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmMessage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>

// A core manager beside a real XMPP server, for tests of attachments.

inline constexpr int kSent = 3;
inline constexpr int kFailed = 2;
inline constexpr int kBoth = FilePeer::kSocks5 | FilePeer::kInBand;

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
    Status WaitFor(const std::string& packetId, std::chrono::seconds limit = std::chrono::seconds(30))
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

inline std::string Random(std::size_t size)
{
    std::mt19937 numbers(static_cast<unsigned>(size));
    std::string text(size, '\0');
    for (char& byte : text)
        byte = static_cast<char>(numbers());
    return text;
}

inline std::string Decrypted(const FilePeer::Got& file)
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

/// Of a directory; one that is not there has none.
inline std::size_t Entries(const std::filesystem::path& directory)
{
    std::error_code none;
    const std::filesystem::directory_iterator first(directory, none);
    return static_cast<std::size_t>(std::distance(begin(first), end(first)));
}

/// How often a repeated test goes round; VK_LONG_TESTS in the environment makes it as many as an installation sees.
inline int Rounds(int few, int many) { return std::getenv("VK_LONG_TESTS") ? many : few; }

class Attachments : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_logger.Clear();
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
        std::filesystem::remove_all(Received());
    }

    static std::filesystem::path Secured()
    {
        return std::filesystem::path(VKConfiguration::getVKConfiguration()->getTempDirectory(false)) / "secure_files";
    }

    static std::filesystem::path Received() { return Secured().parent_path() / "received_files"; }

    static std::size_t CopiesLeft() { return Entries(Secured()); }

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
        message->m_strSender = "Dispatch";
        message->m_strSubject = "Alarm";
        message->m_strBody = "see the plans";
        message->m_bValid = true;
        VKMXPCoreManager::FileList list;
        for (const std::string& path : paths) {
            list.emplace_back(path, "key-of-" + jobId);
            VKMXPmMessage::FileAttachment announced;
            announced.m_strID = std::filesystem::path(path).filename();
            announced.m_strSecureKey = "key-of-" + jobId;
            message->m_vecAttachments.push_back(announced);
        }
        message->AttachFiles(list);
        int sequence = 0;
        ASSERT_TRUE(manager->Send(message.get(), s_server->Jid(user), "files", sequence));
        static_cast<void>(message.release());
    }

    static inline std::unique_ptr<ProsodyServer> s_server;
    static inline std::unique_ptr<TempDir> s_root;
    static inline vktest::RecordingLogger& s_logger = vktest::CoreLogger();
    VKMXPCoreManager* manager = nullptr;
    NotingStatuses statuses;
    TempDir files;
};
