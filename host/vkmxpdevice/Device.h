#pragma once

#include "DeviceAnswer.h"
#include "DeviceFiles.h"
#include "DeviceOutput.h"
#include "VKMXPTrafficWait.h"

#include <gloox/client.h>
#include <gloox/connectionlistener.h>
#include <gloox/messagehandler.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <vector>

class VKMXPTcpSocket;

namespace vk {

/// How a device behaves.
struct DeviceSettings
{
    std::string server;
    int port = 5222;
    gloox::JID jid;
    std::string password;
    std::vector<DeviceAnswer> answers;
    /// Before each answer.
    std::chrono::milliseconds delay{0};
    /// Messages after which it is done, when the files that they announced have come, too; 0 for no end.
    long long count = 0;
    /// The streams on which it takes files, as gloox::SIProfileFT::StreamType; 0 for none.
    int transfer = 0;
    /// Where it keeps files that it has decrypted; empty when it keeps none.
    std::string saveDirectory;
};

/// A simulated mobile device: one XMPP account over TLS that receives envelopes and answers each message. One thread; all
/// of it is the loop of Run.
class Device : private gloox::ConnectionListener, private gloox::MessageHandler
{
public:
    /// `stop` ends Run when it becomes true. Output and stop must outlive the device.
    Device(DeviceSettings settings, DeviceOutput& output, const std::atomic<bool>& stop);

    /// Logs in and works until it is done or stopped. Throws std::runtime_error when the login fails or the connection is
    /// lost.
    void Run();

private:
    using Clock = std::chrono::steady_clock;

    struct PlannedAnswer
    {
        Clock::time_point when;
        gloox::JID to;
        std::string jobId;
        const DeviceAnswer* answer;
    };

    void onConnect() override { m_connected = true; }
    void onDisconnect(gloox::ConnectionError error) override;
    bool onTLSConnect(const gloox::CertInfo&) override { return true; }
    void handleMessage(const gloox::Message& message, gloox::MessageSession* session) override;

    VKMXPTcpSocket& MakeConnection();
    void LogIn(VKMXPTcpSocket& socket);
    void Receive();
    [[noreturn]] void Fail(const char* what) const;
    void Take(const gloox::JID& from, const VKMXPmBase& packet);
    void TakeMessage(const gloox::JID& from, const VKMXPmMessage& message);
    int SendDueAnswers();
    void Send(const PlannedAnswer& planned);
    void TakeFile(const DeviceFiles::Arrived& file);
    bool Done() const;

    const DeviceSettings m_settings;
    DeviceOutput& m_output;
    const std::atomic<bool>& m_stop;
    /// Outlives the client, whose sockets are in it.
    TrafficWait m_traffic;
    gloox::Client m_client;
    /// Null when it takes no files.
    std::unique_ptr<DeviceFiles> m_files;
    /// In the order of their times.
    std::deque<PlannedAnswer> m_planned;
    bool m_connected = false;
    gloox::ConnectionError m_error = gloox::ConnNoError;
    long long m_messages = 0;
    std::int32_t m_sequence = 0;
    /// Answers to which the server's response has not come.
    int m_awaitedResponses = 0;
    Clock::time_point m_lastAnswer{};
    /// Files that messages have announced and that have not come.
    long long m_awaitedFiles = 0;
    Clock::time_point m_lastFile{};
};

} // namespace vk
