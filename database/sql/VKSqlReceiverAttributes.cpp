#include "VKSqlReceiverAttributes.h"

#include "VKReceiver.h"
#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const TableName& kAttributes = kAttributeTable.name;
constexpr const TableName& kValues = kReceiverAttributeTable.name;

/// A record with texts of its own, freed with the block.
struct OwnedAttribute : VK_ATTRIBUTE
{
    OwnedAttribute() = default;
    ~OwnedAttribute() { EmptyAttribute(this); }
    OwnedAttribute(const OwnedAttribute&) = delete;
    OwnedAttribute& operator=(const OwnedAttribute&) = delete;
};

[[noreturn]] void ThrowConstraint()
{
    throw VKDBexception(DbError::RuleOrConstraint, __FILE__, __LINE__, "Foreign Key constraints failed.");
}

} // namespace

bool SqlReceiverAttributes::Add(VK_ATTRIBUTE* attribute)
{
    attribute->id = m_store.Exclusive([&] { return m_store.InsertRow(kAttributeTable, *attribute); });
    return true;
}

bool SqlReceiverAttributes::Modify(const VK_ATTRIBUTE& attribute)
{
    return m_store.Exclusive([&] { return m_store.UpdateRow(kAttributeTable, attribute); }) > 0;
}

/// The use is tested here on every backend: the files have no foreign keys.
bool SqlReceiverAttributes::Delete(unsigned long id)
{
    return m_store.Exclusive([&] {
        if (m_store.SelectNumber("SELECT COUNT(id) FROM {} WHERE attribute_id={}", kValues, id) > 0)
            ThrowConstraint();
        return m_store.Update("DELETE FROM {} WHERE id={}", kAttributes, id) > 0;
    });
}

void SqlReceiverAttributes::List(VK_ATTRIBUTE_LIST* list)
{
    EmptyAttributeList(list);
    const auto rows = m_store.Shared(
        [&] { return m_store.Select("SELECT * FROM {} ORDER BY attr_order ASC, UPPER(name) ASC", kAttributes); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        OwnedAttribute attribute;
        ReadRow(kAttributeTable.fields, (*rows)[row], static_cast<VK_ATTRIBUTE&>(attribute));
        AddAttribute(list, &attribute);
    }
}

void SqlReceiverAttributes::ListNames(std::vector<VK_NAME_RECORD>& names)
{
    names.clear();
    const auto rows =
        m_store.Shared([&] { return m_store.Select("SELECT id, name FROM {} ORDER BY UPPER(name) ASC", kAttributes); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back({(*rows)[row][0].GetValueULong(), (*rows)[row][1].GetValueString()});
}

bool SqlReceiverAttributes::IsUniqueName(const std::string& name, unsigned long excludeId)
{
    const SqlRaw same{m_store.Dialect().EqualsNoCase("name", name)};
    const auto rows = m_store.Shared(
        [&] { return m_store.Select("SELECT id FROM {} WHERE {} AND id<>{}", kAttributes, same, excludeId); });
    return rows->GetReturnedRowsCount() == 0;
}

bool SqlReceiverAttributes::AddValue(VK_RECEIVER_ATTRIBUTE* value)
{
    value->id = m_store.Exclusive([&] {
        const SqlRaw same{m_store.Dialect().EqualsNoCase("attribute_values", GetText(value->attribute_values,
                                                                                     sizeof value->attribute_values,
                                                                                     "attribute_values"))};
        const long present = m_store.SelectNumber("SELECT id FROM {} WHERE receiver_id={} AND attribute_id={} AND {}",
                                                  kValues, value->receiver_id, value->attribute_id, same);
        return present != 0 ? static_cast<unsigned long>(present) : InsertValue(*value);
    });
    return true;
}

void SqlReceiverAttributes::ReplaceValues(unsigned long receiverId, VK_RECEIVER_ATTRIBUTE_LIST& values)
{
    m_store.Exclusive([&] {
        m_store.Update("DELETE FROM {} WHERE receiver_id={}", kValues, receiverId);
        for (int i = 0; i < values.count; ++i) {
            values.list[i].receiver_id = receiverId;
            values.list[i].id = InsertValue(values.list[i]);
        }
    });
}

unsigned long SqlReceiverAttributes::InsertValue(const VK_RECEIVER_ATTRIBUTE& value)
{
    if (!IsThere(kReceiverTable.name, value.receiver_id) || !IsThere(kAttributes, value.attribute_id))
        ThrowConstraint();
    return m_store.InsertRow(kReceiverAttributeTable, value);
}

bool SqlReceiverAttributes::IsThere(const TableName& table, unsigned long id)
{
    return m_store.SelectNumber("SELECT COUNT(id) FROM {} WHERE id={}", table, id) > 0;
}

bool SqlReceiverAttributes::DeleteValuesOfReceiver(unsigned long receiverId)
{
    return DeleteValues("receiver_id", receiverId);
}

bool SqlReceiverAttributes::DeleteValuesOfAttribute(unsigned long attributeId)
{
    return DeleteValues("attribute_id", attributeId);
}

bool SqlReceiverAttributes::DeleteValues(const char* column, unsigned long id)
{
    return m_store.Exclusive(
               [&] { return m_store.Update("DELETE FROM {} WHERE {}={}", kValues, SqlRaw{column}, id); }) > 0;
}

void SqlReceiverAttributes::ListValues(VK_RECEIVER_ATTRIBUTE_LIST* list, unsigned long receiverId)
{
    EmptyReceiverAttributeList(list);
    const SqlRaw where = receiverId == 0 ? SqlRaw{} : m_store.Part(" WHERE receiver_id={}", receiverId);
    const auto rows = m_store.Shared(
        [&] { return m_store.Select("SELECT * FROM {}{} ORDER BY receiver_id ASC, id ASC", kValues, where); });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
        VK_RECEIVER_ATTRIBUTE value;
        ReadRow(kReceiverAttributeTable.fields, (*rows)[row], value);
        AddReceiverAttribute(list, &value);
    }
}

long SqlReceiverAttributes::CountReceivers(unsigned long attributeId)
{
    return m_store.Shared([&] {
        return m_store.SelectNumber("SELECT COUNT(DISTINCT receiver_id) FROM {} WHERE attribute_id={}", kValues,
                                    attributeId);
    });
}

} // namespace vk
