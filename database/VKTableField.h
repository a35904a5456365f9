#pragma once

#include "VKField.h"

/// \file
/// The words with which a record's field table describes a database table. The member's type gives the column: bool
/// BOOLEAN, numbers and enumerations INTEGER, double REAL, char[N] VARCHAR(N - 1), std::string VARCHAR with the width of its mark,
/// char* TEXT. The marks say the rest.

namespace vk {

/// The row identifier: the store gives it.
struct PrimaryKey
{
};

struct NotNull
{
};

/// Width in bytes of a column whose member has none of its own.
struct Varchar
{
    int width;
};

/// A std::string of any length: TEXT.
struct LongText
{
};

/// The column's default is '0'.
struct DefaultZero
{
};

/// The column's default, as it stands in SQL.
struct SqlDefault
{
    const char* literal;
};

/// Written when the row is added and left alone when it is changed.
struct WrittenOnce
{
};

/// Read, but never written by this layer.
struct NotWritten
{
};

/// A table's name in the file database and in a relational one.
struct TableName
{
    const char* file;
    const char* relational;
};

/// There is an index of this name over the column.
struct Indexed
{
    const char* name;
};

/// There is an index of this name that serves tests of the column without regard to case.
struct IndexedNoCase
{
    const char* name;
};

enum class Reference {
    Row,        ///< of a row that must be there, and cannot go while it is referred to
    RowOrZero,  ///< the same, but 0 stands for none
    OwningRow   ///< of the row that this one belongs to and goes with
};

/// The column holds the id of a row of another table. A relational server keeps watch over it; in the file database the
/// tables may stand in different files, and the layers above do.
struct References
{
    TableName table;
    Reference kind = Reference::Row;
};

/// A table: its names and its columns in order.
template <class Fields> struct Table
{
    TableName name;
    Fields fields;
};

template <class Fields> Table(TableName, Fields) -> Table<Fields>;

} // namespace vk
