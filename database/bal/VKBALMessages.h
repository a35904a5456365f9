#pragma once

#include <string>

namespace vk {

/// The operator's text for a broken rule: which field is wrong and what would be accepted. The installation's catalogue
/// says it, else the text that the library was built with, else the number itself: never empty.
std::string MessageText(unsigned long number);

/// Gathers the texts of broken rules, one line each, and throws them together.
class BrokenRules
{
public:
    void Add(int number);
    void AddText(const std::string& text);

    /// Throws VKBALexception with code 1000 and all texts unless there is none.
    void ThrowIfAny() const;

private:
    std::string m_strTexts;
};

} // namespace vk
