#include "VKMXPConnIface.h"

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
