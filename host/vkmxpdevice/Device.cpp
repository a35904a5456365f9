#include "Device.h"

#include "VKMXPTcpSocket.h"
#include "VKMXPTlsOpenSsl.h"
#include "VKMXPmEnvelope.h"
#include "VKXMPPGlooxdTypes.h"

#include <gloox/message.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace vk {

namespace {

constexpr std::chrono::seconds kLoginLimit(30);
/// How long a device that is done waits for the server's last responses.
constexpr std::chrono::seconds kResponseLimit(5);
/// How long it waits for the next file that a message has announced.
constexpr std::chrono::seconds kFileLimit(10);
/// The longest wait at a stretch: a signal ends it early.
constexpr int kIdleMilliseconds = 1000;

int MillisecondsUntil(std::chrono::steady_clock::time_point time)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(time - std::chrono::steady_clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, kIdleMilliseconds));
}

} // namespace

Device::Device(DeviceSettings settings, DeviceOutput& output, const std::atomic<bool>& stop)
    : m_settings(std::move(settings)), m_output(output), m_stop(stop),
      m_client(m_settings.jid, m_settings.password, m_settings.port)
{
}

VKMXPTcpSocket& Device::MakeConnection()
{
    auto socket = std::make_unique<VKMXPTcpSocket>(&m_client, m_settings.server, m_settings.port, &m_traffic,
                                                   VKMXPTcpSocket::Clock::now() + kLoginLimit);
    auto tls = std::make_unique<VKMXPTlsOpenSsl>(&m_client, m_settings.jid.server(), "");
    if (!tls->init())
        throw std::runtime_error("TLS: " + tls->ErrorText());
    VKMXPTcpSocket& made = *socket;
    // Before the socket is set: the client hands its server on to a socket that it has, without its port.
    m_client.setServer(m_settings.server);
    // The client owns both.
    m_client.setConnectionImpl(socket.release());
    m_client.setEncryptionImpl(tls.release());
    m_client.setTls(gloox::TLSRequired);
    m_client.setCompression(false);
    m_client.disableRoster();
    m_client.registerConnectionListener(this);
    m_client.registerMessageHandler(this);
    if (m_settings.transfer != 0)
        m_files = std::make_unique<DeviceFiles>(m_client, m_settings.transfer, m_settings.saveDirectory, m_output,
                                                [this](const DeviceFiles::Arrived& file) { TakeFile(file); });
    return made;
}

void Device::Fail(const char* what) const
{
    const char* why = VKXMPPGlooxdTypes::GetGlooxConnErrString(m_error);
    throw std::runtime_error(m_settings.jid.bare() + " at " + m_settings.server + ":" + std::to_string(m_settings.port) +
                             ": " + what + ": " + why);
}

void Device::onDisconnect(gloox::ConnectionError error)
{
    m_connected = false;
    m_error = error;
}

void Device::LogIn(VKMXPTcpSocket& socket)
{
    const auto deadline = Clock::now() + kLoginLimit;
    m_error = socket.Open();
    if (m_error == gloox::ConnNoError && !m_client.connect(false) && m_error == gloox::ConnNoError)
        m_error = gloox::ConnIoError;
    while (!m_connected && m_error == gloox::ConnNoError && !m_stop) {
        if (Clock::now() >= deadline)
            throw std::runtime_error(m_settings.jid.bare() + ": no answer to the login within 30 seconds");
        socket.AwaitTraffic(MillisecondsUntil(deadline));
        Receive();
    }
    if (m_error != gloox::ConnNoError)
        Fail("login failed");
}

/// One look at the socket, without waiting.
void Device::Receive()
{
    const gloox::ConnectionError error = m_client.recv(0);
    if (error != gloox::ConnNoError && m_error == gloox::ConnNoError)
        m_error = error;
}

void Device::Run()
{
    VKMXPTcpSocket& socket = MakeConnection();
    LogIn(socket);
    if (m_connected)
        m_output.Online(m_client.jid().full());
    socket.Watch();
    while (m_connected && !m_stop && !Done()) {
        m_traffic.Wait(SendDueAnswers());
        Receive();
        if (m_files)
            m_files->Pump();
    }
    if (!m_stop && m_error != gloox::ConnNoError)
        Fail("connection lost");
    m_files.reset();
    m_client.removeConnectionListener(this);
    m_client.disconnect();
}

bool Device::Done() const
{
    if (m_settings.count == 0 || m_messages < m_settings.count || !m_planned.empty())
        return false;
    if (m_files && m_awaitedFiles > 0 && Clock::now() < m_lastFile + kFileLimit)
        return false;
    return m_awaitedResponses <= 0 || Clock::now() >= m_lastAnswer + kResponseLimit;
}

void Device::TakeFile(const DeviceFiles::Arrived& file)
{
    --m_awaitedFiles;
    m_lastFile = Clock::now();
    m_output.File(file);
}

void Device::handleMessage(const gloox::Message& message, gloox::MessageSession*)
{
    const gloox::JID from = message.from();
    if (message.subtype() == gloox::Message::Error) {
        m_output.Other(from.full(), "the server could not deliver an answer");
        return;
    }
    if (message.body().empty())
        return;
    VKMXPmEnvelope envelope;
    if (!envelope.ParseXML(message.body()))
        m_output.Other(from.full(), "no envelope: " + envelope.m_strErrorText);
    // What was read before a failure counts.
    for (std::size_t i = 0; i < envelope.GetCount(); ++i)
        Take(from, *envelope.Get(i));
}

void Device::Take(const gloox::JID& from, const VKMXPmBase& packet)
{
    if (packet.m_iPacketType == VKMXPmBase::kResponse) {
        --m_awaitedResponses;
        m_output.Response(packet);
    } else if (const auto* message = dynamic_cast<const VKMXPmMessage*>(&packet)) {
        TakeMessage(from, *message);
    } else {
        m_output.Other(from.full(), std::string("packet ") + packet.GetName());
    }
}

void Device::TakeMessage(const gloox::JID& from, const VKMXPmMessage& message)
{
    ++m_messages;
    m_awaitedFiles += static_cast<long long>(message.m_vecAttachments.size());
    m_lastFile = Clock::now();
    m_output.Message(from.full(), message);
    if (m_files)
        m_files->Announce(message);
    auto when = Clock::now();
    for (const DeviceAnswer& answer : m_settings.answers) {
        when += m_settings.delay;
        m_planned.push_back({when, from, message.m_strJobID, &answer});
    }
    // Messages may overlap: each keeps the order of its own answers.
    std::stable_sort(m_planned.begin(), m_planned.end(),
                     [](const PlannedAnswer& left, const PlannedAnswer& right) { return left.when < right.when; });
}

/// \return the milliseconds until the next answer is due.
int Device::SendDueAnswers()
{
    while (!m_planned.empty() && m_planned.front().when <= Clock::now()) {
        const PlannedAnswer planned = std::move(m_planned.front());
        m_planned.pop_front();
        Send(planned);
    }
    return m_planned.empty() ? (Done() ? 0 : kIdleMilliseconds) : MillisecondsUntil(m_planned.front().when);
}

void Device::Send(const PlannedAnswer& planned)
{
    auto packet = planned.answer->MakePacket(planned.jobId);
    packet->m_iSequence = ++m_sequence;
    VKMXPmEnvelope envelope;
    if (envelope.Add(packet.get()))
        packet.release(); // the envelope's now
    m_client.send(gloox::Message(gloox::Message::Chat, planned.to, envelope.GenerateXML()));
    m_awaitedResponses += planned.answer->IsAnsweredByServer() ? 1 : 0;
    m_lastAnswer = Clock::now();
    m_output.Answer(planned.jobId, planned.answer->word);
}

} // namespace vk
