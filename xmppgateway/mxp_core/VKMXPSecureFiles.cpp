#include "VKMXPSecureFiles.h"

#include "VKCipherStream.h"
#include "VKConfiguration.h"
#include "VKbase64.h"
#include "VKioDirectory.h"
#include "VKioFile.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <openssl/crypto.h>
#include <set>
#include <strings.h>
#include <unistd.h>
#include <utility>

namespace vk {

namespace {

constexpr const char* kDirectory = "secure_files";
constexpr const char* kAheadMark = "ahead_"; // in front of copies that have no final name yet; those begin with a digit
constexpr long kLongest = INT_MAX - 64;      // bytes; sizes are 32-bit numbers, and a cipher text is a little longer
constexpr std::size_t kPiece = 256U << 10;   // bytes; stays in the processor's cache from reading to writing

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
    void Reset(int number) { m_number = number; }
    bool Close() { return ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

std::string SystemError(const std::string& path, const char* what)
{
    return path + ": " + what + ": " + std::strerror(errno);
}

/// One file on its way from clear text to a copy.
class Copying
{
public:
    Copying(const std::string& from, const std::string& to, const SecureFiles::Interrupt& interrupt)
        : m_from(from), m_to(to), m_interrupt(interrupt),
          m_source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
    }

    /// False with the reason in error, which is empty after an interruption.
    bool Run(const std::string& secureKey, std::string& error)
    {
        return OpenBoth(error) && (m_state.st_size == 0 || Encrypt(secureKey, error)) &&
               (m_copy.Close() || Failed(m_to, "cannot be written", error));
    }

    const struct stat& State() const { return m_state; }

private:
    bool OpenBoth(std::string& error)
    {
        if (m_source.Number() < 0 || ::fstat(m_source.Number(), &m_state) != 0)
            return Failed(m_from, "cannot be read", error);
        if (!S_ISREG(m_state.st_mode))
            error = m_from + ": is no file";
        else if (m_state.st_size > kLongest)
            error = m_from + ": is longer than 2 GiB";
        if (!error.empty())
            return false;
        m_copy.Reset(::open(m_to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600));
        return m_copy.Number() >= 0 || Failed(m_to, "cannot be written", error);
    }

    bool Encrypt(const std::string& secureKey, std::string& error)
    {
        std::array<unsigned char, 32> key{};
        if (!VKEncryption::TransformKeyForCipher(secureKey, key.data(), VK_ENCRYPT_AES256_ECB)) {
            error = "the key cannot be used";
            return false;
        }
        CipherStream cipher(true, TextOf(key.data(), static_cast<int>(key.size())), VK_ENCRYPT_AES256_ECB);
        OPENSSL_cleanse(key.data(), key.size());
        std::vector<unsigned char> clear(kPiece);
        std::vector<unsigned char> secret(kPiece + CipherStream::kBlock);
        for (off_t left = m_state.st_size; left > 0;) {
            const ssize_t got = ::read(m_source.Number(), clear.data(), std::min<std::size_t>(kPiece, left));
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return Failed(m_from, "cannot be read", error);
            if (got == 0) {
                error = m_from + ": became shorter while it was read";
                return false;
            }
            left -= got;
            if (!Write(secret.data(), cipher.Update(TextOf(clear.data(), static_cast<int>(got)), secret.data()), error))
                return false;
        }
        return Write(secret.data(), cipher.Finish(secret.data()), error);
    }

    bool Write(const unsigned char* data, int size, std::string& error)
    {
        if (size < 0)
            error = "encryption failed";
        if (size < 0 || (m_interrupt && m_interrupt()))
            return false;
        while (size > 0) {
            const ssize_t put = ::write(m_copy.Number(), data, static_cast<std::size_t>(size));
            if (put < 0 && errno == EINTR)
                continue;
            if (put <= 0)
                return Failed(m_to, "cannot be written", error);
            data += put;
            size -= static_cast<int>(put);
        }
        return true;
    }

    static bool Failed(const std::string& path, const char* what, std::string& error)
    {
        error = SystemError(path, what);
        return false;
    }

    const std::string& m_from;
    const std::string& m_to;
    const SecureFiles::Interrupt& m_interrupt;
    Descriptor m_source;
    Descriptor m_copy{-1};
    struct stat m_state
    {
    };
};

std::string CopyPath(const std::string& directory, const VKMXPConnIface::FileList& files, std::size_t index)
{
    const std::string name = VKioFile::GetFileName(files[index].first);
    int number = 1;
    for (std::size_t before = 0; before < index; ++before)
        if (strcasecmp(VKioFile::GetFileName(files[before].first).c_str(), name.c_str()) == 0)
            ++number;
    return directory + "/" + std::to_string(number) + "_" + name;
}

std::string Directory(std::string& error)
{
    std::string directory = VKConfiguration::getVKConfiguration()->getTempDirectory(false) + kDirectory;
    if (!VKioDirectory::CreateFullPath(directory))
        error = SystemError(directory, "cannot be made");
    return directory;
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

SecureFiles::~SecureFiles()
{
    DropAhead();
    Release();
}

bool SecureFiles::MakeAhead(const FileList& files, const Interrupt& interrupt)
{
    static std::atomic<unsigned> s_uCopies{0};
    DropAhead();
    std::string error;
    const std::string directory = Directory(error);
    for (const auto& [path, secureKey] : files) {
        if (!error.empty())
            break;
        m_ahead.push_back(
            {directory + "/" + kAheadMark + std::to_string(::getpid()) + "_" + std::to_string(++s_uCopies), {}});
        Copying copying(path, m_ahead.back().path, interrupt);
        const bool done = copying.Run(secureKey, error);
        m_ahead.back().state = copying.State();
        if (!done) {
            DropAhead();
            return false;
        }
    }
    m_aheadOf = files;
    return error.empty();
}

void SecureFiles::DropAhead()
{
    for (const Ahead& copy : m_ahead)
        ::unlink(copy.path.c_str());
    m_ahead.clear();
    m_aheadOf.clear();
}

/// A file that has changed since then is copied anew.
bool SecureFiles::IsAheadOf(const FileList& files) const
{
    bool same = !m_ahead.empty() && m_aheadOf == files;
    for (std::size_t i = 0; same && i < files.size(); ++i) {
        struct stat now
        {
        };
        const struct stat& then = m_ahead[i].state;
        same = ::stat(files[i].first.c_str(), &now) == 0 && now.st_ino == then.st_ino && now.st_dev == then.st_dev &&
               now.st_size == then.st_size && now.st_mtim.tv_sec == then.st_mtim.tv_sec &&
               now.st_mtim.tv_nsec == then.st_mtim.tv_nsec;
    }
    return same;
}

bool SecureFiles::Make(FileList& files, std::string& error, const Interrupt& interrupt)
{
    Release();
    const std::string directory = Directory(error);
    if (!error.empty())
        return false;
    std::vector<std::string> copies;
    for (std::size_t i = 0; i < files.size(); ++i)
        copies.push_back(CopyPath(directory, files, i));
    if (!Hold(copies))
        return false;
    m_paths = copies;
    const bool ahead = IsAheadOf(files);
    for (std::size_t i = 0; i < files.size(); ++i)
        if (!(ahead && ::rename(m_ahead[i].path.c_str(), copies[i].c_str()) == 0) &&
            !Copying(files[i].first, copies[i], interrupt).Run(files[i].second, error)) {
            Delete();
            return false;
        }
    DropAhead();
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
