#include "VKfile.h"

#include "VKfileHandle.h"
#include "VKprintf.h"
#include "VKstringPath.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace {

bool IsEmpty(const char* text) { return !text || !*text; }

/// Fails with an errno.
int Fail(int code)
{
    errno = code;
    return -1;
}

/// Repeats a system call that a signal interrupted.
template <class Call> auto Uninterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

bool SameFile(int fd, const char* path)
{
    struct stat one = {};
    struct stat other = {};
    return fstat(fd, &one) == 0 && stat(path, &other) == 0 && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

/// Moves whole items, through short reads and writes.
template <class Move> ssize_t MoveItems(std::size_t size, std::size_t count, Move move)
{
    const std::size_t whole = size * count;
    std::size_t done = 0;
    while (done < whole) {
        const ssize_t moved = move(done, whole - done);
        if (moved < 0)
            return -1;
        if (moved == 0)
            break;
        done += static_cast<std::size_t>(moved);
    }
    return size ? static_cast<ssize_t>(done / size) : 0;
}

} // namespace

int VKfileFOpen(const char* path, const char* mode)
{
    if (IsEmpty(path) || IsEmpty(mode))
        return Fail(EINVAL);
    int flags = std::strchr(mode, '+') ? O_RDWR : mode[0] == 'r' ? O_RDONLY : O_WRONLY;
    switch (mode[0]) {
    case 'r':
        break;
    case 'w':
        flags |= O_CREAT | O_TRUNC;
        break;
    case 'a':
        flags |= O_CREAT | O_APPEND;
        break;
    default:
        return Fail(EINVAL);
    }
    return open(path, flags | O_CLOEXEC, 0666);
}

int VKfileClose(int fd) { return close(fd); }

ssize_t VKfileRead(int fd, void* buffer, std::size_t size)
{
    return Uninterrupted([&] { return read(fd, buffer, size); });
}

ssize_t VKfileWrite(int fd, const void* buffer, std::size_t size)
{
    return Uninterrupted([&] { return write(fd, buffer, size); });
}

off_t VKfileFSeek(int fd, off_t offset, int whence) { return lseek(fd, offset, whence); }

ssize_t VKfileFRead(void* buffer, std::size_t size, std::size_t count, int fd)
{
    return MoveItems(size, count, [&](std::size_t done, std::size_t rest) {
        return VKfileRead(fd, static_cast<char*>(buffer) + done, rest);
    });
}

ssize_t VKfileFWrite(const void* buffer, std::size_t size, std::size_t count, int fd)
{
    return MoveItems(size, count, [&](std::size_t done, std::size_t rest) {
        return VKfileWrite(fd, static_cast<const char*>(buffer) + done, rest);
    });
}

char* VKfileFGets(char* buffer, int size, int fd)
{
    if (!buffer || size < 2)
        return nullptr;
    int length = 0;
    while (length < size - 1) {
        const ssize_t got = VKfileRead(fd, buffer + length, 1);
        if (got < 0)
            return nullptr;
        if (got == 0 || buffer[length++] == '\n')
            break;
    }
    buffer[length] = '\0';
    return length ? buffer : nullptr;
}

int VKfileFPuts(const char* text, int fd)
{
    if (!text)
        return Fail(EINVAL);
    return static_cast<int>(VKfileFWrite(text, 1, std::strlen(text), fd));
}

int VKfileFPrintf(int fd, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = vk::FormatV(format, arguments);
    va_end(arguments);
    return static_cast<int>(VKfileFWrite(text.data(), 1, text.size(), fd));
}

int VKfileStat(const char* path, struct stat* result) { return stat(path, result); }
int VKfileChmod(const char* path, mode_t mode) { return chmod(path, mode); }
int VKfileChDir(const char* path) { return chdir(path); }
int VKfileDelete(const char* path) { return unlink(path); }

off_t VKfileSize(const char* path)
{
    struct stat facts = {};
    return stat(path, &facts) == 0 ? facts.st_size : -1;
}

off_t VKfileSize(int fd)
{
    struct stat facts = {};
    return fstat(fd, &facts) == 0 ? facts.st_size : -1;
}

int VKfileGetFileHandle(FILE* stream) { return stream ? fileno(stream) : Fail(EBADF); }

int VKfileCopy(const char* from, const char* to)
{
    const vk::FileHandle source(VKfileFOpen(from, "r"));
    if (!source || IsEmpty(to))
        return -1;
    if (SameFile(source.Get(), to))
        return Fail(EINVAL); // opening the target would empty it
    vk::FileHandle target(VKfileFOpen(to, "w+"));
    if (!target)
        return -1;
    char buffer[65536];
    while (true) {
        const ssize_t got = VKfileRead(source.Get(), buffer, sizeof buffer);
        if (got < 0)
            return -1;
        if (got == 0)
            return target.Close();
        if (VKfileFWrite(buffer, 1, static_cast<std::size_t>(got), target.Get()) != got)
            return -1;
    }
}

int VKfileMorph(const char* from, const char* to)
{
    if (IsEmpty(from) || IsEmpty(to))
        return Fail(EINVAL);
    if (rename(from, to) == 0)
        return 0;
    if (errno != EXDEV || VKfileCopy(from, to) != 0)
        return -1;
    return unlink(from);
}

bool VKfileCheckFile(const char* directory, const char* name)
{
    struct stat facts = {};
    const std::string path = VKstringCreatePath(directory ? directory : "", name ? name : "");
    return stat(path.c_str(), &facts) == 0 && !S_ISDIR(facts.st_mode);
}

bool VKfileCheckDir(const char* directory, const char* name)
{
    struct stat facts = {};
    const std::string path = VKstringCreatePath(directory ? directory : "", name ? name : "");
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}
