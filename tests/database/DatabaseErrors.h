#pragma once

#include <string>

#include "VKDBexception.h"

namespace detail {

template <class Operation> std::string ErrorText(Operation&& operation, std::string (*textOf)(const VKDBexception&))
{
    try {
        operation();
        return "";
    } catch (const VKDBexception& failure) {
        return std::to_string(failure.GetErrorCode()) + " " + textOf(failure);
    }
}

} // namespace detail

/// The error of an operation as "code message"; empty when it throws none.
template <class Operation> std::string ErrorOf(Operation&& operation)
{
    return detail::ErrorText(operation, [](const VKDBexception& failure) { return failure.GetMsg(); });
}

/// The same with the system message, as "code message: system message".
template <class Operation> std::string WholeErrorOf(Operation&& operation)
{
    return detail::ErrorText(operation, [](const VKDBexception& failure) { return std::string(failure.what()); });
}
