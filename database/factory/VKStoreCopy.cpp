#include "VKStoreCopy.h"

#include <cstdlib>
#include <map>
#include <memory>

#include "VKRDBConnection.h"
#include "VKSQLite3EntityFile.h"
#include "VKSQLite3Receiver.h"
#include "VKTableCatalogue.h"
#include "VKTableRow.h"
#include "VKioFile.h"

namespace vk {

namespace {

constexpr long kRowsAtOnce = 500;

/// Records are moved, not typed in: what one store took the other one may be told.
constexpr std::size_t kStatementLimit = 64 * 1024 * 1024;

std::unique_ptr<SqlStore> OpenServer(const VK_DATA_SOURCE& source)
{
    std::shared_ptr<VKRDBiDatabase> server(VKRDBiDatabase::GetInstance(0, nullptr));
    server->Open(source.connect_string, source.user, source.password, source.uses_dsn, true);
    return std::make_unique<SqlStore>(std::make_unique<RdbConnection>(std::move(server)), kStatementLimit);
}

/// Brings a table that an older version made up to date, as its entity does.
template <class Fields> void BringUpToDate(SQLite3Connection& connection, const Table<Fields>& table)
{
    const std::string unreadable = std::string("The table [") + table.name.file + "] could not be accessed.";
    AddMissingColumns(connection, table, unreadable.c_str());
}

void BringUpToDate(SQLite3Connection& connection, const decltype(kReceiverTable)&)
{
    VKSQLite3Receiver::BringUpToDate(connection);
}

template <class Family> std::unique_ptr<SqlStore> OpenFiles(const std::string& directory, const Family& family)
{
    std::vector<std::string> columns;
    std::vector<VKSQLite3TableDesc> tables;
    columns.reserve(std::tuple_size_v<decltype(family.tables)>); // the descriptions point into it
    ForEachTable(family, [&](const auto& table) {
        columns.push_back(ColumnsText(SQLite3Dialect::Get(), table.fields));
        tables.push_back({table.name.file, columns.back().c_str()});
    });
    auto connection =
        std::make_unique<SQLite3Connection>(directory, family.file, tables.data(), static_cast<int>(tables.size()));
    ForEachTable(family, [&](const auto& table) { BringUpToDate(*connection, table); });
    std::apply([&](const auto&... table) { CreateIndexes(*connection, table...); }, family.tables);
    return std::make_unique<SqlStore>(std::move(connection), kStatementLimit);
}

/// Tells of tables that were not made before a statement in the middle of the work does so in the server's words.
template <class Family> void RequireTables(SqlStore& server, const Family& family)
{
    ForEachTable(family, [&](const auto& table) {
        try {
            server.Select("SELECT id FROM {} WHERE id=0", table.name);
        } catch (const VKDBexception& failure) {
            throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__,
                                std::string("The table [") + table.name.relational +
                                    "] cannot be read. A new database needs the tables that \"vkadmin schema\" prints; "
                                    "run its output there first.",
                                failure.GetSysMsg().empty() ? failure.GetMsg() : failure.GetSysMsg());
        }
    });
}

template <class Family> std::unique_ptr<SqlStore> Open(const StorePlace& place, const Family& family)
{
    if (place.source.database_type == DbTypeOdbc) {
        auto server = OpenServer(place.source);
        RequireTables(*server, family);
        return server;
    }
    return OpenFiles(place.configDirectory, family);
}

template <class Family> bool HasRows(const StorePlace& place, const Family& family)
{
    return place.source.database_type == DbTypeOdbc || VKioFile::Check(place.configDirectory, family.file);
}

/// A record with the texts that its columns own.
template <class Fields> class Row
{
public:
    using Record = typename std::tuple_element_t<0, Fields>::Record;

    Row(const Table<Fields>& table, const VKDBiRow& row) : m_table(table) { ReadRow(table.fields, row, record); }
    ~Row()
    {
        ForEachField(m_table.fields, [&](const auto& field) {
            if constexpr (std::is_same_v<typename std::decay_t<decltype(field)>::Value, char*>)
                std::free(field.of(record));
        });
    }
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    /// The same text for the same values, whatever store they came from.
    std::string Text() const { return InsertText(SQLite3Dialect::Get(), m_table, record, RowId::FromRecord); }

    Record record{};

private:
    const Table<Fields>& m_table;
};

/// Copies one table from store to store.
template <class Fields> class TableCopy
{
public:
    TableCopy(SqlStore& from, SqlStore& to, const Table<Fields>& table, CopiedTable& count)
        : m_from(from), m_to(to), m_table(table), m_count(count)
    {
    }

    void Run(const std::function<void(const CopiedTable&)>& progress)
    {
        m_to.KeepingIds(m_table.name, [&] {
            while (CopySome())
                if (progress)
                    progress(m_count);
        });
    }

private:
    bool CopySome()
    {
        const SqlRaw next = m_from.Part("SELECT * FROM {} WHERE id>{}", m_table.name, m_last);
        const auto rows = m_from.Select("{}", SqlRaw{m_from.Dialect().Page(next.text, "id ASC", kRowsAtOnce, 0)});
        const int count = rows->GetReturnedRowsCount();
        if (count == 0)
            return false;
        const std::map<unsigned long, std::string> present = Present((*rows)[count - 1]["id"].GetValueULong());
        for (int i = 0; i < count; ++i) {
            const Row<Fields> row(m_table, (*rows)[i]);
            CopyRow(row, present);
            m_last = row.record.id;
        }
        return true;
    }

    void CopyRow(const Row<Fields>& row, const std::map<unsigned long, std::string>& present)
    {
        const auto there = present.find(row.record.id);
        if (there == present.end()) {
            Add(row);
            ++m_count.added;
        } else if (there->second == row.Text()) {
            ++m_count.present;
        } else {
            throw VKDBexception(DbError::RuleOrConstraint, __FILE__, __LINE__,
                                Name(row) + " stands in the target already, with another content.");
        }
    }

    void Add(const Row<Fields>& row)
    {
        try {
            m_to.InsertRowWithId(m_table, row.record, m_count.family);
        } catch (const VKDBexception& failure) {
            throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__, Name(row) + " is refused by the target.",
                                failure.GetSysMsg().empty() ? failure.GetMsg() : failure.GetSysMsg());
        }
    }

    std::string Name(const Row<Fields>& row) const
    {
        return std::string("The row ") + std::to_string(row.record.id) + " of the table [" + m_table.name.file + "]";
    }

    /// What stands in the target behind the last row, up to this one.
    std::map<unsigned long, std::string> Present(unsigned long end) const
    {
        std::map<unsigned long, std::string> texts;
        const auto rows = m_to.Select("SELECT * FROM {} WHERE id>{} AND id<={}", m_table.name, m_last, end);
        for (int i = 0; i < rows->GetReturnedRowsCount(); ++i) {
            const Row<Fields> row(m_table, (*rows)[i]);
            texts.emplace(row.record.id, row.Text());
        }
        return texts;
    }

    SqlStore& m_from;
    SqlStore& m_to;
    const Table<Fields>& m_table;
    CopiedTable& m_count;
    unsigned long m_last = 0;
};

template <class Fields>
void CopyTable(SqlStore& from, SqlStore& to, const Table<Fields>& table, CopiedTable& count,
               const std::function<void(const CopiedTable&)>& progress)
{
    TableCopy<Fields>(from, to, table, count).Run(progress);
}

} // namespace

std::vector<CopiedTable> CopyStores(const StorePlace& from, const StorePlace& to,
                                    const std::function<void(const CopiedTable&)>& progress)
{
    std::vector<CopiedTable> counts;
    ForEachFamily([&](const auto& family) {
        std::vector<CopiedTable> ofFamily;
        ForEachTable(family, [&](const auto& table) { ofFamily.push_back({family.name, table.name.file}); });
        const auto target = Open(to, family); // even when there is nothing to copy: one that is not there is told
        if (HasRows(from, family)) {
            const auto source = Open(from, family);
            source->Shared([&] {
                target->Exclusive([&] {
                    std::size_t i = 0;
                    ForEachTable(family, [&](const auto& table) {
                        CopyTable(*source, *target, table, ofFamily[i++], progress);
                    });
                });
            });
        }
        counts.insert(counts.end(), ofFamily.begin(), ofFamily.end());
    });
    return counts;
}

} // namespace vk
