#include "VKDBiResultSet.h"

#include <utility>

VKDBiResultSet::~VKDBiResultSet() = default;

const VKDBiRow& VKDBiResultSet::operator[](int row) const
{
    static const VKDBiRow noRow;
    return row >= 0 && static_cast<std::size_t>(row) < m_vecRows.size() ? m_vecRows[static_cast<std::size_t>(row)]
                                                                        : noRow;
}

void VKDBiResultSet::Add(VKDBiRow row) { m_vecRows.push_back(std::move(row)); }
