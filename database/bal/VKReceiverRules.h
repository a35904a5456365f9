#pragma once

#include <functional>
#include <string>

#include "VKBALMessages.h"
#include "VKDBiReceiver.h"
#include "VKKnownCarriers.h"

namespace vk {

/// Whether a receiver that is off duty has this one as its cover.
bool CoversAnyone(VKDBiReceiver& receivers, unsigned long id);

/// The rules that a receiver's record keeps. One object, one check.
class ReceiverRules
{
public:
    using IsPinValid = std::function<bool(unsigned long receiverId, const std::string& pin, unsigned long carrierId)>;

    /// The store is asked about other receivers; it must outlive the object, as must the carriers.
    ReceiverRules(VKDBiReceiver& receivers, KnownCarriers& carriers, IsPinValid isPinValid);

    /// Throws VKBALexception with the texts of all broken rules, or with the first one alone where the rule says so.
    void Check(const VK_RECEIVER& receiver, bool isNew);

private:
    void CheckCover(const VK_RECEIVER& receiver);
    void CheckCoverReceiver(const VK_RECEIVER& receiver);
    void CheckName(const VK_RECEIVER& receiver);
    void CheckCarrier(const VK_RECEIVER& receiver);
    void CheckVoiceAndMail(const VK_RECEIVER& receiver);
    void CheckBackup(const VK_RECEIVER& receiver);
    void CheckPins(const VK_RECEIVER& receiver);
    void CheckAccount(const VK_RECEIVER& receiver);
    void CheckPeriod(const VK_RECEIVER& receiver, bool isNew);

    void StopIf(bool broken, int number);
    void AddIf(bool broken, int number);

    VKDBiReceiver& m_receivers;
    KnownCarriers& m_carriers;
    IsPinValid m_isPinValid;
    BrokenRules m_broken;
    long m_now;
};

} // namespace vk
