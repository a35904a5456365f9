#pragma once

namespace vk {

/// While one lives, what the process prints goes to the file "datadirect.logs": drivers of some servers print. Any number
/// of threads may hold one; the first switches the output over and the last one back.
class DriverOutput
{
public:
    /// Nothing happens unless `wanted`.
    explicit DriverOutput(bool wanted);
    ~DriverOutput();
    DriverOutput(const DriverOutput&) = delete;
    DriverOutput& operator=(const DriverOutput&) = delete;

private:
    const bool m_bHeld;
};

} // namespace vk
