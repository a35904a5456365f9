#pragma once

#include <memory>

#include "VKDBiReceiver.h"

namespace vk {

/// Passes every operation on to the layer below; a layer that adds something to some operations derives from it.
class ReceiverForwarding : public VKDBiReceiver
{
public:
    /// Takes the implementation over.
    explicit ReceiverForwarding(std::unique_ptr<VKDBiReceiver> implementation)
        : m_pImplementation(std::move(implementation))
    {
    }

    bool ModifyDepartment(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool hashPassword,
                          VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory) override
    {
        return m_pImplementation->ModifyDepartment(receiver, oldDepartmentId, hashPassword, update, add, keepHistory);
    }
    bool Delete(unsigned long id, unsigned long departmentId) override
    {
        return m_pImplementation->Delete(id, departmentId);
    }
    bool ChangeStatus(VK_RECEIVER* receiver, VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add,
                      bool keepHistory) override
    {
        return m_pImplementation->ChangeStatus(receiver, update, add, keepHistory);
    }
    bool UpdateMXPServiceName(const std::string& oldName, const std::string& newName) override
    {
        return m_pImplementation->UpdateMXPServiceName(oldName, newName);
    }
    bool UpdateXMPPServiceName(const std::string& oldName, const std::string& newName) override
    {
        return m_pImplementation->UpdateXMPPServiceName(oldName, newName);
    }
    bool UpdateReceiverSecureStatus(unsigned long receiverId, bool secure) override
    {
        return m_pImplementation->UpdateReceiverSecureStatus(receiverId, secure);
    }
    bool SaveAdvMessagingData(VK_RECEIVER* receiver) override
    {
        return m_pImplementation->SaveAdvMessagingData(receiver);
    }
    bool AddGuestDepartment(unsigned long receiverId, unsigned long departmentId) override
    {
        return m_pImplementation->AddGuestDepartment(receiverId, departmentId);
    }
    bool DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId) override
    {
        return m_pImplementation->DeleteGuestDepartment(receiverId, departmentId);
    }
    bool Get(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings) override
    {
        return m_pImplementation->Get(list, withDepartments, withSchedules, withMiscSettings);
    }
    bool GetByIDs(VK_RECEIVER_LIST* list, const std::vector<unsigned long>& ids) override
    {
        return m_pImplementation->GetByIDs(list, ids);
    }
    bool GetForSend(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings,
                    bool onlyEnabled) override
    {
        return m_pImplementation->GetForSend(list, withDepartments, withSchedules, withMiscSettings, onlyEnabled);
    }
    bool GetForMemberDetails(VK_RECEIVER_LIST* list) override { return m_pImplementation->GetForMemberDetails(list); }
    bool GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules) override
    {
        return m_pImplementation->GetForScheduler(list, withSchedules);
    }
    bool GetForFavorites(VK_RECEIVER_LIST* list) override { return m_pImplementation->GetForFavorites(list); }
    bool GetByID(VK_RECEIVER* receiver, unsigned long id) override { return m_pImplementation->GetByID(receiver, id); }
    bool GetByName(VK_RECEIVER* receiver, const std::string& name) override
    {
        return m_pImplementation->GetByName(receiver, name);
    }
    bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) override
    {
        return m_pImplementation->GetByPin(receiver, pin);
    }
    bool GetByNameForScheduler(VK_RECEIVER* receiver, const std::string& name) override
    {
        return m_pImplementation->GetByNameForScheduler(receiver, name);
    }
    bool GetNamesList(std::vector<VK_NAME_RECORD>& names) override { return m_pImplementation->GetNamesList(names); }
    bool GetOnlyEnabled(VK_RECEIVER_LIST* list) override { return m_pImplementation->GetOnlyEnabled(list); }
    bool GetDepartmentList(std::map<unsigned long, unsigned long>& departments) override
    {
        return m_pImplementation->GetDepartmentList(departments);
    }
    bool GetReceiverProperties(std::vector<VKReceProperty>& properties) override
    {
        return m_pImplementation->GetReceiverProperties(properties);
    }
    bool Get(VK_RECEIVER_VIEW_LIST* list) override { return m_pImplementation->Get(list); }
    bool GetDisableHistory(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to) override
    {
        return m_pImplementation->GetDisableHistory(list, receiverId, from, to);
    }
    bool GetAdvMessagingData(VK_RECEIVER* receiver, unsigned long id) override
    {
        return m_pImplementation->GetAdvMessagingData(receiver, id);
    }
    long GetTotalRecordCount() override { return m_pImplementation->GetTotalRecordCount(); }
    bool GetIDByName(unsigned long& id, const std::string& name) override
    {
        return m_pImplementation->GetIDByName(id, name);
    }
    bool IsUniqueName(const std::string& name, unsigned long excludeId) override
    {
        return m_pImplementation->IsUniqueName(name, excludeId);
    }
    bool IsUniqueScheduleName(const std::string& name, unsigned long receiverId, unsigned long excludeId) override
    {
        return m_pImplementation->IsUniqueScheduleName(name, receiverId, excludeId);
    }
    bool IsFaxReceiverPresent() override { return m_pImplementation->IsFaxReceiverPresent(); }
    bool IsVoiceReceiverPresent() override { return m_pImplementation->IsVoiceReceiverPresent(); }
    bool IsTimeZoneBeingUsed(unsigned long timeZoneId) override
    {
        return m_pImplementation->IsTimeZoneBeingUsed(timeZoneId);
    }
    bool IsDepartmentRecvLimitReached(unsigned long departmentId) override
    {
        return m_pImplementation->IsDepartmentRecvLimitReached(departmentId);
    }
    bool AddSchedule(VK_ONDUTY_SCHEDULE* schedule) override { return m_pImplementation->AddSchedule(schedule); }
    bool ModifySchedule(VK_ONDUTY_SCHEDULE* schedule) override { return m_pImplementation->ModifySchedule(schedule); }
    bool DeleteSchedule(unsigned long id) override { return m_pImplementation->DeleteSchedule(id); }
    bool DeleteSchedule(unsigned long ownerId, unsigned long memberId, int memberType) override
    {
        return m_pImplementation->DeleteSchedule(ownerId, memberId, memberType);
    }
    bool GetSchedule(VK_ONDUTY_SCHEDULE* schedule, unsigned long id) override
    {
        return m_pImplementation->GetSchedule(schedule, id);
    }
    bool AddAttribute(VK_ATTRIBUTE* attribute) override { return m_pImplementation->AddAttribute(attribute); }
    bool ModifyAttribute(VK_ATTRIBUTE* attribute) override { return m_pImplementation->ModifyAttribute(attribute); }
    bool DeleteAttributeByID(unsigned long id) override { return m_pImplementation->DeleteAttributeByID(id); }
    bool GetAllAttributes(VK_ATTRIBUTE_LIST* list) override { return m_pImplementation->GetAllAttributes(list); }
    bool AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE* attribute) override
    {
        return m_pImplementation->AddReceiverAttribute(attribute);
    }
    bool DeleteReceiverAttributeByRcvID(unsigned long receiverId) override
    {
        return m_pImplementation->DeleteReceiverAttributeByRcvID(receiverId);
    }
    bool DeleteReceiverAttributeByAttribID(unsigned long attributeId) override
    {
        return m_pImplementation->DeleteReceiverAttributeByAttribID(attributeId);
    }
    bool GetReceiverAttributeByRcvID(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId) override
    {
        return m_pImplementation->GetReceiverAttributeByRcvID(list, receiverId);
    }
    bool IsUniqueAttributeName(const std::string& name, unsigned long excludeId) override
    {
        return m_pImplementation->IsUniqueAttributeName(name, excludeId);
    }
    bool IsAttribBeingUsed(unsigned long attributeId) override
    {
        return m_pImplementation->IsAttribBeingUsed(attributeId);
    }
    bool GetReceiversAttributesList(VK_RECEIVER_ATTRIBUTE_LIST* list) override
    {
        return m_pImplementation->GetReceiversAttributesList(list);
    }
    long GetAssociatedRecvCountByAttribute(unsigned long attributeId) override
    {
        return m_pImplementation->GetAssociatedRecvCountByAttribute(attributeId);
    }
    bool GetAttributesNameList(std::vector<VK_NAME_RECORD>& names) override
    {
        return m_pImplementation->GetAttributesNameList(names);
    }
    void SetFilter(const std::string& name, const std::string& pin, unsigned long carrierId, int protocolId,
                   unsigned long departmentId, const std::string& coverName, FltNameLetter firstLetter) override
    {
        m_pImplementation->SetFilter(name, pin, carrierId, protocolId, departmentId, coverName, firstLetter);
    }
    void SetFilter(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging) override
    {
        m_pImplementation->SetFilter(available, voice, advancedMessaging);
    }
    void SetFilter(VK_USER_GROUP* group, bool fullRights, DeptPerm right) override
    {
        m_pImplementation->SetFilter(group, fullRights, right);
    }
    void SetFilter(VK_FAVORITE_LIST* favorites, unsigned long userId) override
    {
        m_pImplementation->SetFilter(favorites, userId);
    }
    void SetFilter(VK_RECIP_PERM_LIST* permissions, unsigned long userId) override
    {
        m_pImplementation->SetFilter(permissions, userId);
    }
    void SetFilterOwner(unsigned long ownerId) override { m_pImplementation->SetFilterOwner(ownerId); }
    void SetFilterReceiverIDs(const std::vector<unsigned long>& ids) override
    {
        m_pImplementation->SetFilterReceiverIDs(ids);
    }
    void SetFilterAttribute(const std::map<unsigned long, std::string>& values) override
    {
        m_pImplementation->SetFilterAttribute(values);
    }
    void SetFilterAccount(const std::string& accountName, const std::string& password) override
    {
        m_pImplementation->SetFilterAccount(accountName, password);
    }
    bool FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row) override
    {
        return m_pImplementation->FillStructFromResultSet(receiver, result, row);
    }
    bool AddImpl(VK_RECEIVER* receiver) override { return m_pImplementation->AddImpl(receiver); }
    bool ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                    VK_DISABLE_HISTORY* add, bool keepHistory) override
    {
        return m_pImplementation->ModifyImpl(receiver, oldDepartmentId, update, add, keepHistory);
    }
    bool ReplaceReceiverAttributes(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST* values) override
    {
        return m_pImplementation->ReplaceReceiverAttributes(receiverId, values);
    }
    bool AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused) override
    {
        return m_pImplementation->AddAll(list, checkOnly, refused);
    }
    bool IsDepartmentBeingUsed(unsigned long departmentId) override
    {
        return m_pImplementation->IsDepartmentBeingUsed(departmentId);
    }
    bool IsCarrierBeingUsed(unsigned long carrierId) override
    {
        return m_pImplementation->IsCarrierBeingUsed(carrierId);
    }
    bool GetCarrier(VK_CARRIER* carrier, unsigned long id) override
    {
        return m_pImplementation->GetCarrier(carrier, id);
    }
    bool IsGroupName(const std::string& name) override { return m_pImplementation->IsGroupName(name); }
    bool GetCoveredBy(VK_RECEIVER_LIST* list, unsigned long coverId) override
    {
        return m_pImplementation->GetCoveredBy(list, coverId);
    }
    bool GetViewsByPin(VK_RECEIVER_VIEW_LIST* list, const std::string& pin) override
    {
        return m_pImplementation->GetViewsByPin(list, pin);
    }
    void ClearFilter() override { m_pImplementation->ClearFilter(); }
    void ClearSort() override { m_pImplementation->ClearSort(); }

protected:
    const std::unique_ptr<VKDBiReceiver> m_pImplementation;
};

} // namespace vk
