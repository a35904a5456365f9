#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// Copies into fixed arrays and into malloc()ed memory. What the functions on char* return, the caller frees with
/// VKutilFree; null means no memory, or a null text.

/// Frees what any function of this library that gives a char* has allocated; null is fine.
void VKutilFree(void* memory);

namespace vk {

/// A malloc()ed, zero-terminated copy for the caller to free with VKutilFree; null when memory is out.
char* MallocText(std::string_view text);

/// Copies as much as fits into `size` bytes and ends it with a zero. Returns the number of characters copied, -1 when
/// there is no place at all.
int CopyBounded(char* to, std::string_view from, std::size_t size);

/// The longest beginning of at most `limit` bytes that does not cut a UTF-8 character in two.
std::string_view WholeCharacters(std::string_view text, std::size_t limit);

} // namespace vk

/// Copies into `to`, which has `size` bytes, cut where it does not fit, always ended with a zero. Returns the number
/// of characters copied, -1 for a null pointer or a size of 0.
int VKstringMsgCpy(char* to, const char* from, std::size_t size);
inline int VKutilMsgCpy(char* to, const char* from, std::size_t size) { return VKstringMsgCpy(to, from, size); }
/// The same, but a cut never falls inside a UTF-8 character.
int VKstringMsgCpy2(char* to, const char* from, std::size_t size);
int VKstringCopyMsg(char* to, const std::string& from, std::size_t size);

/// strdup() for null too: a copy, or null.
char* VKutilStrMalloc(const char* text);
/// A new text of both, one behind the other; a null one counts as empty.
char* VKutilStrMallocCat(const char* first, const char* second);
/// Makes room for `extra` more characters behind the text and the zero, and returns where the text now stands. Null,
/// with the old text left as it was, when memory is out.
char* VKutilStrExpand(char* text, std::size_t extra);

[[nodiscard]] std::string VKstringJoin(const std::vector<std::string>& parts, const std::string& separator);
char* VKutilStrJoin(const char* const* parts, int count, const char* separator);

inline const char* NullToEmpty(const char* text) { return text ? text : ""; }
