#pragma once

#include <string>

/// \file
/// Paths as text; nothing here looks at the disk. char* results are malloc()ed, freed with VKutilFree.

/// Directory and name with exactly one "/" between them. An empty directory gives the name, an empty name the
/// directory.
[[nodiscard]] std::string VKstringCreatePath(const std::string& directory, const std::string& name);
char* VKutilCreatePath(const char* directory, const char* name);
/// Into `path` of `size` bytes. Returns the length, or -1, with `path` empty, when it does not fit: a path that is cut
/// would be another file.
int VKutilCreatePathEx(char* path, int size, const char* directory, const char* name);

/// What stands behind the last "/" (the whole text without one).
[[nodiscard]] std::string GetFileName(const std::string& path);
/// The same as a pointer into the path; null for null.
const char* VKutilGetFileName(const char* path);
/// What stands behind the last "." of the file name, as a pointer into the path; its end when there is none, null for
/// null. The dot in front of a hidden file's name starts no extension.
const char* VKutilGetFileExtension(const char* path);

/// The name of the innermost directory: "b" for "/a/b/" and for "/a/b".
[[nodiscard]] std::string GetLastSubDirFromPath(const std::string& path);
char* VKutilGetLastSubDirFromPath(const char* path);

/// Each "\" becomes "/", in place.
char* VKstringPathFilter(char* path);
inline char* VKutilPathFilter(char* path) { return VKstringPathFilter(path); }
