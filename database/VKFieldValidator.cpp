#include "VKFieldValidator.h"

#include <pcrecpp.h>

#include "VKstringReplace.h"

namespace {

/// No field is nearly this long. Matching takes stack in proportion to the text.
constexpr std::size_t kTooLong = 10000;

/// A step of the recursion takes half a kilobyte, so this bounds a match to 5 of a thread's 8 megabytes of stack. With
/// the expressions of this system that is a text of 5,000 bytes; a match that needs more fails.
constexpr int kRecursionLimit = 10000;

} // namespace

VKFieldValidator::VKFieldValidator() : VKFieldValidator("\\}") {}

bool VKFieldValidator::validate(const std::string& text) const
{
    if (text.size() >= kTooLong)
        return false;
    pcrecpp::RE_Options options;
    options.set_match_limit_recursion(kRecursionLimit);
    return pcrecpp::RE(m_strExpression, options).FullMatch(text);
}

std::string VKFieldValidator::escapeRESpecialChar(const std::string& text, char special)
{
    return VKstringReplaceChar(text, special, std::string{'\\', special});
}

std::string VKFieldValidator::escapeRESpecialChars(const std::string& text)
{
    std::string out = text;
    for (const char special :
         std::string("\\[^$.|?+(){}")) // the backslash first, so that no added one is escaped again
        out = escapeRESpecialChar(out, special);
    return out;
}
