#pragma once

#include <string>
#include <vector>

/// \file
/// Cutting texts into parts.

/// The parts between any of the delimiters; empty parts are left out.
[[nodiscard]] std::vector<std::string> VKstringTokenize(const std::string& text, const std::string& delimiters);

/// The parts between the separators, empty ones kept: joining them with the separator gives the text back. An empty
/// text has no part.
[[nodiscard]] std::vector<std::string> VKstringSplitString(const std::string& text, const std::string& separator);

/// The token with the number `index`, counted from 0 without the empty ones; empty when there are fewer.
[[nodiscard]] std::string VKstringNStrTok(const std::string& text, const std::string& delimiters, int index);
/// The same, malloc()ed for VKutilFree; null when there are fewer.
char* VKutilNStrTok(const char* text, const char* delimiters, int index);

/// strtok() without hidden state: give the text at the first call and null later, and the same `rest` each time. Cuts
/// the text in place; null at the end.
char* VKstringSafeStrTok(char* text, const char* delimiters, char** rest);
inline char* VKutilSafeStrTok(char* text, const char* delimiters, char** rest)
{
    return VKstringSafeStrTok(text, delimiters, rest);
}

/// A list as people write it, "a, b ,c": each part trimmed, empty ones left out.
[[nodiscard]] std::vector<std::string> BuildStringVector(const std::string& list, char separator = ',');

/// A command line to its arguments: parted at white space, text in single or double quotes kept whole, "\" taking the
/// meaning of the next character outside single quotes. An open quote reaches to the end.
[[nodiscard]] std::vector<std::string> BuildCommandLineArguments(const std::string& commandLine);

/// The part of a job id before its first "_"; the whole of it without one.
[[nodiscard]] std::string VKutilParseMajorJobID(const std::string& jobId);
