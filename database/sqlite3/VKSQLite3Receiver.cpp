#include "VKSQLite3Receiver.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "VKDBiCarrier.h"
#include "VKSQLite3EntityFile.h"

namespace {

template <const auto& kTable> VKSQLite3TableDesc Description()
{
    return {kTable.name.file, vk::SQLite3Columns<kTable>()};
}

constexpr const char* kUnreadable = "The Receiver table could not be accessed.";
constexpr const char* kNewest = "is_secure"; ///< the column that tells a file of this version
constexpr vk::SqlFile kCarriers = {"dbCarriers", "carriers.sdb"};

/// What a file of 4.7 has: all columns but the last.
template <class... Rows, std::size_t... I>
constexpr auto WithoutLast(const std::tuple<Rows...>& rows, std::index_sequence<I...>)
{
    return std::make_tuple(std::get<I>(rows)...);
}
constexpr vk::Table kTableOf4_7{
    vk::kReceiverTable.name,
    WithoutLast(vk::kReceiverTable.fields,
                std::make_index_sequence<
                    vk::FieldCount(decltype(vk::kReceiverTable.fields){vk::kReceiverTable.fields}) - 1>())};

bool HasColumn(vk::SQLite3Connection& connection, const char* column)
{
    const std::vector<std::string> present = vk::ColumnNames(connection, vk::kReceiverTable.name.file);
    if (present.empty())
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, kUnreadable);
    return std::find(present.begin(), present.end(), column) != present.end();
}

/// A period that was left open ended when the receiver's next one began. The last one may still be open.
void CloseOldHistory(vk::SQLite3Connection& connection)
{
    const auto open = connection.ExecuteSelectQuery("SELECT * FROM recv_disable_history WHERE disable_end_date = 0;");
    for (int row = 0; row < open->GetReturnedRowsCount(); ++row) {
        const std::string id = (*open)[row]["id"].GetValueString();
        const auto next = connection.ExecuteSelectQuery(
            "SELECT disable_start_date FROM recv_disable_history WHERE receiver_id=" +
            (*open)[row]["receiver_id"].GetValueString() + " AND id>" + id + " ORDER BY id ASC;");
        if (next->GetReturnedRowsCount() > 0)
            connection.ExecuteUpdateQuery("UPDATE recv_disable_history SET disable_end_date=" +
                                          std::to_string((*next)[0][0].GetValueLong()) + " WHERE id=" + id + ";");
    }
}

} // namespace

const VKSQLite3TableDesc VKSQLite3Receiver::tTableDesc[6] = {
    Description<vk::kReceiverTable>(),         Description<vk::kReceiverDeptTable>(),
    Description<vk::kReceiverScheduleTable>(), Description<vk::kDisableHistoryTable>(),
    Description<vk::kAttributeTable>(),        Description<vk::kReceiverAttributeTable>()};

bool VKSQLite3Receiver::Initialize(VKDBsystem* system)
{
    VKDBbaseInterface::Initialize(system);
    auto connection = vk::OpenEntityFile(*system, {"receivers.sdb", tTableDesc, 6});
    if (!HasColumn(*connection, kNewest))
        std::unique_ptr<VKDBiCarrier>(VKDBiCarrier::CreateInstance(system)); // makes its file
    BringUpToDate(*connection);
    vk::CreateIndexes(*connection, vk::kReceiverTable, vk::kReceiverDeptTable, vk::kReceiverScheduleTable);
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    return true;
}

void VKSQLite3Receiver::BringUpToDate(vk::SQLite3Connection& connection)
{
    ConvertTable(connection);
    ConvertTableFrom4_7(connection);
}

void VKSQLite3Receiver::ConvertTable(vk::SQLite3Connection& connection)
{
    vk::AddMissingColumns(connection, kTableOf4_7, kUnreadable);
}

void VKSQLite3Receiver::ConvertTableFrom4_7(vk::SQLite3Connection& connection)
{
    if (HasColumn(connection, kNewest))
        return;
    const std::unique_ptr<vk::SqlAttachment> carriers =
        connection.CanAttach(kCarriers) ? std::make_unique<vk::SqlAttachment>(connection, kCarriers) : nullptr;
    vk::InTransaction(connection, vk::TransactionLock::Exclusive, [&] {
        if (HasColumn(connection, kNewest)) // another process was faster
            return;
        connection.ExecuteUpdateQuery("ALTER TABLE receiver ADD is_secure BOOLEAN;");
        connection.ExecuteUpdateQuery(
            carriers ? "UPDATE receiver SET is_secure=(CASE WHEN carrier_id IN (SELECT id FROM carrier "
                       "WHERE protocol_id IN (34, 35)) THEN 1 ELSE 0 END);"
                     : "UPDATE receiver SET is_secure=0;");
        CloseOldHistory(connection);
    });
}
