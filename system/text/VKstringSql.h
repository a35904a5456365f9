#pragma once

#include <string>
#include <type_traits>

/// \file
/// Values inside SQL texts. Statements are built as text; these functions are what makes a value safe to stand in one.

/// For a text between single quotes: each single quote doubled, and nothing else.
[[nodiscard]] std::string VKstringSQLEncode(const std::string& text);

/// For a text in a LIKE pattern with ESCAPE '\': as above, and "\" in front of "%", "_", "[" and "\".
[[nodiscard]] std::string VKstringSQLLikeEncode(const std::string& text);

/// For a filter that a person typed: as for LIKE, and the wild card "*" becomes "%".
[[nodiscard]] std::string VKstringSQLFilterEncode(const std::string& text);

namespace vk {

std::string SqlNumber(long long value);
std::string SqlNumber(unsigned long long value);
std::string SqlNumber(double value);
std::string SqlNumber(float value);

} // namespace vk

/// A number's text: integers in decimal, the others in the shortest form that reads back as the same value, with a
/// decimal point whatever the locale. What is no number ("nan", "inf") becomes NULL.
template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
[[nodiscard]] std::string VKstringSQLEncode(Number value)
{
    if constexpr (std::is_floating_point_v<Number>)
        return vk::SqlNumber(value);
    else if constexpr (std::is_signed_v<Number>)
        return vk::SqlNumber(static_cast<long long>(value));
    else
        return vk::SqlNumber(static_cast<unsigned long long>(value));
}

/// In a filter a number is its text as well.
template <class Number, class = std::enable_if_t<std::is_arithmetic_v<Number>>>
[[nodiscard]] std::string VKstringSQLFilterEncode(Number value)
{
    return VKstringSQLEncode(value);
}
