#pragma once

#include <string>

#include "VKMessageHeader.h"

class VKDBsystem;

/// The message files of a queue: each holds one message's body and nothing else, under the message's name. What is not
/// free or fails is tried 11 times with waits of 2, 4 ... 1024 milliseconds between, so a call may take two seconds.
/// Files are locked whole (advisory) while they are read or written. One object serves one thread.
class VKMsgQueueFileOperations
{
public:
    /// The queue's number; a path takes the place of the configured directory.
    VKMsgQueueFileOperations(int queueNumber, const std::string& pathOverride);
    virtual ~VKMsgQueueFileOperations() = default;

    /// Finds the directory. Throws VKDBexception when there is none that can be listed.
    bool Initialize(VKDBsystem* system);
    const std::string& GetQueuePath() const { return m_strPath; }

    bool Add(const VK_MESSAGE_CONTENT* content);
    /// Writes under the record's name and deletes the file of the old name, when that is another one.
    bool Modify(const VK_MESSAGE_CONTENT* content, const std::string& oldName);
    /// True also when there was none.
    bool Delete(const std::string& name);
    /// A file that has the new name is deleted first.
    bool ChangeName(const std::string& oldName, const std::string& newName);
    bool GetByName(const std::string& name, VK_MESSAGE_CONTENT* content) { return LoadMsgFileContent(name, content); }
    bool CheckExists(const std::string& name) const;
    /// Deletes all files but the queue's own.
    bool EmptyQueue();

    /// The configured directory of the queue's number. Throws VKDBexception when there is none.
    std::string GetDirPath(VKDBsystem* system) const;
    /// Replaces the record's body.
    bool LoadMsgFileContent(const std::string& name, VK_MESSAGE_CONTENT* content);
    bool WriteMsgFileContent(const std::string& name, const VK_MESSAGE_CONTENT* content);

    std::string PathOf(const std::string& name) const { return m_strPath + "/" + name; }

private:
    int m_iQueueNumber;
    std::string m_strPath; ///< without a slash at the end
};
