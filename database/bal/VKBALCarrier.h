#pragma once

#include <memory>

#include "VKDBiCarrier.h"

/// The carriers behind their layer of rules, of which there is none yet for what can be stored here.
class VKBALCarrier : public VKDBiCarrier
{
public:
    /// Takes the implementation over.
    explicit VKBALCarrier(std::unique_ptr<VKDBiCarrier> implementation) : m_pImplementation(std::move(implementation)) {}

    bool Add(VK_CARRIER* carrier) override { return m_pImplementation->Add(carrier); }
    bool GetByID(VK_CARRIER* carrier, unsigned long id, bool withData) override
    {
        return m_pImplementation->GetByID(carrier, id, withData);
    }
    bool GetByName(VK_CARRIER* carrier, const std::string& name, bool withData) override
    {
        return m_pImplementation->GetByName(carrier, name, withData);
    }

private:
    std::unique_ptr<VKDBiCarrier> m_pImplementation;
};
