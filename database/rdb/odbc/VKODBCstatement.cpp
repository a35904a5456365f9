#include "VKODBCstatement.h"

#include <string_view>
#include <strings.h>

#include "VKDBsystem.h"
#include "VKODBCdatabase.h"

namespace vk {

namespace {

/// SQLSTATE class 08, and the server's own word for being shut down.
bool TellsOfLostConnection(std::string_view state) { return state.substr(0, 2) == "08" || state.substr(0, 4) == "57P0"; }

/// A server that refuses a row may quote it, whatever part of it the statement wrote, and with it the secrets that stand
/// in it. The words before it say what is wrong.
std::string WithoutQuotedRow(std::string message)
{
    for (const char* quotes : {"Failing row contains", "Truncated value:"})
        if (const std::size_t at = message.find(quotes); at != std::string::npos)
            message.replace(at, std::string::npos, std::string(quotes) + " ***");
    return message;
}

} // namespace

OdbcError ReadOdbcError(SQLSMALLINT kind, SQLHANDLE handle)
{
    OdbcError error;
    SQLCHAR state[6];
    SQLCHAR message[1024];
    for (SQLSMALLINT record = 1;; ++record) {
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        const SQLRETURN result = SQLGetDiagRec(kind, handle, record, state, &native, message, sizeof message, &length);
        if (result == SQL_INVALID_HANDLE)
            error.text = "Invalid Handle.";
        else if (result == SQL_ERROR)
            error.text = "Either RecNumber was negative or 0 or BufferLength was less than zero.";
        if (!SQL_SUCCEEDED(result))
            return error;
        if (record == 1)
            error.code = native;
        error.connectionLost |= TellsOfLostConnection(reinterpret_cast<const char*>(state));
        error.text.append(WithoutQuotedRow(reinterpret_cast<const char*>(message))).append("\n");
    }
}

OdbcStatement::OdbcStatement(SQLHDBC connection, const std::string& text, bool oracle)
{
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &m_handle)))
        throw VKDBexception(DbError::General, __FILE__, __LINE__, "Failed to allocate ODBC statement");
    try {
        m_text = oracle ? VKODBCdatabase::oracleQueryFixForUnix(text, m_handle) : text;
        Execute(m_text);
        CountColumns();
        FindResult();
    } catch (...) { // no destructor runs for a half-made object
        SQLFreeHandle(SQL_HANDLE_STMT, m_handle);
        throw;
    }
}

OdbcStatement::~OdbcStatement() { SQLFreeHandle(SQL_HANDLE_STMT, m_handle); }

void OdbcStatement::Execute(const std::string& text)
{
    // Braces and question marks in texts are no business of the driver.
    SQLSetStmtAttr(m_handle, SQL_ATTR_NOSCAN, reinterpret_cast<SQLPOINTER>(SQL_NOSCAN_ON), 0);
    const SQLRETURN outcome = SQLExecDirect(m_handle, OdbcBytes(text), static_cast<SQLINTEGER>(text.size()));
    if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
        ThrowError();
    SQLLEN rows = 0;
    SQLRowCount(m_handle, &rows);
    m_touched = outcome == SQL_NO_DATA ? 0 : rows;
}

void OdbcStatement::CountColumns()
{
    m_columns = 0;
    SQLNumResultCols(m_handle, &m_columns);
}

/// Moves on until a result has columns, or none is left.
void OdbcStatement::FindResult()
{
    while (m_columns == 0) {
        const SQLRETURN outcome = SQLMoreResults(m_handle);
        if (outcome == SQL_NO_DATA)
            return;
        if (!SQL_SUCCEEDED(outcome))
            ThrowError();
        CountColumns();
    }
}

bool OdbcStatement::Next()
{
    m_columns = 0;
    FindResult();
    return HasResult();
}

OdbcResult OdbcStatement::Read(const OdbcPage& page) const
{
    OdbcResult result;
    result.columns = ColumnNames();
    for (int skipped = 0; skipped < page.first; ++skipped)
        if (!Fetch())
            return result;
    while ((page.count <= 0 || result.rows.size() < static_cast<std::size_t>(page.count)) && Fetch())
        result.rows.push_back(ReadRow(result.columns));
    return result;
}

std::vector<std::string> OdbcStatement::ColumnNames() const
{
    std::vector<std::string> names;
    for (SQLUSMALLINT column = 1; column <= m_columns; ++column) {
        SQLCHAR name[256] = {};
        SQLSMALLINT length = 0;
        SQLSMALLINT type = 0;
        SQLSMALLINT digits = 0;
        SQLSMALLINT nullable = 0;
        SQLULEN size = 0;
        SQLDescribeCol(m_handle, column, name, sizeof name, &length, &type, &size, &digits, &nullable);
        names.emplace_back(reinterpret_cast<const char*>(name));
    }
    return names;
}

bool OdbcStatement::Fetch() const
{
    const SQLRETURN fetched = SQLFetch(m_handle);
    if (!SQL_SUCCEEDED(fetched) && fetched != SQL_NO_DATA)
        ThrowError();
    return fetched != SQL_NO_DATA;
}

VKDBiRow OdbcStatement::ReadRow(const std::vector<std::string>& columns) const
{
    VKDBiRow row;
    SQLUSMALLINT column = 0;
    for (const std::string& name : columns) {
        VKDBiRowField cell = ReadCell(++column, name);
        if (strcasecmp(name.c_str(), "ErrorCode") == 0 && cell.GetValueString() != "0")
            throw VKDBexception(cell.GetValueInt(), __FILE__, __LINE__, "SQL query[" + m_text + "]",
                                "the server reports error " + cell.GetValueString());
        row.Add(std::move(cell));
    }
    return row;
}

/// Read in pieces, so that a text of any length arrives whole.
VKDBiRowField OdbcStatement::ReadCell(SQLUSMALLINT column, const std::string& name) const
{
    std::string value;
    for (;;) {
        char piece[1024];
        SQLLEN left = 0;
        const SQLRETURN result = SQLGetData(m_handle, column, SQL_C_CHAR, piece, sizeof piece, &left);
        if (result == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(result))
            ThrowError();
        if (left == SQL_NULL_DATA)
            return VKDBiRowField(name.c_str(), nullptr);
        value += piece;
        if (result == SQL_SUCCESS)
            break;
    }
    return VKDBiRowField(name.c_str(), value.c_str());
}

void OdbcStatement::ThrowError() const
{
    const OdbcError error = ReadOdbcError(SQL_HANDLE_STMT, m_handle);
    if (error.connectionLost)
        VKDBsystem::NoteLostConnection(); // what works on a connection of that time is made anew
    throw VKDBexception(error.code, __FILE__, __LINE__, "SQL query[" + m_text + "]", error.text);
}

} // namespace vk
