#include "VKMessageConstantsReader.h"

#include <cstdlib>

namespace vk {

namespace {

constexpr std::string_view kDefine = "#define";
constexpr std::string_view kSpace = " \t\r\n\v\f";

std::string_view Trimmed(std::string_view text)
{
    const std::size_t from = text.find_first_not_of(kSpace);
    if (from == std::string_view::npos)
        return {};
    return text.substr(from, text.find_last_not_of(kSpace) - from + 1);
}

} // namespace

bool MessageConstantsReader::Take(std::string_view line)
{
    line = Trimmed(line);
    if (m_expect == Expect::Text)
        return TakeText(line);
    if (line.substr(0, kDefine.size()) == kDefine) {
        line = Trimmed(line.substr(kDefine.size()));
        const std::string_view name = line.substr(0, line.find_first_of(kSpace));
        line.remove_prefix(name.size());
        const std::string rest(line);
        char* behind = nullptr;
        m_entry = {std::string(name), static_cast<unsigned long>(std::strtol(rest.c_str(), &behind, 10)), ""};
        m_expect = behind == rest.c_str() ? Expect::Define : Expect::Comment;
    }
    const std::size_t comment = m_expect == Expect::Comment ? line.find("/*") : std::string_view::npos;
    if (comment == std::string_view::npos)
        return false;
    m_expect = Expect::Text;
    return TakeText(line.substr(comment + 2));
}

bool MessageConstantsReader::TakeText(std::string_view text)
{
    const std::size_t end = text.find("*/");
    const std::string_view part = Trimmed(text.substr(0, end));
    if (!m_entry.text.empty() && !part.empty())
        m_entry.text += ' ';
    m_entry.text += part;
    if (end == std::string_view::npos)
        return false;
    m_expect = Expect::Define;
    return true;
}

} // namespace vk
