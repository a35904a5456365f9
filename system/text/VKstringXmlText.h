#pragma once

#include <cstddef>
#include <string>

/// Puts U+FFFD in place of everything that XML 1.0 cannot carry: controls below 0x20 except tab, line feed and carriage
/// return, broken UTF-8 (overlong forms, surrogates and code points above U+10FFFF among it), U+FFFE and U+FFFF. A
/// broken sequence counts as the Unicode standard counts it: one replacement for each longest beginning of a character.
/// Returns how many were replaced. A clean text costs one scan and no allocation.
std::size_t VKstringCleanXmlText(std::string& text);
