#pragma once

#include <string>
#include <vector>

#include "VKMessageHeader.h"
#include "VKSqlTransaction.h"

namespace vk {

class SqlStore;

/// Where the bodies of a queue's messages are, and how they change together with the rows. All but Enter, Leave,
/// Committed and Place run inside a transaction of the queue; what cannot be done throws VKDBexception. Names are message
/// names.
class MessageBodies
{
public:
    virtual ~MessageBodies() = default;

    /// A transaction is about to begin, and has ended in whatever way: the time between is one caller's turn.
    virtual void Enter() {}
    virtual void Leave() noexcept {}

    /// The transaction has begun: what a service that died left half done is put right first.
    virtual void Begin(SqlStore& store, const TableName& table, TransactionLock lock) = 0;
    /// The transaction is about to be rolled back: all changes since Begin are undone.
    virtual void Undo() noexcept = 0;
    /// The transaction is committed, and the turn not over yet.
    virtual void Committed() noexcept = 0;

    /// Whether a body is something beside its row, which has to be moved and removed with it.
    virtual bool StandApart() const = 0;
    virtual bool Exists(const std::string& name) = 0;
    virtual bool Load(const std::string& name, VK_MESSAGE_CONTENT* content) = 0;
    /// Stores a new row with its body and gives back its id; a body that is there under its name is replaced.
    virtual unsigned long Insert(const QueueRow& row, const VK_MESSAGE_CONTENT& content) = 0;
    /// Stores a changed row, by its id, with its body.
    virtual void Update(const QueueRow& row, const VK_MESSAGE_CONTENT& content) = 0;
    virtual void Move(const std::string& oldName, const std::string& newName) = 0;
    virtual void Remove(const std::vector<std::string>& names) = 0;
    virtual void RemoveAll() = 0;

    virtual std::string Place() const = 0;
};

} // namespace vk
