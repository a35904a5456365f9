#include "VKBALMessages.h"

#include "VKBALexception.h"
#include "VKMessageManager.h"
#include "VKShippedMessages.h"
#include "VKstringReplace.h"

namespace vk {

std::string MessageText(unsigned long number)
{
    // In the catalogue a "%" stands doubled.
    std::string text = VKstringReplaceStr(VKMessageManager::GetMsg(number), "%%", "%");
    if (text.empty())
        text = ShippedMessage(number);
    return text.empty() ? "The record breaks the rule " + std::to_string(number) + "." : text;
}

void BrokenRules::Add(int number) { AddText(MessageText(static_cast<unsigned long>(number))); }
void BrokenRules::AddText(const std::string& text) { m_strTexts.append(text).append("\n"); }

void BrokenRules::ThrowIfAny() const
{
    if (!m_strTexts.empty())
        throw VKBALexception(DbError::RuleOrConstraint, __FILE__, __LINE__, m_strTexts);
}

} // namespace vk
