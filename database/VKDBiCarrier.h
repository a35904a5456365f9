#pragma once

#include <string>

#include "VKCarrier.h"
#include "VKDBbaseInterface.h"

/// The carriers, whatever stores them: what receivers need of them. Throws VKDBexception. One object serves one thread.
class VKDBiCarrier : public VKDBbaseInterface
{
public:
    /// A new object on the system's backend behind its validating layer; the caller owns it. Throws VKDBexception.
    static VKDBiCarrier* CreateInstance(VKDBsystem* system);

    /// Stores a new carrier; its id is set in the record.
    virtual bool Add(VK_CARRIER* carrier) = 0;
    /// One carrier; false when there is none. withData: carrier_data too. Names without regard to case.
    virtual bool GetByID(VK_CARRIER* carrier, unsigned long id, bool withData) = 0;
    virtual bool GetByName(VK_CARRIER* carrier, const std::string& name, bool withData) = 0;
};
