#include "VKDBiDepartment.h"

#include "VKTableRow.h"

bool VKDBiDepartment::FillStructFromResultSet(VK_DEPARTMENT* department, VKDBiResultSet& result, int row)
{
    if (row < 0 || row >= result.GetReturnedRowsCount())
        return false;
    vk::ReadRow(vk::kDepartmentTable.fields, result[row], *department);
    return true;
}

bool VKDBiDepartment::IncreaseReceCount(unsigned long id, VKDBsystem* system)
{
    return std::unique_ptr<VKDBiDepartment>(CreateInstance(system))->IncrementReceiverCount(id);
}

bool VKDBiDepartment::DecreaseReceCount(unsigned long id, VKDBsystem* system)
{
    return std::unique_ptr<VKDBiDepartment>(CreateInstance(system))->DecrementReceiverCount(id);
}
