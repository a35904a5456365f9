#pragma once

#include <utility>

namespace vk {

/// A value that may be left alone: who sends or stores a set of settings says only what it means to change. The value
/// keeps its own default; whether it counts is told by the flag alone.
template <class T> struct Flagged
{
    T value{};
    bool present = false;

    void Set(T given)
    {
        value = std::move(given);
        present = true;
    }
    friend bool operator==(const Flagged& left, const Flagged& right)
    {
        return left.value == right.value && left.present == right.present;
    }
    friend bool operator!=(const Flagged& left, const Flagged& right) { return !(left == right); }
};

template <class T> inline constexpr bool kIsFlagged = false;
template <class T> inline constexpr bool kIsFlagged<Flagged<T>> = true;

} // namespace vk
