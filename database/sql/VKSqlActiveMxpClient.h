#pragma once

#include <memory>

#include "VKDBiActiveMxpClient.h"
#include "VKSqlPage.h"

namespace vk {

/// The enrolled clients on any SQL backend. A backend's class derives from it, opens its connection and hands it over.
class SqlActiveMxpClient : public VKDBiActiveMxpClient
{
public:
    bool Add(VKActiveMxpClientInfo* client) override;
    bool Modify(VKActiveMxpClientInfo* client) override;
    bool Delete(unsigned long id) override;
    bool Get(std::vector<VKActiveMxpClientInfo>* clients) override;
    bool GetForView(std::vector<VKActiveMxpClientView>* clients) override;
    bool GetByID(unsigned long id, VKActiveMxpClientInfo* client) override;
    bool GetByName(const std::string& clientName, VKActiveMxpClientInfo* client) override;
    bool GetByActivationKey(const std::string& activationKey, VKActiveMxpClientInfo* client) override;
    long GetTotalRecordCount(VKActivationMode mode) override;
    bool UpdateAuthorization(unsigned long id, bool authorized) override;
    bool UpdateActivationMode(unsigned long id, VKActivationMode mode) override;

    void SetSort(bool ascending) override { m_bSortAscending = ascending; }
    void SetFilter(const std::string& clientName, long from, long to) override;
    void SetFilter(int pageSize, int pageNumber) override;
    int GetPageCount() override { return m_page.count; }
    long GetTotalRecords() override { return m_page.total; }
    void ClearFilter() override;
    void ClearSort() override { SetSort(true); }

    /// Stores clients that come from another backend, each with the id it has; all or none.
    bool ConvertRecords(const std::vector<VKActiveMxpClientInfo>& clients);

protected:
    static constexpr std::size_t kStatementLimit = 4095;

    void UseStore(std::unique_ptr<SqlStore> store) { m_store = std::move(store); }

private:
    bool ReadOne(VKActiveMxpClientInfo* client, const SqlRaw& condition);
    std::string ViewFilter() const;
    template <class Value> bool Change(const char* column, unsigned long id, Value value);

    std::unique_ptr<SqlStore> m_store;
    bool m_bSortAscending = true;
    std::string m_strFilterClientName;
    long m_lFilterFrom = 0;
    long m_lFilterTo = 0;
    SqlPage m_page;
};

} // namespace vk
