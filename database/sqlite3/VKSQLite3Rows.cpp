#include "VKSQLite3Database.h"

#include <memory>
#include <sqlite3.h>

#include "VKDBexception.h"

/// \file
/// Reading rows of VKSQLite3Database as they come.

namespace {

struct FinalizeStatement
{
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// The row that a statement has stepped to. Texts are zero-terminated and read as far as a zero byte.
class SteppedRow final : public vk::SqlRow
{
public:
    explicit SteppedRow(sqlite3_stmt* statement) : m_statement(statement) {}

    int Count() const override { return sqlite3_column_count(m_statement); }
    const char* Name(int column) const override { return sqlite3_column_name(m_statement, column); }
    const char* Text(int column) const override
    {
        return reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    }
    long Integer(int column) const override { return sqlite3_column_int64(m_statement, column); }
    unsigned long Unsigned(int column) const override { return static_cast<unsigned long>(Integer(column)); }
    double Real(int column) const override { return sqlite3_column_double(m_statement, column); }
    bool Boolean(int column) const override
    {
        if (sqlite3_column_type(m_statement, column) == SQLITE_INTEGER)
            return sqlite3_column_int64(m_statement, column) != 0;
        return VKDBiRowField("", Text(column)).GetValueBool();
    }

private:
    sqlite3_stmt* m_statement;
};

} // namespace

bool VKSQLite3Database::ForEachRow(const std::string& query, const vk::SqlRowReader& take)
{
    if (!m_bReady)
        return false;
    ClearError();
    sqlite3_stmt* prepared = nullptr;
    int code = sqlite3_prepare_v2(m_pHandle, query.c_str(), static_cast<int>(query.size()), &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, FinalizeStatement> statement(prepared);
    if (code == SQLITE_OK) {
        const SteppedRow row(prepared);
        while ((code = sqlite3_step(prepared)) == SQLITE_ROW)
            take(row);
    }
    if (StoreError(code == SQLITE_DONE ? SQLITE_OK : code) != SQLITE_OK)
        throw VKDBexception(code, __FILE__, __LINE__, "Unable to execute SELECT query [" + query + "].",
                            m_strLastError);
    return true;
}
