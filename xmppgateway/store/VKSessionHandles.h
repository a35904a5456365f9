#pragma once

#include <memory>
#include <string>

class VKSQLite3Database;

namespace vk {

/// Open handles on the session file that wait for their next user. The store is made anew for every message; opening the
/// file each time cost more than asking it. A handle is taken by one user at a time, and only when it is still the file
/// that the path names: a gateway that starts anew may have put another one there. Any thread.
class SessionHandles
{
public:
    /// A ready handle on this file, or null when one is to be opened.
    static std::unique_ptr<VKSQLite3Database> Take(const std::string& path);

    /// Gives a handle back for others; one that is not sound is closed.
    static void Give(std::unique_ptr<VKSQLite3Database> handle);
};

} // namespace vk
