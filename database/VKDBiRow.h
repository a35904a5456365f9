#pragma once

#include <string>
#include <vector>

#include "VKDBiRowField.h"

/// One row of a query's result. Reading a field that is not there gives the null field, never an exception.
class VKDBiRow
{
public:
    int GetFieldsCount() const { return static_cast<int>(m_vecFields.size()); }

    const VKDBiRowField& operator[](int index) const;

    /// The field of this column name, letters compared without regard to case as SQL does.
    const VKDBiRowField& operator[](const std::string& name) const;

    void Add(VKDBiRowField field);

    /// Puts the field at an index; the row grows to hold it. A negative index is ignored.
    void Add(VKDBiRowField field, int index);

    void ResizeFields(int count);

    /// What stands for every field that is not there: no name, the value NULL.
    static const VKDBiRowField nullField;

private:
    std::vector<VKDBiRowField> m_vecFields;
};
