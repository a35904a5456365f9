#pragma once

#include <memory>

#include "VKDBiResultSet.h"

/// The result of one SQLite statement. All counts are -1 while it holds no result.
class VKSQLite3ResultSet : public VKDBiResultSet
{
public:
    VKSQLite3ResultSet();

    int GetReturnedRowsCount() const override { return m_iReturnedRows; }
    int GetEffectedRowsCount() const override { return m_iEffectedRows; }
    int GetColumnsCount() const { return m_iColumns; }

    /// Takes over a table of sqlite3_get_table: its first row holds the column names, the values follow row by row.
    void SetDataSet(char** table, int rows, int columns);

    /// Takes the count of rows that a change touched.
    void SetDataSet(int effectedRows);

    /// Frees the result.
    void Reset();

private:
    struct FreeTable
    {
        void operator()(char** table) const;
    };

    std::unique_ptr<char*, FreeTable> m_table;
    int m_iReturnedRows = -1;
    int m_iEffectedRows = -1;
    int m_iColumns = -1;
};
