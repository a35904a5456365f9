#pragma once

#include <algorithm>

#include "VKSqlStore.h"

namespace vk {

/// Which page of a query's rows is wanted, and what the last reading found.
struct SqlPage
{
    int size = 0;   ///< rows of a page; 0 or less for all rows
    int number = 0; ///< from 1
    int count = 0;  ///< pages there are; left alone while no page is set
    long total = 0; ///< rows there are

    /// Reads the page, and how many rows there are. Inside a transaction, so that both belong together.
    std::unique_ptr<VKDBiResultSet> Read(SqlStore& store, const std::string& query, const std::string& order,
                                         const std::string& countQuery)
    {
        const SqlDialect& dialect = store.Dialect();
        const long offset = (std::max(number, 1) - 1L) * size;
        auto rows = store.Select(
            "{}", SqlRaw{size > 0 ? dialect.Page(query, order, size, offset) : dialect.Sorted(query, order)});
        total = store.SelectNumber("{}", SqlRaw{countQuery});
        if (size > 0)
            count = static_cast<int>((total + size - 1) / size);
        return rows;
    }
};

} // namespace vk
