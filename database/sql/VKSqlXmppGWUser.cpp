#include "VKSqlXmppGWUser.h"

#include <ctime>

#include "VKSha256.h"
#include "VKSqlClause.h"
#include "VKTableRow.h"
#include "VKnetwork.h"

namespace vk {

namespace {

constexpr const TableName& kName = kXmppGWUserTable.name;
constexpr SqlFile kUsers = {"dbUsers", "users.sdb"};
constexpr TableName kUser = {"dbUsers.user", "VK_USER"}; ///< as the view reaches it

/// What a view is sorted by. A relational server sorts the columns of the result, which have no table.
constexpr TableName kSortTerms[] = {{"xmpp_user.type", "type"},
                                    {"UPPER(xmpp_user.user_id)", "UPPER(user_id)"},
                                    {"UPPER(xmpp_user.name)", "UPPER(name)"},
                                    {"xmpp_user.enabled", "enabled"},
                                    {"UPPER(dbUsers.user.name)", "UPPER(VKUserName)"}};

/// An account that the system makes for itself.
struct DefaultUser
{
    const char* name;
    bool hasResource; ///< its own name
    bool local;       ///< it works here: has this machine's address and the server's user
    bool multiLogin;
};

constexpr DefaultUser kDefaultUsers[] = {
    {"_vk_agent_", true, true, false}, {"_vk_emerg_user_", false, false, true}, {"_vk_msgr_user_", false, true, true}};

VKXmppGWUser MakeDefaultUser(const DefaultUser& account, const std::string& localIp)
{
    VKXmppGWUser user;
    user.type = VKXmppGWUserXmppGWUser;
    user.user_id = user.name = account.name;
    user.user_password = Sha256Text(account.name);
    user.resource = account.hasResource ? account.name : "";
    user.ip = account.local ? localIp : "";
    user.creation_time = static_cast<long>(std::time(nullptr));
    user.enabled = user.enable_readonly = user.enable_hidden = true;
    user.vk_user_id = account.local ? VKDBiXmppGWUser::s_ulDefaultVKUserID.load() : 0;
    user.enable_multi_login = account.multiLogin;
    return user;
}

/// Runs a body in a transaction of its own unless there is one already.
template <class Body> auto Joining(SqlStore& store, bool inTransaction, TransactionLock lock, Body&& body)
{
    if (inTransaction)
        return body();
    return lock == TransactionLock::Shared ? store.Shared(body) : store.Exclusive(body);
}

} // namespace

bool SqlXmppGWUser::Add(VKXmppGWUser* user, bool inTransaction)
{
    RequireWidths(kXmppGWUserTable.fields, *user);
    user->id = Joining(*m_store, inTransaction, TransactionLock::Exclusive,
                       [&] { return m_store->InsertRow(kXmppGWUserTable, *user); });
    return true;
}

bool SqlXmppGWUser::Modify(VKXmppGWUser* user)
{
    RequireWidths(kXmppGWUserTable.fields, *user);
    return m_store->Exclusive([&] { return m_store->UpdateRow(kXmppGWUserTable, *user); }) > 0;
}

bool SqlXmppGWUser::Delete(unsigned long id)
{
    return m_store->Exclusive([&] { return m_store->Update("DELETE FROM {} WHERE id={}", kName, id); }) > 0;
}

bool SqlXmppGWUser::UpdateStatus(unsigned long id, int enabled)
{
    return m_store->Exclusive(
               [&] { return m_store->Update("UPDATE {} set enabled={} WHERE id={}", kName, enabled != 0, id); }) > 0;
}

bool SqlXmppGWUser::Get(std::vector<VKXmppGWUser>* users)
{
    users->clear();
    const auto rows = m_store->Shared([&] { return m_store->Select("SELECT * FROM {} ORDER BY lower(name)", kName); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        ReadRow(kXmppGWUserTable.fields, (*rows)[row], users->emplace_back());
    return true;
}

bool SqlXmppGWUser::Get(std::vector<VKXmppGWUserView>* users, bool visibleOnly)
{
    users->clear();
    const std::string tables = m_store
                                   ->Part("FROM {} LEFT OUTER JOIN {} ON {}.vk_user_id={}.id {}", kName, kUser, kName,
                                          kUser, SqlRaw{ViewFilter(visibleOnly)})
                                   .text;
    const std::string query =
        m_store
            ->Part("SELECT DISTINCT {}.id, {}.type, {}.user_id, {}.name, {}.enabled, {}.vk_user_id, "
                   "{}.enable_readonly, {}.enable_hidden, {}.name AS VKUserName {}",
                   kName, kName, kName, kName, kName, kName, kName, kName, kUser, SqlRaw{tables})
            .text;
    const std::string count = m_store->Part("SELECT COUNT(DISTINCT {}.id) {}", kName, SqlRaw{tables}).text;
    const SqlAttachment attached(m_store->Connection(), kUsers);
    const auto rows = m_store->Shared([&] { return m_page.Read(*m_store, query, Order(), count); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        ReadRow(kXmppGWUserViewFields, (*rows)[row], users->emplace_back());
    return true;
}

std::string SqlXmppGWUser::ViewFilter(bool visibleOnly) const
{
    SqlClause clause(m_store->Dialect());
    const std::string table = m_store->Dialect().TableOf(kName) + ".";
    clause.AddPrefix(table + "name", m_strFilterName);
    if (m_ulFilterVKUser != 0)
        clause.Add("{}vk_user_id={}", SqlRaw{table}, m_ulFilterVKUser);
    if (visibleOnly)
        clause.AddRaw(table + "enable_hidden=0");
    return clause.Text();
}

std::string SqlXmppGWUser::Order() const
{
    const std::size_t field = m_SortField < 0 || m_SortField > SortVKUserName ? SortName : m_SortField;
    return m_store->Dialect().TableOf(kSortTerms[field]) + (m_bSortAscending ? " ASC" : " DESC");
}

bool SqlXmppGWUser::GetByID(unsigned long id, VKXmppGWUser* user, bool inTransaction)
{
    return ReadOne(user, m_store->Part("id ={}", id), inTransaction);
}

bool SqlXmppGWUser::GetByName(VKXmppGWUser* user, const std::string& userId, bool inTransaction)
{
    return ReadOne(user, m_store->Part("UPPER(user_id) = UPPER({})", userId), inTransaction);
}

bool SqlXmppGWUser::ReadOne(VKXmppGWUser* user, const SqlRaw& condition, bool inTransaction)
{
    *user = VKXmppGWUser{};
    const auto rows = Joining(*m_store, inTransaction, TransactionLock::Shared,
                              [&] { return m_store->Select("SELECT * FROM {} WHERE {}", kName, condition); });
    if (rows->GetReturnedRowsCount() < 1)
        return false;
    ReadRow(kXmppGWUserTable.fields, (*rows)[0], *user);
    return true;
}

unsigned long SqlXmppGWUser::GetIDByName(const std::string& name)
{
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT id FROM {} WHERE UPPER(name) = UPPER({})", kName, name); });
    return (*rows)[0][0].GetValueULong();
}

bool SqlXmppGWUser::GetAllNameList(std::map<unsigned long, std::string>& names)
{
    names.clear();
    const auto rows =
        m_store->Shared([&] { return m_store->Select("SELECT id,name FROM {} ORDER BY lower(name)", kName); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names[(*rows)[row][0].GetValueULong()] = (*rows)[row][1].GetValueString();
    return true;
}

long SqlXmppGWUser::GetTotalRecordCount(bool visibleOnly)
{
    const SqlRaw visible{visibleOnly ? "Where enable_hidden=0" : ""};
    return m_store->Shared([&] { return m_store->SelectNumber("SELECT count(*) FROM {} {}", kName, visible); });
}

bool SqlXmppGWUser::IsXmppGWUserPresent(unsigned long id)
{
    VKXmppGWUser user;
    return GetByID(id, &user, false);
}

bool SqlXmppGWUser::IsUniqueName(const std::string& userId, unsigned long* holder)
{
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT id FROM {} WHERE lower(user_id) = lower({})", kName, userId); });
    if (rows->GetReturnedRowsCount() < 1)
        return true;
    if (holder != nullptr)
        *holder = (*rows)[0][0].GetValueULong();
    return false;
}

/// Looks first, so that a usual start asks for no address and writes nothing. Each account is looked for once more
/// where it is added: another process may be starting as well.
bool SqlXmppGWUser::PopulateDefaultUsers()
{
    VKXmppGWUser found;
    std::vector<const DefaultUser*> missing;
    m_store->Shared([&] {
        for (const DefaultUser& account : kDefaultUsers)
            if (!GetByName(&found, account.name, true))
                missing.push_back(&account);
    });
    const std::string localIp = missing.empty() ? "" : VKutilGetLocalHostIp();
    for (const DefaultUser* account : missing) {
        VKXmppGWUser user = MakeDefaultUser(*account, localIp);
        SqlStore::Renaming("ExecuteInsertQuery returned false.", [&] {
            m_store->Exclusive([&] {
                m_store->HoldTable(kXmppGWUserTable.name); // others may be starting at the same time
                return GetByName(&found, account->name, true) || Add(&user, true);
            });
        });
    }
    return true;
}

void SqlXmppGWUser::SetSort(SortFld field, bool ascending)
{
    m_SortField = field;
    m_bSortAscending = ascending;
}

void SqlXmppGWUser::SetFilter(const std::string& name) { m_strFilterName = name; }

void SqlXmppGWUser::SetFilter(int pageSize, int pageNumber)
{
    m_page.size = pageSize;
    m_page.number = pageNumber;
}

void SqlXmppGWUser::SetFilterAssignedVKUser(unsigned long userId) { m_ulFilterVKUser = userId; }

void SqlXmppGWUser::ClearFilter()
{
    m_strFilterName.clear();
    m_ulFilterVKUser = 0;
    m_page = {};
}

bool SqlXmppGWUser::ConvertRecords(const std::vector<VKXmppGWUser>& users)
{
    m_store->Exclusive([&] {
        m_store->InsertRowsWithIds(kXmppGWUserTable, users.data(), static_cast<int>(users.size()), "gateway user",
                                   "Execution of insert query failed.");
    });
    return true;
}

} // namespace vk
