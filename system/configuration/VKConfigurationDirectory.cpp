// The file "dir": the server's directories and its further queues.
#include "ConfigurationFile.h"
#include "FieldText.h"
#include "VKConfiguration.h"
#include "VKprintf.h"
#include "VKstringCase.h"
#include "VKstringTrim.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>

namespace {

constexpr std::size_t kLongestLine = 1023;

/// "identifier<tab>name<tab>path"; nothing for a line that is no such row.
std::optional<VK_QUEUE_DIRECTORY_PATH> QueueOfLine(std::string_view line)
{
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string_view::npos ? first : line.find('\t', first + 1);
    if (second == std::string_view::npos)
        return std::nullopt;
    VK_QUEUE_DIRECTORY_PATH queue{};
    vk::SetFieldText(queue.id, line.substr(0, first));
    vk::SetFieldText(queue.name, line.substr(first + 1, second - first - 1));
    vk::SetFieldText(queue.path, line.substr(second + 1));
    if (queue.id == 0)
        return std::nullopt;
    return queue;
}

/// Sets the field of the key that the line begins with; false when there is none. Meant: the key is only a prefix.
bool TakeKeyLine(std::string_view line, VK_DIRECTORY_PATH& directory)
{
    return !vk::AllFields(vk::kDirectoryFields, [&](const auto& field) {
        if (line.substr(0, std::strlen(field.name)) != field.name)
            return true;
        const std::size_t tab = line.rfind('\t');
        if (tab != std::string_view::npos) {
            constexpr bool kAsSpool = std::decay_t<decltype(field)>::template has<vk::ReadAsSpool>;
            char(&target)[256] = kAsSpool ? directory.spool_dir : field.of(directory);
            vk::SetFieldText(target, vk::Trimmed(line.substr(tab + 1)));
        }
        return false;
    });
}

/// The queue that is there when the file names none.
VK_QUEUE_DIRECTORY_PATH DefaultQueue(const VK_DIRECTORY_PATH& directory)
{
    VK_QUEUE_DIRECTORY_PATH queue{};
    queue.id = 101;
    vk::SetFieldText(queue.name, "Default");
    vk::SetFieldText(queue.path, directory.spool_dir);
    return queue;
}

} // namespace

VK_DIRECTORY_PATH* VKConfiguration::getDirectory(bool force)
{
    VK_DIRECTORY_PATH* const kept = m_directory.Get();
    return kept && !force ? kept : ReadDirectory(force);
}

VK_DIRECTORY_PATH* VKConfiguration::ReadDirectory(bool force)
{
    const std::lock_guard<std::recursive_mutex> lock(m_readLock);
    if (m_directory.Get() && !force)
        return m_directory.Get();
    VK_DIRECTORY_PATH fresh{};
    std::vector<VK_QUEUE_DIRECTORY_PATH> queues;
    const bool read = vk::ReadConfigurationLines(ConfPath("dir"), kLongestLine, [&](std::string_view line) {
        if (TakeKeyLine(line, fresh))
            return;
        if (const auto queue = QueueOfLine(vk::Trimmed(line)))
            queues.push_back(*queue);
    });
    if (read && queues.empty())
        queues.push_back(DefaultQueue(fresh));
    std::stable_sort(queues.begin(), queues.end(),
                     [](const auto& a, const auto& b) { return VKstringNoCaseCmp(a.name, b.name) < 0; });
    KeepQueues(queues);
    return m_directory.Keep(fresh);
}

void VKConfiguration::KeepQueues(const std::vector<VK_QUEUE_DIRECTORY_PATH>& queues)
{
    m_pQueueDirectories.reset();
    m_iQueueDirectories = 0;
    if (queues.empty())
        return;
    const std::size_t size = queues.size() * sizeof(VK_QUEUE_DIRECTORY_PATH);
    m_pQueueDirectories.reset(static_cast<VK_QUEUE_DIRECTORY_PATH*>(malloc(size)));
    if (!m_pQueueDirectories)
        throw std::bad_alloc();
    std::memcpy(m_pQueueDirectories.get(), queues.data(), size);
    m_iQueueDirectories = static_cast<int>(queues.size());
}

VK_QUEUE_DIRECTORY_PATH* VKConfiguration::getQueueDirectory(bool force)
{
    getDirectory(force);
    return m_pQueueDirectories.get();
}

int VKConfiguration::getQueueDirectoryCount(bool force)
{
    getDirectory(force);
    return m_iQueueDirectories;
}

bool VKConfiguration::setDirectory()
{
    const VK_DIRECTORY_PATH& directory = *getDirectory(false);
    if (m_iQueueDirectories == 0)
        KeepQueues({DefaultQueue(directory)});

    std::string text;
    vk::ForEachField(vk::kDirectoryFields, [&](const auto& field) {
        constexpr bool kAsSpool = std::decay_t<decltype(field)>::template has<vk::ReadAsSpool>;
        const char* value = field.of(directory);
        if (kAsSpool && !*value)
            value = directory.spool_dir;
        if (value == directory.spool_dir && !kAsSpool && m_iQueueDirectories > 1)
            return; // the line of the second key carries the main spool then
        text += printfToString("%s:\t\t%s\n", field.name, value);
    });
    for (int i = 0; i < m_iQueueDirectories; ++i) {
        const VK_QUEUE_DIRECTORY_PATH& queue = m_pQueueDirectories.get()[i];
        text += printfToString("%d\t%s\t%s\n", queue.id, queue.name, queue.path);
    }
    return vk::WriteConfigurationFile(ConfPath("dir"), text);
}
