// The file "global": a header and the global settings record as it stands in memory.
#include "ConfigurationFile.h"
#include "FieldText.h"
#include "VKConfiguration.h"
#include "VKioFile.h"
#include "VKprintf.h"

#include <cstring>

namespace {

template <class Row, class Value> constexpr bool kHas = std::decay_t<Row>::template has<Value>;

void SetDefaults(VK_GLOBAL_SETTINGS& settings)
{
    vk::ForEachField(vk::kGlobalFields, [&](const auto& field) {
        if constexpr (kHas<decltype(field), vk::Default<std::uint32_t>>)
            field.of(settings) = field.template mark<vk::Default<std::uint32_t>>().value;
        else
            vk::SetFieldText(field.of(settings), field.template mark<vk::Default<const char*>>().value);
    });
}

void CheckRanges(VK_GLOBAL_SETTINGS& settings)
{
    vk::ForEachField(vk::kGlobalFields, [&](const auto& field) {
        if constexpr (kHas<decltype(field), vk::Range>) {
            const vk::Range& range = field.template mark<vk::Range>();
            auto& value = field.of(settings);
            if (value < range.low || value > range.high)
                value = static_cast<std::decay_t<decltype(value)>>(range.otherwise);
        }
    });
}

} // namespace

VK_GLOBAL_SETTINGS* VKConfiguration::getGlobalSettings(bool force)
{
    VK_GLOBAL_SETTINGS* const kept = m_global.Get();
    return kept && !force ? kept : ReadGlobalSettings(force);
}

VK_GLOBAL_SETTINGS* VKConfiguration::ReadGlobalSettings(bool force)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_global.Get() && !force)
        return m_global.Get();
    VK_GLOBAL_SETTINGS fresh{};
    m_globalHeader = {};
    SetDefaults(fresh);

    const std::string path = ConfPath("global");
    std::array<unsigned char, sizeof m_globalHeader + sizeof fresh> bytes{};
    const long got = vk::ReadConfigurationBytes(path, bytes.data(), bytes.size());
    if (got >= static_cast<long>(m_globalHeader.size())) {
        constexpr std::size_t kWord = sizeof(std::uint32_t); // no field is taken in part
        const std::size_t length = (static_cast<std::size_t>(got) - m_globalHeader.size()) / kWord * kWord;
        std::memcpy(m_globalHeader.data(), bytes.data(), m_globalHeader.size());
        std::memcpy(&fresh, bytes.data() + m_globalHeader.size(), length);
    }
    CheckRanges(fresh);
    if (got < 0 && !VKioFile::IsExisting(path))
        WriteGlobalSettings(fresh); // a new installation gets the file; one that cannot be read is left alone
    VK_GLOBAL_SETTINGS* const settings = m_global.Keep(fresh);
    for (const GlobalSettingsObserver& observer : m_observers)
        observer(*settings);
    return settings;
}

bool VKConfiguration::setGlobalSettings() { return WriteGlobalSettings(*getGlobalSettings(false)); }

bool VKConfiguration::WriteGlobalSettings(const VK_GLOBAL_SETTINGS& settings)
{
    std::string content(reinterpret_cast<const char*>(m_globalHeader.data()), m_globalHeader.size());
    content.append(reinterpret_cast<const char*>(&settings), sizeof settings);
    bool written = vk::WriteConfigurationFile(ConfPath("global"), content);
    if (settings.cluster_enabled) // of the cluster's settings only the switch stands at a place that is known here
        written =
            vk::WriteConfigurationFile(ConfPath("vdk_cluster.cfg"), printfToString("%u\n", settings.cluster_enabled)) &&
            written;
    return written;
}

void VKConfiguration::observeGlobalSettings(GlobalSettingsObserver observer)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (const VK_GLOBAL_SETTINGS* const settings = m_global.Get())
        observer(*settings);
    m_observers.push_back(std::move(observer));
}
