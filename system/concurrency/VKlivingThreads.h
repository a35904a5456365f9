#pragma once

namespace vk {

/// Notes the calling thread as alive until it ends, however it ends. Cheap when it is noted already.
void NoteLivingThread();

/// Whether the thread with this identifier was noted and has not ended. May be asked from any thread at any time, for
/// any number. An identifier that the system gave again to a new, noted thread counts as alive.
bool IsLivingThread(unsigned long threadId);

} // namespace vk
