#pragma once

#include <string>

/// \file
/// Replacing and removing characters. The functions on char* and on string& work in place, and let null pass; the ones
/// on const string& return a copy.

char* VKstringReplaceChar(char* text, char from, char to);
std::string& VKstringReplaceChar(std::string& text, char from, char to);
/// Every `from` becomes the text `to`, which may be longer, shorter or empty.
[[nodiscard]] std::string VKstringReplaceChar(const std::string& text, char from, const std::string& to);
inline char* VKutilStrReplaceChar(char* text, char from, char to) { return VKstringReplaceChar(text, from, to); }

/// Every character that stands in the set becomes `to`.
std::string& VKstringReplaceCharAnyOf(std::string& text, const std::string& set, char to);

/// Every occurrence of `from`, from left to right; what was put in is not searched again. An empty `from` changes
/// nothing.
std::string& findandreplace(std::string& text, const std::string& from, const std::string& to);
[[nodiscard]] std::string VKstringReplaceStr(const std::string& text, const std::string& from, const std::string& to);

/// Each colon becomes "-": for texts that go into colon-separated lists.
[[nodiscard]] std::string VKstringReplaceColon(const std::string& text);
inline char* VKutilStrReplaceColon(char* text) { return VKstringReplaceChar(text, ':', '-'); }

/// Each "%" doubled, so that the text as a printf format prints as itself.
[[nodiscard]] std::string VKstringEscapePrintfString(const std::string& text);

/// Each double quote becomes a single one.
inline char* VKutilStrReplaceQuto(char* text) { return VKstringReplaceChar(text, '"', '\''); }

/// Without any white space, inside the text too.
[[nodiscard]] std::string VKstringRemoveSpaceChars(const std::string& text);
char* VKstringRemoveSpaceChars(char* text);
