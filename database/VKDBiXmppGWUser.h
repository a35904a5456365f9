#pragma once

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "VKDBbaseInterface.h"
#include "VKXmppGWUser.h"

/// The accounts of the XMPP gateway, whatever stores them. Three of them the system makes for itself. Operations throw
/// VKDBexception when the store fails or a text does not fit its column; they return false where an expected condition
/// fails, such as a row that is not there. Logins and names are compared without regard to case. One object serves one
/// thread. Operations that read clear their output first.
///
/// Where an operation takes `inTransaction`, true means that the caller's transaction is open already.
class VKDBiXmppGWUser : public VKDBbaseInterface
{
public:
    enum SortFld : int { SortType = 0, SortUserID = 1, SortName = 2, SortEnabled = 3, SortVKUserName = 4 };

    /// A new object on the system's backend, with the system's own accounts there; the caller owns it. Throws
    /// VKDBexception.
    static VKDBiXmppGWUser* CreateInstance(VKDBsystem* system);

    /// Stores a new account; its id is set in the record.
    virtual bool Add(VKXmppGWUser* user, bool inTransaction) = 0;
    /// Stores a changed account. False when there is no such row, as for the two below.
    virtual bool Modify(VKXmppGWUser* user) = 0;
    virtual bool Delete(unsigned long id) = 0;
    /// Enables the account, or disables it with 0.
    virtual bool UpdateStatus(unsigned long id, int enabled) = 0;
    /// All accounts, ordered by name.
    virtual bool Get(std::vector<VKXmppGWUser>* users) = 0;
    /// The accounts that pass the filters, with their owners' names, sorted, of the page when one is set; with
    /// visibleOnly without the hidden ones.
    virtual bool Get(std::vector<VKXmppGWUserView>* users, bool visibleOnly) = 0;
    /// One account; false when there is none. GetByName looks for the login.
    virtual bool GetByID(unsigned long id, VKXmppGWUser* user, bool inTransaction) = 0;
    virtual bool GetByName(VKXmppGWUser* user, const std::string& userId, bool inTransaction) = 0;
    /// The account of this name, which is not the login; 0 when there is none.
    virtual unsigned long GetIDByName(const std::string& name) = 0;
    virtual bool GetAllNameList(std::map<unsigned long, std::string>& names) = 0;
    /// How many accounts there are, whatever the filter; with visibleOnly without the hidden ones.
    virtual long GetTotalRecordCount(bool visibleOnly) = 0;
    virtual bool IsXmppGWUserPresent(unsigned long id) = 0;
    /// Whether nobody has this login. Otherwise the holder's id goes to the pointer, which may be null.
    virtual bool IsUniqueName(const std::string& userId, unsigned long* holder) = 0;
    /// Adds those of the system's own accounts that are missing, each with the digest of its own name as password.
    virtual bool PopulateDefaultUsers() = 0;

    virtual void SetSort(SortFld field, bool ascending) = 0;
    /// Names that begin with the text; empty or "*" for all.
    virtual void SetFilter(const std::string& name) = 0;
    /// Pages of pageSize rows, numbered from 1; a size of 0 for all rows.
    virtual void SetFilter(int pageSize, int pageNumber) = 0;
    /// Accounts of one user of the server; 0 for all.
    virtual void SetFilterAssignedVKUser(unsigned long userId) = 0;
    /// How many pages and rows the last view found.
    virtual int GetPageCount() = 0;
    virtual long GetTotalRecords() = 0;

    /// "None", "Emergency", "MXPCarrier", "Normal", "XmppGWUser"; and back, letters of either case, every other word is
    /// none.
    static std::string GetUserTypeString(VKXmppGWUserType type);
    static VKXmppGWUserType GetUserType(const std::string& word);

    /// The server's user who owns the system's own accounts when they are made, but for the emergency one; 0 for none.
    static inline std::atomic<unsigned long> s_ulDefaultVKUserID{0};
};

namespace vk {

inline constexpr CodeText<int> kXmppGWUserTypes[] = {{VKXmppGWUserNone, "None"},
                                                     {VKXmppGWUserEmergency, "Emergency"},
                                                     {VKXmppGWUserMXPCarrier, "MXPCarrier"},
                                                     {VKXmppGWUserNormal, "Normal"},
                                                     {VKXmppGWUserXmppGWUser, "XmppGWUser"}};

} // namespace vk
