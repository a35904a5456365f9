#pragma once

#include <algorithm>
#include <cstdlib>
#include <new>
#include <type_traits>

namespace vk {

/// Adds copies of records, which lie elsewhere, to a malloc-owned array, which grows by realloc to just what it holds. The
/// array stays as it was when memory runs out (std::bad_alloc).
template <class Record> void CopyRecords(Record*& array, int& count, const Record* from, int fromCount)
{
    static_assert(std::is_trivially_copyable_v<Record>, "realloc moves the records as bytes");
    if (fromCount <= 0)
        return;
    void* grown = std::realloc(array, (static_cast<std::size_t>(count) + fromCount) * sizeof(Record));
    if (grown == nullptr)
        throw std::bad_alloc();
    array = static_cast<Record*>(grown);
    std::copy_n(from, fromCount, array + count);
    count += fromCount;
}

/// The same for one record.
template <class Record> void AppendRecord(Record*& array, int& count, const Record& record)
{
    CopyRecords(array, count, &record, 1);
}

/// Frees a malloc-owned array and zeroes both.
template <class Record> void FreeRecords(Record*& array, int& count)
{
    std::free(array);
    array = nullptr;
    count = 0;
}

} // namespace vk
