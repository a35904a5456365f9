#pragma once

#include <string>
#include <vector>

#include "VKNameRecord.h"
#include "VKReceiverParts.h"
#include "VKSqlStore.h"

namespace vk {

/// What operators define for receivers, and each receiver's values.
class SqlReceiverAttributes
{
public:
    explicit SqlReceiverAttributes(SqlStore& store) : m_store(store) {}

    bool Add(VK_ATTRIBUTE* attribute);
    bool Modify(const VK_ATTRIBUTE& attribute);
    bool Delete(unsigned long id);
    void List(VK_ATTRIBUTE_LIST* list);
    void ListNames(std::vector<VK_NAME_RECORD>& names);
    bool IsUniqueName(const std::string& name, unsigned long excludeId);

    bool AddValue(VK_RECEIVER_ATTRIBUTE* value);
    /// The ids are set in the values.
    void ReplaceValues(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST& values);
    bool DeleteValuesOfReceiver(unsigned long receiverId);
    bool DeleteValuesOfAttribute(unsigned long attributeId);
    /// Of one receiver, or of all for id 0, ordered by receiver.
    void ListValues(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId);
    /// How many receivers have a value of the attribute.
    long CountReceivers(unsigned long attributeId);

private:
    unsigned long InsertValue(const VK_RECEIVER_ATTRIBUTE& value);
    bool IsThere(const TableName& table, unsigned long id);
    bool DeleteValues(const char* column, unsigned long id);

    SqlStore& m_store;
};

} // namespace vk
