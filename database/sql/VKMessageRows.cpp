#include "VKMessageRows.h"

#include <cstdlib>
#include <string_view>

#include "VKQueueTables.h"
#include "VKRecordText.h"
#include "VKSqlStore.h"

namespace vk {

namespace {

QueueServerRow ServerRow(const QueueRow& row, const VK_MESSAGE_CONTENT& content)
{
    // A statement ends at a zero byte, and the body would with it.
    RequireFits(std::string_view(content.body ? content.body : "", content.length), std::string_view::npos,
                "msg_contents");
    QueueServerRow whole;
    static_cast<QueueRow&>(whole) = row;
    whole.msg_contents = content.body;
    return whole;
}

} // namespace

/// A server lets two transactions read the same free rows: whoever changes a queue holds its name until it commits.
void MessageRows::Begin(SqlStore& store, const TableName&, TransactionLock lock)
{
    m_store = &store;
    if (lock == TransactionLock::Exclusive)
        store.HoldTable(m_table);
}

bool MessageRows::Load(const std::string& name, VK_MESSAGE_CONTENT* content)
{
    const auto rows = m_store->Select("SELECT msg_contents FROM {} WHERE msg_name={}", m_table, name);
    if (rows->GetReturnedRowsCount() == 0)
        return false;
    std::free(content->body);
    content->body = nullptr;
    content->length = 0;
    AddMessageContent(content, (*rows)[0][0].GetValueString());
    return true;
}

unsigned long MessageRows::Insert(const QueueRow& row, const VK_MESSAGE_CONTENT& content)
{
    return m_store->InsertRow(Table{m_table, kQueueServerFields}, ServerRow(row, content));
}

void MessageRows::Update(const QueueRow& row, const VK_MESSAGE_CONTENT& content)
{
    m_store->UpdateRow(Table{m_table, kQueueServerFields}, ServerRow(row, content));
}

} // namespace vk
