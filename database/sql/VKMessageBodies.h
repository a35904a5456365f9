#pragma once

#include <string>

#include "VKMessageHeader.h"

namespace vk {

class SqlStore;

/// Where the bodies of a queue's messages are, and how they change together with the rows. All but Committed and Place
/// run inside a transaction of the queue; what cannot be done throws VKDBexception. Names are message names.
class MessageBodies
{
public:
    virtual ~MessageBodies() = default;

    /// The transaction has begun: what a service that died left half done is put right first.
    virtual void Begin(SqlStore& store) = 0;
    /// The transaction is about to be rolled back: all changes since Begin are undone.
    virtual void Undo() noexcept = 0;
    /// The transaction is committed.
    virtual void Committed() noexcept = 0;

    virtual bool Exists(const std::string& name) = 0;
    virtual bool Load(const std::string& name, VK_MESSAGE_CONTENT* content) = 0;
    /// Stores the body under a name; one that is there is replaced.
    virtual void Write(const std::string& name, const VK_MESSAGE_CONTENT& content) = 0;
    virtual void Move(const std::string& oldName, const std::string& newName) = 0;
    virtual void Remove(const std::string& name) = 0;
    virtual void RemoveAll() = 0;

    virtual std::string Place() const = 0;
};

} // namespace vk
