#pragma once

#include <memory>
#include <string>

#include "VKDBiReceiver.h"

namespace vk {

class SqlStore;

/// The receivers on any SQL backend. A backend's class derives from it, opens its connection and hands it over. What
/// the operations do stands in sibling classes, one a concern.
class SqlReceiver : public VKDBiReceiver
{
public:
    SqlReceiver();
    ~SqlReceiver() override;

    bool ModifyDepartment(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool hashPassword,
                          VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory) override;
    bool Delete(unsigned long id, unsigned long departmentId) override;
    bool ChangeStatus(VK_RECEIVER* receiver, VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add,
                      bool keepHistory) override;
    bool UpdateMXPServiceName(const std::string& oldName, const std::string& newName) override;
    bool UpdateXMPPServiceName(const std::string& oldName, const std::string& newName) override;
    bool UpdateReceiverSecureStatus(unsigned long receiverId, bool secure) override;
    bool SaveAdvMessagingData(VK_RECEIVER* receiver) override;
    bool AddGuestDepartment(unsigned long receiverId, unsigned long departmentId) override;
    bool DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId) override;
    bool Get(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings) override;
    bool GetByIDs(VK_RECEIVER_LIST* list, const std::vector<unsigned long>& ids) override;
    bool GetForSend(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings,
                    bool onlyEnabled) override;
    bool GetForMemberDetails(VK_RECEIVER_LIST* list) override;
    bool GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules) override;
    bool GetForFavorites(VK_RECEIVER_LIST* list) override;
    bool GetByID(VK_RECEIVER* receiver, unsigned long id) override;
    bool GetByName(VK_RECEIVER* receiver, const std::string& name) override;
    bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) override;
    bool GetByNameForScheduler(VK_RECEIVER* receiver, const std::string& name) override;
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override;
    bool GetOnlyEnabled(VK_RECEIVER_LIST* list) override;
    bool GetDepartmentList(std::map<unsigned long, unsigned long>& departments) override;
    bool GetReceiverProperties(std::vector<VKReceProperty>& properties) override;
    bool Get(VK_RECEIVER_VIEW_LIST* list) override;
    bool GetDisableHistory(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to) override;
    bool GetAdvMessagingData(VK_RECEIVER* receiver, unsigned long id) override;
    long GetTotalRecordCount() override;
    bool GetIDByName(unsigned long& id, const std::string& name) override;
    bool IsUniqueName(const std::string& name, unsigned long excludeId) override;
    bool IsUniqueScheduleName(const std::string& name, unsigned long receiverId, unsigned long excludeId) override;
    bool IsFaxReceiverPresent() override;
    bool IsVoiceReceiverPresent() override;
    bool IsTimeZoneBeingUsed(unsigned long timeZoneId) override;
    bool IsDepartmentRecvLimitReached(unsigned long departmentId) override;
    bool AddSchedule(VK_ONDUTY_SCHEDULE* schedule) override;
    bool ModifySchedule(VK_ONDUTY_SCHEDULE* schedule) override;
    bool DeleteSchedule(unsigned long id) override;
    bool DeleteSchedule(unsigned long ownerId, unsigned long memberId, int memberType) override;
    bool GetSchedule(VK_ONDUTY_SCHEDULE* schedule, unsigned long id) override;
    bool AddAttribute(VK_ATTRIBUTE* attribute) override;
    bool ModifyAttribute(VK_ATTRIBUTE* attribute) override;
    bool DeleteAttributeByID(unsigned long id) override;
    bool GetAllAttributes(VK_ATTRIBUTE_LIST* list) override;
    bool AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE* attribute) override;
    bool DeleteReceiverAttributeByRcvID(unsigned long receiverId) override;
    bool DeleteReceiverAttributeByAttribID(unsigned long attributeId) override;
    bool GetReceiverAttributeByRcvID(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId) override;
    bool IsUniqueAttributeName(const std::string& name, unsigned long excludeId) override;
    bool IsAttribBeingUsed(unsigned long attributeId) override;
    bool GetReceiversAttributesList(VK_RECEIVER_ATTRIBUTE_LIST* list) override;
    long GetAssociatedRecvCountByAttribute(unsigned long attributeId) override;
    bool GetAttributesNameList(std::vector<VK_NAME_RECORD>& names) override;
    void SetFilter(const std::string& name, const std::string& pin, unsigned long carrierId, int protocolId,
                   unsigned long departmentId, const std::string& coverName, FltNameLetter firstLetter) override;
    void SetFilter(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging) override;
    void SetFilter(VK_USER_GROUP* group, bool fullRights, DeptPerm right) override;
    void SetFilter(VK_FAVORITE_LIST* favorites, unsigned long userId) override;
    void SetFilter(VK_RECIP_PERM_LIST* permissions, unsigned long userId) override;
    void SetFilterOwner(unsigned long ownerId) override;
    void SetFilterReceiverIDs(const std::vector<unsigned long>& ids) override;
    void SetFilterAttribute(const std::map<unsigned long, std::string>& values) override;
    void SetFilterAccount(const std::string& accountName, const std::string& password) override;
    bool AddImpl(VK_RECEIVER* receiver) override;
    bool ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                    VK_DISABLE_HISTORY* add, bool keepHistory) override;
    bool ReplaceReceiverAttributes(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST* values) override;
    bool AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused) override;
    bool IsDepartmentBeingUsed(unsigned long departmentId) override;
    bool IsCarrierBeingUsed(unsigned long carrierId) override;
    bool GetCarrier(VK_CARRIER* carrier, unsigned long id) override;
    bool IsGroupName(const std::string& name) override;
    bool GetCoveredBy(VK_RECEIVER_LIST* list, unsigned long coverId) override;
    bool GetViewsByPin(VK_RECEIVER_VIEW_LIST* list, const std::string& pin) override;
    void ClearFilter() override;

    /// Stores receivers with their ids, guest departments and schedules as a move from another backend brings them;
    /// all or none.
    bool ConvertRecords(VK_RECEIVER_LIST* list);

protected:
    /// A list may be narrowed to thousands of ids, and a receiver may get long settings after it was added.
    static constexpr std::size_t kStatementLimit = 1000000;

    void UseStore(std::unique_ptr<SqlStore> store);

private:
    struct Parts;

    std::unique_ptr<Parts> m_parts;
};

} // namespace vk
