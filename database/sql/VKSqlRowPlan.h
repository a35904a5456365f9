#pragma once

#include <array>
#include <cstring>
#include <strings.h>
#include <tuple>

#include "VKSqlRow.h"
#include "VKTableRow.h"

namespace vk {

/// Reads the rows of one SELECT into records by position, as ReadRow does; which column is whose is found out once.
template <class Fields> class SqlRowPlan
{
public:
    explicit SqlRowPlan(const Fields& fields) : m_fields(fields) {}

    template <class Record> void Read(const SqlRow& row, Record& record)
    {
        if (!m_known)
            Learn(row);
        const int* column = m_columns.data();
        ForEachField(m_fields,
                     [&](const auto& field) { ReadValue(field.of(record), SqlColumn(row, *column++), field.name); });
    }

private:
    /// A table that an older version made may have its columns in another order.
    void Learn(const SqlRow& row)
    {
        int position = 0;
        ForEachField(m_fields, [&](const auto& field) {
            int column = position;
            if (position < row.Count() && std::strcmp(row.Name(position), field.name) != 0)
                for (int other = 0; other < row.Count(); ++other)
                    if (strcasecmp(row.Name(other), field.name) == 0) {
                        column = other;
                        break;
                    }
            m_columns[static_cast<std::size_t>(position++)] = column;
        });
        m_known = true;
    }

    const Fields& m_fields;
    std::array<int, std::tuple_size_v<Fields>> m_columns{};
    bool m_known = false;
};

} // namespace vk
