#include "VKSqlCarrier.h"

#include <cstdlib>

#include "VKSqlStore.h"
#include "VKTableRow.h"

namespace vk {

SqlCarrier::SqlCarrier() = default;
SqlCarrier::~SqlCarrier() = default;

void SqlCarrier::UseStore(std::unique_ptr<SqlStore> store) { m_store = std::move(store); }

bool SqlCarrier::Add(VK_CARRIER* carrier)
{
    carrier->id = m_store->Exclusive([&] { return m_store->InsertRow(kCarrierTable, *carrier); });
    return true;
}

bool SqlCarrier::GetByID(VK_CARRIER* carrier, unsigned long id, bool withData)
{
    return ReadOne(carrier, m_store->Part("id={}", id).text, withData);
}

bool SqlCarrier::GetByName(VK_CARRIER* carrier, const std::string& name, bool withData)
{
    return ReadOne(carrier, m_store->Dialect().EqualsNoCase("name", name), withData);
}

bool SqlCarrier::ReadOne(VK_CARRIER* carrier, const std::string& condition, bool withData)
{
    EmptyCarrier(carrier);
    const auto rows = m_store->Shared(
        [&] { return m_store->Select("SELECT * FROM {} WHERE {}", kCarrierTable.name, SqlRaw{condition}); });
    if (rows->GetReturnedRowsCount() == 0)
        return false;
    ReadRow(kCarrierTable.fields, (*rows)[0], *carrier);
    if (!withData) {
        std::free(carrier->carrier_data);
        carrier->carrier_data = nullptr;
    }
    return true;
}

} // namespace vk
