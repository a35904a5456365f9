#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "VKSqlDialect.h"

namespace vk {

/// SQL that is a part of a statement already, such as a clause: goes in as it stands.
struct SqlRaw
{
    std::string text;
};

/// A real number with all its digits and a point, whatever the locale; what is no finite number is NULL.
std::string RealLiteral(double value);

/// One argument of a statement, conditioned for it: a table by its name there, a text as a literal, a truth value, a
/// number.
template <class Value> std::string SqlArgument(const SqlDialect& dialect, const Value& value)
{
    if constexpr (std::is_same_v<Value, SqlRaw>)
        return value.text;
    else if constexpr (std::is_same_v<Value, TableName>)
        return dialect.TableOf(value);
    else if constexpr (std::is_same_v<Value, bool>)
        return dialect.Boolean(value);
    else if constexpr (std::is_enum_v<Value>)
        return std::to_string(static_cast<std::underlying_type_t<Value>>(value));
    else if constexpr (std::is_floating_point_v<Value>)
        return RealLiteral(value);
    else if constexpr (std::is_arithmetic_v<Value>)
        return std::to_string(value);
    else
        return dialect.Text(value);
}

/// The pattern with each "{}" replaced by the next argument; throws std::logic_error unless there is one for each.
std::string FillPattern(std::string_view pattern, std::initializer_list<std::string> arguments);

/// A statement, or a part of one, from a pattern such as "DELETE FROM {} WHERE id={}" and its values.
template <class... Values>
std::string SqlText(const SqlDialect& dialect, std::string_view pattern, const Values&... values)
{
    return FillPattern(pattern, {SqlArgument(dialect, values)...});
}

} // namespace vk
