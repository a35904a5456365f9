#include "DriverLibrary.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace vk {

namespace {

constexpr char kLibraryName[] = "libvkmxp.so";

std::string LoaderError()
{
    const char* text = dlerror();
    return text == nullptr ? "unknown error of the loader" : text;
}

} // namespace

void DriverLibrary::Close::operator()(void* handle) const { dlclose(handle); }

DriverLibrary::DriverLibrary(const std::string& path)
    : m_path(path), m_handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (m_handle == nullptr)
        throw std::runtime_error("driver " + path + " cannot be loaded: " + LoaderError());
    const auto get = reinterpret_cast<GetDriverInstanceFunction>(Resolve(kGetDriverInstanceName));
    m_release = reinterpret_cast<ReleaseDriverInstanceFunction>(Resolve(kReleaseDriverInstanceName));
    m_isClassLibrary = get == &::GetDriverInstance;
    m_driver = get();
    if (m_driver == nullptr)
        throw std::runtime_error("driver " + path + ": " + kGetDriverInstanceName + " gave no driver");
}

DriverLibrary::~DriverLibrary()
{
    if (m_driver != nullptr)
        m_release(m_driver);
}

void* DriverLibrary::Resolve(const char* function)
{
    void* const address = dlsym(m_handle.get(), function);
    if (address == nullptr)
        throw std::runtime_error("driver " + m_path + " does not export " + function);
    return address;
}

std::string DriverLibrary::DefaultPath()
{
    std::error_code ignored;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", ignored);
    const auto folder = program.parent_path();
    for (const auto& candidate : {folder / kLibraryName, folder.parent_path() / "lib" / kLibraryName})
        if (std::filesystem::exists(candidate, ignored))
            return candidate.string();
    return kLibraryName;
}

} // namespace vk
