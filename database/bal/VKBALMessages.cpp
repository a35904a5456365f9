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
    {1108, "The cover receiver is not available for the whole period. Choose a receiver that is neither disabled in it "
           "nor covers another one for a shorter time."},
    {1109, "The cover receiver does not exist. Choose one that does, or none."},
    {1110, "The device name is missing. Enter a name of 1 to 50 characters."},
    {1111, "The device name is not valid. Letters, digits, blanks and the characters ! & $ ( ) + , - . ; = @ [ ] ^ _ ` "
           "{ } ~ are accepted."},
    {1113, "The PIN is missing. Enter the address of the device on its carrier."},
    {1114, "The device name is already in use. Enter a name that no other receiver and no group has; upper and lower "
           "case count as the same."},
    {1115, "A receiver on the fax carrier must be of type fax."},
    {1116, "A receiver on the voice carrier must have voice enabled."},
    {1117, "The voice number is not valid. Digits only are accepted."},
    {1118, "The e-mail address holds a blank. With voice enabled it must be one address without blanks."},
    {1119, "With voice enabled a voice number or an e-mail address is needed; both are missing."},
    {1120, "The e-mail address is missing. It is needed for a copy by e-mail and for a fail-over to e-mail."},
    {1121, "The backup carrier is missing. Choose one, or switch the use of an alternative carrier off."},
    {1122, "The backup PIN is missing. Enter the address of the device on its backup carrier."},
    {1123, "The backup carrier is the primary one. Choose another carrier as backup."},
    {1124,
     "The PIN is not valid on its carrier. Enter one that fits the carrier's protocol and its PIN template; on an "
     "MXP carrier, one without blanks that no other receiver has."},
    {1125, "The backup PIN is not valid on the backup carrier. Enter one that fits the carrier's protocol and its PIN "
           "template; on an MXP carrier, one without blanks that no other receiver has."},
    {1126, "The account has a name and no password. Enter both, or neither."},
    {1127, "The account has a password and no name. Enter both, or neither."},
    {1128, "The disable period has an end and no start. Enter its start as well."},
    {1130, "The disable period has ended already. Enter an end that lies ahead, or none."},
    {1131, "The disable period ends before it starts. Enter an end after its start, or none."},
    {1132, "The department is missing. While departments have limits, every receiver belongs to one."},
    {1133, "A receiver on the voice carrier must be of type alpha."},
    {1153, "A receiver on a VOIP carrier cannot be of type fax."},
    {1165, "The first name is not valid. Letters, blanks and the characters ' . - are accepted."},
    {1166, "The last name is not valid. Letters, blanks and the characters ' . - are accepted."},
    {1167, "The account name is not valid. Printable ASCII characters but none of \" ' : \\ / % < > # * ? | ; , are "
           "accepted."},
    {1168, "The new start of the disable period lies after its end. Enter a start before the end."},
    {1169, "The cover receiver is itself covered by this receiver. Choose another one."},
    {1171,
     "The e-mail address is missing. A receiver with advanced messaging needs one unless it is on an MXP carrier."},
    {1172, "The backup PIN is missing. Enter the user of the mobile client on its backup carrier, as user@domain."},
};

constexpr const char* kUnknown = "";

} // namespace

const char* MessageText(int number) { return TextOfCode(kMessages, number, kUnknown); }

void BrokenRules::Add(int number) { AddText(MessageText(number)); }
void BrokenRules::AddText(const std::string& text) { m_strTexts.append(text).append("\n"); }

void BrokenRules::ThrowIfAny() const
{
    if (!m_strTexts.empty())
        throw VKBALexception(DbError::RuleOrConstraint, __FILE__, __LINE__, m_strTexts);
}

} // namespace vk
