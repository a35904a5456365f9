#pragma once

#include <memory>

#include "VKDBiDepartment.h"

/// The departments behind their rules: forwards every operation to the layer below, and refuses what breaks a rule.
class VKBALDepartment : public VKDBiDepartment
{
public:
    /// Takes the implementation over.
    explicit VKBALDepartment(std::unique_ptr<VKDBiDepartment> implementation);
    ~VKBALDepartment() override;

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
    int GetPageCount() override;
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override;
    bool GetIDByName(unsigned long& id, const std::string& name) override;
    bool FillStructFromResultSet(VK_DEPARTMENT* department, VKDBiResultSet& result, int row) override;
    void ClearFilter() override;
    void ClearSort() override;

private:
    /// Throws VKBALexception with all rules that the record breaks. Without limits the record's maximum becomes -1.
    void CheckBALConstraints(VK_DEPARTMENT* department);
    void CheckReceiverCount(const VK_DEPARTMENT& department);

    std::unique_ptr<VKDBiDepartment> m_pImplementation;
};
