#pragma once

#include "VKMessageFile.h"

#include <string>
#include <vector>

/// A message file that notes what a driver does to it.
class FakeMessageFile final : public VKMessageFile
{
public:
    int GetResponseActionType(int index) override
    {
        askedIndexes.push_back(index);
        return actionType;
    }
    void SetFailureReason(const std::string& reason) override { failureReasons.push_back(reason); }
    void SetStatusText(const std::string& text) override { statusTexts.push_back(text); }
    void SetDeliveryStatus(const std::string& status) override { deliveryStatuses.push_back(status); }
    bool AddReceivedResponse(const std::string& response) override
    {
        offeredResponses.push_back(response);
        if (takesResponses)
            vecReceivedResponses.push_back({response, ""});
        return takesResponses;
    }
    void SetCarrierReference(const std::string& reference) override { carrierReferences.push_back(reference); }

    /// What GetResponseActionType and AddReceivedResponse answer.
    int actionType = 0;
    bool takesResponses = true;

    std::vector<int> askedIndexes;
    std::vector<std::string> offeredResponses;
    std::vector<std::string> failureReasons;
    std::vector<std::string> statusTexts;
    std::vector<std::string> deliveryStatuses;
    std::vector<std::string> carrierReferences;
};
