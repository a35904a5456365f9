#pragma once

#include <sql.h>
#include <sqlext.h>

#include <string>
#include <vector>

#include "VKDBiRow.h"
#include "VKDBexception.h"

namespace vk {

/// ODBC takes texts it only reads as pointers to bytes that may change.
inline SQLCHAR* OdbcBytes(const std::string& text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str())); }

/// What the driver says is wrong.
struct OdbcError
{
    int code = DbError::General; ///< the native code of the first record
    std::string text;            ///< one record a line
    bool connectionLost = false;
};

/// The diagnostics of a handle.
OdbcError ReadOdbcError(SQLSMALLINT kind, SQLHANDLE handle);

/// The columns and rows of one result.
struct OdbcResult
{
    std::vector<std::string> columns;
    std::vector<VKDBiRow> rows;
};

/// Which rows of a result are wanted: `count` from `first` on; a count of 0 or less for all.
struct OdbcPage
{
    int first = 0;
    int count = 0;
};

/// A statement that was run, standing on its first result with columns. All operations throw VKDBexception with the
/// driver's native code.
class OdbcStatement
{
public:
    /// Runs the text. `oracle` says that cursor parameters are to be taken out of it.
    OdbcStatement(SQLHDBC connection, const std::string& text, bool oracle);
    ~OdbcStatement();
    OdbcStatement(const OdbcStatement&) = delete;
    OdbcStatement& operator=(const OdbcStatement&) = delete;

    /// How many rows the first statement of the text touched.
    long TouchedRows() const { return m_touched; }
    /// False when all results were left behind.
    bool HasResult() const { return m_columns > 0; }
    /// Reads the result it stands on. A value other than "0" in a column "ErrorCode" is the server's failure.
    OdbcResult Read(const OdbcPage& page = {}) const;
    /// Goes on to the next result with columns.
    bool Next();

private:
    void Execute(const std::string& text);
    void CountColumns();
    void FindResult();
    std::vector<std::string> ColumnNames() const;
    bool Fetch() const;
    VKDBiRow ReadRow(const std::vector<std::string>& columns) const;
    VKDBiRowField ReadCell(SQLUSMALLINT column, const std::string& name) const;
    [[noreturn]] void ThrowError() const;

    SQLHSTMT m_handle = SQL_NULL_HSTMT;
    std::string m_text;
    SQLSMALLINT m_columns = 0; ///< of the result it stands on
    long m_touched = 0;
};

} // namespace vk
