#include "VKMxpDriver.h"
#include "VKmxpDriverExports.h"

#include <memory>
#include <mutex>

namespace {

std::mutex s_guard;
std::unique_ptr<VKMxpDriver> s_driver;

} // namespace

VKProtocolDriverInterface* GetDriverInstance()
{
    const std::lock_guard<std::mutex> lock(s_guard);
    if (!s_driver)
        s_driver = std::make_unique<VKMxpDriver>();
    return s_driver.get();
}

void ReleaseDriverInstance(VKProtocolDriverInterface* driver)
{
    const std::lock_guard<std::mutex> lock(s_guard);
    if (driver == s_driver.get())
        s_driver.reset();
}
