#pragma once

#include <map>
#include <memory>
#include <set>
#include <string>

#include "VKBALMessages.h"
#include "VKDBiDepartment.h"
#include "VKDBiReceiver.h"
#include "VKKnownCarriers.h"

namespace vk {

/// The rules that new receivers keep beside each other, and towards what they point to. One object, one list.
class ReceiverListRules
{
public:
    /// The store is asked about what is there already; it must outlive the object, as must the carriers.
    ReceiverListRules(VKDBiReceiver& receivers, KnownCarriers& carriers) : m_receivers(receivers), m_carriers(carriers)
    {
    }

    /// Throws VKBALexception with the texts of all rules that the record breaks. Records come in the order of the list.
    void Check(const VK_RECEIVER& receiver, int index);

private:
    void CheckNames(const VK_RECEIVER& receiver, int index, BrokenRules& broken);
    void CheckReferences(const VK_RECEIVER& receiver, BrokenRules& broken);
    void CheckLimit(unsigned long departmentId, BrokenRules& broken);
    const VK_DEPARTMENT* DepartmentOf(unsigned long id);
    bool HasReceiver(unsigned long id);
    long CountInDepartment(unsigned long id);

    VKDBiReceiver& m_receivers;
    KnownCarriers& m_carriers;
    std::unique_ptr<VKDBiDepartment> m_departments;
    std::map<std::string, int> m_names;     ///< in lower case, with their places
    std::map<std::string, int> m_addresses; ///< of mobile clients, likewise
    std::map<unsigned long, std::unique_ptr<VK_DEPARTMENT>> m_knownDepartments;
    std::map<unsigned long, bool> m_knownReceivers;
    std::unique_ptr<std::map<unsigned long, long>> m_counts; ///< by department, with those of the list
};

} // namespace vk
