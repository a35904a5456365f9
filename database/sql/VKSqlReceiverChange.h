#pragma once

#include <initializer_list>
#include <string>

#include "VKReceiver.h"
#include "VKSqlReceiverFiles.h"
#include "VKSqlReceiverHistory.h"

namespace vk {

/// What changes receivers, each operation in one transaction: its row, its guest departments, its history.
class SqlReceiverChange
{
public:
    SqlReceiverChange(SqlStore& store, SqlReceiverFiles& files, SqlReceiverHistory& history)
        : m_store(store), m_files(files), m_history(history)
    {
    }

    void Add(VK_RECEIVER& receiver);
    /// All or none.
    void AddAll(VK_RECEIVER_LIST& list);
    bool Modify(VK_RECEIVER& receiver, unsigned long oldDepartmentId, const VK_DISABLE_HISTORY* update,
                const VK_DISABLE_HISTORY* add, bool keepHistory);
    bool ModifyDepartment(const VK_RECEIVER& receiver, unsigned long oldDepartmentId, const VK_DISABLE_HISTORY* update,
                          const VK_DISABLE_HISTORY* add, bool keepHistory);
    bool Delete(unsigned long id);
    bool ChangeStatus(const VK_RECEIVER& receiver, const VK_DISABLE_HISTORY* update, const VK_DISABLE_HISTORY* add,
                      bool keepHistory);
    /// Moves the PINs on carriers of these protocols from one domain to another; gives back how many.
    long MovePins(std::initializer_list<int> protocols, const std::string& oldName, const std::string& newName);
    bool SetSecure(unsigned long receiverId, bool secure);
    /// Stores the given advanced messaging data in misc_settings, as they are in the store at that moment.
    bool SaveAdvMessagingData(VK_RECEIVER& receiver);
    bool AddGuestDepartment(unsigned long receiverId, unsigned long departmentId);
    bool DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId);

private:
    void AddRows(VK_RECEIVER* receivers, int count);
    void AddRow(VK_RECEIVER& receiver);
    bool IsThere(const TableName& table, unsigned long id);
    void InsertDeptRights(const VK_RECEIVER& receiver);
    void DeleteDeptRights(unsigned long receiverId);
    void FollowStatus(const VK_RECEIVER& receiver, int oldStatus);

    SqlStore& m_store;
    SqlReceiverFiles& m_files;
    SqlReceiverHistory& m_history;
};

} // namespace vk
