#include "WaitingRoom.h"

#include "VKLog.h"
#include "VKMessageName.h"
#include "VKXmppGWUserSessionDB.h"

#include <algorithm>
#include <ctime>
#include <set>

namespace vk {

namespace {

constexpr std::chrono::seconds kInterval(1);
constexpr int kShare = 20;
/// So many bodies are read, and so many messages of one receiver moved, in one check: sending must not wait long.
constexpr int kMostBodies = 200;
constexpr int kMostAtOnce = 100;

constexpr const char* kExpired = "The receiver was offline until the message expired.";

} // namespace

WaitingRoom::WaitingRoom(QueueRouter& router, const QueueSettings& settings, std::string root, VKLogInterface& logger)
    : m_router(router), m_settings(settings), m_root(std::move(root)), m_logger(logger)
{
}

bool WaitingRoom::IsOurs(const VK_MESSAGE_HEADER& header) const
{
    // What says nothing of where it came from may go anywhere.
    return header.last_paging_queue_id == 0 || header.last_paging_queue_id == m_router.Own().Number();
}

bool WaitingRoom::ReadSessions(Receivers& receivers)
{
    std::string error;
    try {
        VKXmppGWUserSessionDB sessions(m_root);
        std::vector<VKXmppGWUserSession> all;
        error = sessions.GetOpenError();
        if (error.empty() && !sessions.Get(&all, VKXmppGWSessionNone))
            error = "the store refused";
        for (const VKXmppGWUserSession& session : all)
            receivers.insert(session.user_id);
    } catch (const std::exception& failure) {
        error = failure.what();
    }
    if (!error.empty() && error != m_lastError)
        VK_LOG_ERROR(&m_logger, "The sessions cannot be read, so no message comes back from the waiting queue: %s",
                     error.c_str());
    m_lastError = error;
    return error.empty();
}

/// 0 when it is not known yet.
unsigned long WaitingRoom::ReceiverOf(const VK_MESSAGE_HEADER& header)
{
    const auto known = m_receivers.find(header.id);
    if (known != m_receivers.end())
        return known->second;
    if (m_bodiesLeft-- <= 0)
        return 0;
    VK_MESSAGE_HEADER row;
    std::string body;
    if (!m_router.Waiting().Load(header.msg_name, row, body))
        return 0;
    return m_receivers[header.id] = QueueMessage(row, body).File().ulReceiverID;
}

void WaitingRoom::ForgetThoseGone(const QueueStore::Headers& headers)
{
    if (m_receivers.size() <= headers.size())
        return;
    std::unordered_set<unsigned long> present;
    for (const VK_MESSAGE_HEADER& header : headers)
        present.insert(header.id);
    for (auto known = m_receivers.begin(); known != m_receivers.end();)
        known = present.count(known->first) == 0 ? m_receivers.erase(known) : std::next(known);
}

void WaitingRoom::Check(const Moved& moved)
{
    const auto started = Clock::now();
    if (started < m_next)
        return;
    m_next = started + kInterval;
    m_bodiesLeft = kMostBodies;
    const QueueStore::Headers headers = m_router.Waiting().List(m_settings.protocol, "");
    ForgetThoseGone(headers);
    if (headers.empty())
        return;
    Receivers present;
    ReadSessions(present);
    const long now = std::time(nullptr);
    std::set<std::string> pins;
    for (const VK_MESSAGE_HEADER& header : headers) {
        const bool isBeingMoved = MessageName::Parse(header.msg_name).status == 'Q';
        const bool isExpired = header.expiry_time != 0 && header.expiry_time <= now;
        if (IsOurs(header) && (isBeingMoved || isExpired || present.count(ReceiverOf(header)) != 0))
            pins.insert(header.pin);
    }
    for (const std::string& pin : pins)
        Serve(pin, present, moved);
    m_next = std::max(m_next, Clock::now() + (Clock::now() - started) * kShare);
}

/// Taking them first makes sure that no other service has them.
void WaitingRoom::Serve(const std::string& pin, const Receivers& present, const Moved& moved)
{
    const QueueStore::Headers taken = m_router.Waiting().TakeReady(m_settings.protocol, pin, kMostAtOnce);
    QueueStore::Headers left;
    for (const VK_MESSAGE_HEADER& header : taken) {
        VK_MESSAGE_HEADER row;
        std::string body;
        if (!IsOurs(header)) {
            left.push_back(header);
            continue;
        }
        if (!m_router.Waiting().Load(header.msg_name, row, body))
            continue;
        QueueMessage message(row, body);
        if (m_router.Knows(message.Target()))
            m_router.FinishMove(message, m_router.Waiting());
        else if (!MoveOn(message, present))
            left.push_back(header);
        if (message.Target() != 0)
            moved(message);
    }
    m_router.Waiting().Unlock(left);
}

bool WaitingRoom::MoveOn(QueueMessage& message, const Receivers& present)
{
    if (message.ExpiresAt(m_settings.expireSeconds) <= std::time(nullptr)) {
        message.NoteReason(kExpired);
        m_router.Move(message, m_router.Waiting(), kErrorQueue);
        return true;
    }
    if (present.count(message.File().ulReceiverID) == 0)
        return false;
    m_router.Move(message, m_router.Waiting(), m_router.Own().Number());
    return true;
}

} // namespace vk
