#include "VKXmppGWUserSessionDB.h"

#include "VKDBexception.h"
#include "VKSQLite3Database.h"
#include "VKSQLite3Dialect.h"
#include "VKSqlClause.h"

/// \file
/// Filters, sorting and pages of VKXmppGWUserSessionDB.

namespace {

constexpr const char* kNumberList = "0123456789, ";

/// "column IN (ids)"; refuses what is no list of numbers, because the list goes into the statement as it stands.
void AddIds(vk::SqlClause& clause, const char* column, const std::string& ids)
{
    if (ids.empty())
        return;
    if (ids.find_first_not_of(kNumberList) != std::string::npos)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                            std::string("The filter for ") + column + " is no list of numbers.");
    clause.Add("{} IN ({})", vk::SqlRaw{column}, vk::SqlRaw{ids});
}

constexpr const char* kSortTerms[] = {"UPPER(XUSession.user_name)",
                                      "XUSession.type",
                                      "XUSession.created_time",
                                      "UPPER(XUSession.assigned_user_name)",
                                      "XUSession.is_emergency_mode",
                                      "UPPER(XUSession.user_ip_address)",
                                      "UPPER(XUSession.user_platform)",
                                      "UPPER(XUSession.client_name)",
                                      "UPPER(XUSession.jid)"};

constexpr const char* kInitialLetter = "UPPER(substr(XUSession.user_name, 1, 1))";

} // namespace

bool VKXmppGWUserSessionDB::Get(std::vector<VKXmppGWUserSession>* sessions, VKXmppGWSessionType type)
{
    vk::SqlClause clause(vk::SQLite3Dialect::Get());
    AddIds(clause, "activation_id", m_strFilterActivationIDs);
    AddIds(clause, "user_id", m_strFilterUserIDs);
    if (type != VKXmppGWSessionNone)
        clause.Add("type={}", type);
    return GetList("SELECT * FROM xmpp_user_sessions " + clause.Text() + " ORDER BY lower(user_name);", sessions);
}

void VKXmppGWUserSessionDB::SetupFilterClause(std::string& text) const
{
    vk::SqlClause clause(vk::SQLite3Dialect::Get());
    clause.AddPrefix("XUSession.user_name", m_strFilterUserName);
    if (m_FilterType != VKXmppGWSessionNone)
        clause.Add("XUSession.type={}", m_FilterType);
    clause.AddPrefix("XUSession.assigned_user_name", m_strFilterAssignedUserName);
    clause.AddPrefix("XUSession.user_ip_address", m_strFilterIpAddress);
    clause.AddPrefix("XUSession.user_platform", m_strFilterPlatform);
    clause.AddPrefix("XUSession.client_name", m_strFilterClientName);
    clause.AddPrefix("XUSession.jid", m_strFilterJid);
    if (m_lFilterTo > 0 && m_lFilterFrom > 0 && m_lFilterTo > m_lFilterFrom)
        clause.Add("XUSession.created_time BETWEEN {} AND {}", m_lFilterFrom, m_lFilterTo);
    if (m_FilterEmergency != FltEither)
        clause.Add("XUSession.is_emergency_mode={}", m_FilterEmergency == FltOnlyEnabled);
    const std::string initial = kInitialLetter;
    if (m_FilterInitial == FltOnlyEnabled)
        clause.AddRaw("(" + initial + " < 'A' OR " + initial + " > 'Z')");
    else if (m_FilterInitial == FltOnlyDisabled)
        clause.AddRaw("(" + initial + " >= 'A' AND " + initial + " <= 'Z')");
    AddIds(clause, "XUSession.activation_id", m_strFilterActivationIDs);
    text.reserve(2048);
    text += clause.Text();
}

std::string VKXmppGWUserSessionDB::SortClause() const
{
    const std::size_t field = m_SortField < 0 || m_SortField > SortJid ? 0 : static_cast<std::size_t>(m_SortField);
    return std::string("ORDER BY ") + kSortTerms[field] + (m_bSortAscending ? " ASC" : " DESC");
}

bool VKXmppGWUserSessionDB::GetForView(std::vector<VKXmppGWUserSession>* sessions)
{
    EmptyXmppGWUserSessionList(sessions);
    std::string filter;
    SetupFilterClause(filter);
    std::string page;
    if (m_iPageSize > 0)
        page =
            " LIMIT " + std::to_string(m_iPageSize) + " OFFSET " + std::to_string((m_iPageNumber - 1L) * m_iPageSize);
    const std::string from = " FROM xmpp_user_sessions AS XUSession " + filter;
    VKSQLite3ResultSet rows;
    VKSQLite3ResultSet count;
    if (!SelectTwo("SELECT DISTINCT XUSession.*" + from + " " + SortClause() + page + ";", rows,
                   "SELECT COUNT(DISTINCT XUSession.id)" + from + ";", count))
        return false;
    FillList(rows, sessions);
    m_iTotalRecords = count[0][0].GetValueInt();
    if (m_iPageSize > 0)
        m_iPageCount = m_iTotalRecords / m_iPageSize + (m_iTotalRecords % m_iPageSize != 0 ? 1 : 0);
    return true;
}

void VKXmppGWUserSessionDB::SetSort(SortFld field, bool ascending)
{
    m_SortField = field;
    m_bSortAscending = ascending;
}

void VKXmppGWUserSessionDB::SetFilter(const std::string& userName, const std::string& type,
                                      const std::string& assignedUserName, const std::string& ipAddress,
                                      const std::string& platform, const std::string& clientName,
                                      const std::string& jid, long from, long to, FltEnabled emergency,
                                      FltEnabled initial)
{
    m_strFilterUserName = userName;
    m_FilterType = GetUserType(type);
    m_strFilterAssignedUserName = assignedUserName;
    m_strFilterIpAddress = ipAddress;
    m_strFilterPlatform = platform;
    m_strFilterClientName = clientName;
    m_strFilterJid = jid;
    m_lFilterFrom = from;
    m_lFilterTo = to;
    m_FilterEmergency = emergency;
    m_FilterInitial = initial;
}

void VKXmppGWUserSessionDB::SetFilter(VK_USER_GROUP* userGroup, bool flag, DeptPerm permission)
{
    m_pUserGroup = userGroup;
    m_bUserGroupFlag = flag;
    m_DeptPerm = permission;
}

void VKXmppGWUserSessionDB::SetFilter(int pageSize, int pageNumber)
{
    m_iPageSize = pageSize;
    m_iPageNumber = pageNumber;
}

void VKXmppGWUserSessionDB::SetFilterActivationIDs(const std::string& ids) { m_strFilterActivationIDs = ids; }
void VKXmppGWUserSessionDB::SetFilterUserIDs(const std::string& ids) { m_strFilterUserIDs = ids; }
int VKXmppGWUserSessionDB::GetPageCount() { return m_iPageCount; }
int VKXmppGWUserSessionDB::GetTotalRecords() { return m_iTotalRecords; }

/// Empty and "*" both mean no filter; sort and page stay.
void VKXmppGWUserSessionDB::ClearFilter()
{
    SetFilter("", "", "", "", "", "", "", 0, 0, FltEither, FltEither);
    SetFilter(nullptr, false, DeptPerm{});
    m_strFilterUnused.clear();
    m_strFilterActivationIDs.clear();
    m_strFilterUserIDs.clear();
}
