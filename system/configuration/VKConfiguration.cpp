#include "VKConfiguration.h"

#include "ConfigurationFile.h"
#include "VKioException.h"
#include "VKioFile.h"
#include "VKstringPath.h"

#include <cstdlib>
#include <cstring>
#include <unistd.h>

VKConfiguration* VKConfiguration::me = nullptr;

namespace {

constexpr const char* kInstallationPath = "/usr/local/vardock";
constexpr const char* kRootVariable = "VKMXP_ROOT";

/// The fixed path, unless the process says otherwise: a host that loads this library as its driver resolves two functions
/// only, so this is its one way to name another root.
std::string InstallationPath()
{
    const char* const root = secure_getenv(kRootVariable);
    return root != nullptr && root[0] == '/' ? root : kInstallationPath;
}

constexpr vk::CodeText<unsigned int> kDeviceTypes[] = {{1, "Receiver"},    {2, "Group"},  {3, "On-duty"},
                                                       {4, "Escalation"},  {6, "Rotate"}, {7, "Follow-me"},
                                                       {8, "Subscription"}};

} // namespace

void VKConfiguration::FreeMemory::operator()(void* memory) const { free(memory); }

VKConfiguration* VKConfiguration::getVKConfiguration()
{
    static std::once_flag once;
    std::call_once(once, [] {
        me = new VKConfiguration; // lives as long as the process
        me->loadPrimaryConfiguration(false);
    });
    return me;
}

bool VKConfiguration::loadPrimaryConfiguration(bool force)
{
    getConfDirectory(force);
    getProductVersion(force);
    getDirectory(force);
    const bool hasSource = getDataSource(force) != nullptr;
    return hasSource && m_pQueueDirectories;
}

void VKConfiguration::setConfDirectory(const std::string& dir)
{
    m_strConfDir = dir;
    m_strRootDir = dir + "/../";
    m_strTempDir = m_strRootDir + "temp/";
}

const char* VKConfiguration::getConfDirectoryPtr(bool force)
{
    if (m_strConfDir.empty() || force) {
        if (m_strRootDir.empty())
            m_strRootDir = createPath(InstallationPath(), "");
        m_strConfDir = createPath(m_strRootDir, "config") + "/";
        m_strTempDir = createPath(m_strRootDir, "temp") + "/";
        m_strBinDir = createPath(m_strRootDir, "bin") + "/";
    }
    return m_strConfDir.c_str();
}

const char* VKConfiguration::getBinDirectoryPtr(bool force)
{
    if (m_strBinDir.empty() || force)
        getConfDirectoryPtr(true);
    return m_strBinDir.c_str();
}

const char* VKConfiguration::getTempDirectoryPtr(bool force)
{
    if (m_strTempDir.empty() || force)
        getConfDirectoryPtr(true);
    return m_strTempDir.c_str();
}

const char* VKConfiguration::getRootDirectoryPtr(bool force)
{
    if (m_strRootDir.empty() || force)
        getConfDirectoryPtr(true);
    return m_strRootDir.c_str();
}

std::string VKConfiguration::getProductVersion(bool force)
{
    constexpr std::size_t kLongest = 100;
    if (!m_strProductVersion.empty() && !force)
        return m_strProductVersion;
    char bytes[kLongest] = {};
    const long got = vk::ReadConfigurationBytes(ConfPath("version"), bytes, sizeof bytes);
    if (got < 0)
        return m_strProductVersion = "Unknown";
    const std::string_view text(bytes, static_cast<std::size_t>(got));
    const std::size_t end = text.find('\n');
    return m_strProductVersion = text.substr(0, end == std::string_view::npos ? end : end + 1);
}

std::string VKConfiguration::getDeviceTypeName(unsigned int type) { return vk::TextOfCode(kDeviceTypes, type); }

bool VKConfiguration::isBackupInProgress()
{
    try {
        VKioFile file(createPath(getTempDirectory(false), "backupflag"));
        file.Open("r");
        return true;
    } catch (const VKioException&) {
        return false;
    }
}

std::string VKConfiguration::getUpgradeDirectory() { return RootPath("upgrades"); }
std::string VKConfiguration::getUpgradePackageDirectory() { return createPath(getUpgradeDirectory(), "packages"); }
std::string VKConfiguration::getUpgradeArchiveDirectory() { return createPath(getUpgradeDirectory(), "archive"); }
std::string VKConfiguration::getUpgradeExtractDirectory() { return createPath(getUpgradeDirectory(), "extracts"); }
std::string VKConfiguration::GetCABundlePath() { return ConfPath("ca-bundle.crt"); }
std::string VKConfiguration::GetClientCertPath() { return ConfPath("client.crt"); }
std::string VKConfiguration::GetClientKeyPath() { return ConfPath("client.key"); }
std::string VKConfiguration::GetSerialGatewayConfigFileName() { return ConfPath("serial_gateway_config.xml"); }

char* VKConfiguration::createPath(char* out, const char* dir, const char* name)
{
    const std::string path = createPath(std::string(dir ? dir : ""), std::string(name ? name : ""));
    std::memcpy(out, path.c_str(), path.size() + 1);
    return out;
}

std::string VKConfiguration::createPath(const std::string& dir, const std::string& name)
{
    return !dir.empty() && dir.back() == '/' ? dir + name : dir + "/" + name;
}

bool VKConfiguration::setFileName(std::string target, std::string source)
{
    if (!VKioFile::IsExisting(source))
        return false;
    unlink(target.c_str());
    return VKioFile::RenameFile(source, target);
}

void VKConfiguration::pathFilter(char* path) { VKstringPathFilter(path); }

VK_SYSTEM_ATTENDANT_SETTINGS* VKConfiguration::getSystemAttendantSettings(bool force)
{
    VK_SYSTEM_ATTENDANT_SETTINGS* const kept = m_systemAttendant.Get();
    return kept && !force ? kept : ReadSystemAttendant(force);
}

VK_SYSTEM_ATTENDANT_SETTINGS* VKConfiguration::ReadSystemAttendant(bool force)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_systemAttendant.Get() && !force)
        return m_systemAttendant.Get();
    VK_SYSTEM_ATTENDANT_SETTINGS fresh{};
    vk::ReadConfigurationBytes(ConfPath("sysinfo"), fresh.bytes, sizeof fresh.bytes);
    return m_systemAttendant.Keep(fresh);
}

bool VKConfiguration::setSystemAttendantSettings()
{
    const auto* bytes = reinterpret_cast<const char*>(getSystemAttendantSettings(false)->bytes);
    return vk::WriteConfigurationFile(ConfPath("sysinfo"), {bytes, sizeof(VK_SYSTEM_ATTENDANT_SETTINGS)});
}
