#include "VKlivingThreads.h"

#include <mutex>
#include <pthread.h>
#include <unordered_set>

namespace vk {

namespace {

struct Registry
{
    std::mutex mutex;
    std::unordered_set<unsigned long> ids; // guarded by mutex
};

Registry& TheRegistry()
{
    // Never destroyed: threads may end after the static objects are gone.
    static Registry* registry = new Registry;
    return *registry;
}

enum class Stage : char { Unknown, Noted, Ended };
thread_local Stage myStage = Stage::Unknown;

struct Guard
{
    Guard()
    {
        Registry& registry = TheRegistry();
        std::lock_guard<std::mutex> lock(registry.mutex);
        registry.ids.insert(pthread_self());
        myStage = Stage::Noted;
    }
    ~Guard()
    {
        // From here on the thread is not noted again, even when a later destructor asks for its identifier.
        myStage = Stage::Ended;
        Registry& registry = TheRegistry();
        std::lock_guard<std::mutex> lock(registry.mutex);
        registry.ids.erase(pthread_self());
    }
};

} // namespace

void NoteLivingThread()
{
    if (myStage == Stage::Unknown)
        static thread_local Guard guard;
}

bool IsLivingThread(unsigned long threadId)
{
    Registry& registry = TheRegistry();
    std::lock_guard<std::mutex> lock(registry.mutex);
    return registry.ids.count(threadId) != 0;
}

} // namespace vk
