// The files "device_status_config" and "ports".
#include "ConfigurationFile.h"
#include "FieldText.h"
#include "VKConfiguration.h"
#include "VKioFile.h"
#include "VKstringCase.h"
#include "VKstringTrim.h"
#include "XmlReaderWriter.h"

#include <cstring>

namespace {

constexpr std::size_t kLongestLine = 1023;
constexpr const char* kFirstKey = "status_code:";

void TakeStatusLine(std::string_view line, VK_DEVICE_STATUS& status)
{
    vk::ForEachField(vk::kDeviceStatusFields, [&](const auto& field) {
        const std::size_t length = std::strlen(field.name);
        if (line.substr(0, length) != field.name)
            return;
        const std::string_view value = vk::Trimmed(line.substr(length));
        if constexpr (std::decay_t<decltype(field)>::template has<vk::TrueWord>)
            field.of(status) = value == field.template mark<vk::TrueWord>().word;
        else
            vk::SetFieldText(field.of(status), value);
    });
}

bool IsTrue(std::string_view text) { return text == "1" || vk::EqualNoCase(text, "true"); }

VK_TGATE_PORTINFO PortOf(const XmlReaderWriter::Node& node)
{
    VK_TGATE_PORTINFO port;
    vk::ForEachField(vk::kPortFields, [&](const auto& field) {
        const std::string_view value = vk::Trimmed(node.findChild(field.name).contentsText());
        if constexpr (std::is_same_v<typename std::decay_t<decltype(field)>::Value, bool>)
            field.of(port) = IsTrue(value);
        else
            vk::SetFieldText(field.of(port), value);
    });
    return port;
}

} // namespace

bool VKConfiguration::getDeviceStatusList(VK_DEVICE_STATUS_LIST* list)
{
    EmptyDeviceStatusList(list);
    VK_DEVICE_STATUS status;
    bool inGroup = false;
    const bool read = vk::ReadConfigurationLines(ConfPath("device_status_config"), kLongestLine, [&](auto raw) {
        const std::string_view line = vk::Trimmed(raw);
        if (line.substr(0, std::strlen(kFirstKey)) == kFirstKey) {
            if (inGroup)
                AddDeviceStatus(list, &status);
            status = {};
            inGroup = true;
        }
        TakeStatusLine(line, status);
    });
    if (inGroup)
        AddDeviceStatus(list, &status);
    if (!read)
        EmptyDeviceStatusList(list);
    return read;
}

bool VKConfiguration::GetPorts(const std::string& path, VK_TGATE_PORTINFO_HEADER* ports)
{
    EmptyPortInfo(ports);
    // Opened for reading alone: a document of XmlReaderWriter's own file would need the right to write.
    std::string text;
    if (!vk::ReadConfigurationText(VKioFile::IsDirectory(path) ? createPath(path, "ports") : path, text))
        return false;
    XmlReaderWriter document;
    if (!document.readFrom(text))
        return false;
    const XmlReaderWriter::Node root = document.getRootNode();
    for (XmlReaderWriter::Node node = root.firstChild(); !node.isNull(); node = node.nextSibling())
        if (node.nameText() == "port") {
            const VK_TGATE_PORTINFO port = PortOf(node);
            AddPortInfo(ports, &port);
        }
    return true;
}
