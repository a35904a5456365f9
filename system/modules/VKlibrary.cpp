#include "VKlibrary.h"

#include "VKconThread.h"
#include "VKioSocket.h"
#include "VKstringPath.h"
#include "VKsystemResource.h"

#include <pthread.h>
#include <time.h>

namespace {

pthread_once_t once = PTHREAD_ONCE_INIT;

std::string& KeptPath()
{
    static std::string path;
    return path;
}

VKsystemResource& KeptResource()
{
    static VKsystemResource resource;
    return resource;
}

/// What is set up once however often InitialLib is called: the local time zone, which the C library otherwise looks up
/// when the first thread formats a time, and the texts of the library, which may be missing.
void RealInitial()
{
    constexpr const char* file = "libresource.res";
    tzset();
    if (!KeptResource().Load(VKstringCreatePath(KeptPath(), file)))
        KeptResource().Load(std::string("./") + file);
}

} // namespace

namespace vk {

const std::string& LibraryPath() { return KeptPath(); }
const VKsystemResource& LibraryResource() { return KeptResource(); }

} // namespace vk

bool InitialLib()
{
    VKconThread::InitializeLibrary();
    return VKioSocket::InitialLibrary();
}

bool CloseLib()
{
    VKconThread::CloseLibrary();
    return VKioSocket::CloseLibrary();
}

bool InitialLib(const std::string& path)
{
    KeptPath() = path;
    return pthread_once(&once, &RealInitial) == 0 && InitialLib();
}
