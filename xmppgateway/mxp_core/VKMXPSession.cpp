#include "VKMXPSession.h"

#include "VKLog.h"
#include "VKMXPHub.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmMessage.h"
#include "VKconCriticalSection.h"
#include "VKconLock.h"
#include "VKstring.h"
#include "VKthread.h"

#include <cstring>
#include <string_view>

namespace {

constexpr int kMessagesPerCycle = 10;
constexpr std::size_t kEnvelopeLimit = 64U << 10;
constexpr int kLookEvery = 100; // milliseconds between two looks of a waiting fetch

const char* KindWord(const VKMXPmBase& packet) { return packet.m_iPacketType == 2 ? "RESP" : "REQ"; }

/// A body is an envelope by its first characters alone, in either kind of quotation mark.
bool IsEnvelope(std::string_view text)
{
    constexpr std::string_view kSingle = "<mxp xmlns='vardock:mxp";
    constexpr std::string_view kDouble = "<mxp xmlns=\"vardock:mxp";
    const std::string_view start = text.substr(0, kSingle.size());
    return start == kSingle || start == kDouble;
}

/// Looks as often as the timeout asks for, until a look finds something.
template <class Look>
auto LookRepeatedly(int timeout, Look look) -> decltype(look())
{
    const bool endless = timeout == -1;
    int looks = timeout >= kLookEvery ? timeout / kLookEvery + (timeout % kLookEvery != 0 ? 1 : 0) : 1;
    for (;;) {
        auto found = look();
        if (found != decltype(found){} || (!endless && --looks == 0))
            return found;
        VKsleep(kLookEvery);
    }
}

template <class Item>
Item TakeFirst(std::deque<Item>& queue)
{
    if (queue.empty())
        return Item{};
    Item first = std::move(queue.front());
    queue.pop_front();
    return first;
}

/// Reads one envelope and hands its packets on. An envelope that fails half way still gives the packets before the
/// failure: nothing that a device said is lost.
void Unpack(const std::string& text, const std::string& jid, VKLogInterface* logger, VKLogInterface* warnTo,
            VKMXPSession::PacketList& packets)
{
    VK_LOG_DEBUG(logger, "<== Received MXP from JID=%s: [%s]", jid.c_str(), text.c_str());
    VKMXPmEnvelope envelope;
    if (!envelope.ParseXML(text) || !envelope.m_bValid)
        VK_LOG_WARN(warnTo, ".. Received MXP envelope is parsed to be invalid. JID=%s, error %d: %s", jid.c_str(),
                    envelope.m_iErrorCode, envelope.m_strErrorText.c_str());
    const std::size_t count = envelope.GetCount();
    for (std::size_t i = 0; i < count; ++i) {
        std::unique_ptr<VKMXPmBase> packet(envelope.Detach(0));
        if (!packet)
            continue;
        if (!packet->m_bValid) {
            VK_LOG_WARN(warnTo, ".. Received packet type:%s(%s) is parsed to be invalid.", packet->GetName(),
                        KindWord(*packet));
            continue;
        }
        packets.emplace_back(jid, packet.release());
    }
}

/// The texts that were taken, at most kMessagesPerCycle of them.
int Receive(VKMXPSession* session, VKMXPConnIface* connection, VKLogInterface* logger,
            VKMXPSession::PacketList& packets, VKMXPSession::MessageList& messages)
{
    // Sessions carry no logger of their own; what a peer sent wrong is still told, through the connection's.
    VKLogInterface* const warnTo = logger ? logger : connection->m_pobjLogger;
    int taken = 0;
    for (; taken < kMessagesPerCycle; ++taken) {
        std::string jid;
        std::string text;
        if (session) {
            text = connection->RecvAMessage(session, 0);
            jid = session->GetJID();
        }
        else
            text = connection->RecvAMessage(jid, 0);
        if (text.empty())
            break;
        text = VKstringTrim(text);
        if (IsEnvelope(text))
            Unpack(text, jid, logger, warnTo, packets);
        else {
            VK_LOG_DEBUG(logger, "<== Received message from JID=%s: [%s]", jid.c_str(), text.c_str());
            messages.emplace_back(jid, std::move(text));
        }
    }
    return taken;
}

} // namespace

VKMXPSession::VKMXPSession(const std::string& jid, VKMXPConnIface* connection, VKLogInterface* logger)
    : m_pobjLogger(logger), m_pobjConnection(connection),
      m_strConnectionID(connection ? connection->m_strConnectionID : std::string()), m_strJID(jid)
{
}

VKMXPSession::~VKMXPSession() { Finalize(); }

void VKMXPSession::ResetResource() { SetTargetResource(std::string()); }

void VKMXPSession::SetTargetResource(const std::string& resource)
{
    const vk::ScopedSection section(*m_pobjLock);
    m_strTargetResource = resource;
}

std::string VKMXPSession::GetTargetResource() const
{
    const vk::ScopedSection section(*m_pobjLock);
    return m_strTargetResource;
}

bool VKMXPSession::Initialize()
{
    VK_LOG_TRACE(m_pobjLogger, "Starting VKMXPSession::Initialize()");
    m_pobjLock = std::make_unique<VKconLock>();
    VK_LOG_TRACE(m_pobjLogger, "Leaving VKMXPSession::Initialize() with %s.", "TRUE");
    return true;
}

bool VKMXPSession::Finalize()
{
    // The two texts of Initialize, on purpose.
    VK_LOG_TRACE(m_pobjLogger, "Starting VKMXPSession::Initialize()");
    EmptyQueues();
    m_pobjLock.reset();
    VK_LOG_TRACE(m_pobjLogger, "Leaving VKMXPSession::Initialize() with %s.", "TRUE");
    return true;
}

bool VKMXPSession::IsConnected() const { return m_pobjConnection && m_pobjConnection->IsConnected(); }

bool VKMXPSession::Ping() { return m_pobjConnection && m_pobjConnection->SendPing(250000); }

void VKMXPSession::NotifyReady()
{
    if (m_pobjHub)
        m_pobjHub->SessionReady(*this);
}

bool VKMXPSession::Send(VKMXPmBase* packet)
{
    if (!packet || !m_pobjLock)
        return false;
    {
        const vk::ScopedSection section(*m_pobjLock);
        m_deqOutgoingPackets.push_back(packet);
    }
    NotifyReady();
    return true;
}

bool VKMXPSession::Send(const std::string& text)
{
    if (text.empty() || !m_pobjLock)
        return false;
    {
        const vk::ScopedSection section(*m_pobjLock);
        m_deqOutgoingMessages.push_back(text);
    }
    NotifyReady();
    return true;
}

VKMXPmBase* VKMXPSession::GetRequest(int timeout)
{
    return LookRepeatedly(timeout, [this] {
        const vk::ScopedSection section(*m_pobjLock);
        return TakeFirst(m_deqIncomingRequests);
    });
}

VKMXPmBase* VKMXPSession::RecvResponse(int sequence, int timeout)
{
    return LookRepeatedly(timeout, [this, sequence]() -> VKMXPmBase* {
        const vk::ScopedSection section(*m_pobjLock);
        const auto found = m_mapResponses.find(sequence);
        if (found == m_mapResponses.end())
            return nullptr;
        VKMXPmBase* response = found->second;
        m_mapResponses.erase(found);
        return response;
    });
}

std::string VKMXPSession::FetchMessage(int timeout)
{
    return LookRepeatedly(timeout, [this] {
        const vk::ScopedSection section(*m_pobjLock);
        return TakeFirst(m_deqIncomingMessages);
    });
}

std::string VKMXPSession::GetPacketIdForAttachedFile(VKMXPmBase* packet)
{
    if (const auto* message = dynamic_cast<const VKMXPmMessage*>(packet))
        return message->m_strJobID;
    return std::to_string(packet->m_iSequence);
}

void VKMXPSession::ClearAttachementSecurityKeys(VKMXPmBase* packet)
{
    if (auto* message = dynamic_cast<VKMXPmMessage*>(packet))
        for (auto& attachment : message->m_vecAttachments)
            attachment.m_strSecureKey.clear();
}

bool VKMXPSession::SendPackets()
{
    VKMXPConnIface::AttachmentMap attachments;
    VKMXPmEnvelope envelope;
    while (!m_deqOutgoingPackets.empty()) {
        std::unique_ptr<VKMXPmBase> packet(TakeFirst(m_deqOutgoingPackets));
        if (packet->AreAnyAttachedFiles())
            attachments[GetPacketIdForAttachedFile(packet.get())] = packet->GetAttachedFiles();
        if (envelope.Add(packet.get()))
            static_cast<void>(packet.release());
    }
    return envelope.GetCount() != 0 && m_pobjConnection && SendEnvelope(envelope, attachments);
}

/// One envelope is one stanza. A server closes the stream, and with it the whole carrier, on a stanza beyond its limit
/// (commonly 256 KiB, after escaping), so a burst that grows too long goes out as several.
bool VKMXPSession::SendEnvelope(VKMXPmEnvelope& envelope, VKMXPConnIface::AttachmentMap& attachments)
{
    const std::string text = envelope.GenerateXML();
    if (text.size() <= kEnvelopeLimit || envelope.GetCount() == 1)
        return !text.empty() && m_pobjConnection->SendAMessage(this, text, attachments);

    VKMXPmEnvelope rest;
    const std::size_t half = envelope.GetCount() / 2;
    while (envelope.GetCount() > half)
        rest.Add(envelope.Detach(half));
    VKMXPConnIface::AttachmentMap none;
    const bool first = SendEnvelope(envelope, none);
    return SendEnvelope(rest, attachments) && first;
}

bool VKMXPSession::RunDispatchCycle()
{
    const vk::ScopedSection section(*m_pobjLock);
    const bool sent = SendPackets();
    VKMXPConnIface::AttachmentMap none;
    while (!m_deqOutgoingMessages.empty()) {
        const std::string text = TakeFirst(m_deqOutgoingMessages);
        if (!text.empty() && m_pobjConnection)
            m_pobjConnection->SendAMessage(this, text, none);
    }
    VK_LOG_TRACE(m_pobjLogger, "Leaving VKMXPSession::RunDispatchCycle() with %s.", sent ? "TRUE" : "FALSE");
    return sent;
}

bool VKMXPSession::RunReceptionCycle(VKMXPSession* session, VKMXPConnIface* connection, VKLogInterface* logger,
                                     PacketList& packets, MessageList& messages)
{
    if (!connection)
        return false;
    Receive(session, connection, logger, packets, messages);
    return true;
}

bool VKMXPSession::RunReceptionCycle()
{
    if (!m_pobjConnection)
        return false;
    PacketList packets;
    MessageList messages;
    const int taken = Receive(this, m_pobjConnection, m_pobjLogger, packets, messages);
    if (taken > 0)
        SortIn(packets, messages);
    if (taken == kMessagesPerCycle)
        NotifyReady(); // there may be more, which the next round takes
    return true;
}

void VKMXPSession::SortIn(PacketList& packets, MessageList& messages)
{
    const vk::ScopedSection section(*m_pobjLock);
    for (auto& received : packets) {
        VKMXPmBase* const packet = received.second;
        const std::string id = GetPacketIdForAttachedFile(packet);
        VKMXPConnIface::FileList files;
        if (!id.empty() && m_pobjConnection->GetAttachedFilesOf(received.first, id, files))
            packet->AttachFiles(files);
        if (packet->m_iPacketType == 2) {
            VKMXPmBase*& place = m_mapResponses[packet->m_iSequence];
            delete place;
            place = packet;
        }
        else
            m_deqIncomingRequests.push_back(packet);
    }
    for (auto& message : messages)
        m_deqIncomingMessages.push_back(std::move(message.second));
}

bool VKMXPSession::EmptyQueues()
{
    if (!m_pobjLock)
        return false;
    const vk::ScopedSection section(*m_pobjLock);
    for (VKMXPmBase* packet : m_deqOutgoingPackets)
        delete packet;
    for (const auto& response : m_mapResponses)
        delete response.second;
    for (VKMXPmBase* packet : m_deqIncomingRequests)
        delete packet;
    m_deqOutgoingPackets.clear();
    m_deqOutgoingMessages.clear();
    m_mapResponses.clear();
    m_deqIncomingRequests.clear();
    m_deqIncomingMessages.clear();
    return true;
}
