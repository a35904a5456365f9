#pragma once

#include <chrono>
#include <thread>

/// Waits until something is so, for the given time at most. Whether it came to be.
template <class Condition> bool Until(const Condition& condition, std::chrono::seconds limit = std::chrono::seconds(60))
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}
