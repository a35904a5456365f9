#pragma once

#include <memory>
#include <string>

#include "VKDBiDepartment.h"

namespace vk {

class SqlStore;

/// The departments on any SQL backend. A backend's class derives from it, opens its connection and hands it over.
class SqlDepartment : public VKDBiDepartment
{
public:
    SqlDepartment();
    ~SqlDepartment() override;

    bool Add(VK_DEPARTMENT* department) override;
    bool Modify(VK_DEPARTMENT* department) override;
    bool IncrementReceiverCount(unsigned long id) override;
    bool DecrementReceiverCount(unsigned long id) override;
    bool Delete(unsigned long id) override;
    bool Get(VK_DEPARTMENT_LIST* list) override;
    bool GetByID(VK_DEPARTMENT* department, unsigned long id) override;
    bool GetByName(VK_DEPARTMENT* department, const std::string& name) override;
    long GetTotalRecordCount() override;
    bool IsUniqueName(const std::string& name, unsigned long excludeId) override;
    void SetFilter(const std::string& name) override;
    void SetFilter(int pageSize, int pageNumber) override;
    int GetPageCount() override { return m_iPageCount; }
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override;
    bool GetIDByName(unsigned long& id, const std::string& name) override;
    void ClearFilter() override;

    /// Stores departments that come from another backend, each with the id it has; all or none.
    bool ConvertRecords(VK_DEPARTMENT_LIST* list);

protected:
    static constexpr std::size_t kStatementLimit = 511;

    void UseStore(std::unique_ptr<SqlStore> store);

private:
    std::string FilterClause() const;
    bool ReadOne(VK_DEPARTMENT* department, const std::string& condition);
    void ExplainUntouched(unsigned long id, bool incremented);

    std::unique_ptr<SqlStore> m_store;
    std::string m_strNameFilter;
    int m_iPageSize = 0;
    int m_iPageNumber = 0;
    int m_iPageCount = 0;
};

} // namespace vk
