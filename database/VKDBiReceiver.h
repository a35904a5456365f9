#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "VKDBbaseInterface.h"
#include "VKDBiResultSet.h"
#include "VKNameRecord.h"
#include "VKReceiver.h"

/// The receivers, whatever stores them. Operations throw VKDBexception (store, rules) and VKBALexception (the list of
/// broken rules); they return false where an expected condition fails, such as a row that is not there. One object
/// serves one thread. Records that are read are emptied first, and what they own is freed with EmptyReceiver.
class VKDBiReceiver : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend behind its validating layer; the caller owns it. Throws VKDBexception.
    static VKDBiReceiver* CreateInstance(VKDBsystem* system);

    /// Stores a new receiver with its guest departments; its id is set in the record. With hashPassword the account's
    /// password is stored as its MD5 digest, and the record keeps the clear one. Throws code 100 when the department
    /// has as many receivers as it may have.
    virtual bool Add(VK_RECEIVER* receiver, bool hashPassword);

    /// All receivers ordered by name, without their guest departments. Empties the list first.
    virtual bool Get(VK_RECEIVER_LIST* list) = 0;
    /// One receiver with its guest departments; false when there is none. Name and PIN without regard to case.
    virtual bool GetByID(VK_RECEIVER* receiver, unsigned long id) = 0;
    virtual bool GetByName(VK_RECEIVER* receiver, const std::string& name) = 0;
    virtual bool GetByPin(VK_RECEIVER* receiver, const std::string& pin) = 0;
    virtual bool GetNamesList(std::vector<VK_NAME_RECORD>& names) = 0;
    virtual long GetTotalRecordCount() = 0;
    virtual bool GetIDByName(unsigned long& id, const std::string& name) = 0;

    /// Whether no receiver but the one with excludeId has this name.
    virtual bool IsUniqueName(const std::string& name, unsigned long excludeId) = 0;
    /// Whether the department has a limit and as many receivers as it allows.
    virtual bool IsDepartmentRecvLimitReached(unsigned long departmentId) = 0;

    /// Reads a row of "SELECT *" by position. False when there is no such row.
    virtual bool FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row);

    /// Whether a receiver belongs to the department, or is its guest.
    virtual bool IsDepartmentBeingUsed(unsigned long departmentId) = 0;

    /// The short name of a type: "Num", "2Way", "Fax"; "Alpha" only with showAlpha, which is meant; else empty.
    static std::string GetReceiverTypeName(int type, bool showAlpha);

    /// From the global settings: a receiver may be covered by another.
    static inline std::atomic<bool> s_bIsCoverByAllowed{false};

    /// Add as the backends do it: the record is stored as it stands.
    virtual bool AddImpl(VK_RECEIVER* receiver) = 0;

protected:
    /// The value 2 switches the rules of the validating layer off.
    int m_iValidationMode = 1;
};
