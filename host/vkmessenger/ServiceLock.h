#pragma once

#include <string>

namespace vk {

/// Keeps a second service of the same name off a queue: it would give back what the first one is just sending. Held
/// until the object or the process ends, however it ends.
class ServiceLock
{
public:
    /// The lock is a file in the directory, which is left there. Throws InputError when the service runs already.
    ServiceLock(const std::string& directory, int queue, const std::string& service);
    ~ServiceLock();
    ServiceLock(const ServiceLock&) = delete;
    ServiceLock& operator=(const ServiceLock&) = delete;

private:
    int m_file;
};

} // namespace vk
