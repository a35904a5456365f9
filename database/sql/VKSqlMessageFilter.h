#pragma once

#include <ctime>
#include <string>

#include "VKDBiMessageQueue.h"

namespace vk {

class SqlDialect;

/// Which messages a read wants beside those that pass the filter.
enum class ReadyOption {
    All = 0,
    Normal = 1,  ///< ready to send, and free or the service's own
    Cascade = 2, ///< past their delay
    Schedule = 3 ///< at their minute of the day
};

/// What a caller set on a queue; empty texts and zeros mean any.
struct MessageFilter
{
    std::string name; ///< the beginning, or a status letter with a point
    std::string protocol;
    std::string pin;
    time_t from = 0; ///< of the last change
    time_t to = 0;
    bool expired = false;

    int priority = 0;
    std::string sender;
    std::string receiver;
    std::string group;
    std::string pinBeginning;
    std::string carrier;
    time_t createdFrom = 0;
    time_t createdTo = 0;
};

/// "WHERE ..." with all parts that are set, joined by AND; empty when there are none.
std::string MessageFilterClause(const SqlDialect& dialect, const MessageFilter& filter, ReadyOption option,
                                const std::string& service, time_t now);

/// What stands behind ORDER BY.
std::string MessageOrder(ReadyOption option, SortFldOption field, bool ascending);

/// A service that has held a message this long has lost it, in seconds.
constexpr long kHeldTooLong = 1200;

} // namespace vk
