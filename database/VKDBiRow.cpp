#include "VKDBiRow.h"

#include <strings.h>
#include <utility>

const VKDBiRowField VKDBiRow::nullField;

const VKDBiRowField& VKDBiRow::operator[](int index) const
{
    return index >= 0 && index < GetFieldsCount() ? m_vecFields[static_cast<std::size_t>(index)] : nullField;
}

const VKDBiRowField& VKDBiRow::operator[](const std::string& name) const
{
    if (name.empty())
        return nullField;
    for (const VKDBiRowField& field : m_vecFields)
        if (strcasecmp(field.GetName(), name.c_str()) == 0)
            return field;
    return nullField;
}

void VKDBiRow::Add(VKDBiRowField field) { m_vecFields.push_back(std::move(field)); }

void VKDBiRow::Add(VKDBiRowField field, int index)
{
    if (index < 0)
        return;
    if (index >= GetFieldsCount())
        ResizeFields(index + 1);
    m_vecFields[static_cast<std::size_t>(index)] = std::move(field);
}

void VKDBiRow::ResizeFields(int count) { m_vecFields.resize(count > 0 ? static_cast<std::size_t>(count) : 0); }
