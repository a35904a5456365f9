#include "VKSQLite3ResultSet.h"

#include <sqlite3.h>
#include <utility>

VKSQLite3ResultSet::VKSQLite3ResultSet() = default;

void VKSQLite3ResultSet::FreeTable::operator()(char** table) const { sqlite3_free_table(table); }

void VKSQLite3ResultSet::SetDataSet(char** table, int rows, int columns)
{
    Reset();
    m_table.reset(table);
    m_iReturnedRows = rows;
    m_iColumns = columns;
    m_vecRows.reserve(static_cast<std::size_t>(rows));
    for (int r = 0; r < rows; ++r) {
        VKDBiRow row;
        row.ResizeFields(columns);
        for (int c = 0; c < columns; ++c)
            row.Add(VKDBiRowField(table[c], table[columns * (r + 1) + c]), c);
        m_vecRows.push_back(std::move(row));
    }
}

void VKSQLite3ResultSet::SetDataSet(int effectedRows)
{
    Reset();
    m_iEffectedRows = effectedRows;
}

void VKSQLite3ResultSet::Reset()
{
    m_vecRows.clear();
    m_table.reset();
    m_iReturnedRows = m_iEffectedRows = m_iColumns = -1;
}
