#pragma once

#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>

#include "VKField.h"
#include "VKMXPmMarks.h"

/// \file
/// What a packet's table may hold besides fields, and what can be told about a row at compile time.

namespace vk::mxp {

// A table is written with `using namespace vk::mxp`: its words then come from the protocol alone.
using vk::Field;
using vk::Fields;

/// An element that is no field of its own: its rows are fields of the same record.
template <class Table, class... Marks> class GroupRow : private Marks...
{
public:
    constexpr GroupRow(const char* elementName, Table table, Marks... marks)
        : Marks(marks)..., name(elementName), rows(table)
    {
    }

    template <class Mark> static constexpr bool has = (std::is_same_v<Mark, Marks> || ...);

    template <class Mark> constexpr const Mark& mark() const
    {
        static_assert(has<Mark>, "this group does not carry that mark");
        return *this;
    }

    const char* name;
    Table rows;
};

/// Makes a group: Group("location", Fields(Field<&P::m_dLatitude>("latitude", Attribute{}), ...), Optional{}).
template <class Table, class... Marks>
constexpr GroupRow<Table, Marks...> Group(const char* name, Table rows, Marks... marks)
{
    return GroupRow<Table, Marks...>(name, rows, marks...);
}

/// An attribute that is written with the same text every time and never read.
struct FixedRow
{
    template <class Mark> static constexpr bool has = false;

    const char* name;
    const char* text;
};

/// A flag in the words "true" and "false", set by the first alone.
template <auto Member, class... Marks> constexpr auto Flag(const char* name, Marks... marks)
{
    return Field<Member>(name, InWords{}, SetByWord{"true"}, marks...);
}

/// The same in the attribute `enable` of an element.
template <auto Member, class... Marks> constexpr auto EnableFlag(const char* name, Marks... marks)
{
    return Flag<Member>(name, InAttribute{"enable"}, marks...);
}

/// A value that may be left alone, with what it says about itself: whether it is there at all.
template <class T> inline constexpr bool kIsOptional = false;
template <class T> inline constexpr bool kIsOptional<std::optional<T>> = true;

template <class Row> inline constexpr bool kIsGroup = false;
template <class Table, class... Marks> inline constexpr bool kIsGroup<GroupRow<Table, Marks...>> = true;

template <class Row> inline constexpr bool kIsFixed = std::is_same_v<Row, FixedRow>;

/// The table of a record: its own, Record::Fields(). Specialise it for a record that stands below the protocol.
template <class T, class = void> struct TableOf
{
};
template <class T> struct TableOf<T, std::void_t<decltype(T::Fields())>>
{
    static constexpr auto Fields() { return T::Fields(); }
};

/// Whether a type has a table.
template <class T, class = void> inline constexpr bool kIsRecord = false;
template <class T> inline constexpr bool kIsRecord<T, std::void_t<decltype(TableOf<T>::Fields())>> = true;

/// Where a row stands in the element of its table.
template <class Row>
inline constexpr bool kInStartTag = kIsFixed<Row> || Row::template has<Attribute> || Row::template has<CountOf>;
template <class Row> inline constexpr bool kIsContents = Row::template has<Contents>;

/// Whether a row depends on a flag of its record.
template <class Record, class Row> inline constexpr bool kIsConditional = Row::template has<Unless<Record>>;

/// Whether the element or attribute of a row may be missing when read. Optional values and what is not always written
/// may.
template <class Record, class Row> constexpr bool MayMiss()
{
    bool may = Row::template has<Optional> || Row::template has<OmitEmpty> || Row::template has<OmitUnset> ||
               kIsConditional<Record, Row>;
    if constexpr (!kIsGroup<Row>)
        may = may || kIsOptional<typename Row::Value>;
    return may;
}

/// Whether one of a table's rows is of a kind.
template <template <class> class Test, class Table> struct AnyRow;
template <template <class> class Test, class... Rows>
struct AnyRow<Test, std::tuple<Rows...>> : std::bool_constant<(Test<Rows>::value || ...)>
{
};
template <class Row> struct IsInside : std::bool_constant<!kInStartTag<Row>>
{
};
template <class Row> struct IsContents : std::bool_constant<kIsContents<Row>>
{
};

/// Calls visit(row) for each field of a table, those in groups included, in table order.
template <class Table, class Visit> constexpr void ForEachFlatField(const Table& table, Visit&& visit)
{
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (kIsGroup<Row>)
            ForEachFlatField(row.rows, visit);
        else if constexpr (!kIsFixed<Row> && !Row::template has<CountOf>)
            visit(row);
    });
}

} // namespace vk::mxp
