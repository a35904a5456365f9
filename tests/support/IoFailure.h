#pragma once

#include "VKioException.h"

#include <functional>
#include <string>

namespace vktest {

/// The message of the VKioException that `work` throws.
inline std::string MessageOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const VKioException& failure) {
        return failure.GetMsg();
    }
    return "nothing thrown";
}

} // namespace vktest
