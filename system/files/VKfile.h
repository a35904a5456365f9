#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

/// \file
/// Files by descriptor. Unless told otherwise a function gives -1 on failure, leaves errno, and may be called from any
/// thread. A descriptor belongs to the caller, who closes it with VKfileClose or VKfileUnlockAndClose.

/// Modes "r", "r+", "w", "w+", "a", "a+"; a "b" behind the first letter means nothing. New files get mode 0666, less
/// the umask.
int VKfileFOpen(const char* path, const char* mode);

int VKfileClose(int fd);
ssize_t VKfileRead(int fd, void* buffer, std::size_t size);
ssize_t VKfileWrite(int fd, const void* buffer, std::size_t size);
off_t VKfileFSeek(int fd, off_t offset, int whence);

/// Read or write `count` items of `size` bytes; how many whole items were moved, fewer at the end of the file.
ssize_t VKfileFRead(void* buffer, std::size_t size, std::size_t count, int fd);
ssize_t VKfileFWrite(const void* buffer, std::size_t size, std::size_t count, int fd);

/// Reads byte by byte, up to and with the line feed, at most size - 1 bytes, and ends the text with a 0. Null at the
/// end of the file with nothing read, and on failure.
char* VKfileFGets(char* buffer, int size, int fd);

/// Write a text; the number of bytes.
int VKfileFPuts(const char* text, int fd);
int VKfileFPrintf(int fd, const char* format, ...) __attribute__((format(printf, 2, 3)));

/// Locks the whole file for this process: mode 0 shared, 1 and 2 exclusive, any other number unlocks. With `wait` it
/// waits for the lock. The file's position goes to 0. Advisory; dropped when the process closes any descriptor of the
/// file.
int VKfileLock(int fd, int mode, int wait);

/// Goes to position 0. It does not release a lock of VKfileLock, which stays until the descriptor is closed.
int VKfileUnlock(int fd);
int VKfileUnlockAndClose(int fd);

/// Opens and tries to lock, shared for a mode that only reads, else exclusive. The descriptor comes back even when the
/// lock could not be taken.
int VKfileFOpenWithLock(const char* path, const char* mode, int wait);

/// Takes the exclusive lock of a directory, waiting for it: its file "lock", which is made when there is none. Give the
/// descriptor to VKfileUnlockDir.
int VKfileLockDir(const char* directory);
int VKfileUnlockDir(int fd);

int VKfileStat(const char* path, struct stat* result);
int VKfileChmod(const char* path, mode_t mode);
int VKfileChDir(const char* path);
int VKfileDelete(const char* path);
/// In bytes.
off_t VKfileSize(const char* path);
off_t VKfileSize(int fd);
int VKfileGetFileHandle(FILE* stream);

/// Copies a file's content over `to`. A file is not copied onto itself.
int VKfileCopy(const char* from, const char* to);

/// Moves a file, to another file system too.
int VKfileMorph(const char* from, const char* to);

/// The file as an array of `*count` lines without their line ends, owned by the caller and freed with
/// VKfileFreeLines. The second form holds a shared lock meanwhile. On failure count is 0 and lines is null.
int VKfileReadFileLines(const char* path, int* count, char*** lines);
int VKfileReadFileLinesWithLock(const char* path, int* count, char*** lines);
void VKfileFreeLines(int count, char** lines);

/// Whether the directory has a file, or a sub-directory, of that name.
bool VKfileCheckFile(const char* directory, const char* name);
bool VKfileCheckDir(const char* directory, const char* name);

/// What a search found.
struct finddata_t
{
    char name[256]; ///< without the directory
    bool directory;
    off_t size; ///< in bytes
    time_t modified;
};

/// A search through a directory, owned by the caller and ended with VKfileFindClose. One thread at a time.
struct file_find_t;

/// The first entry of the directory that matches the pattern, in which "*" stands for any text. Null when there is
/// none.
file_find_t* VKfileFindFirst(const char* directory, const char* pattern, finddata_t* found);
/// The next one: 0, or -1 when there are no more.
int VKfileFindNext(file_find_t* search, finddata_t* found);
int VKfileFindClose(file_find_t* search);
/// Whether any entry matches; `found` may be null.
bool VKfileFindFile(const char* directory, const char* pattern, finddata_t* found);
