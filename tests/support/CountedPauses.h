#pragma once

#include <functional>

#include "VKSQLite3Retry.h"

namespace vktest {

/// Counts the pauses of the retry loops instead of spending them; `during` sees each with its number, from 1 on.
class CountedPauses
{
public:
    explicit CountedPauses(std::function<void(long)> seen = {}) : m_before(vk::SetRetrySleep(Count))
    {
        count = total = 0;
        during = std::move(seen);
    }
    ~CountedPauses() { vk::SetRetrySleep(m_before); }
    CountedPauses(const CountedPauses&) = delete;
    CountedPauses& operator=(const CountedPauses&) = delete;

    static inline long count;
    static inline long total; ///< microseconds

private:
    static void Count(unsigned int microseconds)
    {
        ++count;
        total += microseconds;
        if (during)
            during(count);
    }
    static inline std::function<void(long)> during;
    vk::RetrySleep m_before;
};

} // namespace vktest
