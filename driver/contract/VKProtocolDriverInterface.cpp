#include "VKProtocolDriverInterface.h"

#include "VKconCriticalSection.h"

#include <ctime>

bool VKProtocolDriverInterface::PushBackMsgFile(VKMessageFile* file, ReportsStatus status, bool keepOpen,
                                                const std::string& text)
{
    if (m_pobjMsgFileQueue == nullptr || file == nullptr)
        return false;
    if (status == VKMessengerReportsMngrInterface::RS_UNCHANGED) {
        file->tReportTime = 0;
    } else {
        file->eReportStatus = status;
        file->tReportTime = static_cast<std::int32_t>(std::time(nullptr));
    }
    file->bKeepOpen = keepOpen;
    file->bDelete = false;
    file->SetStatusText(text);
    Append(file);
    return true;
}

bool VKProtocolDriverInterface::PushBackMsgFileForDeletion(VKMessageFile* file)
{
    if (m_pobjMsgFileQueue == nullptr || file == nullptr)
        return false;
    file->bDelete = true;
    Append(file);
    return true;
}

bool VKProtocolDriverInterface::WriteMessageReport(VKMessageFile* file, ReportsStatus status, const std::string& text)
{
    if (m_pobjReportsMngr == nullptr)
        return false;
    // A missing file is the reports manager's to judge: it is passed on as it is.
    if (file != nullptr && status != VKMessengerReportsMngrInterface::RS_UNCHANGED)
        file->eReportStatus = status;
    constexpr int lowByte = 0xFF;
    return (m_pobjReportsMngr->WriteReport(file, status, text) & lowByte) != 0;
}

/// The file's fields are complete before the lock is taken: whoever pops it sees all of them.
void VKProtocolDriverInterface::Append(VKMessageFile* file)
{
    const vk::ScopedSection guard(m_pobjMsgFileQueue->objLock);
    m_pobjMsgFileQueue->queFiles.push_back(file);
}
