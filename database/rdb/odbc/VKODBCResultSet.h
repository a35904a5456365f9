#pragma once

#include "VKDBiResultSet.h"

/// The rows of the last result of a statement, and how many rows it touched.
class VKODBCResultSet : public VKDBiResultSet
{
public:
    int GetEffectedRowsCount() const override { return m_iEffected; }
    void SetEffectedRowsCount(int count) { m_iEffected = count; }
    void Clear() { m_vecRows.clear(); }

private:
    int m_iEffected = -1;
};
