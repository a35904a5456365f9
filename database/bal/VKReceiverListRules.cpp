#include "VKReceiverListRules.h"

#include "VKRecordText.h"
#include "VKstringCase.h"

namespace vk {

namespace {

/// A record of the store by its id, asked for once; null when there is none.
template <class Record, class Get>
const Record* Known(std::map<unsigned long, std::unique_ptr<Record>>& known, unsigned long id, Get&& get)
{
    auto found = known.find(id);
    if (found == known.end()) {
        auto record = std::make_unique<Record>();
        if (!get(*record))
            record.reset();
        found = known.emplace(id, std::move(record)).first;
    }
    return found->second.get();
}

void AddMissing(bool missing, const char* field, const char* what, unsigned long id, BrokenRules& broken)
{
    if (missing)
        broken.AddText(std::string("The field ") + field + " names the " + what + " " + std::to_string(id) +
                       ", which is not there. Enter the id of one that is, or 0 for none.");
}

} // namespace

void ReceiverListRules::Check(const VK_RECEIVER& receiver, int index)
{
    BrokenRules broken;
    CheckNames(receiver, index, broken);
    CheckReferences(receiver, broken);
    CheckLimit(receiver.department_id, broken);
    broken.ThrowIfAny();
}

/// Names and mobile clients' addresses are unique without regard to case.
void ReceiverListRules::CheckNames(const VK_RECEIVER& receiver, int index, BrokenRules& broken)
{
    const auto check = [&](std::map<std::string, int>& taken, std::string_view text, const char* what) {
        const auto [other, isNew] = taken.emplace(VKstringLowerCase(std::string(text)), index);
        if (!isNew)
            broken.AddText(std::string("The ") + what + " is that of receiver " + std::to_string(other->second + 1) +
                           " of the list as well. Enter one that no other receiver has.");
    };
    check(m_names, GetText(receiver.name, sizeof receiver.name, "name"), "device name");
    if (IsMxpProtocol(m_carriers.ProtocolOf(receiver.carrier_id)))
        check(m_addresses, GetText(receiver.pin, sizeof receiver.pin, "pin"), "PIN");
}

void ReceiverListRules::CheckReferences(const VK_RECEIVER& receiver, BrokenRules& broken)
{
    const auto lacksCarrier = [&](unsigned long id) {
        return id != 0 && id != VK_FAX_CARRIER_ID && id != VK_VOICE_CARRIER_ID && m_carriers.Find(id) == nullptr;
    };
    AddMissing(lacksCarrier(receiver.carrier_id), "carrier_id", "carrier", receiver.carrier_id, broken);
    AddMissing(lacksCarrier(receiver.bk_carrier_id), "bk_carrier_id", "carrier", receiver.bk_carrier_id, broken);
    const auto lacksDepartment = [&](unsigned long id) { return id != 0 && DepartmentOf(id) == nullptr; };
    AddMissing(lacksDepartment(receiver.department_id), "department_id", "department", receiver.department_id, broken);
    for (int i = 0; i < receiver.dept_rights_count; ++i) {
        const unsigned long id = receiver.dept_rights[i].department_id;
        AddMissing(id == 0 || lacksDepartment(id), "guest_departments", "department", id, broken);
    }
    AddMissing(receiver.forward_to_id != 0 && !HasReceiver(receiver.forward_to_id), "forward_to_id", "receiver",
               receiver.forward_to_id, broken);
}

/// Those before it in the list count as if they were stored.
void ReceiverListRules::CheckLimit(unsigned long departmentId, BrokenRules& broken)
{
    const VK_DEPARTMENT* const department = departmentId == 0 ? nullptr : DepartmentOf(departmentId);
    if (!VKDBiDepartment::s_bRecLimit || department == nullptr || department->max_receivers < 1)
        return;
    const long count = CountInDepartment(departmentId);
    if (count >= department->max_receivers || m_receivers.IsDepartmentRecvLimitReached(departmentId))
        broken.AddText("Department maximum receivers limit exceeds.");
    ++(*m_counts)[departmentId];
}

const VK_DEPARTMENT* ReceiverListRules::DepartmentOf(unsigned long id)
{
    if (!m_departments)
        m_departments.reset(VKDBiDepartment::CreateInstance(m_receivers.GetDbSystem()));
    return Known(m_knownDepartments, id,
                 [&](VK_DEPARTMENT& department) { return m_departments->GetByID(&department, id); });
}

bool ReceiverListRules::HasReceiver(unsigned long id)
{
    const auto known = m_knownReceivers.find(id);
    if (known != m_knownReceivers.end())
        return known->second;
    VK_RECEIVER receiver;
    const bool found = m_receivers.GetByID(&receiver, id);
    EmptyReceiver(&receiver);
    return m_knownReceivers[id] = found;
}

long ReceiverListRules::CountInDepartment(unsigned long id)
{
    if (!m_counts) {
        m_counts = std::make_unique<std::map<unsigned long, long>>();
        std::map<unsigned long, unsigned long> departments;
        m_receivers.GetDepartmentList(departments);
        for (const auto& [receiver, department] : departments)
            ++(*m_counts)[department];
    }
    return (*m_counts)[id];
}

} // namespace vk
