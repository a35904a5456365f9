#pragma once

#include <atomic>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include "VKDBbaseInterface.h"
#include "VKDBfilter.h"
#include "VKDBiResultSet.h"
#include "VKNameRecord.h"
#include "VKReceiver.h"
#include "VKReceiverView.h"

struct VK_CARRIER;
struct VK_USER_GROUP;
struct VK_FAVORITE_LIST;
struct VK_RECIP_PERM_LIST;

/// A record of a list that breaks rules.
struct VKRefusedRecord
{
    int index = 0; ///< its place in the list
    std::string reasons;
};

/// The receivers, whatever stores them. Operations throw VKDBexception (store, rules) and VKBALexception (the list of
/// broken rules); they return false where an expected condition fails, such as a row that is not there. One object
/// serves one thread. Records and lists that are read are emptied first; what they own is freed with their Empty...
/// function. Names and PINs are compared without regard to case. Times are seconds since the epoch.
class VKDBiReceiver : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend behind its validating layer; the caller owns it. Throws VKDBexception.
    static VKDBiReceiver* CreateInstance(VKDBsystem* system);

    // Change. Add, Modify and ModifyDepartment throw code 100 when the department that a receiver is to come into has as
    // many receivers as it may have.

    /// Stores a new receiver with its guest departments; its id is set in the record. With hashPassword the account's
    /// password is stored as its MD5 digest, and the record keeps the clear one.
    virtual bool Add(VK_RECEIVER* receiver, bool hashPassword);
    /// Stores a changed receiver with its guest departments. `update` and `add` change the disable history as they say
    /// (null for none; an update with id 0 means the receiver's latest row); with neither, the history follows the
    /// status. Without keepHistory it stays as it is.
    virtual bool Modify(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool hashPassword,
                        VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory);
    /// Stores the record's department and guest departments only, and the history that is given.
    virtual bool ModifyDepartment(VK_RECEIVER* receiver, unsigned long oldDepartmentId, bool hashPassword,
                                  VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add, bool keepHistory) = 0;
    /// Removes a receiver with all that belongs to it. Throws code 1000 while another one is covered by it.
    virtual bool Delete(unsigned long id, unsigned long departmentId) = 0;
    /// Stores status and disable period, and the history that is given. The cover ends, which is meant.
    virtual bool ChangeStatus(VK_RECEIVER* receiver, VK_DISABLE_HISTORY* update, VK_DISABLE_HISTORY* add,
                              bool keepHistory) = 0;
    /// Moves the PINs (backup PINs too) on all MXP, or XMPP, carriers from one service's domain to another's; all or
    /// none. Gives back false when there was none.
    virtual bool UpdateMXPServiceName(const std::string& oldName, const std::string& newName) = 0;
    virtual bool UpdateXMPPServiceName(const std::string& oldName, const std::string& newName) = 0;
    virtual bool UpdateReceiverSecureStatus(unsigned long receiverId, bool secure) = 0;
    /// Stores the given values of the record's advanced messaging data; all else in misc_settings stays.
    virtual bool SaveAdvMessagingData(VK_RECEIVER* receiver) = 0;
    /// Throws code 1000 when there is no such receiver or department.
    virtual bool AddGuestDepartment(unsigned long receiverId, unsigned long departmentId) = 0;
    virtual bool DeleteGuestDepartment(unsigned long receiverId, unsigned long departmentId) = 0;

    // Reads. Lists are ordered by name and obey the filter.

    virtual bool Get(VK_RECEIVER_LIST* list, bool withDepartments = false, bool withSchedules = false,
                     bool withMiscSettings = false) = 0;
    /// Whatever the filter; ids that are not there are left out.
    virtual bool GetByIDs(VK_RECEIVER_LIST* list, const std::vector<unsigned long>& ids) = 0;
    /// With the carriers' protocols in protocol_id.
    virtual bool GetForSend(VK_RECEIVER_LIST* list, bool withDepartments, bool withSchedules, bool withMiscSettings,
                            bool onlyEnabled) = 0;
    /// With the carriers' protocols, without accounts and settings.
    virtual bool GetForMemberDetails(VK_RECEIVER_LIST* list) = 0;
    /// Id, name and, in `disabled`, whether the receiver is disabled now; of all receivers.
    virtual bool GetForScheduler(VK_RECEIVER_LIST* list, bool withSchedules) = 0;
    /// Id, name, type and department.
    virtual bool GetForFavorites(VK_RECEIVER_LIST* list) = 0;
    /// One receiver with its guest departments; false when there is none.
    virtual bool GetByID(VK_RECEIVER* receiver, unsigned long id) = 0;
    virtual bool GetByName(VK_RECEIVER* receiver, const std::string& name) = 0;
    virtual bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) = 0;
    /// As GetByName, with the receiver's schedules, and `disabled` as in GetForScheduler.
    virtual bool GetByNameForScheduler(VK_RECEIVER* receiver, const std::string& name) = 0;
    virtual bool GetNamesList(std::vector<VK_NAME_RECORD>& names) = 0;
    /// The receivers that are available now.
    virtual bool GetOnlyEnabled(VK_RECEIVER_LIST* list) = 0;
    /// The department of each receiver, by receiver.
    virtual bool GetDepartmentList(std::map<unsigned long, unsigned long>& departments) = 0;
    virtual bool GetReceiverProperties(std::vector<VKReceProperty>& properties) = 0;
    virtual bool Get(VK_RECEIVER_VIEW_LIST* list) = 0;
    /// The rows of a receiver, or of all for id 0, that touch the period; `to` 0 or less: open ended. Oldest first.
    virtual bool GetDisableHistory(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to) = 0;
    /// Reads misc_settings of one receiver and decodes its advanced messaging data into the record.
    virtual bool GetAdvMessagingData(VK_RECEIVER* receiver, unsigned long id) = 0;
    /// Of all receivers, whatever the filter.
    virtual long GetTotalRecordCount() = 0;
    virtual bool GetIDByName(unsigned long& id, const std::string& name) = 0;

    // Tests.

    /// Whether no receiver but the one with excludeId has this name.
    virtual bool IsUniqueName(const std::string& name, unsigned long excludeId) = 0;
    /// Whether no schedule of the receiver in use but the one with excludeId has this name.
    virtual bool IsUniqueScheduleName(const std::string& name, unsigned long receiverId, unsigned long excludeId) = 0;
    virtual bool IsFaxReceiverPresent() = 0;
    virtual bool IsVoiceReceiverPresent() = 0;
    virtual bool IsTimeZoneBeingUsed(unsigned long timeZoneId) = 0;
    /// Whether the department has a limit and as many receivers (and groups, when those count) as it allows.
    virtual bool IsDepartmentRecvLimitReached(unsigned long departmentId) = 0;

    // Schedules. Those of a receiver itself have member 0.

    /// The id is set in the record.
    virtual bool AddSchedule(VK_ONDUTY_SCHEDULE* schedule) = 0;
    virtual bool ModifySchedule(VK_ONDUTY_SCHEDULE* schedule) = 0;
    virtual bool DeleteSchedule(unsigned long id) = 0;
    virtual bool DeleteSchedule(unsigned long ownerId, unsigned long memberId, int memberType) = 0;
    virtual bool GetSchedule(VK_ONDUTY_SCHEDULE* schedule, unsigned long id) = 0;

    // Attributes: what operators define for receivers, and each receiver's values.

    /// The id is set in the record.
    virtual bool AddAttribute(VK_ATTRIBUTE* attribute) = 0;
    virtual bool ModifyAttribute(VK_ATTRIBUTE* attribute) = 0;
    /// Throws code 1000 while a receiver has a value of it.
    virtual bool DeleteAttributeByID(unsigned long id) = 0;
    /// Ordered by attr_order, then name.
    virtual bool GetAllAttributes(VK_ATTRIBUTE_LIST* list) = 0;
    /// Throws code 1000 when there is no such receiver or attribute. The id is set in the record.
    virtual bool AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE* attribute) = 0;
    virtual bool DeleteReceiverAttributeByRcvID(unsigned long receiverId) = 0;
    virtual bool DeleteReceiverAttributeByAttribID(unsigned long attributeId) = 0;
    virtual bool GetReceiverAttributeByRcvID(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId) = 0;
    virtual bool IsUniqueAttributeName(const std::string& name, unsigned long excludeId) = 0;
    virtual bool IsAttribBeingUsed(unsigned long attributeId) = 0;
    /// The values of all receivers, ordered by receiver.
    virtual bool GetReceiversAttributesList(VK_RECEIVER_ATTRIBUTE_LIST* list) = 0;
    virtual long GetAssociatedRecvCountByAttribute(unsigned long attributeId) = 0;
    virtual bool GetAttributesNameList(std::vector<VK_NAME_RECORD>& names) = 0;

    // Filters, which add up and stay until ClearFilter. An empty text, "*" and 0 filter nothing.

    /// Name and cover's name by their beginnings, PIN too; a receiver is in its own and in its guest departments.
    virtual void SetFilter(const std::string& name, const std::string& pin, unsigned long carrierId, int protocolId,
                           unsigned long departmentId, const std::string& coverName, FltNameLetter firstLetter) = 0;
    /// By status 1, by voice_enable and by advanced_messaging.
    virtual void SetFilter(FltEnabled available, FltEnabled voice, FltEnabled advancedMessaging) = 0;
    /// The departments on which the group has a right; a group with full rights sees all.
    virtual void SetFilter(VK_USER_GROUP* group, bool fullRights, DeptPerm right) = 0;
    /// The user's receivers of the list.
    virtual void SetFilter(VK_FAVORITE_LIST* favorites, unsigned long userId) = 0;
    virtual void SetFilter(VK_RECIP_PERM_LIST* permissions, unsigned long userId) = 0;
    virtual void SetFilterOwner(unsigned long ownerId) = 0;
    virtual void SetFilterReceiverIDs(const std::vector<unsigned long>& ids) = 0;
    /// Receivers that have all these values, each by its attribute.
    virtual void SetFilterAttribute(const std::map<unsigned long, std::string>& values) = 0;
    /// Receivers with this account and password (clear).
    virtual void SetFilterAccount(const std::string& accountName, const std::string& password) = 0;

    /// Reads a row of "SELECT *" by position. False when there is no such row.
    virtual bool FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row);

    // What is done as a whole, all or none.

    /// The receiver has these values and no others. Throws code 1000 when there is no such receiver or attribute.
    virtual bool ReplaceReceiverAttributes(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST* values) = 0;
    /// Stores new receivers as AddImpl does; their ids are set in the records. `refused`, which is emptied first, tells
    /// which of them break a rule, alone or beside the others; while there are any, or with checkOnly, nothing is
    /// stored. Gives back whether they were.
    virtual bool AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused) = 0;

    // What the layers below do.

    /// Add, Modify as the backends do them: the record is stored as it stands.
    virtual bool AddImpl(VK_RECEIVER* receiver) = 0;
    virtual bool ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                            VK_DISABLE_HISTORY* add, bool keepHistory) = 0;

    /// Whether a receiver belongs to the department, or is its guest.
    virtual bool IsDepartmentBeingUsed(unsigned long departmentId) = 0;
    /// Whether a receiver is on the carrier, or has it as its backup.
    virtual bool IsCarrierBeingUsed(unsigned long carrierId) = 0;
    /// The carrier with an id, without its data; false when there is none.
    virtual bool GetCarrier(VK_CARRIER* carrier, unsigned long id) = 0;
    /// Whether a group has this name; groups and receivers share their names.
    virtual bool IsGroupName(const std::string& name) = 0;
    /// The receivers that this one covers, as they are stored. The filter is not looked at.
    virtual bool GetCoveredBy(VK_RECEIVER_LIST* list, unsigned long coverId) = 0;
    /// The views of the receivers with this PIN. The filter is not looked at.
    virtual bool GetViewsByPin(VK_RECEIVER_VIEW_LIST* list, const std::string& pin) = 0;

    /// The short name of a type: "Num", "2Way", "Fax"; "Alpha" only with showAlpha, which is meant; else empty.
    static std::string GetReceiverTypeName(int type, bool showAlpha);

    /// From the global settings: a receiver may be covered by another.
    static inline std::atomic<bool> s_bIsCoverByAllowed{false};

protected:
    /// The value 2 switches the rules of the validating layer off.
    int m_iValidationMode = 1;
};
