#pragma once

#include <memory>

#include "VKDBiCarrier.h"

namespace vk {

class SqlStore;

/// The carriers on any SQL backend. A backend's class derives from it, opens its connection and hands it over.
class SqlCarrier : public VKDBiCarrier
{
public:
    SqlCarrier();
    ~SqlCarrier() override;

    bool Add(VK_CARRIER* carrier) override;
    bool GetByID(VK_CARRIER* carrier, unsigned long id, bool withData) override;
    bool GetByName(VK_CARRIER* carrier, const std::string& name, bool withData) override;

protected:
    static constexpr std::size_t kStatementLimit = 65535;

    void UseStore(std::unique_ptr<SqlStore> store);

private:
    bool ReadOne(VK_CARRIER* carrier, const std::string& condition, bool withData);

    std::unique_ptr<SqlStore> m_store;
};

} // namespace vk
