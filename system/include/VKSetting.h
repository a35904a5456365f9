#pragma once

#include <utility>

namespace vk {

/// A value that may be left alone: who sends or stores a set of settings says only what it means to change. The value
/// keeps its own default; whether it counts is told by the flag alone.
template <class T> struct Setting
{
    T value{};
    bool present = false;

    void Set(T given)
    {
        value = std::move(given);
        present = true;
    }
    friend bool operator==(const Setting& left, const Setting& right)
    {
        return left.value == right.value && left.present == right.present;
    }
    friend bool operator!=(const Setting& left, const Setting& right) { return !(left == right); }
};

template <class T> inline constexpr bool kIsSetting = false;
template <class T> inline constexpr bool kIsSetting<Setting<T>> = true;

} // namespace vk
