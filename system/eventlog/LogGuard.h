#pragma once

#include "VKException.h"
#include "VKsystemLog.h"

#include <cxxabi.h>
#include <utility>

namespace vk {

/// Runs a piece of the logging frame, whose failures must not reach the caller: an exception becomes a line in
/// VKsystemLog under the name `function`, and false. `unknown` is the line for what is no exception of this system.
template <class Work> bool GuardLog(const char* function, const char* unknown, Work&& work)
{
    try {
        return std::forward<Work>(work)();
    } catch (const VKException& error) {
        VKsystemLog::WriteError(function, __FILE__, "%s", error.ToString().c_str());
    } catch (const abi::__forced_unwind&) {
        throw; // the thread is being ended, which cannot be held up
    } catch (...) {
        VKsystemLog::WriteError(function, __FILE__, "%s", unknown);
    }
    return false;
}

} // namespace vk
