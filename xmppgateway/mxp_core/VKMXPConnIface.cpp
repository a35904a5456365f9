#include "VKMXPConnIface.h"

namespace {

thread_local int t_statusHandlers = 0; // one may cause another

/// Counts while it lives. Has nothing of the connection, which may be gone at the end.
class StatusHandlerMark
{
public:
    StatusHandlerMark() { ++t_statusHandlers; }
    ~StatusHandlerMark() { --t_statusHandlers; }
    StatusHandlerMark(const StatusHandlerMark&) = delete;
    StatusHandlerMark& operator=(const StatusHandlerMark&) = delete;
};

} // namespace

bool VKMXPConnIface::InStatusHandler() { return t_statusHandlers > 0; }

void VKMXPConnIface::TellAttachmentStatus(const std::string& packetId, int status, const std::string& errorText)
{
    VKMXPAttachmentStatusHandlerIface* const handler = m_pobjAttachmentStatusHandler;
    if (!handler)
        return;
    const std::string connectionId = m_strConnectionID; // outlives the connection
    const StatusHandlerMark mark;
    handler->HandleAttachmentStatus(connectionId, packetId, status, errorText);
}

VKMXPConnIface::~VKMXPConnIface() = default;

std::string VKMXPConnIface::GetLastError() const
{
    const std::lock_guard<std::mutex> lock(m_mtxLastError);
    return m_strLastError;
}

void VKMXPConnIface::SetLastError(const std::string& text)
{
    const std::lock_guard<std::mutex> lock(m_mtxLastError);
    m_strLastError = text;
}
