#pragma once

#include <ctime>
#include <memory>

#include "VKDBbaseInterface.h"

/// One cached entity object; the line owns it.
struct CacheLine
{
    std::unique_ptr<VKDBbaseInterface> object;
    time_t expiry = 0; ///< seconds since the epoch
};
