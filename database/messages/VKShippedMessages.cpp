#include "VKShippedMessages.h"

#include "VKMessageConstantsReader.h"

#include <map>

namespace vk {

std::string ShippedMessage(unsigned long id)
{
    static const auto texts = [] {
        std::map<unsigned long, std::string> read;
        MessageConstantsReader reader;
        const std::string lines = kShippedMessageConstants;
        for (std::size_t at = 0; at < lines.size();) {
            const std::size_t end = lines.find('\n', at);
            if (reader.Take(lines.substr(at, end - at)))
                read[reader.Get().id] = reader.Get().text;
            at = end == std::string::npos ? lines.size() : end + 1;
        }
        return read;
    }();
    const auto found = texts.find(id);
    return found == texts.end() ? std::string() : found->second;
}

} // namespace vk
