#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "VKRecordText.h"
#include "VKSqlText.h"

namespace vk {

namespace detail {

template <class Value> constexpr ColumnKind KindOf()
{
    if (std::is_same_v<Value, bool>)
        return ColumnKind::Boolean;
    if (std::is_same_v<Value, char*>)
        return ColumnKind::Text;
    if (std::is_floating_point_v<Value>)
        return ColumnKind::Real;
    return std::is_array_v<Value> || std::is_same_v<Value, std::string> ? ColumnKind::Varchar : ColumnKind::Integer;
}

template <class Row> constexpr ColumnKind KindOfField()
{
    if (Row::template has<PrimaryKey>)
        return ColumnKind::Id;
    return Row::template has<LongText> ? ColumnKind::Text : KindOf<typename Row::Value>();
}

template <class Row> int WidthOf(const Row& field)
{
    if constexpr (Row::template has<Varchar>)
        return field.template mark<Varchar>().width;
    else if constexpr (std::is_array_v<typename Row::Value>)
        return static_cast<int>(sizeof(typename Row::Value)) - 1;
    else
        return 0;
}

inline void AddWithComma(std::string& list, const std::string& item)
{
    if (!list.empty())
        list += ", ";
    list += item;
}

} // namespace detail

/// One column of CREATE TABLE.
template <class Row> std::string ColumnDefinition(const SqlDialect& dialect, const Row& field)
{
    static_assert(!std::is_same_v<typename Row::Value, std::string> || Row::template has<Varchar> ||
                      Row::template has<LongText>,
                  "a std::string needs the width of its column");
    std::string text =
        std::string(field.name) + " " + dialect.ColumnType(detail::KindOfField<Row>(), detail::WidthOf(field));
    if (Row::template has<NotNull>)
        text += " NOT NULL";
    if (Row::template has<DefaultZero>)
        text += " DEFAULT '0'";
    if constexpr (Row::template has<SqlDefault>)
        text += std::string(" DEFAULT ") + field.template mark<SqlDefault>().literal;
    return text;
}

/// The column text of CREATE TABLE.
template <class Fields> std::string ColumnsText(const SqlDialect& dialect, const Fields& fields)
{
    std::string text;
    ForEachField(fields, [&](const auto& field) { detail::AddWithComma(text, ColumnDefinition(dialect, field)); });
    return text;
}

/// A member's value as a literal; a text that has no end, or that the backend cannot store as it is, is refused with the
/// field's name.
template <class Row, class Record>
std::string FieldLiteral(const SqlDialect& dialect, const Row& field, const Record& record)
{
    const auto& value = field.of(record);
    using Value = typename Row::Value;
    const auto literal = [&](std::string_view text) {
        dialect.RequireStorable(text, field.name);
        return dialect.Text(text);
    };
    if constexpr (std::is_array_v<Value>) {
        return literal(GetText(value, sizeof(Value), field.name));
    } else if constexpr (std::is_same_v<Value, char*>) {
        return literal(value ? value : "");
    } else if constexpr (std::is_same_v<Value, std::string>) {
        return literal(value);
    } else {
        return SqlArgument(dialect, value);
    }
}

/// Refuses the first std::string of a record that is longer than its column, by name. The other members cannot be.
template <class Fields, class Record> void RequireWidths(const Fields& fields, const Record& record)
{
    ForEachField(fields, [&](const auto& field) {
        using Row = std::decay_t<decltype(field)>;
        if constexpr (Row::template has<Varchar>)
            RequireFits(field.of(record), static_cast<std::size_t>(field.template mark<Varchar>().width) + 1,
                        field.name);
    });
}

enum class RowId { FromStore, FromRecord };

/// "INSERT INTO name (columns) VALUES (values)", without the ending.
template <class Fields, class Record>
std::string InsertText(const SqlDialect& dialect, const Table<Fields>& table, const Record& record,
                       RowId id = RowId::FromStore)
{
    std::string columns;
    std::string values;
    ForEachField(table.fields, [&](const auto& field) {
        using Row = std::decay_t<decltype(field)>;
        if (Row::template has<NotWritten> || (Row::template has<PrimaryKey> && id == RowId::FromStore))
            return;
        detail::AddWithComma(columns, field.name);
        detail::AddWithComma(values, FieldLiteral(dialect, field, record));
    });
    return SqlText(dialect, "INSERT INTO {} ({}) VALUES ({})", table.name, SqlRaw{columns}, SqlRaw{values});
}

/// "UPDATE name SET column=value, ... WHERE id=...", without the ending.
template <class Fields, class Record>
std::string UpdateText(const SqlDialect& dialect, const Table<Fields>& table, const Record& record)
{
    std::string changes;
    std::string key;
    ForEachField(table.fields, [&](const auto& field) {
        using Row = std::decay_t<decltype(field)>;
        if (Row::template has<NotWritten> || Row::template has<WrittenOnce>)
            return;
        const std::string assigned = std::string(field.name) + "=" + FieldLiteral(dialect, field, record);
        if (Row::template has<PrimaryKey>)
            key = assigned;
        else
            detail::AddWithComma(changes, assigned);
    });
    return SqlText(dialect, "UPDATE {} SET {} WHERE {}", table.name, SqlRaw{changes}, SqlRaw{key});
}

/// The literals of a record that no error may show.
template <class Fields, class Record>
std::vector<std::string> SecretLiterals(const SqlDialect& dialect, const Fields& fields, const Record& record)
{
    std::vector<std::string> secrets;
    ForEachField(fields, [&](const auto& field) {
        if (std::decay_t<decltype(field)>::template has<Secret>)
            secrets.push_back(FieldLiteral(dialect, field, record));
    });
    return secrets;
}

} // namespace vk
