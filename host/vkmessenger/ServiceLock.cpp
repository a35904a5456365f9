#include "ServiceLock.h"

#include "Options.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace vk {

ServiceLock::ServiceLock(const std::string& directory, int queue, const std::string& service) : m_file(-1)
{
    const std::string path = directory + "/vkmessenger-" + std::to_string(queue) + "-" + service + ".lock";
    m_file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    if (m_file >= 0 && flock(m_file, LOCK_EX | LOCK_NB) == 0)
        return;
    const int error = errno;
    if (m_file >= 0)
        close(m_file);
    if (error == EWOULDBLOCK)
        throw InputError("--service: '" + service + "' is at work on queue " + std::to_string(queue) +
                         " already; give this one another name");
    throw InputError(path + ": " + std::strerror(error));
}

ServiceLock::~ServiceLock() { close(m_file); }

} // namespace vk
