#pragma once

#include "VKMXPmBase.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vk {

/// What a device says about each message: one entry of the list on the command line.
struct DeviceAnswer
{
    enum class Kind { Received, Read, Confirm, Reject, Reply };

    Kind kind = Kind::Received;
    /// Of a reply.
    std::string code;
    std::string text;
    /// The entry as it was given, for the output.
    std::string word;

    /// The packet that says so about this job, ready to be sent.
    std::unique_ptr<VKMXPmBase> MakePacket(const std::string& jobId) const;

    /// Whether the server answers it with a response packet.
    bool IsAnsweredByServer() const { return kind == Kind::Confirm || kind == Kind::Reject; }
};

/// Reads "received,read,reply:1:On my way,confirm". A comma inside a reply's text is written "\,". Throws UsageError that
/// names the entry.
std::vector<DeviceAnswer> ParseAnswers(std::string_view list);

} // namespace vk
