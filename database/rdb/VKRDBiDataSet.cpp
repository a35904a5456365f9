#include "VKRDBiDataSet.h"

#include <strings.h>
#include <utility>

#include "VKDBexception.h"

namespace {

std::size_t Checked(int number, std::size_t count, const char* failure)
{
    if (number < 0 || static_cast<std::size_t>(number) >= count)
        throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, failure);
    return static_cast<std::size_t>(number);
}

constexpr const char* kNoColumn = "Invalid coloumn number"; // meant: the text is as it has always been

} // namespace

VKRDBiDataSet::VKRDBiDataSet(std::vector<std::string> columns, std::vector<VKDBiRow> rows)
    : m_vecColumns(std::move(columns)), m_vecRows(std::move(rows))
{
}

const std::string& VKRDBiDataSet::GetColumnName(int column) const
{
    return m_vecColumns[Checked(column, m_vecColumns.size(), kNoColumn)];
}

const char* VKRDBiDataSet::GetCellValue(int row, int column) const
{
    Checked(column, m_vecColumns.size(), kNoColumn);
    return m_vecRows[Checked(row, m_vecRows.size(), "Invalid row number")][column].GetValuePtr();
}

const char* VKRDBiDataSet::GetCellValue(int row, const std::string& column) const
{
    return GetCellValue(row, ColumnOf(column));
}

int VKRDBiDataSet::ColumnOf(const std::string& name) const
{
    for (int column = 0; column < GetColumnCount(); ++column)
        if (strcasecmp(m_vecColumns[static_cast<std::size_t>(column)].c_str(), name.c_str()) == 0)
            return column;
    throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Unknown column name [" + name + "]");
}
