#include "VKRecordText.h"

#include <cstring>
#include <string>

#include "VKDBexception.h"

namespace vk {

void RequireFits(std::string_view text, std::size_t capacity, const char* fieldName)
{
    if (text.find('\0') != std::string_view::npos)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("The text for '") + fieldName + "' holds a zero byte.");
    if (text.size() >= capacity)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("The text for '") + fieldName + "' is " + std::to_string(text.size()) +
                                " bytes long; at most " + std::to_string(capacity - 1) + " fit.");
}

void SetText(char* field, std::size_t capacity, std::string_view text, const char* fieldName)
{
    RequireFits(text, capacity, fieldName);
    std::memcpy(field, text.data(), text.size());
    std::memset(field + text.size(), 0, capacity - text.size());
}

std::string_view GetText(const char* field, std::size_t capacity, const char* fieldName)
{
    const std::size_t length = strnlen(field, capacity);
    if (length == capacity)
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            std::string("The text for '") + fieldName + "' has no end within its " +
                                std::to_string(capacity) + " bytes.");
    return {field, length};
}

} // namespace vk
