#pragma once

#include <memory>

#include "VKDBiXmppGWUser.h"
#include "VKSqlPage.h"

namespace vk {

class SqlStore;

/// The gateway's accounts on any SQL backend. A backend's class derives from it, opens its connection and hands it
/// over.
class SqlXmppGWUser : public VKDBiXmppGWUser
{
public:
    bool Add(VKXmppGWUser* user, bool inTransaction) override;
    bool Modify(VKXmppGWUser* user) override;
    bool Delete(unsigned long id) override;
    bool UpdateStatus(unsigned long id, int enabled) override;
    bool Get(std::vector<VKXmppGWUser>* users) override;
    bool Get(std::vector<VKXmppGWUserView>* users, bool visibleOnly) override;
    bool GetByID(unsigned long id, VKXmppGWUser* user, bool inTransaction) override;
    bool GetByName(VKXmppGWUser* user, const std::string& userId, bool inTransaction) override;
    unsigned long GetIDByName(const std::string& name) override;
    bool GetAllNameList(std::map<unsigned long, std::string>& names) override;
    long GetTotalRecordCount(bool visibleOnly) override;
    bool IsXmppGWUserPresent(unsigned long id) override;
    bool IsUniqueName(const std::string& userId, unsigned long* holder) override;
    bool PopulateDefaultUsers() override;

    void SetSort(SortFld field, bool ascending) override;
    void SetFilter(const std::string& name) override;
    void SetFilter(int pageSize, int pageNumber) override;
    void SetFilterAssignedVKUser(unsigned long userId) override;
    int GetPageCount() override { return m_page.count; }
    long GetTotalRecords() override { return m_page.total; }
    void ClearFilter() override;
    void ClearSort() override { SetSort(SortName, true); }

    /// Stores accounts that come from another backend, each with the id it has; all or none.
    bool ConvertRecords(const std::vector<VKXmppGWUser>& users);

protected:
    static constexpr std::size_t kStatementLimit = 65535;

    void UseStore(std::unique_ptr<SqlStore> store) { m_store = std::move(store); }

private:
    bool ReadOne(VKXmppGWUser* user, const SqlRaw& condition, bool inTransaction);
    std::string Order() const;
    std::string ViewFilter(bool visibleOnly) const;

    std::unique_ptr<SqlStore> m_store;
    SortFld m_SortField = SortName;
    bool m_bSortAscending = true;
    std::string m_strFilterName;
    unsigned long m_ulFilterVKUser = 0;
    SqlPage m_page;
};

} // namespace vk
