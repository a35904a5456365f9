#pragma once

#include <string>
#include <vector>

#include "VKDBiRow.h"

/// A query's result as a table: column names, also when there are no rows, and cells. Rows and columns count from 0.
/// Belongs to whoever asked for it; independent of the connection it came from.
class VKRDBiDataSet
{
public:
    VKRDBiDataSet() = default;
    VKRDBiDataSet(std::vector<std::string> columns, std::vector<VKDBiRow> rows);

    int GetColumnCount() const { return static_cast<int>(m_vecColumns.size()); }
    int GetRowCount() const { return static_cast<int>(m_vecRows.size()); }

    /// Throws VKDBexception for a number that is not there.
    const std::string& GetColumnName(int column) const;

    /// The cell's text, valid as long as the table; nullptr for NULL. Throws VKDBexception for a row or column that is
    /// not there. Names are compared without regard to case.
    const char* GetCellValue(int row, int column) const;
    const char* GetCellValue(int row, const std::string& column) const;

private:
    int ColumnOf(const std::string& name) const;

    std::vector<std::string> m_vecColumns;
    std::vector<VKDBiRow> m_vecRows;
};
