#pragma once

#include <memory>
#include <string>

#include "VKDBiReceiver.h"

namespace vk {

class SqlStore;

/// The receivers on any SQL backend. A backend's class derives from it, opens its connection and hands it over.
class SqlReceiver : public VKDBiReceiver
{
public:
    SqlReceiver();
    ~SqlReceiver() override;

    bool Get(VK_RECEIVER_LIST* list) override;
    bool GetByID(VK_RECEIVER* receiver, unsigned long id) override;
    bool GetByName(VK_RECEIVER* receiver, const std::string& name) override;
    bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) override;
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override;
    long GetTotalRecordCount() override;
    bool GetIDByName(unsigned long& id, const std::string& name) override;
    bool IsUniqueName(const std::string& name, unsigned long excludeId) override;
    bool IsDepartmentRecvLimitReached(unsigned long departmentId) override;
    bool IsDepartmentBeingUsed(unsigned long departmentId) override;
    bool AddImpl(VK_RECEIVER* receiver) override;

protected:
    static constexpr std::size_t kStatementLimit = 2047;

    void UseStore(std::unique_ptr<SqlStore> store);

private:
    bool ReadOne(VK_RECEIVER* receiver, const std::string& condition);
    void ReadDeptRights(VK_RECEIVER& receiver);
    unsigned long InsertWithParts(const VK_RECEIVER& receiver);
    void InsertDeptRights(const VK_RECEIVER& receiver, unsigned long id);
    void AddDisableHistory(const VK_RECEIVER& receiver, unsigned long id);
    bool IsLimitReached(unsigned long departmentId);
    void MakeDepartments();

    std::unique_ptr<SqlStore> m_store;
};

} // namespace vk
