#include "VKMsgQueueFileOperations.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <unistd.h>

#include "VKDBexception.h"
#include "VKDBsystem.h"
#include "VKException.h"
#include "VKMessageName.h"
#include "VKSQLite3Retry.h"
#include "VKioDirectory.h"
#include "VKioFile.h"

namespace {

struct QueueSlot
{
    int number;
    char (VK_DIRECTORY_PATH::*path)[256];
};

constexpr QueueSlot kSlots[] = {
    {1, &VK_DIRECTORY_PATH::spool_dir},   {2, &VK_DIRECTORY_PATH::schedule_dir}, {3, &VK_DIRECTORY_PATH::cascade_dir},
    {4, &VK_DIRECTORY_PATH::archive_dir}, {5, &VK_DIRECTORY_PATH::error_dir},    {6, &VK_DIRECTORY_PATH::fax_dir},
    {7, &VK_DIRECTORY_PATH::voice_dir},   {8, &VK_DIRECTORY_PATH::wap_dir},      {9, &VK_DIRECTORY_PATH::filter_dir},
    {10, &VK_DIRECTORY_PATH::waiting_dir},
};

/// Queues with a higher number are named by the installation.
constexpr int kLastFixedQueue = 100;

constexpr int kTries = 11;

[[noreturn]] void Fail(int line, const std::string& message)
{
    throw VKDBexception(vk::DbError::General, __FILE__, line, message);
}

/// Tries again, with waits that double, what answers with false or throws a file's error.
template <class Attempt> bool Retried(Attempt&& attempt)
{
    long pauseMs = 2;
    for (int left = kTries; left > 0; --left) {
        try {
            if (attempt())
                return true;
        } catch (const VKException&) { // not free yet, or gone for good: the last try decides
        }
        if (left > 1)
            vk::RetryPause(static_cast<unsigned int>(pauseMs * 1000));
        pauseMs *= 2;
    }
    return false;
}

bool DeletePath(const std::string& path) { return VKioFile::DeleteFile(path) || !VKioFile::IsExisting(path); }

} // namespace

VKMsgQueueFileOperations::VKMsgQueueFileOperations(int queueNumber, const std::string& pathOverride)
    : m_iQueueNumber(queueNumber), m_strPath(pathOverride)
{
}

bool VKMsgQueueFileOperations::Initialize(VKDBsystem* system)
{
    if (m_iQueueNumber == 0 && m_strPath.empty())
        Fail(__LINE__, "Invalid queue type/path");
    if (m_strPath.empty())
        m_strPath = GetDirPath(system);
    if (m_strPath.size() > 1 && m_strPath.back() == '/')
        m_strPath.pop_back();
    if (!VKioDirectory::Check(m_strPath, "r"))
        Fail(__LINE__, "Invalid queue path [" + m_strPath + "]");
    return true;
}

std::string VKMsgQueueFileOperations::GetDirPath(VKDBsystem*) const
{
    if (m_iQueueNumber > kLastFixedQueue) {
        if (VKDBsystem::queue_Directory == nullptr || VKDBsystem::num_Queues < 1)
            Fail(__LINE__, "Invalid queue path (empty multi-queue option)");
        for (int i = 0; i < VKDBsystem::num_Queues; ++i)
            if (VKDBsystem::queue_Directory[i].id == m_iQueueNumber)
                return VKDBsystem::queue_Directory[i].path;
        Fail(__LINE__, "Invalid queue path (multi-queue option)");
    }
    for (const QueueSlot& slot : kSlots)
        if (slot.number == m_iQueueNumber && (VKDBsystem::directory_Pathes.*slot.path)[0] != '\0')
            return VKDBsystem::directory_Pathes.*slot.path;
    Fail(__LINE__, "Empty queue path");
}

bool VKMsgQueueFileOperations::Add(const VK_MESSAGE_CONTENT* content)
{
    return WriteMsgFileContent(content->header.msg_name, content);
}

bool VKMsgQueueFileOperations::Modify(const VK_MESSAGE_CONTENT* content, const std::string& oldName)
{
    if (!WriteMsgFileContent(content->header.msg_name, content))
        return false;
    return oldName.empty() || oldName == content->header.msg_name || Delete(oldName);
}

bool VKMsgQueueFileOperations::Delete(const std::string& name)
{
    return Retried([path = PathOf(name)] { return DeletePath(path); });
}

bool VKMsgQueueFileOperations::ChangeName(const std::string& oldName, const std::string& newName)
{
    if (oldName == newName)
        return true;
    if (VKioFile::IsExisting(PathOf(newName)) && !Delete(newName))
        return false;
    return Retried([&] { return VKioFile::RenameFile(PathOf(oldName), PathOf(newName)); });
}

bool VKMsgQueueFileOperations::CheckExists(const std::string& name) const
{
    if (access(PathOf(name).c_str(), F_OK) == 0)
        return true;
    if (errno != ENOENT) // a row would go for good because of a right or a mount that is missing for now
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                            "It is not known whether there is a message file [" + PathOf(name) + "]",
                            std::generic_category().message(errno));
    return false;
}

bool VKMsgQueueFileOperations::EmptyQueue()
{
    VKioFileList files;
    bool emptied = true;
    try {
        VKioDirectory::GetFiles(m_strPath, files, "*", 0, 0);
        for (const VKioFile* file : files)
            if (!vk::IsQueueOwnFile(file->GetFileName()))
                emptied = DeletePath(file->GetPath()) && emptied;
    } catch (const VKException&) {
        emptied = false;
    }
    VKioFile::CleanFileList(files);
    return emptied;
}

bool VKMsgQueueFileOperations::LoadMsgFileContent(const std::string& name, VK_MESSAGE_CONTENT* content)
{
    std::string text;
    const bool loaded = Retried([&] {
        VKioFile file(PathOf(name));
        file.Open("r");
        file.Lock('r', true);
        text.clear();
        file.Read(text);
        file.Unlock();
        file.Close();
        return true;
    });
    if (!loaded)
        return false;
    std::free(content->body);
    content->body = nullptr;
    content->length = 0;
    AddMessageContent(content, text);
    return true;
}

bool VKMsgQueueFileOperations::WriteMsgFileContent(const std::string& name, const VK_MESSAGE_CONTENT* content)
{
    return Retried([&] {
        VKioFile file(PathOf(name));
        file.Open("w+");
        file.Lock('w', true);
        if (content->length > 0)
            file.Write(std::string(content->body, content->length));
        file.Flush();
        file.Unlock();
        file.Close();
        return true;
    });
}
