#pragma once

#include <cstddef>
#include <string_view>
#include <strings.h>
#include <tuple>
#include <type_traits>
#include <utility>

/// \file
/// The field description: a record, a packet, a settings file and a table are all named fields of a C++ struct. The
/// fields are listed once, in a constant table beside the struct, and everything else is a walk over that table:
///
///     inline constexpr auto kDepartmentFields = vk::Fields(
///         vk::Field<&VK_DEPARTMENT::id>("id", PrimaryKey{}),
///         vk::Field<&VK_DEPARTMENT::name>("name", Varchar{50}));
///
///     vk::ForEachField(kDepartmentFields, [&](const auto& field) { bind(field.name, field.of(record)); });
///
/// What a field is besides its name and its member is said with marks: small literal types that belong to the walk
/// that reads them (a column width, "required", "written verbatim"). The member's type picks how the value is read,
/// written and compared; a mark says where one field departs from its type. A walk asks for marks at compile time.

namespace vk {

namespace detail {

template <class T>
struct MemberPointer;

template <class R, class V>
struct MemberPointer<V R::*>
{
    using Record = R;
    using Value = V;
};

} // namespace detail

/// One row of a field table. Immutable, constant, holds the name by pointer: give it a string literal.
template <auto Member, class... Marks>
class FieldRow : private Marks...
{
public:
    using Record = typename detail::MemberPointer<decltype(Member)>::Record;
    using Value = typename detail::MemberPointer<decltype(Member)>::Value;

    constexpr explicit FieldRow(const char* fieldName, Marks... marks) : Marks(marks)..., name(fieldName) {}

    /// The field of a record, for reading and for writing.
    static constexpr Value& of(Record& record) { return record.*Member; }
    static constexpr const Value& of(const Record& record) { return record.*Member; }

    /// Whether the row carries a mark of this type.
    template <class Mark>
    static constexpr bool has = (std::is_same_v<Mark, Marks> || ...);

    /// The mark of this type; only for rows that carry it.
    template <class Mark>
    constexpr const Mark& mark() const
    {
        static_assert(has<Mark>, "this field does not carry that mark");
        return *this;
    }

    const char* name;
};

/// Makes a row from a member pointer: Field<&VK_DEPARTMENT::name>("name", Varchar{50}).
template <auto Member, class... Marks>
constexpr FieldRow<Member, Marks...> Field(const char* name, Marks... marks)
{
    return FieldRow<Member, Marks...>(name, marks...);
}

/// A mark for every kind of table: the value is not to be shown. Errors, logs and listings have "***" in its place.
struct Secret
{
};

/// Joins rows into a table.
template <class... Rows>
constexpr std::tuple<Rows...> Fields(Rows... rows)
{
    return std::tuple<Rows...>(rows...);
}

/// How many rows a table has.
template <class... Rows>
constexpr std::size_t FieldCount(const std::tuple<Rows...>&)
{
    return sizeof...(Rows);
}

/// Calls visit(row) for each row, in table order.
template <class Table, class Visit>
constexpr void ForEachField(const Table& table, Visit&& visit)
{
    std::apply([&](const auto&... rows) { (static_cast<void>(visit(rows)), ...); }, table);
}

/// True when test(row) is true for every row; stops at the first row that fails.
template <class Table, class Test>
constexpr bool AllFields(const Table& table, Test&& test)
{
    return std::apply([&](const auto&... rows) { return (test(rows) && ...); }, table);
}

/// One row of a table from a number to its text.
template <class Code>
struct CodeText
{
    Code code;
    const char* text;
};

/// The text of the first row with this code, or the fallback.
template <class Code, std::size_t N>
constexpr const char* TextOfCode(const CodeText<Code> (&table)[N], Code code, const char* fallback = "")
{
    for (const auto& row : table)
        if (row.code == code)
            return row.text;
    return fallback;
}

enum class Case { Exact, Ignored };

/// The code of the first row with this text, or the fallback.
template <class Code, std::size_t N>
Code CodeOfText(const CodeText<Code> (&table)[N], std::string_view text, Code fallback, Case letters = Case::Exact)
{
    for (const auto& row : table) {
        const std::string_view word(row.text);
        const bool same = letters == Case::Exact
                              ? word == text
                              : word.size() == text.size() && strncasecmp(word.data(), text.data(), text.size()) == 0;
        if (same)
            return row.code;
    }
    return fallback;
}

} // namespace vk
