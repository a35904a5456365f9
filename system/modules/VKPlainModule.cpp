#include "VKPlainModule.h"

#include "VKsysEventLogInterface.h"

bool VKPlainModule::Initialize(VKLogInterface* logger, const std::string& configDir)
{
    if (IsLoggerRequired() || logger) {
        m_bOwnsLogger = false;
        m_pLogger = logger;
        if (!logger && !configDir.empty())
            MakeLogger(configDir);
    }
    return InitializeSpecial();
}

void VKPlainModule::MakeLogger(const std::string& configDir)
{
    VKsysEventLogInterface* const own = VKsysEventLogInterface::CreateInstance(
        GetRunningModuleName(), VKsysEventLogInterface::SINGLE_THREADED, configDir, "");
    if (!own)
        return;
    if (own->Start()) {
        m_pLogger = own;
        m_bOwnsLogger = true;
    } else {
        delete own; // takes it out of the registry
    }
}

bool VKPlainModule::Finalize()
{
    FinalizeSpecial();
    if (m_bOwnsLogger && m_pLogger) {
        static_cast<VKsysEventLogInterface*>(m_pLogger)->Stop(); // MakeLogger made it; the object stays registered
        m_pLogger = nullptr;
    }
    return true;
}
