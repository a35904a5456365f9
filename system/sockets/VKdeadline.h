#pragma once

#include <algorithm>
#include <chrono>
#include <climits>

namespace vk {

/// A point in time from now, for a wait that is made in several steps. A negative time has no end.
class Deadline
{
public:
    explicit Deadline(int ms) : m_endless(ms < 0), m_end(Clock::now() + std::chrono::milliseconds(std::max(ms, 0))) {}

    /// What is left, as poll() takes it: 0 when it is over, -1 when there is no end. Rounded up, so that no wait spins
    /// through its last millisecond.
    int RemainingMs() const
    {
        if (m_endless)
            return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_end - Clock::now()).count();
        return static_cast<int>(std::clamp<long long>(left, 0, INT_MAX));
    }

private:
    using Clock = std::chrono::steady_clock;

    bool m_endless;
    Clock::time_point m_end;
};

} // namespace vk
