#pragma once

#include <string>
#include <vector>

#include "VKActiveMxpClient.h"
#include "VKDBbaseInterface.h"

/// The mobile clients that are enrolled, whatever stores them. Operations throw VKDBexception when the store fails;
/// they return false where an expected condition fails, such as a row that is not there. One object serves one thread.
/// Operations that read clear their output first.
class VKDBiActiveMxpClient : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend; the caller owns it. Throws VKDBexception.
    static VKDBiActiveMxpClient* CreateInstance(VKDBsystem* system);

    /// Stores a new client; its id is set in the record.
    virtual bool Add(VKActiveMxpClientInfo* client) = 0;
    /// Stores a changed client. False when there is no such row, as for the other changes.
    virtual bool Modify(VKActiveMxpClientInfo* client) = 0;
    virtual bool Delete(unsigned long id) = 0;
    /// All clients, the oldest first.
    virtual bool Get(std::vector<VKActiveMxpClientInfo>* clients) = 0;
    /// The clients that pass the filters, with their receivers, sorted, of the page when one is set.
    virtual bool GetForView(std::vector<VKActiveMxpClientView>* clients) = 0;
    /// One client; false when there is none. The client's name must match in case, the key need not.
    virtual bool GetByID(unsigned long id, VKActiveMxpClientInfo* client) = 0;
    virtual bool GetByName(const std::string& clientName, VKActiveMxpClientInfo* client) = 0;
    virtual bool GetByActivationKey(const std::string& activationKey, VKActiveMxpClientInfo* client) = 0;
    /// How many clients are in this mode, or in any, whatever the filter.
    virtual long GetTotalRecordCount(VKActivationMode mode) = 0;
    virtual bool UpdateAuthorization(unsigned long id, bool authorized) = 0;
    virtual bool UpdateActivationMode(unsigned long id, VKActivationMode mode) = 0;

    /// By the time of enrolment.
    virtual void SetSort(bool ascending) = 0;
    /// Client names that begin with the text, empty or "*" for all; enrolled in this span, which holds when `to` is
    /// above `from` and both are above 0.
    virtual void SetFilter(const std::string& clientName, long from, long to) = 0;
    /// Pages of pageSize rows, numbered from 1; a size of 0 for all rows.
    virtual void SetFilter(int pageSize, int pageNumber) = 0;
    /// How many pages and rows the last view found.
    virtual int GetPageCount() = 0;
    virtual long GetTotalRecords() = 0;

    /// "Basic", "Advanced", else empty; and back, letters of either case, 0 for every other word.
    static std::string GetActivationModeString(VKActivationMode mode);
    static VKActivationMode GetActivationMode(const std::string& word);
};

namespace vk {

inline constexpr CodeText<int> kActivationModes[] = {{VKActivationModeBasic, "Basic"},
                                                     {VKActivationModeAdvanced, "Advanced"}};

} // namespace vk
