#include "VKODBCdatabase.h"

#include <cstdlib>
#include <memory>
#include <string_view>
#include <strings.h>

#include "VKDBexception.h"
#include "VKDBsystem.h"

namespace {

/// ODBC takes texts it only reads as pointers to bytes that may change.
SQLCHAR* Bytes(const std::string& text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str())); }

/// A statement handle as long as the object lives.
class Statement
{
public:
    explicit Statement(SQLHDBC connection)
    {
        if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection, &m_handle)))
            throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Failed to allocate ODBC statement");
    }
    ~Statement() { SQLFreeHandle(SQL_HANDLE_STMT, m_handle); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    SQLHSTMT Handle() const { return m_handle; }

private:
    SQLHSTMT m_handle = SQL_NULL_HSTMT;
};

struct SqlError
{
    int code = vk::DbError::General;
    std::string text;
    bool connectionLost = false;
};

/// SQLSTATE class 08, and the server's own word for being shut down.
bool TellsOfLostConnection(std::string_view state) { return state.substr(0, 2) == "08" || state.substr(0, 4) == "57P0"; }

/// The diagnostics of a handle, one a line, with the native code of the first.
SqlError GetSQLError(SQLSMALLINT kind, SQLHANDLE handle)
{
    SqlError error;
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
        error.text.append(reinterpret_cast<const char*>(message)).append("\n");
    }
}

[[noreturn]] void ThrowQueryError(SQLHSTMT statement, const std::string& text)
{
    const SqlError error = GetSQLError(SQL_HANDLE_STMT, statement);
    if (error.connectionLost)
        VKDBsystem::NoteLostConnection(); // what works on a connection of that time is made anew
    throw VKDBexception(error.code, __FILE__, __LINE__, "SQL query[" + text + "]", error.text);
}

std::string ColumnName(SQLHSTMT statement, SQLUSMALLINT column)
{
    SQLCHAR name[256] = {};
    SQLSMALLINT length = 0;
    SQLSMALLINT type = 0;
    SQLSMALLINT digits = 0;
    SQLSMALLINT nullable = 0;
    SQLULEN size = 0;
    SQLDescribeCol(statement, column, name, sizeof name, &length, &type, &size, &digits, &nullable);
    return reinterpret_cast<const char*>(name);
}

/// One cell, read in pieces so that a text of any length arrives whole.
VKDBiRowField ReadCell(SQLHSTMT statement, SQLUSMALLINT column, const std::string& name, const std::string& query)
{
    std::string value;
    for (;;) {
        char piece[1024];
        SQLLEN left = 0;
        const SQLRETURN result = SQLGetData(statement, column, SQL_C_CHAR, piece, sizeof piece, &left);
        if (result == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(result))
            ThrowQueryError(statement, query);
        if (left == SQL_NULL_DATA)
            return VKDBiRowField(name.c_str(), nullptr);
        value += piece;
        if (result == SQL_SUCCESS)
            break;
    }
    return VKDBiRowField(name.c_str(), value.c_str());
}

/// Reads the statement's current result in place of what was there.
void ReadRows(SQLHSTMT statement, SQLSMALLINT columns, VKODBCResultSet& result, const std::string& query)
{
    result.Clear();
    std::vector<std::string> names;
    for (SQLSMALLINT column = 1; column <= columns; ++column)
        names.push_back(ColumnName(statement, static_cast<SQLUSMALLINT>(column)));
    for (;;) {
        const SQLRETURN fetched = SQLFetch(statement);
        if (fetched == SQL_NO_DATA)
            return;
        if (!SQL_SUCCEEDED(fetched))
            ThrowQueryError(statement, query);
        VKDBiRow row;
        for (std::size_t i = 0; i < names.size(); ++i) {
            row.Add(ReadCell(statement, static_cast<SQLUSMALLINT>(i + 1), names[i], query));
            const VKDBiRowField& cell = row[static_cast<int>(i)];
            if (strcasecmp(cell.GetName(), "ErrorCode") == 0 && cell.GetValueString() != "0")
                throw VKDBexception(cell.GetValueInt(), __FILE__, __LINE__, "SQL query[" + query + "]",
                                    "the server reports error " + cell.GetValueString());
        }
        result.Add(std::move(row));
    }
}

} // namespace

VKRDBiDatabase* VKRDBiDatabase::GetInstance(int type, VKsysEventLogInterface*)
{
    if (type != 0)
        return std::make_unique<VKRDBiDatabase>().release();
    return std::make_unique<VKODBCdatabase>().release();
}

VKODBCdatabase::~VKODBCdatabase() { Free(); }

std::string VKODBCdatabase::PreprocessSqlStringCopy(const std::string& text, std::size_t maxLen)
{
    std::string out;
    for (const char c : text)
        out.append(c == '\'' ? 2 : 1, c);
    if (maxLen != 0 && out.size() > maxLen)
        out.resize(maxLen);
    return out;
}

void VKODBCdatabase::ThrowConnectionError(const char* what) const
{
    const SqlError error = GetSQLError(SQL_HANDLE_DBC, m_hConnection);
    if (error.connectionLost)
        VKDBsystem::NoteLostConnection();
    throw VKDBexception(error.code, __FILE__, __LINE__, what + (" [" + GetSourceName()) + "]: " + error.text, error.text);
}

bool VKODBCdatabase::Open(const std::string& connect, const std::string& user, const std::string& password, bool isDSN,
                          bool)
{
    Free();
    m_strConnect = connect;
    m_strUser = user;
    m_strPassword = password;
    m_bDSN = isDSN;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_hEnvironment)))
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Failed to allocate ODBC environment");
    SQLSetEnvAttr(m_hEnvironment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    // An administrator who has set the variable means another file.
    setenv("ODBCINI", "/usr/local/vardock/config/odbc.ini", 0);
    SQLAllocHandle(SQL_HANDLE_DBC, m_hEnvironment, &m_hConnection);
    SQLCHAR told[1024];
    SQLSMALLINT toldLength = 0;
    const SQLRETURN result =
        isDSN ? SQLConnect(m_hConnection, Bytes(connect), SQL_NTS, Bytes(user), SQL_NTS, Bytes(password), SQL_NTS)
              : SQLDriverConnect(m_hConnection, nullptr, Bytes(connect), SQL_NTS, told, sizeof told, &toldLength,
                                 SQL_DRIVER_NOPROMPT);
    if (SQL_SUCCEEDED(result))
        return true;
    const SqlError error = GetSQLError(SQL_HANDLE_DBC, m_hConnection);
    Free();
    throw VKDBexception(error.code, __FILE__, __LINE__, error.text);
}

bool VKODBCdatabase::ReOpen()
{
    const std::string connect = m_strConnect;
    const std::string user = m_strUser;
    const std::string password = m_strPassword;
    return Open(connect, user, password, m_bDSN, true);
}

void VKODBCdatabase::Free()
{
    if (m_hConnection != SQL_NULL_HDBC) {
        // A connection with an open transaction does not disconnect.
        SQLEndTran(SQL_HANDLE_DBC, m_hConnection, SQL_ROLLBACK);
        SQLDisconnect(m_hConnection);
        SQLFreeHandle(SQL_HANDLE_DBC, m_hConnection);
    }
    if (m_hEnvironment != SQL_NULL_HENV)
        SQLFreeHandle(SQL_HANDLE_ENV, m_hEnvironment);
    m_hConnection = SQL_NULL_HDBC;
    m_hEnvironment = SQL_NULL_HENV;
}

bool VKODBCdatabase::Close()
{
    Free();
    return true;
}

bool VKODBCdatabase::TestConnection() { return ExecuteCommand("SELECT 1;"); }

bool VKODBCdatabase::TestNReconnect()
{
    try {
        if (TestConnection())
            return true;
    } catch (const VKDBexception&) { // what the test is for
    }
    try {
        Close();
        return ReOpen();
    } catch (const VKDBexception&) { // told by false; the next statement tells why
        return false;
    }
}

void VKODBCdatabase::RequireOpen() const
{
    if (m_hConnection == SQL_NULL_HDBC)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                            "The data source [" + GetSourceName() + "] is not open.");
}

void VKODBCdatabase::Run(const std::string& text, VKODBCResultSet& result)
{
    RequireOpen();
    const Statement statement(m_hConnection);
    // Braces and question marks in texts are no business of the driver.
    SQLSetStmtAttr(statement.Handle(), SQL_ATTR_NOSCAN, reinterpret_cast<SQLPOINTER>(SQL_NOSCAN_ON), 0);
    SQLRETURN outcome = SQLExecDirect(statement.Handle(), Bytes(text), static_cast<SQLINTEGER>(text.size()));
    if (!SQL_SUCCEEDED(outcome) && outcome != SQL_NO_DATA)
        ThrowQueryError(statement.Handle(), text);
    SQLLEN rows = 0;
    SQLRowCount(statement.Handle(), &rows);
    m_lRows = outcome == SQL_NO_DATA ? 0 : rows;
    result.SetEffectedRowsCount(static_cast<int>(m_lRows));
    do {
        SQLSMALLINT columns = 0;
        SQLNumResultCols(statement.Handle(), &columns);
        if (columns > 0)
            ReadRows(statement.Handle(), columns, result, text);
        outcome = SQLMoreResults(statement.Handle());
    } while (SQL_SUCCEEDED(outcome));
    if (outcome != SQL_NO_DATA)
        ThrowQueryError(statement.Handle(), text);
}

bool VKODBCdatabase::ExecuteCommand(const std::string& text)
{
    VKODBCResultSet result;
    Run(text, result);
    return true;
}

bool VKODBCdatabase::ExecuteSelectQuery(const std::string& text, VKODBCResultSet& result)
{
    Run(text, result);
    return true;
}

bool VKODBCdatabase::ExecuteUpdateQuery(const std::string& text, VKODBCResultSet& result)
{
    Run(text, result);
    return true;
}

bool VKODBCdatabase::ExecuteInsertQuery(const std::string& text, VKODBCResultSet& result, unsigned long& id)
{
    Run(text, result);
    id = result[0][0].GetValueULong();
    return true;
}

void VKODBCdatabase::SetAutoCommit(bool on)
{
    RequireOpen();
    const SQLULEN value = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
    if (!SQL_SUCCEEDED(SQLSetConnectAttr(m_hConnection, SQL_ATTR_AUTOCOMMIT, reinterpret_cast<SQLPOINTER>(value), 0)))
        ThrowConnectionError("Unable to change the transaction mode of");
}

bool VKODBCdatabase::BeginTransaction()
{
    SetAutoCommit(false);
    return true;
}

bool VKODBCdatabase::EndTransaction(SQLSMALLINT how)
{
    RequireOpen();
    if (!SQL_SUCCEEDED(SQLEndTran(SQL_HANDLE_DBC, m_hConnection, how)))
        ThrowConnectionError("Unable to end a transaction on");
    SetAutoCommit(true);
    return true;
}

std::string VKODBCdatabase::GetServerName()
{
    SQLCHAR name[128] = {};
    SQLSMALLINT length = 0;
    if (!IsOpen() || !SQL_SUCCEEDED(SQLGetInfo(m_hConnection, SQL_DBMS_NAME, name, sizeof name, &length)))
        return "";
    return reinterpret_cast<const char*>(name);
}
