#pragma once

#include <string>

#include "VKRecordText.h"
#include "VKSqlText.h"
#include "VKstringSql.h"

namespace vk {

/// Conditions joined to a WHERE clause, which stays empty without any.
class SqlClause
{
public:
    explicit SqlClause(const SqlDialect& dialect) : m_dialect(dialect) {}

    /// A condition from a pattern and its values.
    template <class... Values> void Add(std::string_view pattern, const Values&... values)
    {
        AddRaw(SqlText(m_dialect, pattern, values...));
    }
    void AddRaw(const std::string& condition) { m_text += (m_text.empty() ? "WHERE " : " AND ") + condition; }

    /// The column begins with the text, letters of either case; empty and "*" mean no condition. In AddBeginning "%"
    /// is a wild card, in AddPrefix every character stands for itself.
    void AddBeginning(std::string_view column, const std::string& text)
    {
        if (IsFilter(text))
            AddRaw(m_dialect.BeginsNoCase(column, text));
    }
    void AddPrefix(std::string_view column, const std::string& text)
    {
        m_dialect.RequireStorable(text, std::string(column).c_str());
        if (IsFilter(text))
            Add("UPPER({}) LIKE UPPER('{}%') ESCAPE '\\'", SqlRaw{std::string(column)},
                SqlRaw{VKstringSQLLikeEncode(text)});
    }

    const std::string& Text() const { return m_text; }

private:
    static bool IsFilter(const std::string& text) { return !text.empty() && text != "*"; }

    const SqlDialect& m_dialect;
    std::string m_text;
};

} // namespace vk
