#include "VKBALDepartment.h"

#include "VKBALMessages.h"
#include "VKBALUtility.h"
#include "VKDBexception.h"
#include "VKDBsystem.h"
#include "VKRecordText.h"
#include "VKutilDatabase.h"

VKBALDepartment::VKBALDepartment(std::unique_ptr<VKDBiDepartment> implementation)
    : m_pImplementation(std::move(implementation))
{
}

VKBALDepartment::~VKBALDepartment() = default;

bool VKBALDepartment::Add(VK_DEPARTMENT* department)
{
    CheckBALConstraints(department);
    return m_pImplementation->Add(department);
}

bool VKBALDepartment::Modify(VK_DEPARTMENT* department)
{
    if (VKDBsystem::db_Type != DbTypeSdb)
        CheckReceiverCount(*department);
    CheckBALConstraints(department);
    return m_pImplementation->Modify(department);
}

void VKBALDepartment::CheckReceiverCount(const VK_DEPARTMENT& department)
{
    if (department.num_receivers < 0)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Department receiver count has corrupted.");
    if (s_bRecLimit && department.max_receivers > 0 && department.max_receivers < department.num_receivers)
        throw VKDBexception(vk::DbError::DepartmentLimit, __FILE__, __LINE__,
                            "Department maximum receivers limit exceeds.");
}

void VKBALDepartment::CheckBALConstraints(VK_DEPARTMENT* department)
{
    const std::string name(vk::GetText(department->name, sizeof department->name, "name"));
    vk::BrokenRules broken;
    if (VKBALUtility::IsBlank(name))
        broken.Add(1003);
    else if (!VKBALUtility::IsValidName(name))
        broken.Add(1004);
    if (!IsUniqueName(name, department->id))
        broken.Add(1005);
    if (s_bRecLimit) {
        if (department->max_receivers < 1 || department->max_receivers > s_lMaxMembers)
            broken.Add(1006);
        if (department->max_receivers < department->num_receivers)
            broken.Add(1007);
    } else {
        department->max_receivers = -1;
    }
    broken.ThrowIfAny();
}

bool VKBALDepartment::Delete(unsigned long id)
{
    if (VKDBsystem::db_Type == DbTypeSdb && VKutilDatabase::IsDepartmentBeingUsed(id, GetDbSystem()))
        throw VKDBexception(vk::DbError::RuleOrConstraint, __FILE__, __LINE__, "Foreign Key constraints failed.");
    return m_pImplementation->Delete(id);
}

bool VKBALDepartment::IncrementReceiverCount(unsigned long id) { return m_pImplementation->IncrementReceiverCount(id); }
bool VKBALDepartment::DecrementReceiverCount(unsigned long id) { return m_pImplementation->DecrementReceiverCount(id); }
bool VKBALDepartment::Get(VK_DEPARTMENT_LIST* list) { return m_pImplementation->Get(list); }
long VKBALDepartment::GetTotalRecordCount() { return m_pImplementation->GetTotalRecordCount(); }
void VKBALDepartment::SetFilter(const std::string& name) { m_pImplementation->SetFilter(name); }
void VKBALDepartment::SetFilter(int pageSize, int pageNumber) { m_pImplementation->SetFilter(pageSize, pageNumber); }
int VKBALDepartment::GetPageCount() { return m_pImplementation->GetPageCount(); }
void VKBALDepartment::ClearFilter() { m_pImplementation->ClearFilter(); }
void VKBALDepartment::ClearSort() { m_pImplementation->ClearSort(); }

bool VKBALDepartment::GetByID(VK_DEPARTMENT* department, unsigned long id)
{
    return m_pImplementation->GetByID(department, id);
}

bool VKBALDepartment::GetByName(VK_DEPARTMENT* department, const std::string& name)
{
    return m_pImplementation->GetByName(department, name);
}

bool VKBALDepartment::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    return m_pImplementation->IsUniqueName(name, excludeId);
}

bool VKBALDepartment::GetNamesList(std::vector<VK_NAME_RECORD>& names)
{
    return m_pImplementation->GetNamesList(names);
}

bool VKBALDepartment::GetIDByName(unsigned long& id, const std::string& name)
{
    return m_pImplementation->GetIDByName(id, name);
}

bool VKBALDepartment::FillStructFromResultSet(VK_DEPARTMENT* department, VKDBiResultSet& result, int row)
{
    return m_pImplementation->FillStructFromResultSet(department, result, row);
}
