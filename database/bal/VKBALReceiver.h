#pragma once

#include <memory>

#include "VKDBiReceiver.h"

/// The receivers behind their rules: forwards every operation to the layer below, and refuses what breaks a rule.
class VKBALReceiver : public VKDBiReceiver
{
public:
    /// Takes the implementation over.
    explicit VKBALReceiver(std::unique_ptr<VKDBiReceiver> implementation);
    ~VKBALReceiver() override;

    bool Get(VK_RECEIVER_LIST* list) override;
    bool GetByID(VK_RECEIVER* receiver, unsigned long id) override;
    bool GetByName(VK_RECEIVER* receiver, const std::string& name) override;
    bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) override;
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override;
    long GetTotalRecordCount() override;
    bool GetIDByName(unsigned long& id, const std::string& name) override;
    bool IsUniqueName(const std::string& name, unsigned long excludeId) override;
    bool IsDepartmentRecvLimitReached(unsigned long departmentId) override;
    bool FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row) override;
    bool IsDepartmentBeingUsed(unsigned long departmentId) override;
    void ClearFilter() override;
    void ClearSort() override;
    bool AddImpl(VK_RECEIVER* receiver) override;

private:
    /// Throws VKBALexception with all rules that the record breaks.
    void CheckBALConstraints(const VK_RECEIVER& receiver);

    std::unique_ptr<VKDBiReceiver> m_pImplementation;
};
