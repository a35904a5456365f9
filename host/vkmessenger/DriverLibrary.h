#pragma once

#include "VKmxpDriverExports.h"

#include <memory>
#include <string>

namespace vk {

/// A driver's library and the driver in it, loaded through the two exported functions and nothing else. Releases the
/// driver and closes the library at its end. One thread.
class DriverLibrary
{
public:
    /// Throws std::runtime_error that names the library and the function at fault.
    explicit DriverLibrary(const std::string& path);
    ~DriverLibrary();
    DriverLibrary(const DriverLibrary&) = delete;
    DriverLibrary& operator=(const DriverLibrary&) = delete;

    VKProtocolDriverInterface& Driver() { return *m_driver; }

    /// Whether it is the class library that this program stands on.
    bool IsClassLibrary() const { return m_isClassLibrary; }

    /// Where a driver is looked for when none is named: beside the program, in the folder "lib" beside the program's,
    /// then wherever the system looks.
    static std::string DefaultPath();

private:
    void* Resolve(const char* function);

    struct Close
    {
        void operator()(void* handle) const;
    };
    std::string m_path;
    std::unique_ptr<void, Close> m_handle;
    ReleaseDriverInstanceFunction m_release = nullptr;
    bool m_isClassLibrary = false;
    /// Owned by the library.
    VKProtocolDriverInterface* m_driver = nullptr;
};

} // namespace vk
