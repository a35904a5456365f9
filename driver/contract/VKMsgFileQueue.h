#pragma once

#include "VKconLock.h"

#include <deque>

class VKMessageFile;

/// The host's return queue. The host owns it and the files in it; the driver appends from any thread, the host pops,
/// both under the lock.
struct VKMsgFileQueue
{
    /// Guarded by objLock.
    std::deque<VKMessageFile*> queFiles;
    VKconLock objLock;
};
