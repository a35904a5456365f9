#pragma once

#include <functional>
#include <string_view>

#include "VKDBiRow.h"

namespace vk {

/// One row of a SELECT that is being read; valid until the next one. A column that is not there reads as NULL, and NULL
/// as no text, 0 and false.
class SqlRow
{
public:
    virtual ~SqlRow() = default;

    virtual int Count() const = 0;
    virtual const char* Name(int column) const = 0;
    virtual const char* Text(int column) const = 0; ///< null for NULL
    virtual long Integer(int column) const = 0;
    virtual unsigned long Unsigned(int column) const = 0;
    virtual double Real(int column) const = 0;
    virtual bool Boolean(int column) const = 0;
};

using SqlRowReader = std::function<void(const SqlRow&)>;

/// A row of a ready result.
class SqlResultRow final : public SqlRow
{
public:
    explicit SqlResultRow(const VKDBiRow& row) : m_row(row) {}

    int Count() const override { return m_row.GetFieldsCount(); }
    const char* Name(int column) const override { return m_row[column].GetName(); }
    const char* Text(int column) const override { return m_row[column].GetValuePtr(); }
    long Integer(int column) const override { return m_row[column].GetValueLong(); }
    unsigned long Unsigned(int column) const override { return m_row[column].GetValueULong(); }
    double Real(int column) const override { return m_row[column].GetValueDouble(); }
    bool Boolean(int column) const override { return m_row[column].GetValueBool(); }

private:
    const VKDBiRow& m_row;
};

/// One column of such a row, with the reading operations of VKDBiRowField.
class SqlColumn
{
public:
    SqlColumn(const SqlRow& row, int column) : m_row(row), m_column(column) {}

    const char* GetValuePtr() const { return m_row.Text(m_column); }
    std::string_view GetValueString() const
    {
        const char* const text = GetValuePtr();
        return text == nullptr ? "" : text;
    }
    long GetValueLong() const { return m_row.Integer(m_column); }
    unsigned long GetValueULong() const { return m_row.Unsigned(m_column); }
    double GetValueDouble() const { return m_row.Real(m_column); }
    bool GetValueBool() const { return m_row.Boolean(m_column); }

private:
    const SqlRow& m_row;
    int m_column;
};

} // namespace vk
