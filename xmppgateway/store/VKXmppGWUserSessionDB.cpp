#include "VKXmppGWUserSessionDB.h"

#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKSQLite3Database.h"
#include "VKSQLite3Dialect.h"
#include "VKSessionHandles.h"
#include "VKSqlRecord.h"
#include "VKSqlTransaction.h"
#include "VKTableRow.h"
#include "VKioFile.h"

namespace {

constexpr const char* kFile = "xmpp_user_sessions.sdb";

/// Made by whoever adds sessions, so that those who only ask, with every message, find a user at a flat cost and pay
/// nothing for the check.
constexpr const char* kUserIndex =
    "CREATE INDEX IF NOT EXISTS ix_xmpp_user_sessions_user_id ON xmpp_user_sessions (user_id ASC);";

/// Thrown when the store refuses a query without a failure of its own: rolls back and makes the operation false.
constexpr int kRefused = 1;

constexpr vk::CodeText<VKXmppGWSessionType> kTypes[] = {{VKXmppGWSessionMXP, "MXP"}, {VKXmppGWSessionXMPP, "XMPP"}};

const vk::SQLite3Dialect& Dialect() { return vk::SQLite3Dialect::Get(); }

template <class... Values> std::string Statement(std::string_view pattern, const Values&... values)
{
    return vk::SqlText(Dialect(), pattern, values...);
}

} // namespace

const VKSQLite3TableDesc VKXmppGWUserSessionDB::m_tTableDesc[1] = {
    {vk::kUserSessionTable.name.file, vk::SQLite3Columns<vk::kUserSessionTable>()}};

VKXmppGWUserSessionDB::VKXmppGWUserSessionDB()
    : VKXmppGWUserSessionDB(VKConfiguration::getVKConfiguration()->getRootDirectory(false))
{
}

VKXmppGWUserSessionDB::VKXmppGWUserSessionDB(const std::string& rootDirectory)
    : m_strPath(VKioFile::CreatePath(rootDirectory, "temp"))
{
    const std::string file = VKioFile::CreatePath(m_strPath, kFile);
    m_pDatabase = vk::SessionHandles::Take(file);
    if (m_pDatabase)
        return;
    try {
        m_pDatabase = std::make_unique<VKSQLite3Database>(file, m_tTableDesc, 1, false);
        if (!m_pDatabase->IsReady()) {
            m_strOpenError = "The database [" + m_pDatabase->GetPath() + "] is not ready: it is in use.";
            m_pDatabase.reset();
        }
    } catch (const VKDBexception& failure) {
        m_strOpenError = failure.GetMsg() + ": " + failure.GetSysMsg();
    }
}

VKXmppGWUserSessionDB::~VKXmppGWUserSessionDB() { vk::SessionHandles::Give(std::move(m_pDatabase)); }

template <class Body> bool VKXmppGWUserSessionDB::InTransaction(bool writes, Body&& body)
{
    if (!m_pDatabase)
        return false;
    try {
        vk::Transaction transaction(*m_pDatabase,
                                    writes ? vk::TransactionLock::Exclusive : vk::TransactionLock::Shared);
        if (!transaction.IsOpen())
            return false;
        if (!body())
            throw kRefused;
        return transaction.Commit();
    } catch (int) {
        return false;
    }
}

bool VKXmppGWUserSessionDB::Change(const std::string& statement)
{
    VKSQLite3ResultSet result;
    return InTransaction(true, [&] { return m_pDatabase->ExecuteUpdateQuery(statement, result); });
}

bool VKXmppGWUserSessionDB::Select(const std::string& statement, VKSQLite3ResultSet& result)
{
    return InTransaction(false, [&] { return m_pDatabase->ExecuteSelectQuery(statement, result); });
}

/// Two questions in one transaction, so that the answers belong together.
bool VKXmppGWUserSessionDB::SelectTwo(const std::string& first, VKSQLite3ResultSet& firstResult,
                                      const std::string& second, VKSQLite3ResultSet& secondResult)
{
    return InTransaction(false, [&] {
        return m_pDatabase->ExecuteSelectQuery(first, firstResult) &&
               m_pDatabase->ExecuteSelectQuery(second, secondResult);
    });
}

bool VKXmppGWUserSessionDB::GetOne(const std::string& statement, VKXmppGWUserSession* session)
{
    EmptyXmppGWUserSession(session);
    VKSQLite3ResultSet result;
    return Select(statement, result) && FillStructFromResultSet(session, result, 0);
}

bool VKXmppGWUserSessionDB::GetList(const std::string& statement, std::vector<VKXmppGWUserSession>* sessions)
{
    EmptyXmppGWUserSessionList(sessions);
    VKSQLite3ResultSet result;
    if (!Select(statement, result))
        return false;
    FillList(result, sessions);
    return true;
}

void VKXmppGWUserSessionDB::FillList(VKSQLite3ResultSet& result, std::vector<VKXmppGWUserSession>* sessions)
{
    sessions->resize(static_cast<std::size_t>(result.GetReturnedRowsCount()));
    for (std::size_t row = 0; row < sessions->size(); ++row)
        FillStructFromResultSet(&(*sessions)[row], result, static_cast<int>(row));
}

std::string VKXmppGWUserSessionDB::GetText(const std::string& statement)
{
    VKSQLite3ResultSet result;
    return Select(statement, result) ? result[0][0].GetValueString() : "";
}

bool VKXmppGWUserSessionDB::FillStructFromResultSet(VKXmppGWUserSession* session, VKSQLite3ResultSet& result, int row)
{
    if (row < 0 || row >= result.GetReturnedRowsCount())
        return false;
    vk::ReadRowByName(vk::kUserSessionTable.fields, result[row], *session);
    return true;
}

bool VKXmppGWUserSessionDB::Add(VKXmppGWUserSession* session)
{
    const std::string statement = vk::InsertText(Dialect(), vk::kUserSessionTable, *session) + ";";
    VKSQLite3ResultSet result;
    unsigned long id = 0;
    if (!InTransaction(true, [&] {
            return m_pDatabase->ExecuteUpdateQuery(kUserIndex, result) &&
                   m_pDatabase->ExecuteInsertQuery(statement, result, id);
        }))
        return false;
    session->id = id;
    return true;
}

bool VKXmppGWUserSessionDB::Modify(VKXmppGWUserSession* session)
{
    return Change(vk::UpdateText(Dialect(), vk::kUserSessionTable, *session) + ";");
}

bool VKXmppGWUserSessionDB::Delete(unsigned long id)
{
    return Change(Statement("DELETE FROM xmpp_user_sessions WHERE id={};", id));
}

bool VKXmppGWUserSessionDB::Delete(const std::string& jid)
{
    return Change(Statement("DELETE FROM xmpp_user_sessions WHERE jid={};", jid));
}

bool VKXmppGWUserSessionDB::DeleteAll(const unsigned long& activationId)
{
    return Change(Statement("DELETE FROM xmpp_user_sessions WHERE activation_id={};", activationId));
}

bool VKXmppGWUserSessionDB::DeleteAll(VKXmppGWSessionType type)
{
    return Change(type == VKXmppGWSessionNone ? "DELETE FROM xmpp_user_sessions;"
                                              : Statement("DELETE FROM xmpp_user_sessions WHERE type={};", type));
}

bool VKXmppGWUserSessionDB::GetByID(unsigned long id, VKXmppGWUserSession* session)
{
    return GetOne(Statement("SELECT * FROM xmpp_user_sessions WHERE id ={};", id), session);
}

bool VKXmppGWUserSessionDB::GetByUserID(unsigned long userId, VKXmppGWUserSession* session)
{
    return GetOne(Statement("SELECT * FROM xmpp_user_sessions WHERE user_id ={};", userId), session);
}

bool VKXmppGWUserSessionDB::GetByName(const std::string& name, VKXmppGWUserSession* session)
{
    return GetOne(Statement("SELECT * FROM xmpp_user_sessions WHERE UPPER(user_name) = UPPER({});", name), session);
}

bool VKXmppGWUserSessionDB::GetByJID(const std::string& jid, VKXmppGWUserSession* session)
{
    return GetOne(Statement("SELECT * FROM xmpp_user_sessions WHERE UPPER(jid) = UPPER({});", jid), session);
}

/// A plain prefix: "_" and "%" in the JID match as wild cards, and a longer domain is found as well.
bool VKXmppGWUserSessionDB::GetAllByBareJID(const std::string& bareJid, std::vector<VKXmppGWUserSession>* sessions)
{
    return GetList(Statement("SELECT * FROM xmpp_user_sessions WHERE UPPER(jid) LIKE UPPER({});", bareJid + "%"),
                   sessions);
}

std::string VKXmppGWUserSessionDB::GetJIDByActivationID(const unsigned long& activationId)
{
    return GetText(Statement("SELECT jid FROM xmpp_user_sessions WHERE activation_id={};", activationId));
}

std::string VKXmppGWUserSessionDB::GetJIDByUserID(const unsigned long& userId)
{
    return GetText(Statement("SELECT jid FROM xmpp_user_sessions WHERE user_id={};", userId));
}

long VKXmppGWUserSessionDB::GetTotalRecordCount()
{
    VKSQLite3ResultSet result;
    return Select("SELECT count(*) FROM xmpp_user_sessions;", result) ? result[0][0].GetValueLong() : 0;
}

bool VKXmppGWUserSessionDB::DoesUserExist(unsigned long userId)
{
    VKSQLite3ResultSet result;
    return Select(Statement("SELECT COUNT(*) FROM xmpp_user_sessions WHERE user_id = {};", userId), result) &&
           result[0][0].GetValueLong() > 0;
}

VKXmppGWSessionType VKXmppGWUserSessionDB::GetUserType(const std::string& text)
{
    return vk::CodeOfText(kTypes, text, VKXmppGWSessionNone, vk::Case::Ignored);
}

std::string VKXmppGWUserSessionDB::GetUserTypeString(VKXmppGWSessionType type)
{
    return vk::TextOfCode(kTypes, type, "None");
}
