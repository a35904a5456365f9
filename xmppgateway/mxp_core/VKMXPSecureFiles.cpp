#include "VKMXPSecureFiles.h"

#include "VKConfiguration.h"
#include "VKEncryption.h"
#include "VKioDirectory.h"
#include "VKioFile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <set>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vk {

namespace {

constexpr const char* kDirectory = "secure_files";
constexpr long kLongest = INT_MAX - 64; // bytes; sizes are 32-bit numbers, and a cipher text is a little longer

std::mutex g_guard;
std::set<std::string> g_held; ///< paths of copies in use; g_guard

class Descriptor
{
public:
    explicit Descriptor(int number) : m_number(number) {}
    ~Descriptor()
    {
        if (m_number >= 0)
            ::close(m_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Number() const { return m_number; }
    bool Close() { return ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

std::string SystemError(const std::string& path, const char* what)
{
    return path + ": " + what + ": " + std::strerror(errno);
}

struct Content
{
    std::unique_ptr<unsigned char[]> bytes; // not cleared first, as a vector would be
    int size = 0;
};

bool ReadAll(const std::string& path, Content& content, std::string& error)
{
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat state{};
    if (file.Number() < 0 || ::fstat(file.Number(), &state) != 0)
        error = SystemError(path, "cannot be read");
    else if (!S_ISREG(state.st_mode))
        error = path + ": is no file";
    else if (state.st_size > kLongest)
        error = path + ": is longer than 2 GiB";
    if (!error.empty())
        return false;
    content.bytes.reset(new unsigned char[static_cast<std::size_t>(state.st_size)]);
    while (content.size < state.st_size) {
        const ssize_t got = ::read(file.Number(), content.bytes.get() + content.size,
                                   static_cast<std::size_t>(state.st_size - content.size));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0) {
            error = got < 0 ? SystemError(path, "cannot be read") : path + ": became shorter while it was read";
            return false;
        }
        content.size += static_cast<int>(got);
    }
    return true;
}

bool Encrypt(const std::string& secureKey, Content& content, std::string& error)
{
    std::string key;
    if (!VKEncryption::TransformKeyForCipher(secureKey, key, VK_ENCRYPT_AES256_ECB)) {
        error = "the key cannot be used";
        return false;
    }
    unsigned char* out = nullptr;
    int length = 0;
    const bool done = VKEncryption::SharedKeyEncrypt(key, content.bytes.get(), content.size, out, length, error,
                                                     VK_ENCRYPT_AES256_ECB);
    content.bytes.reset(out);
    content.size = length;
    if (!done && error.empty())
        error = "encryption failed";
    return done;
}

bool WriteAll(const std::string& path, const Content& content, std::string& error)
{
    Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
    int written = 0;
    while (file.Number() >= 0 && written < content.size) {
        const ssize_t put =
            ::write(file.Number(), content.bytes.get() + written, static_cast<std::size_t>(content.size - written));
        if (put < 0 && errno != EINTR)
            break;
        written += static_cast<int>(std::max<ssize_t>(put, 0));
    }
    if (file.Number() < 0 || written < content.size || !file.Close()) {
        error = SystemError(path, "cannot be written");
        return false;
    }
    return true;
}

bool MakeCopy(const std::string& from, const std::string& secureKey, const std::string& to, std::string& error)
{
    Content content;
    return ReadAll(from, content, error) && (content.size == 0 || Encrypt(secureKey, content, error)) &&
           WriteAll(to, content, error);
}

std::string CopyPath(const std::string& directory, const VKMXPConnIface::FileList& files, std::size_t index)
{
    const std::string name = VKioFile::GetFileName(files[index].first);
    int number = 1;
    for (std::size_t before = 0; before < index; ++before)
        if (strcasecmp(VKioFile::GetFileName(files[before].first).c_str(), name.c_str()) == 0)
            ++number;
    return directory + "/" + std::to_string(number) + "_" + name;
}

bool Hold(const std::vector<std::string>& paths)
{
    const std::lock_guard<std::mutex> lock(g_guard);
    for (const std::string& path : paths)
        if (g_held.count(path) != 0)
            return false;
    g_held.insert(paths.begin(), paths.end());
    return true;
}

} // namespace

bool SecureFiles::Make(VKMXPConnIface::FileList& files, std::string& error)
{
    Release();
    const std::string directory = VKConfiguration::getVKConfiguration()->getTempDirectory(false) + kDirectory;
    if (!VKioDirectory::CreateFullPath(directory)) {
        error = SystemError(directory, "cannot be made");
        return false;
    }
    std::vector<std::string> copies;
    for (std::size_t i = 0; i < files.size(); ++i)
        copies.push_back(CopyPath(directory, files, i));
    if (!Hold(copies))
        return false;
    m_paths = copies;
    for (std::size_t i = 0; i < files.size(); ++i)
        if (!MakeCopy(files[i].first, files[i].second, copies[i], error)) {
            Delete();
            return false;
        }
    for (std::size_t i = 0; i < files.size(); ++i)
        files[i].first = copies[i];
    return true;
}

void SecureFiles::Delete()
{
    for (const std::string& path : m_paths)
        ::unlink(path.c_str());
    Release();
}

void SecureFiles::Release()
{
    const std::lock_guard<std::mutex> lock(g_guard);
    for (const std::string& path : m_paths)
        g_held.erase(path);
    m_paths.clear();
}

} // namespace vk
