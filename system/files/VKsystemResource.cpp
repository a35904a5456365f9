#include "VKsystemResource.h"

#include "VKascii.h"
#include "VKfileHandle.h"

#include <vector>

namespace {

constexpr std::size_t kKeyLength = 10;
constexpr std::size_t kTextStart = kKeyLength + 1;
constexpr std::size_t kLineSize = 65535; // with the terminator; what is longer counts as a line of its own

std::string WithoutBlanksBehind(const std::string& key) { return key.substr(0, key.find_last_not_of(' ') + 1); }

} // namespace

VKsystemResource::~VKsystemResource() = default;

bool VKsystemResource::Load(const std::string& path)
{
    const vk::FileStream file(fopen(path.c_str(), "r"));
    if (!file)
        return false;
    std::vector<char> line(kLineSize);
    while (fgets(line.data(), static_cast<int>(line.size()), file.get()) != nullptr)
        TakeLine(line.data());
    return true;
}

void VKsystemResource::TakeLine(const std::string& line)
{
    if (line.size() <= kKeyLength || line.front() == '#' || !vk::IsSpace(line[kKeyLength]))
        return;
    const std::string text = line.size() > kTextStart ? line.substr(kTextStart) : "";
    m_mapTexts[WithoutBlanksBehind(line.substr(0, kKeyLength))] = text.substr(0, text.find_last_not_of("\r\n") + 1);
}

void VKsystemResource::Unload() { m_mapTexts.clear(); }

std::string VKsystemResource::GetString(const std::string& key) const
{
    const auto found = m_mapTexts.find(WithoutBlanksBehind(key));
    return found == m_mapTexts.end() ? "Unknown" : found->second;
}
