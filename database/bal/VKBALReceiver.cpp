#include "VKBALReceiver.h"

#include <algorithm>
#include <charconv>
#include <strings.h>

#include "VKBALMessages.h"
#include "VKBALUtility.h"
#include "VKBALexception.h"
#include "VKCarrier.h"
#include "VKFieldValidators.h"
#include "VKPinTemplate.h"
#include "VKReceiverListRules.h"
#include "VKReceiverRules.h"
#include "VKRecordText.h"
#include "VKascii.h"

namespace {

constexpr int kWithoutValidation = 2;
constexpr unsigned int kHighestOaiPin = 9999;

/// A whole text as a number of this base, from 0 to 9999.
bool IsOaiNumber(const std::string& pin, int base)
{
    unsigned int number = 0;
    const char* const end = pin.data() + pin.size();
    const auto [rest, error] = std::from_chars(pin.data(), end, number, base);
    return error == std::errc() && rest == end && number <= kHighestOaiPin;
}

/// The texts of the rules that a check finds broken; empty when there are none.
template <class Check> std::string BrokenBy(Check&& check)
{
    try {
        check();
    } catch (const VKDBexception& failure) {
        if (failure.GetErrorCode() != vk::DbError::RuleOrConstraint)
            throw;
        return failure.GetMsg();
    }
    return {};
}

} // namespace

VKBALReceiver::VKBALReceiver(std::unique_ptr<VKDBiReceiver> implementation)
    : vk::ReceiverForwarding(std::move(implementation))
{
}

VKBALReceiver::~VKBALReceiver() = default;

bool VKBALReceiver::AddImpl(VK_RECEIVER* receiver)
{
    if (m_iValidationMode != kWithoutValidation)
        CheckBALConstraints(*receiver, true);
    return m_pImplementation->AddImpl(receiver);
}

bool VKBALReceiver::ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                               VK_DISABLE_HISTORY* add, bool keepHistory)
{
    if (m_iValidationMode != kWithoutValidation)
        CheckBALConstraints(*receiver, false);
    return m_pImplementation->ModifyImpl(receiver, oldDepartmentId, update, add, keepHistory);
}

void VKBALReceiver::CheckBALConstraints(const VK_RECEIVER& receiver, bool isNew)
{
    vk::KnownCarriers carriers(*m_pImplementation);
    Check(receiver, isNew, carriers);
}

void VKBALReceiver::Check(const VK_RECEIVER& receiver, bool isNew, vk::KnownCarriers& carriers)
{
    vk::ReceiverRules(*m_pImplementation, carriers,
                      [&](unsigned long id, const std::string& pin, unsigned long carrierId) {
                          return IsPinValid(id, pin, carriers.Find(carrierId));
                      })
        .Check(receiver, isNew);
}

bool VKBALReceiver::AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused)
{
    refused.clear();
    vk::KnownCarriers carriers(*m_pImplementation);
    vk::ReceiverListRules together(*m_pImplementation, carriers);
    for (int i = 0; m_iValidationMode != kWithoutValidation && i < list->count; ++i) {
        std::string reasons = BrokenBy([&] { Check(list->list[i], true, carriers); });
        reasons += BrokenBy([&] { together.Check(list->list[i], i); });
        if (!reasons.empty())
            refused.push_back({i, reasons});
    }
    if (!refused.empty() || checkOnly)
        return false;
    std::vector<VKRefusedRecord> none;
    return m_pImplementation->AddAll(list, false, none);
}

bool VKBALReceiver::Delete(unsigned long id, unsigned long departmentId)
{
    if (id == 0)
        throw VKBALexception(vk::DbError::RuleOrConstraint, __FILE__, __LINE__,
                             "Receiver ID should be greater than zero.");
    if (vk::CoversAnyone(*m_pImplementation, id))
        throw VKDBexception(vk::DbError::RuleOrConstraint, __FILE__, __LINE__, "Foreign Key constraints failed.");
    return m_pImplementation->Delete(id, departmentId);
}

bool VKBALReceiver::ValidateReceiverPin(unsigned long receiverId, const std::string& pin, unsigned long carrierId)
{
    vk::KnownCarriers carriers(*m_pImplementation);
    return IsPinValid(receiverId, pin, carriers.Find(carrierId));
}

/// Where there is no carrier, or none that is there, nothing says what a PIN looks like.
bool VKBALReceiver::IsPinValid(unsigned long receiverId, const std::string& pin, const VK_CARRIER* carrier)
{
    constexpr int hexadecimal = 16;
    if (carrier == nullptr)
        return true;
    const bool isOai = carrier->protocol_id == VKProtocolOaiOneWay || carrier->protocol_id == VKProtocolOaiTwoWay;
    if (isOai && !IsOaiNumber(pin, hexadecimal))
        return false;
    if (IsMxpProtocol(carrier->protocol_id) && !ValidatePinForMXPReceiver(pin, receiverId))
        return false;
    return ValidatePinAgainstPinTemplate(pin, carrier->pin_template);
}

bool VKBALReceiver::ValidatePinForMXPReceiver(const std::string& pin, unsigned long receiverId)
{
    if (std::any_of(pin.begin(), pin.end(), vk::IsSpace))
        return false;
    VK_RECEIVER_VIEW_LIST views;
    m_pImplementation->GetViewsByPin(&views, pin);
    const bool taken = std::any_of(views.list, views.list + views.count, [&](const VK_RECEIVER_VIEW& view) {
        return view.id != receiverId && IsMxpProtocol(view.protocol_id) && strcasecmp(view.pin, pin.c_str()) == 0;
    });
    EmptyReceiverViewList(&views);
    return !taken;
}

bool VKBALReceiver::ValidatePinForOAIReceiver(const std::string& pin)
{
    constexpr int decimal = 10;
    return IsOaiNumber(pin, decimal);
}

bool VKBALReceiver::AddAttribute(VK_ATTRIBUTE* attribute)
{
    CheckAttribute(*attribute);
    return m_pImplementation->AddAttribute(attribute);
}

bool VKBALReceiver::ModifyAttribute(VK_ATTRIBUTE* attribute)
{
    CheckAttribute(*attribute);
    return m_pImplementation->ModifyAttribute(attribute);
}

void VKBALReceiver::CheckAttribute(const VK_ATTRIBUTE& attribute)
{
    const std::string name(vk::GetText(attribute.name, sizeof attribute.name, "name"));
    vk::BrokenRules broken;
    if (VKBALUtility::IsBlank(name))
        broken.AddText("The attribute name is missing. Enter a name of 1 to 256 characters.");
    else if (!VKReceiverAttribNameValidator().validate(name))
        broken.AddText("The attribute name is not valid. Letters, digits, blanks and the characters _ - . are "
                       "accepted.");
    if (!m_pImplementation->IsUniqueAttributeName(name, attribute.id))
        broken.AddText("The attribute name is already in use. Enter a name that no other attribute has; upper and "
                       "lower case count as the same.");
    broken.ThrowIfAny();
}
