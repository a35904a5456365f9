#pragma once

#include "DeviceFiles.h"
#include "VKMXPmMessage.h"

#include <json/json.h>

#include <cstdio>
#include <string>

namespace vk {

/// Prints what a device does and sees: readable lines, or one JSON object a line. Each line is flushed.
class DeviceOutput
{
public:
    DeviceOutput(bool json, std::FILE* out) : m_json(json), m_out(out) {}

    void Online(const std::string& jid);
    void Message(const std::string& from, const VKMXPmMessage& message);
    void Answer(const std::string& jobId, const std::string& answer);
    /// The server's response to one of our packets.
    void Response(const VKMXPmBase& packet);
    /// An attachment, decrypted.
    void File(const DeviceFiles::Arrived& file);
    /// Something that is no message and no response.
    void Other(const std::string& from, const std::string& what);

private:
    void Write(const char* event, Json::Value line, const std::string& readable);

    bool m_json;
    std::FILE* m_out;
};

} // namespace vk
