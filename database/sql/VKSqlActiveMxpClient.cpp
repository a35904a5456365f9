#include "VKSqlActiveMxpClient.h"

#include "VKSqlClause.h"
#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const TableName& kName = kActiveMxpClientTable.name;
constexpr SqlFile kReceivers = {"dbReceivers", "receivers.sdb"};
constexpr TableName kReceiver = {"dbReceivers.receiver", "VK_RECEIVER"}; ///< as the view reaches it

} // namespace

bool SqlActiveMxpClient::Add(VKActiveMxpClientInfo* client)
{
    client->id = m_store->Exclusive([&] { return m_store->InsertRow(kActiveMxpClientTable, *client); });
    return true;
}

bool SqlActiveMxpClient::Modify(VKActiveMxpClientInfo* client)
{
    return m_store->Exclusive([&] { return m_store->UpdateRow(kActiveMxpClientTable, *client); }) > 0;
}

bool SqlActiveMxpClient::Delete(unsigned long id)
{
    return m_store->Exclusive([&] { return m_store->Update("DELETE FROM {} WHERE id={}", kName, id); }) > 0;
}

template <class Value> bool SqlActiveMxpClient::Change(const char* column, unsigned long id, Value value)
{
    return m_store->Exclusive([&] {
        return m_store->Update("UPDATE {} SET {}={} WHERE id={}", kName, SqlRaw{column}, value, id);
    }) > 0;
}

bool SqlActiveMxpClient::UpdateAuthorization(unsigned long id, bool authorized)
{
    return Change("is_authorized", id, authorized);
}

bool SqlActiveMxpClient::UpdateActivationMode(unsigned long id, VKActivationMode mode)
{
    return Change("active_mode", id, mode);
}

bool SqlActiveMxpClient::Get(std::vector<VKActiveMxpClientInfo>* clients)
{
    clients->clear();
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT * FROM {} ORDER BY created_time ASC", kName); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        ReadRow(kActiveMxpClientTable.fields, (*rows)[row], clients->emplace_back());
    return true;
}

bool SqlActiveMxpClient::GetForView(std::vector<VKActiveMxpClientView>* clients)
{
    clients->clear();
    const std::string filter = ViewFilter();
    const std::string query =
        m_store
            ->Part("SELECT {}.*, {}.name AS receiver_name, {}.first_name AS receiver_first_name, {}.last_name AS "
                   "receiver_last_name FROM {} LEFT OUTER JOIN {} ON {}.activation_user_name={}.name {}",
                   kName, kReceiver, kReceiver, kReceiver, kName, kReceiver, kName, kReceiver, SqlRaw{filter})
            .text;
    const std::string count = m_store->Part("SELECT COUNT(*) FROM {} {}", kName, SqlRaw{filter}).text;
    const SqlAttachment attached(m_store->Connection(), kReceivers);
    const auto rows = m_store->Shared([&] {
        return m_page.Read(*m_store, query, m_bSortAscending ? "created_time ASC" : "created_time DESC", count);
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        VKActiveMxpClientView& client = clients->emplace_back();
        ReadRow(kActiveMxpClientTable.fields, (*rows)[row], static_cast<VKActiveMxpClientInfo&>(client));
        ReadRowByName(kActiveMxpClientReceiverFields, (*rows)[row], client);
    }
    return true;
}

/// The columns are this table's alone, so they stand without its name.
std::string SqlActiveMxpClient::ViewFilter() const
{
    SqlClause clause(m_store->Dialect());
    clause.AddPrefix("client_name", m_strFilterClientName);
    if (m_lFilterTo > 0 && m_lFilterFrom > 0 && m_lFilterTo > m_lFilterFrom)
        clause.Add("created_time BETWEEN {} AND {}", m_lFilterFrom, m_lFilterTo);
    return clause.Text();
}

bool SqlActiveMxpClient::GetByID(unsigned long id, VKActiveMxpClientInfo* client)
{
    return ReadOne(client, m_store->Part("id ={}", id));
}

bool SqlActiveMxpClient::GetByName(const std::string& clientName, VKActiveMxpClientInfo* client)
{
    return ReadOne(client, m_store->Part("client_name = {}", clientName));
}

bool SqlActiveMxpClient::GetByActivationKey(const std::string& activationKey, VKActiveMxpClientInfo* client)
{
    return ReadOne(client, m_store->Part("UPPER(activation_key) = UPPER({})", activationKey));
}

bool SqlActiveMxpClient::ReadOne(VKActiveMxpClientInfo* client, const SqlRaw& condition)
{
    *client = VKActiveMxpClientInfo{};
    const auto rows = m_store->Shared([&] { return m_store->Select("SELECT * FROM {} WHERE {}", kName, condition); });
    if (rows->GetReturnedRowsCount() < 1)
        return false;
    ReadRow(kActiveMxpClientTable.fields, (*rows)[0], *client);
    return true;
}

long SqlActiveMxpClient::GetTotalRecordCount(VKActivationMode mode)
{
    const bool known = mode == VKActivationModeBasic || mode == VKActivationModeAdvanced;
    const SqlRaw condition{known ? "WHERE active_mode = " + std::to_string(mode) : ""};
    return m_store->Shared([&] { return m_store->SelectNumber("SELECT COUNT(*) FROM {} {}", kName, condition); });
}

void SqlActiveMxpClient::SetFilter(const std::string& clientName, long from, long to)
{
    m_strFilterClientName = clientName;
    m_lFilterFrom = from;
    m_lFilterTo = to;
}

void SqlActiveMxpClient::SetFilter(int pageSize, int pageNumber)
{
    m_page.size = pageSize;
    m_page.number = pageNumber;
}

void SqlActiveMxpClient::ClearFilter()
{
    SetFilter("", 0, 0);
    m_page = {};
}

bool SqlActiveMxpClient::ConvertRecords(const std::vector<VKActiveMxpClientInfo>& clients)
{
    m_store->Exclusive([&] {
        m_store->InsertRowsWithIds(kActiveMxpClientTable, clients.data(), static_cast<int>(clients.size()),
                                   "active client", "Execution of insert query failed.");
    });
    return true;
}

} // namespace vk
