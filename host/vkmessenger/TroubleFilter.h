#pragma once

#include <chrono>
#include <set>
#include <string>

namespace vk {

/// Picks what is told of failures that are tried again and again: each text once a minute, and no more than ten texts
/// a minute. One thread.
class TroubleFilter
{
public:
    using Clock = std::chrono::steady_clock;

    /// The text as it is to be told now, with how many others were not; empty when it is not to be told.
    std::string Pass(const std::string& trouble, Clock::time_point now)
    {
        if (now - m_began >= kSpan) {
            m_began = now;
            m_told.clear();
        }
        if (m_told.size() >= kMost || !m_told.insert(trouble).second) {
            ++m_untold;
            return "";
        }
        const std::string others = m_untold == 0 ? "" : " (" + std::to_string(m_untold) + " failures before it not told)";
        m_untold = 0;
        return trouble + others;
    }

private:
    static constexpr std::chrono::seconds kSpan{60};
    static constexpr std::size_t kMost = 10;

    std::set<std::string> m_told; ///< in this minute
    Clock::time_point m_began{};
    unsigned long m_untold = 0;
};

} // namespace vk
