#include "VKBALMessages.h"

#include "VKBALexception.h"
#include "VKField.h"

namespace vk {

namespace {

constexpr CodeText<int> kMessages[] = {
    {1003, "The department name is missing. Enter a name of 1 to 50 characters."},
    {1004, "The department name is not valid. Letters, digits, blanks and the characters ' . _ - are accepted."},
    {1005, "The department name is already in use. Enter a name that no other department has; upper and lower case "
           "count as the same."},
    {1006, "The maximum number of receivers of the department is out of range. Enter a number from 1 to the limit in "
           "the global settings."},
    {1007, "The maximum number of receivers of the department is below the number of receivers that it has. Enter that "
           "number or a higher one."},
    {1110, "The device name is missing. Enter a name of 1 to 50 characters."},
    {1111, "The device name is not valid. Letters, digits, blanks and the characters ! & $ ( ) + , - . ; = @ [ ] ^ _ ` "
           "{ } ~ are accepted."},
    {1113, "The PIN is missing. Enter the address of the device on its carrier."},
    {1114, "The device name is already in use. Enter a name that no other receiver and no group has; upper and lower "
           "case count as the same."},
};

constexpr const char* kUnknown = "";

} // namespace

const char* MessageText(int number) { return TextOfCode(kMessages, number, kUnknown); }

void BrokenRules::Add(int number) { m_strTexts.append(MessageText(number)).append("\n"); }

void BrokenRules::ThrowIfAny() const
{
    if (!m_strTexts.empty())
        throw VKBALexception(DbError::RuleOrConstraint, __FILE__, __LINE__, m_strTexts);
}

} // namespace vk
