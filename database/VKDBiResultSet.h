#pragma once

#include <vector>

#include "VKDBiRow.h"

/// The rows of a query, the same for every backend. A backend derives from it to fill it.
class VKDBiResultSet
{
public:
    virtual ~VKDBiResultSet();

    /// How many rows a SELECT returned.
    virtual int GetReturnedRowsCount() const { return static_cast<int>(m_vecRows.size()); }

    /// How many rows a change touched; -1 when no change was run.
    virtual int GetEffectedRowsCount() const { return -1; }

    /// A row by number; a number out of range gives a row without fields.
    const VKDBiRow& operator[](int row) const;

    void Add(VKDBiRow row);

protected:
    std::vector<VKDBiRow> m_vecRows;
};
