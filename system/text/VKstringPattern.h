#pragma once

/// Whether the text matches the pattern, in which each "*" stands for any run of characters. A null pattern and "*"
/// match everything, an empty pattern only the empty text. A null text reads as empty. `ignoreCase`: without regard to
/// the case of A to Z.
bool VKstrContainPattern(const char* text, const char* pattern, bool ignoreCase);
