#include "VKSqlReceiverHistory.h"

#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const TableName& kName = kDisableHistoryTable.name;

/// Runs a body; its failure is told with the history's own text.
template <class Body> auto Telling(const char* what, Body&& body)
{
    try {
        return body();
    } catch (const VKDBexception& failure) {
        throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__, what, failure.GetSysMsg());
    }
}

} // namespace

void SqlReceiverHistory::Add(const VK_DISABLE_HISTORY& history)
{
    const unsigned long row = Telling("Failed to insert record in Disable History Table.",
                                      [&] { return m_store.InsertRow(kDisableHistoryTable, history); });
    if (row == 0)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "Record could not be inserted in Disable History Table successfully.");
}

void SqlReceiverHistory::AddFor(const VK_RECEIVER& receiver, unsigned long receiverId)
{
    VK_DISABLE_HISTORY history;
    history.receiver_id = receiverId;
    history.disable_start_date = receiver.disable_start_date;
    history.disable_end_date = receiver.disable_end_date > 0 ? receiver.disable_end_date : 0;
    history.forward_to_id = receiver.forward_to_id;
    SetText(history.forward_to_number,
            GetText(receiver.forward_to_number, sizeof receiver.forward_to_number, "forward_to_number"),
            "forward_to_number");
    Add(history);
}

void SqlReceiverHistory::Update(VK_DISABLE_HISTORY history)
{
    if (history.id == 0)
        history.id = static_cast<unsigned long>(
            m_store.SelectNumber("SELECT MAX(id) FROM {} WHERE receiver_id={}", kName, history.receiver_id));
    m_store.UpdateRow(kDisableHistoryTable, history);
}

void SqlReceiverHistory::Apply(const VK_DISABLE_HISTORY* update, const VK_DISABLE_HISTORY* add,
                               unsigned long receiverId)
{
    const auto ofReceiver = [receiverId](VK_DISABLE_HISTORY history) {
        history.receiver_id = receiverId;
        return history;
    };
    if (update != nullptr)
        Update(ofReceiver(*update));
    if (add != nullptr)
        Add(ofReceiver(*add));
}

/// A period that has not begun ends as it begins.
void SqlReceiverHistory::Close(unsigned long receiverId, long now)
{
    m_store.Update("UPDATE {} SET disable_end_date=(CASE WHEN disable_start_date>{} THEN disable_start_date ELSE {} "
                   "END) WHERE receiver_id={} AND (disable_end_date=0 OR disable_end_date>{})",
                   kName, now, now, receiverId, now);
}

void SqlReceiverHistory::DeleteOf(unsigned long receiverId)
{
    Telling("Failed to delete records from Disable History Table.",
            [&] { return m_store.Update("DELETE FROM {} WHERE receiver_id={}", kName, receiverId); });
}

void SqlReceiverHistory::List(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to)
{
    EmptyDisableHistoryList(list);
    SqlRaw where = m_store.Part("(disable_end_date<=0 OR disable_end_date>={})", from);
    if (to > 0)
        where.text += m_store.Part(" AND disable_start_date<={}", to).text;
    if (receiverId != 0)
        where.text += m_store.Part(" AND receiver_id={}", receiverId).text;
    const auto rows = m_store.Shared([&] {
        return m_store.Select("SELECT * FROM {} WHERE {} ORDER BY disable_start_date ASC, id ASC", kName, where);
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        VK_DISABLE_HISTORY history;
        ReadRow(kDisableHistoryTable.fields, (*rows)[row], history);
        AddDisableHistory(list, &history);
    }
}

} // namespace vk
