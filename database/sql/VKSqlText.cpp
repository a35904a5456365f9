#include "VKSqlText.h"

#include <charconv>
#include <cmath>
#include <stdexcept>

namespace vk {

std::string RealLiteral(double value)
{
    if (!std::isfinite(value))
        return "NULL";
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

std::string FillPattern(std::string_view pattern, std::initializer_list<std::string> arguments)
{
    std::string out;
    std::string_view rest = pattern;
    for (const std::string& argument : arguments) {
        const std::size_t place = rest.find("{}");
        if (place == std::string_view::npos)
            throw std::logic_error("more values than places in [" + std::string(pattern) + "]");
        out.append(rest, 0, place).append(argument);
        rest.remove_prefix(place + 2);
    }
    if (rest.find("{}") != std::string_view::npos)
        throw std::logic_error("more places than values in [" + std::string(pattern) + "]");
    return out.append(rest);
}

} // namespace vk
