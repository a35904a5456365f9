#pragma once

#include <memory>
#include <string>

#include "VKReceiverForwarding.h"

namespace vk {
class KnownCarriers;
}

/// The receivers behind their rules: forwards every operation to the layer below, and refuses what breaks a rule.
class VKBALReceiver : public vk::ReceiverForwarding
{
public:
    /// Takes the implementation over.
    explicit VKBALReceiver(std::unique_ptr<VKDBiReceiver> implementation);
    ~VKBALReceiver() override;

    bool AddImpl(VK_RECEIVER* receiver) override;
    bool ModifyImpl(VK_RECEIVER* receiver, unsigned long oldDepartmentId, VK_DISABLE_HISTORY* update,
                    VK_DISABLE_HISTORY* add, bool keepHistory) override;
    bool Delete(unsigned long id, unsigned long departmentId) override;
    bool AddAttribute(VK_ATTRIBUTE* attribute) override;
    bool ModifyAttribute(VK_ATTRIBUTE* attribute) override;
    bool AddAll(VK_RECEIVER_LIST* list, bool checkOnly, std::vector<VKRefusedRecord>& refused) override;

    /// Throws VKBALexception with all rules that the record breaks.
    void CheckBALConstraints(const VK_RECEIVER& receiver, bool isNew);

    /// Whether a PIN is one that its carrier takes, for the receiver that is to have it (0 for a new one).
    bool ValidateReceiverPin(unsigned long receiverId, const std::string& pin, unsigned long carrierId);
    /// No white space, and no other receiver on an MXP carrier has it.
    bool ValidatePinForMXPReceiver(const std::string& pin, unsigned long receiverId);
    /// A decimal number from 0 to 9999.
    static bool ValidatePinForOAIReceiver(const std::string& pin);

private:
    void Check(const VK_RECEIVER& receiver, bool isNew, vk::KnownCarriers& carriers);
    bool IsPinValid(unsigned long receiverId, const std::string& pin, const VK_CARRIER* carrier);
    void CheckAttribute(const VK_ATTRIBUTE& attribute);
};
