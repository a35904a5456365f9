#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "VKDBbaseInterface.h"
#include "VKDBiResultSet.h"
#include "VKDepartment.h"
#include "VKNameRecord.h"

/// The departments, whatever stores them. Operations throw VKDBexception (store, rules) and VKBALexception (the list of
/// broken rules); they return false where an expected condition fails, such as a row that is not there. One object
/// serves one thread.
class VKDBiDepartment : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend behind its validating layer; the caller owns it. Throws VKDBexception.
    static VKDBiDepartment* CreateInstance(VKDBsystem* system);

    /// Stores a new department; its id is set in the record.
    virtual bool Add(VK_DEPARTMENT* department) = 0;
    /// Stores a changed department, but for the count of receivers. False when there is no such row.
    virtual bool Modify(VK_DEPARTMENT* department) = 0;
    /// One receiver more, or fewer, in the department. False for id 0; throws code 100 at the department's limit.
    virtual bool IncrementReceiverCount(unsigned long id) = 0;
    virtual bool DecrementReceiverCount(unsigned long id) = 0;
    /// False when there is no such row; throws code 1000 while receivers belong to it.
    virtual bool Delete(unsigned long id) = 0;
    /// All departments that pass the filter, of the page when one is set, ordered by name. Empties the list first.
    virtual bool Get(VK_DEPARTMENT_LIST* list) = 0;
    /// One department; false when there is none. Names are compared without regard to case.
    virtual bool GetByID(VK_DEPARTMENT* department, unsigned long id) = 0;
    virtual bool GetByName(VK_DEPARTMENT* department, const std::string& name) = 0;
    /// The count of all departments, whatever the filter.
    virtual long GetTotalRecordCount() = 0;
    /// Whether no department but the one with excludeId has this name.
    virtual bool IsUniqueName(const std::string& name, unsigned long excludeId) = 0;
    /// Names that begin with the text; empty or "*" for all.
    virtual void SetFilter(const std::string& name) = 0;
    /// Pages of pageSize rows, numbered from 1; a size of 0 for all rows.
    virtual void SetFilter(int pageSize, int pageNumber) = 0;
    /// How many pages the last paged Get found.
    virtual int GetPageCount() = 0;
    virtual bool GetNamesList(std::vector<VK_NAME_RECORD>& names) = 0;
    virtual bool GetIDByName(unsigned long& id, const std::string& name) = 0;
    /// Reads a row of "SELECT *" by position. False when there is no such row.
    virtual bool FillStructFromResultSet(VK_DEPARTMENT* department, VKDBiResultSet& result, int row);

    /// IncrementReceiverCount and DecrementReceiverCount on an object of their own.
    static bool IncreaseReceCount(unsigned long id, VKDBsystem* system);
    static bool DecreaseReceCount(unsigned long id, VKDBsystem* system);

    /// From the global settings: the highest limit a department may have, whether limits hold, whether groups count.
    static inline std::atomic<long> s_lMaxMembers{0};
    static inline std::atomic<bool> s_bRecLimit{false};
    static inline std::atomic<bool> s_bCountGrp{false};
};
