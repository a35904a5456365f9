#pragma once

#include <memory>
#include <string>
#include <vector>

#include "VKDBfilter.h"
#include "VKSQLite3TableDesc.h"
#include "VKXmppGWUserSession.h"

class VKSQLite3Database;
class VKSQLite3ResultSet;
struct VK_USER_GROUP;

/// Who is connected to the XMPP gateway at this moment, one row for each JID, in the file "xmpp_user_sessions.sdb" in
/// the server's temporary directory. The gateway's process writes it, others read it: every operation is a transaction
/// of its own. One object serves one thread; opening one is cheap.
///
/// An operation returns false when the file could not be opened or the store refused; a statement that fails throws
/// VKDBexception. Reading operations clear their output first.
class VKXmppGWUserSessionDB
{
public:
    enum SortFld : int {
        SortUserName = 0,
        SortType = 1,
        SortCreatedTime = 2,
        SortAssignedUserName = 3,
        SortEmergencyMode = 4,
        SortIpAddress = 5,
        SortPlatform = 6,
        SortClientName = 7,
        SortJid = 8
    };

    /// Opens the file below the root directory of this installation, or of another one; never throws. What was wrong
    /// tells GetOpenError.
    VKXmppGWUserSessionDB();
    explicit VKXmppGWUserSessionDB(const std::string& rootDirectory);
    VKXmppGWUserSessionDB(const VKXmppGWUserSessionDB&) = delete;
    VKXmppGWUserSessionDB& operator=(const VKXmppGWUserSessionDB&) = delete;
    virtual ~VKXmppGWUserSessionDB();

    /// Stores a new session; its id is set in the record.
    virtual bool Add(VKXmppGWUserSession* session);
    /// Stores a changed session by its id, all but the time when it was created.
    virtual bool Modify(VKXmppGWUserSession* session);
    virtual bool Delete(unsigned long id);
    /// The JID must match in case.
    virtual bool Delete(const std::string& jid);
    virtual bool DeleteAll(const unsigned long& activationId);
    /// All sessions of a type, or all for none.
    virtual bool DeleteAll(VKXmppGWSessionType type);

    /// All sessions of a type (all for none) that pass the filters by activation and user ids, ordered by user name.
    virtual bool Get(std::vector<VKXmppGWUserSession>* sessions, VKXmppGWSessionType type);
    /// The first session found; false when there is none. Names and JIDs without regard to case.
    virtual bool GetByID(unsigned long id, VKXmppGWUserSession* session);
    virtual bool GetByUserID(unsigned long userId, VKXmppGWUserSession* session);
    virtual bool GetByName(const std::string& name, VKXmppGWUserSession* session);
    virtual bool GetByJID(const std::string& jid, VKXmppGWUserSession* session);
    /// Every JID that begins with the text, whatever stands behind it.
    virtual bool GetAllByBareJID(const std::string& bareJid, std::vector<VKXmppGWUserSession>* sessions);
    /// Empty when there is none.
    virtual std::string GetJIDByActivationID(const unsigned long& activationId);
    virtual std::string GetJIDByUserID(const unsigned long& userId);
    virtual long GetTotalRecordCount();

    /// The sessions that pass the filters, sorted, of the page when one is set.
    virtual bool GetForView(std::vector<VKXmppGWUserSession>* sessions);
    virtual void SetSort(SortFld field, bool ascending);
    /// Texts match as prefix without regard to case, empty and "*" match all; type is "MXP", "XMPP" or anything else
    /// for both. The range holds when to is above from and both are above 0. emergency: only those in emergency mode,
    /// or only the others. initial: only names that do not begin with a letter, or only those that do.
    virtual void SetFilter(const std::string& userName, const std::string& type, const std::string& assignedUserName,
                           const std::string& ipAddress, const std::string& platform, const std::string& clientName,
                           const std::string& jid, long from, long to, FltEnabled emergency, FltEnabled initial);
    /// Kept, used by no query of this class. The group stays the caller's.
    virtual void SetFilter(VK_USER_GROUP* userGroup, bool flag, DeptPerm permission);
    /// Pages of pageSize rows, numbered from 1; a size of 0 for all rows.
    virtual void SetFilter(int pageSize, int pageNumber);
    /// Ids joined by commas; empty for all. The user ids hold for Get only.
    virtual void SetFilterActivationIDs(const std::string& ids);
    virtual void SetFilterUserIDs(const std::string& ids);
    /// What the last GetForView found.
    virtual int GetPageCount();
    virtual int GetTotalRecords();

    /// Whether the user has a session.
    virtual bool DoesUserExist(unsigned long userId);

    /// Forgets all filters, but for sort and page.
    void ClearFilter();
    /// Reads a row by column names. False when there is no such row.
    bool FillStructFromResultSet(VKXmppGWUserSession* session, VKSQLite3ResultSet& result, int row);

    /// "MXP" and "XMPP" in any case; every other text is none. And back: "MXP", "XMPP" or "None".
    static VKXmppGWSessionType GetUserType(const std::string& text);
    static std::string GetUserTypeString(VKXmppGWSessionType type);

    /// Why the file could not be opened; empty when it is open.
    const std::string& GetOpenError() const { return m_strOpenError; }

    static const VKSQLite3TableDesc m_tTableDesc[1];

private:
    template <class Body> bool InTransaction(bool writes, Body&& body);
    bool Change(const std::string& statement);
    bool Select(const std::string& statement, VKSQLite3ResultSet& result);
    bool SelectTwo(const std::string& first, VKSQLite3ResultSet& firstResult, const std::string& second,
                   VKSQLite3ResultSet& secondResult);
    bool GetOne(const std::string& statement, VKXmppGWUserSession* session);
    bool GetList(const std::string& statement, std::vector<VKXmppGWUserSession>* sessions);
    void FillList(VKSQLite3ResultSet& result, std::vector<VKXmppGWUserSession>* sessions);
    std::string GetText(const std::string& statement);
    void SetupFilterClause(std::string& clause) const;
    std::string SortClause() const;

    std::string m_strPath;
    std::unique_ptr<VKSQLite3Database> m_pDatabase; ///< null when the file could not be opened
    SortFld m_SortField = SortUserName;
    bool m_bSortAscending = true;
    std::string m_strFilterUserName = "*";
    VKXmppGWSessionType m_FilterType = VKXmppGWSessionNone;
    std::string m_strFilterUnused = "*";
    std::string m_strFilterAssignedUserName = "*";
    std::string m_strFilterIpAddress = "*";
    std::string m_strFilterPlatform = "*";
    std::string m_strFilterClientName = "*";
    std::string m_strFilterJid = "*";
    FltEnabled m_FilterEmergency = FltEither;
    FltEnabled m_FilterInitial = FltEither;
    long m_lFilterFrom = 0;
    long m_lFilterTo = 0;
    VK_USER_GROUP* m_pUserGroup = nullptr;
    bool m_bUserGroupFlag = false;
    DeptPerm m_DeptPerm{};
    int m_iPageSize = 0;
    int m_iPageNumber = 0;
    int m_iPageCount = 0;
    int m_iTotalRecords = 0;
    std::string m_strFilterActivationIDs;
    std::string m_strFilterUserIDs;
    std::string m_strOpenError;
};
