#include "VKReceiverRules.h"

#include <algorithm>
#include <ctime>
#include <limits>
#include <set>

#include "VKBALUtility.h"
#include "VKCarrier.h"
#include "VKDBiDepartment.h"
#include "VKFieldValidators.h"
#include "VKReceiverAvailability.h"
#include "VKRecordText.h"
#include "VKutilDatabase.h"

namespace vk {

namespace {

constexpr int kAvailable = 1;
constexpr int kOffDutyWithCover = 2;
constexpr long kOpenEnd = std::numeric_limits<long>::max();

/// A record, or a list, that is freed with the block.
struct OwnedReceiver : VK_RECEIVER
{
    OwnedReceiver() = default;
    ~OwnedReceiver() { EmptyReceiver(this); }
    OwnedReceiver(const OwnedReceiver&) = delete;
    OwnedReceiver& operator=(const OwnedReceiver&) = delete;
};

struct OwnedReceivers : VK_RECEIVER_LIST
{
    OwnedReceivers() = default;
    ~OwnedReceivers() { EmptyReceiverList(this); }
    OwnedReceivers(const OwnedReceivers&) = delete;
    OwnedReceivers& operator=(const OwnedReceivers&) = delete;
    const VK_RECEIVER* begin() const { return list; }
    const VK_RECEIVER* end() const { return list + count; }
};

template <std::size_t N> std::string TextOf(const char (&field)[N], const char* name)
{
    return std::string(GetText(field, N, name));
}

long EndOf(const VK_RECEIVER& receiver) { return receiver.disable_end_date > 0 ? receiver.disable_end_date : kOpenEnd; }

bool Overlap(const VK_RECEIVER& one, const VK_RECEIVER& other)
{
    return one.disable_start_date <= EndOf(other) && other.disable_start_date <= EndOf(one);
}

bool IsCovered(const VK_RECEIVER& receiver)
{
    return receiver.status_code == kOffDutyWithCover && receiver.forward_to_id != 0;
}

/// Whether the covers of a receiver, followed one after the other, lead to an id.
bool LeadsTo(VKDBiReceiver& receivers, unsigned long fromId, unsigned long id)
{
    std::set<unsigned long> seen;
    OwnedReceiver receiver;
    for (unsigned long next = fromId; next != 0 && seen.insert(next).second; next = receiver.forward_to_id) {
        if (next == id)
            return true;
        if (!receivers.GetByID(&receiver, next) || !IsCovered(receiver))
            return false;
    }
    return false;
}

} // namespace

bool CoversAnyone(VKDBiReceiver& receivers, unsigned long id)
{
    OwnedReceivers covered;
    receivers.GetCoveredBy(&covered, id);
    return std::any_of(covered.begin(), covered.end(), IsCovered);
}

ReceiverRules::ReceiverRules(VKDBiReceiver& receivers, KnownCarriers& carriers, IsPinValid isPinValid)
    : m_receivers(receivers), m_carriers(carriers), m_isPinValid(std::move(isPinValid)), m_now(time(nullptr))
{
}

void ReceiverRules::AddIf(bool broken, int number)
{
    if (broken)
        m_broken.Add(number);
}

void ReceiverRules::StopIf(bool broken, int number)
{
    AddIf(broken, number);
    m_broken.ThrowIfAny();
}

void ReceiverRules::Check(const VK_RECEIVER& receiver, bool isNew)
{
    CheckCover(receiver);
    CheckName(receiver);
    CheckCarrier(receiver);
    CheckVoiceAndMail(receiver);
    CheckBackup(receiver);
    CheckPins(receiver);
    CheckAccount(receiver);
    CheckPeriod(receiver, isNew);
    AddIf(VKDBiDepartment::s_bRecLimit && receiver.department_id == 0, 1132); // it would escape all limits
    AddIf(receiver.carrier_id == VK_VOICE_CARRIER_ID && receiver.type != VKReceiverAlpha, 1133);
    AddIf(m_carriers.ProtocolOf(receiver.carrier_id) == VKProtocolVoip && receiver.type == VKReceiverFax, 1153);
    AddIf(!VKBALUtility::IsValidUserName(TextOf(receiver.acct_name, "acct_name")), 1167);
    m_broken.ThrowIfAny();
}

void ReceiverRules::CheckCover(const VK_RECEIVER& receiver)
{
    if (!VKDBiReceiver::s_bIsCoverByAllowed || receiver.status_code <= kAvailable || EndOf(receiver) < m_now)
        return;
    if (IsCovered(receiver))
        CheckCoverReceiver(receiver);
    OwnedReceivers covered;
    if (receiver.id != 0)
        m_receivers.GetCoveredBy(&covered, receiver.id);
    for (const VK_RECEIVER& other : covered)
        if (other.id != receiver.id && IsCovered(other) && Overlap(other, receiver)) {
            m_broken.AddText("This receiver is a Cover by receiver for '" + TextOf(other.name, "name") + "'");
            m_broken.ThrowIfAny();
        }
}

void ReceiverRules::CheckCoverReceiver(const VK_RECEIVER& receiver)
{
    OwnedReceiver cover;
    StopIf(!m_receivers.GetByID(&cover, receiver.forward_to_id), 1109);
    OwnedReceivers covered;
    m_receivers.GetCoveredBy(&covered, cover.id);
    const bool coversShorter = std::any_of(covered.begin(), covered.end(), [&](const VK_RECEIVER& other) {
        return other.id != receiver.id && IsCovered(other) && Overlap(other, receiver) &&
               EndOf(other) < EndOf(receiver);
    });
    const bool isSelf = cover.id == receiver.id; // told below as what it is
    StopIf(!isSelf && (coversShorter || IsReceiverDisabledAtTime(&cover, receiver.disable_start_date, EndOf(receiver))),
           1108);
    StopIf(receiver.id != 0 && LeadsTo(m_receivers, receiver.forward_to_id, receiver.id), 1169);
}

void ReceiverRules::CheckName(const VK_RECEIVER& receiver)
{
    const std::string name = TextOf(receiver.name, "name");
    if (VKBALUtility::IsBlank(name))
        m_broken.Add(1110);
    else if (!VKBALUtility::IsValidDeviceName(name))
        m_broken.Add(1111);
    AddIf(VKBALUtility::IsBlank(TextOf(receiver.pin, "pin")), 1113);
    const bool needsMail =
        receiver.advanced_messaging && receiver.carrier_id != 0 && !IsMxpProtocol(m_carriers.ProtocolOf(receiver.carrier_id));
    AddIf(needsMail && VKBALUtility::IsBlank(TextOf(receiver.email, "email")), 1171);
    AddIf(!VKutilDatabase::IsUniqueDeviceName(name, receiver.id, m_receivers), 1114);
}

void ReceiverRules::CheckCarrier(const VK_RECEIVER& receiver)
{
    AddIf(receiver.carrier_id == VK_FAX_CARRIER_ID && receiver.type != VKReceiverFax, 1115);
    AddIf(receiver.carrier_id == VK_VOICE_CARRIER_ID && !receiver.voice_enable, 1116);
}

void ReceiverRules::CheckVoiceAndMail(const VK_RECEIVER& receiver)
{
    const std::string mail = TextOf(receiver.email, "email");
    const std::string number = TextOf(receiver.voice_number, "voice_number");
    if (receiver.voice_enable) {
        AddIf(!number.empty() && !VKNumericValidator().validate(number), 1117);
        AddIf(mail.find(' ') != std::string::npos, 1118);
        AddIf(number.empty() && mail.empty(), 1119);
    }
    AddIf((receiver.email_fail_over || receiver.email_cc) && VKBALUtility::IsBlank(mail), 1120);
    const std::string firstName = TextOf(receiver.first_name, "first_name");
    const std::string lastName = TextOf(receiver.last_name, "last_name");
    AddIf(!firstName.empty() && !VKNameValidator().validate(firstName), 1165);
    AddIf(!lastName.empty() && !VKNameValidator().validate(lastName), 1166);
}

void ReceiverRules::CheckBackup(const VK_RECEIVER& receiver)
{
    if (!receiver.use_alter_carrier)
        return;
    AddIf(receiver.bk_carrier_id == 0, 1121);
    AddIf(VKBALUtility::IsBlank(TextOf(receiver.bk_pin, "bk_pin")),
          IsMxpProtocol(m_carriers.ProtocolOf(receiver.bk_carrier_id)) ? 1172 : 1122);
    AddIf(receiver.bk_carrier_id != 0 && receiver.bk_carrier_id == receiver.carrier_id, 1123);
}

/// A PIN that is missing has been told already.
void ReceiverRules::CheckPins(const VK_RECEIVER& receiver)
{
    const auto isBroken = [&](const std::string& pin, unsigned long carrierId) {
        return !VKBALUtility::IsBlank(pin) && !m_isPinValid(receiver.id, pin, carrierId);
    };
    AddIf(isBroken(TextOf(receiver.pin, "pin"), receiver.carrier_id), 1124);
    AddIf(receiver.use_alter_carrier && isBroken(TextOf(receiver.bk_pin, "bk_pin"), receiver.bk_carrier_id), 1125);
}

/// An account is for those who may change something of the receiver themselves.
void ReceiverRules::CheckAccount(const VK_RECEIVER& receiver)
{
    if (!receiver.can_update_rece && !receiver.can_update_schd)
        return;
    const bool hasName = *receiver.acct_name != '\0';
    const bool hasPassword = *receiver.acct_pwd != '\0';
    AddIf(hasName && !hasPassword, 1126);
    AddIf(!hasName && hasPassword, 1127);
}

/// An available receiver's dates do not count, and are cleared when it is stored.
void ReceiverRules::CheckPeriod(const VK_RECEIVER& receiver, bool isNew)
{
    const long start = receiver.disable_start_date;
    const long end = receiver.disable_end_date;
    if (receiver.status_code <= kAvailable || end <= 0)
        return;
    AddIf(start <= 0, 1128);
    AddIf(end < m_now, 1130);
    if (start <= end)
        return;
    OwnedReceiver stored;
    const bool onlyStartMoved = !isNew && m_receivers.GetByID(&stored, receiver.id) && stored.disable_end_date == end;
    m_broken.Add(onlyStartMoved ? 1168 : 1131);
}

} // namespace vk
