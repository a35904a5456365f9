#include "VKBALReceiver.h"

#include "VKBALMessages.h"
#include "VKBALUtility.h"
#include "VKRecordText.h"
#include "VKutilDatabase.h"

namespace {

constexpr int kWithoutValidation = 2;

} // namespace

VKBALReceiver::VKBALReceiver(std::unique_ptr<VKDBiReceiver> implementation)
    : m_pImplementation(std::move(implementation))
{
}

VKBALReceiver::~VKBALReceiver() = default;

bool VKBALReceiver::AddImpl(VK_RECEIVER* receiver)
{
    if (m_iValidationMode != kWithoutValidation)
        CheckBALConstraints(*receiver);
    return m_pImplementation->AddImpl(receiver);
}

void VKBALReceiver::CheckBALConstraints(const VK_RECEIVER& receiver)
{
    const std::string name(vk::GetText(receiver.name, sizeof receiver.name, "name"));
    vk::BrokenRules broken;
    if (VKBALUtility::IsBlank(name))
        broken.Add(1110);
    else if (!VKBALUtility::IsValidDeviceName(name))
        broken.Add(1111);
    if (VKBALUtility::IsBlank(std::string(vk::GetText(receiver.pin, sizeof receiver.pin, "pin"))))
        broken.Add(1113);
    if (!VKutilDatabase::IsUniqueDeviceName(name, receiver.id, GetDbSystem()))
        broken.Add(1114);
    broken.ThrowIfAny();
}

bool VKBALReceiver::Get(VK_RECEIVER_LIST* list) { return m_pImplementation->Get(list); }
long VKBALReceiver::GetTotalRecordCount() { return m_pImplementation->GetTotalRecordCount(); }
void VKBALReceiver::ClearFilter() { m_pImplementation->ClearFilter(); }
void VKBALReceiver::ClearSort() { m_pImplementation->ClearSort(); }

bool VKBALReceiver::GetByID(VK_RECEIVER* receiver, unsigned long id)
{
    return m_pImplementation->GetByID(receiver, id);
}

bool VKBALReceiver::GetByName(VK_RECEIVER* receiver, const std::string& name)
{
    return m_pImplementation->GetByName(receiver, name);
}

bool VKBALReceiver::GetByPin(VK_RECEIVER* receiver, const std::string& pin)
{
    return m_pImplementation->GetByPin(receiver, pin);
}

bool VKBALReceiver::GetNamesList(std::vector<VK_NAME_RECORD>& names) { return m_pImplementation->GetNamesList(names); }

bool VKBALReceiver::GetIDByName(unsigned long& id, const std::string& name)
{
    return m_pImplementation->GetIDByName(id, name);
}

bool VKBALReceiver::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    return m_pImplementation->IsUniqueName(name, excludeId);
}

bool VKBALReceiver::IsDepartmentRecvLimitReached(unsigned long departmentId)
{
    return m_pImplementation->IsDepartmentRecvLimitReached(departmentId);
}

bool VKBALReceiver::FillStructFromResultSet(VK_RECEIVER* receiver, VKDBiResultSet& result, int row)
{
    return m_pImplementation->FillStructFromResultSet(receiver, result, row);
}

bool VKBALReceiver::IsDepartmentBeingUsed(unsigned long departmentId)
{
    return m_pImplementation->IsDepartmentBeingUsed(departmentId);
}
