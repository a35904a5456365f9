#include "VKDepartment.h"

#include "VKRecordList.h"

void EmptyDepartmentList(VK_DEPARTMENT_LIST* list) { vk::FreeRecords(list->list, list->count); }

void AddDepartment(VK_DEPARTMENT_LIST* list, const VK_DEPARTMENT* department)
{
    vk::AppendRecord(list->list, list->count, *department);
}
