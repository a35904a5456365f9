#pragma once

#include <cstdlib>
#include <new>
#include <type_traits>

namespace vk {

/// Adds a copy of a record to a malloc-owned array, which grows by realloc one element at a time. The array stays as it
/// was when memory runs out (std::bad_alloc).
template <class Record> void AppendRecord(Record*& array, int& count, const Record& record)
{
    static_assert(std::is_trivially_copyable_v<Record>, "realloc moves the records as bytes");
    void* grown = std::realloc(array, (static_cast<std::size_t>(count) + 1) * sizeof(Record));
    if (grown == nullptr)
        throw std::bad_alloc();
    array = static_cast<Record*>(grown);
    array[count++] = record;
}

/// Frees a malloc-owned array and zeroes both.
template <class Record> void FreeRecords(Record*& array, int& count)
{
    std::free(array);
    array = nullptr;
    count = 0;
}

/// Adds copies of all records of one array to another.
template <class Record> void CopyRecords(Record*& array, int& count, const Record* from, int fromCount)
{
    for (int i = 0; i < fromCount; ++i)
        AppendRecord(array, count, from[i]);
}

} // namespace vk
