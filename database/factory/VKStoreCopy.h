#pragma once

#include <functional>
#include <string>
#include <vector>

#include "VKDBsystem.h"
#include "VKDataSource.h"

namespace vk {

/// Where an installation keeps its records: a directory of files, or a relational server.
struct StorePlace
{
    VK_DATA_SOURCE source;
    std::string configDirectory; ///< of the files
};

/// What was done with one table.
struct CopiedTable
{
    const char* family;
    const char* table;
    long added = 0;
    long present = 0; ///< stood there already, as they are
};

/// Copies all records of one installation into another with their ids, from either kind of database to either. Each
/// family of tables (departments; receivers and what belongs to them; ...) is copied in one transaction, all or none.
/// Rows that stand in the target already, exactly as they are, are left; so a copy may be run again. One that stands
/// there with another content stops the copy with an error that names it, and its family is left as it was. A family
/// whose file is not there has no rows. `progress` hears of each table after every few hundred rows; it may be empty.
/// Throws VKDBexception. The source is only read, and locked while it is; but a file of it that an older version made is
/// brought up to date first, as it is when the system opens it.
std::vector<CopiedTable> CopyStores(const StorePlace& from, const StorePlace& to,
                                    const std::function<void(const CopiedTable&)>& progress);

} // namespace vk
