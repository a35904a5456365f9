#pragma once

#include <string>
#include <string_view>

#include "VKTableField.h"

namespace vk {

enum class ColumnKind { Id, Integer, Real, Boolean, Varchar, Text };

/// What differs from one SQL to the next, and the one place where a value is made safe to stand in a statement. What
/// stands here is what all of them share. Stateless; used by any number of threads.
class SqlDialect
{
public:
    virtual ~SqlDialect() = default;

    virtual std::string TableOf(const TableName& table) const = 0;

    /// A column's type in CREATE TABLE; the width only for Varchar.
    virtual std::string ColumnType(ColumnKind kind, int width) const = 0;

    /// Throws, with the field's name, for a text that would not come back as it is: a zero byte would end the statement.
    virtual void RequireStorable(std::string_view text, const char* field) const;
    /// A text as a literal: in quotes, its own quotes doubled.
    virtual std::string Text(std::string_view value) const;

    /// A truth value as a literal.
    virtual std::string Boolean(bool value) const { return value ? "1" : "0"; }

    /// A test that a column equals a text, without regard to case.
    virtual std::string EqualsNoCase(std::string_view column, std::string_view text) const;

    /// A test that a column begins with a text, without regard to case.
    virtual std::string BeginsNoCase(std::string_view column, std::string_view text) const;

    /// A test that a column matches a pattern in which "*" and "%" stand for any text.
    virtual std::string Matches(std::string_view column, std::string_view pattern) const;
    virtual std::string MatchesNoCase(std::string_view column, std::string_view pattern) const;

    /// A column's text with another first letter.
    virtual std::string WithFirstLetter(std::string_view column, char letter) const;

    /// All of a query's rows in this order, whose terms are columns of the result.
    virtual std::string Sorted(const std::string& query, const std::string& order) const
    {
        return query + " ORDER BY " + order;
    }

    /// An expression with another one in place of NULL is FUNCTION(expression, other); this is the function's name.
    virtual std::string IfNull() const { return "COALESCE"; }

    /// The function that takes a part of a text.
    virtual std::string Substring() const { return "substr"; }

    /// A condition as a column of a list: 1 or 0.
    virtual std::string ConditionColumn(const std::string& condition) const
    {
        return "(CASE WHEN " + condition + " THEN 1 ELSE 0 END)";
    }

    /// A query that gives a row when a table is there; the name may be one in an attached file.
    virtual std::string TableProbe(const TableName& table) const
    {
        // In capitals, since a server may tell letters of names apart.
        return std::string("SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE UPPER(TABLE_NAME)='") +
               table.relational + "'";
    }

    /// One page of a query's rows: at most `size` of them, behind the first `offset`, in this order.
    virtual std::string Page(const std::string& query, const std::string& order, long size, long offset) const = 0;

    /// One page of a table's rows, `from` being the table and its WHERE; the order may be of any of its columns.
    virtual std::string PageOfTable(const std::string& columns, const std::string& from, const std::string& order,
                                    long size, long offset) const;

    /// The statement that deletes the rows of a queue that meet a condition, but the newest of them; empty where it
    /// takes more than one.
    virtual std::string DeleteBehindNewest(const TableName&, const std::string& condition, long kept) const
    {
        static_cast<void>(condition);
        static_cast<void>(kept);
        return "";
    }

    /// The query that waits until no other transaction holds a table's name, and holds it until this one ends; empty
    /// where a transaction that changes something is alone anyway.
    virtual std::string HoldName(const std::string& name) const
    {
        static_cast<void>(name);
        return "";
    }

    /// What stands behind each kind of statement, so that the new id and errors come back.
    virtual std::string SelectEnd() const { return ";"; }
    virtual std::string InsertEnd() const { return ";"; }
    virtual std::string UpdateEnd() const { return ";"; }

    /// A column that is NULL where another one is 0, as part of CREATE TABLE on a relational server.
    virtual std::string NullForZeroColumn(std::string_view name, std::string_view of) const;

    /// What an index over a column is over, so that tests of it without regard to case can use the index.
    virtual std::string IndexTerm(ColumnKind, std::string_view column) const { return std::string(column); }

    /// The statement that lets a table take the ids it is given, or ends that; empty where it always does.
    virtual std::string KeepIdentity(const TableName& table, bool on) const = 0;

protected:
    /// A text made safe for LIKE with ESCAPE '\'.
    virtual std::string LikeText(std::string_view text) const;
};

} // namespace vk
