#include "VKDriverOutput.h"

#include <mutex>
#include <optional>

#include "SwitchStdOut.h"

namespace vk {

namespace {

std::mutex s_lock;
int s_iHolders = 0;                    ///< guarded by s_lock
std::optional<SwitchStdOut> s_switched; ///< guarded by s_lock

} // namespace

DriverOutput::DriverOutput(bool wanted) : m_bHeld(wanted)
{
    if (!m_bHeld)
        return;
    const std::lock_guard<std::mutex> lock(s_lock);
    if (++s_iHolders == 1)
        s_switched.emplace("datadirect.logs");
}

DriverOutput::~DriverOutput()
{
    if (!m_bHeld)
        return;
    const std::lock_guard<std::mutex> lock(s_lock);
    if (--s_iHolders == 0)
        s_switched.reset();
}

} // namespace vk
