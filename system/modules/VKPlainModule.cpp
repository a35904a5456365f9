#include "VKPlainModule.h"

bool VKPlainModule::Initialize(VKLogInterface* logger, const std::string&)
{
    if (IsLoggerRequired() || logger) {
        m_bOwnsLogger = false;
        m_pLogger = logger;
    }
    return InitializeSpecial();
}

bool VKPlainModule::Finalize()
{
    FinalizeSpecial();
    return true;
}
