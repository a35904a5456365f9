#pragma once

#include <string>

#include "VKDBexception.h"

/// The error of an operation as "code message"; empty when it throws none.
template <class Operation> std::string ErrorOf(Operation&& operation)
{
    try {
        operation();
        return "";
    } catch (const VKDBexception& failure) {
        return std::to_string(failure.GetErrorCode()) + " " + failure.GetMsg();
    }
}

/// The same with the system message, as "message: system message".
template <class Operation> std::string WholeErrorOf(Operation&& operation)
{
    try {
        operation();
        return "";
    } catch (const VKDBexception& failure) {
        return failure.what();
    }
}
