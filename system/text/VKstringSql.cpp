#include "VKstringSql.h"

#include "VKescape.h"
#include "VKstringNumber.h"

#include <cmath>

namespace {

constexpr vk::Escape kQuoteRows[] = {{'\'', "''"}};
constexpr vk::Escape kLikeRows[] = {{'\'', "''"}, {'%', "\\%"}, {'_', "\\_"}, {'[', "\\["}, {'\\', "\\\\"}};
constexpr vk::Escape kFilterRows[] = {{'\'', "''"}, {'%', "\\%"},   {'_', "\\_"},
                                      {'[', "\\["}, {'\\', "\\\\"}, {'*', "%"}};

constexpr vk::EscapeTable kQuote(kQuoteRows);
constexpr vk::EscapeTable kLike(kLikeRows);
constexpr vk::EscapeTable kFilter(kFilterRows);

template <class Number> std::string FiniteOrNull(Number value)
{
    return std::isfinite(value) ? vk::NumberText(value) : "NULL";
}

} // namespace

std::string VKstringSQLEncode(const std::string& text) { return kQuote.Encode(text); }

std::string VKstringSQLLikeEncode(const std::string& text) { return kLike.Encode(text); }

std::string VKstringSQLFilterEncode(const std::string& text) { return kFilter.Encode(text); }

namespace vk {

std::string SqlNumber(long long value) { return std::to_string(value); }
std::string SqlNumber(unsigned long long value) { return std::to_string(value); }
std::string SqlNumber(double value) { return FiniteOrNull(value); }
std::string SqlNumber(float value) { return FiniteOrNull(value); }

} // namespace vk
