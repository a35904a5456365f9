#pragma once

#include "VKDBiMessageQueue.h"

#include <memory>
#include <string>
#include <vector>

namespace vk {

/// A message queue as a service uses it, with what it takes held by value. Operations throw VKDBexception; on a server
/// none of them comes out again after the connection was lost, until Reconnect has. One thread.
class QueueStore
{
public:
    /// Throws std::runtime_error that names the queue when it cannot be opened.
    QueueStore(VKDBsystem& system, int number, const std::string& service);

    int Number() const { return m_number; }
    const std::string& Service() const { return m_service; }

    /// Whether a connection to the server was lost since this queue was opened: its own may be dead.
    bool IsCutOff() const { return m_queue->IsConnectionStale(); }
    /// Opens the queue anew when it is cut off. Throws VKDBexception, and leaves it as it was, when it cannot.
    void Reconnect();

    using Headers = std::vector<VK_MESSAGE_HEADER>;
    /// What is ready, of a protocol ("mxp*") and of one receiver or of all (""): the service's own from now on.
    Headers TakeReady(const std::string& protocol, const std::string& pin, int most);
    /// What is there, taken or not; of one status ("Q.") or of all ("").
    Headers List(const std::string& protocol, const std::string& pin, const std::string& status = "");
    /// Gives what was taken back.
    void Unlock(const Headers& headers);
    /// Gives all back that a service holds.
    void GiveBack(const std::string& service);
    /// Gives back what services have held for too long.
    void GiveBackForgotten();

    /// False when there is no such message.
    bool Load(const std::string& name, VK_MESSAGE_HEADER& header, std::string& body);
    /// The row alone.
    bool Find(const std::string& name, VK_MESSAGE_HEADER& header);
    /// Stores another name, and that it changed now. False when there is no such message.
    bool Rename(const std::string& oldName, const std::string& newName);
    bool Touch(const std::string& name);
    /// Stores a message that was found by its old name, and that it changed now. False when there is no such message.
    bool Change(VK_MESSAGE_HEADER& header, const std::string& body, const std::string& oldName);
    void Add(const VK_MESSAGE_HEADER& header, const std::string& body);
    bool Delete(const std::string& name) { return m_queue->Delete(name); }

private:
    void Select(const std::string& protocol, const std::string& pin, const std::string& status, int most);

    std::unique_ptr<VKDBiMessageQueue> Open() const;

    VKDBsystem& m_system;
    const int m_number;
    const std::string m_service;
    std::unique_ptr<VKDBiMessageQueue> m_queue; ///< never null
};

} // namespace vk
