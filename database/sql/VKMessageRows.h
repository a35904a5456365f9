#pragma once

#include "VKMessageBodies.h"

namespace vk {

/// The bodies in the rows themselves, as a relational server keeps them: a change of a row is one of its body, and the
/// server's transaction does the rest.
class MessageRows final : public MessageBodies
{
public:
    void Begin(SqlStore& store, const TableName& table, TransactionLock lock) override;
    void Undo() noexcept override {}
    void Committed() noexcept override {}

    bool StandApart() const override { return false; }
    bool Exists(const std::string&) override { return true; }
    bool Load(const std::string& name, VK_MESSAGE_CONTENT* content) override;
    unsigned long Insert(const QueueRow& row, const VK_MESSAGE_CONTENT& content) override;
    void Update(const QueueRow& row, const VK_MESSAGE_CONTENT& content) override;
    void Move(const std::string&, const std::string&) override {}
    void Remove(const std::vector<std::string>&) override {}
    void RemoveAll() override {}
    std::string Place() const override { return m_table.relational; }

    explicit MessageRows(const TableName& table) : m_table(table) {}

private:
    TableName m_table;
    SqlStore* m_store = nullptr; ///< of the running transaction
};

} // namespace vk
