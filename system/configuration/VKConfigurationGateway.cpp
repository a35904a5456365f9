// The files "xmppgateway_config.xml" and "mxp_config.xml".
#include "ConfigurationFile.h"
#include "VKConfiguration.h"
#include "VKGatewaySettingsXml.h"
#include "VKioFile.h"
#include "XmlReaderWriter.h"

namespace {

constexpr const char* kXMPPGatewayFile = "xmppgateway_config.xml";
constexpr const char* kMXPManagerFile = "mxp_config.xml";
constexpr const char* kRootElement = "xmpp_gateway_settings"; // of both files
constexpr std::int32_t kS2SPort = 5222;

/// Opened for reading alone: a document of XmlReaderWriter's own file would need the right to write.
void ReadDocument(const std::string& path, XmlReaderWriter& document)
{
    std::string text;
    if (!vk::ReadConfigurationText(path, text))
        throw XmlReaderWriter::NodeException("The file cannot be read.");
    if (!document.readFrom(text))
        throw XmlReaderWriter::NodeException("%s", document.parseError().c_str());
    if (document.getRootNode().nameText() != kRootElement)
        throw XmlReaderWriter::NodeException("The root element is not '%s'.", kRootElement);
}

/// Empties `error`, or sets it to what came of the work on the file at `path`; whether it went well.
template <class Work> bool Try(const std::string& path, std::string& error, Work&& work)
{
    error.clear();
    try {
        work();
    } catch (const XmlReaderWriter::NodeException& failure) {
        error = path + ": " + failure.getMessage();
    }
    return error.empty();
}

template <class Table, class Record> void ReadRecord(const std::string& path, const Table& table, Record& record)
{
    XmlReaderWriter document;
    ReadDocument(path, document);
    vk::settings::GatewaySettingsReader::Read(table, record, document.getRootNode());
}

template <class Table, class Record> void WriteRecord(const std::string& path, const Table& table, const Record& record)
{
    XmlReaderWriter document;
    if (VKioFile::IsExisting(path))
        ReadDocument(path, document);
    else
        document.createRootNode(kRootElement);
    document.setMutable(true);
    vk::settings::GatewaySettingsWriter::Write(table, record, document.getRootNode());
    std::string text;
    XmlReaderWriter proof;
    if (!document.toString(text) || !proof.readFrom(text))
        throw XmlReaderWriter::NodeException("A value has characters that no XML file can hold.");
    if (!vk::WriteConfigurationFile(path, text))
        throw XmlReaderWriter::NodeException("The file cannot be written.");
}

} // namespace

VKXMPPGatewaySettings* VKConfiguration::getXMPPGatewaySettings(bool reload)
{
    VKXMPPGatewaySettings* const kept = m_xmppGateway.Get();
    return kept && !reload ? kept : ReadXMPPGateway(reload);
}

VKXMPPGatewaySettings* VKConfiguration::ReadXMPPGateway(bool reload)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_xmppGateway.Get() && !reload)
        return m_xmppGateway.Get();
    const std::string path = ConfPath(kXMPPGatewayFile);
    VKXMPPGatewaySettings fresh;
    if (Try(path, m_strGatewayError, [&] { ReadRecord(path, vk::settings::kXMPPGatewayFields, fresh); }))
        return m_xmppGateway.Replace(std::make_unique<VKXMPPGatewaySettings>(fresh));
    return m_xmppGateway.Replace(nullptr);
}

VKMXPManagerSettings* VKConfiguration::getMXPManagerSettings(bool reload)
{
    VKMXPManagerSettings* const kept = m_mxpManager.Get();
    return kept && !reload ? kept : ReadMXPManager(reload);
}

VKMXPManagerSettings* VKConfiguration::ReadMXPManager(bool reload)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_mxpManager.Get() && !reload)
        return m_mxpManager.Get();
    const std::string path = ConfPath(kMXPManagerFile);
    VKMXPManagerSettings fresh;
    fresh.m_iS2SPort = kS2SPort;
    if (Try(path, m_strGatewayError, [&] { ReadRecord(path, vk::settings::kMXPManagerFields, fresh); })) {
        const std::string policy = fresh.m_strGeneralPolicy;
        ConvertJSONToGeneralPolicyData(policy, &fresh);
        return m_mxpManager.Replace(std::make_unique<VKMXPManagerSettings>(fresh));
    }
    return m_mxpManager.Replace(nullptr);
}

bool VKConfiguration::setXMPPGatewaySettings(VKXMPPGatewaySettings* settings)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    const std::string path = ConfPath(kXMPPGatewayFile);
    if (!Try(path, m_strGatewayError, [&] { WriteRecord(path, vk::settings::kXMPPGatewayFields, *settings); }))
        return false;
    m_xmppGateway.Replace(std::make_unique<VKXMPPGatewaySettings>(*settings));
    return true;
}

bool VKConfiguration::setMXPManagerSettings(VKMXPManagerSettings* settings)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    const std::string path = ConfPath(kMXPManagerFile);
    settings->m_strGeneralPolicy = ConvertGeneralPolicyToJSON(settings);
    if (!Try(path, m_strGatewayError, [&] { WriteRecord(path, vk::settings::kMXPManagerFields, *settings); }))
        return false;
    m_mxpManager.Replace(std::make_unique<VKMXPManagerSettings>(*settings));
    return true;
}

std::string VKConfiguration::getGatewaySettingsError()
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    return m_strGatewayError;
}
