#pragma once

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <type_traits>

#include "VKDBiResultSet.h"
#include "VKRecordText.h"
#include "VKTableField.h"

namespace vk {

/// One column's value into one member. A char* member takes over a malloc-owned copy and frees what it held. A column is
/// a VKDBiRowField, or what reads as one does.
template <class Value, class Column> void ReadValue(Value& member, const Column& field, const char* name)
{
    if constexpr (std::is_array_v<Value>) {
        SetText(member, field.GetValueString(), name);
    } else if constexpr (std::is_same_v<Value, std::string>) {
        member = field.GetValueString();
    } else if constexpr (std::is_same_v<Value, char*>) {
        std::free(member);
        member = nullptr;
        if (field.GetValuePtr() != nullptr && (member = strdup(field.GetValuePtr())) == nullptr)
            throw std::bad_alloc();
    } else if constexpr (std::is_same_v<Value, bool>) {
        member = field.GetValueBool();
    } else if constexpr (std::is_floating_point_v<Value>) {
        member = static_cast<Value>(field.GetValueDouble());
    } else if constexpr (std::is_unsigned_v<Value>) {
        member = static_cast<Value>(field.GetValueULong());
    } else {
        member = static_cast<Value>(field.GetValueLong());
    }
}

/// Fills a record from a row by position. A table that an older version made and a newer one widened may have its
/// columns in another order: a column with another name at the position is looked up by its own.
template <class Fields, class Record> void ReadRow(const Fields& fields, const VKDBiRow& row, Record& record)
{
    int position = 0;
    ForEachField(fields, [&](const auto& field) {
        const VKDBiRowField* column = &row[position++];
        if (*column->GetName() != '\0' && std::strcmp(column->GetName(), field.name) != 0) {
            const VKDBiRowField* named = &row[field.name];
            column = named != &VKDBiRow::nullField ? named : column;
        }
        ReadValue(field.of(record), *column, field.name);
    });
}

/// Fills a record from a row by column name; a column that is not there reads as NULL.
template <class Fields, class Record> void ReadRowByName(const Fields& fields, const VKDBiRow& row, Record& record)
{
    ForEachField(fields, [&](const auto& field) { ReadValue(field.of(record), row[field.name], field.name); });
}

} // namespace vk
