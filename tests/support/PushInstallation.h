#pragma once

#include "TempDir.h"
#include "VKConfiguration.h"

#include <filesystem>
#include <functional>
#include <stdexcept>

namespace vktest {

/// An installation of one test, whose "mxp_config.xml" says what the test wants.
class PushInstallation
{
public:
    PushInstallation()
    {
        std::filesystem::create_directories(m_root.Path() / "config");
        m_configuration.setConfDirectory(m_root / "config");
        m_configuration.getGlobalSettings(true);
    }

    /// Writes the settings file anew: the defaults, and what `change` makes of them.
    void Configure(const std::function<void(VKMXPManagerSettings&)>& change)
    {
        VKMXPManagerSettings settings;
        change(settings);
        if (!m_configuration.setMXPManagerSettings(&settings))
            throw std::runtime_error(m_configuration.getGatewaySettingsError());
    }

    TempDir& Root() { return m_root; }
    VKConfiguration& Configuration() { return m_configuration; }

private:
    TempDir m_root;
    VKConfiguration& m_configuration = *VKConfiguration::getVKConfiguration();
};

} // namespace vktest
