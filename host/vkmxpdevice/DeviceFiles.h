#pragma once

#include "VKMXPFileReceiver.h"
#include "VKMXPmMessage.h"

#include <filesystem>
#include <functional>
#include <string>

namespace vk {

class DeviceOutput;

/// The attachments that a device takes: received, decrypted with the secure key of their packet, and measured. They are
/// in a private directory while they are encrypted. One thread, the device's.
class DeviceFiles : public FileReceiver
{
public:
    struct Arrived
    {
        std::string jobId;
        std::string name;
        long long size = 0; ///< of the clear content, like the digest
        std::string sha256;
        std::string over; ///< "socks5" or "inband"
        std::string savedAs; ///< empty when it was not kept
    };

    /// \param saveDirectory where to keep the decrypted files; empty for nowhere.
    DeviceFiles(gloox::ClientBase& client, int streamTypes, std::string saveDirectory, DeviceOutput& output,
                std::function<void(const Arrived&)> arrived);
    ~DeviceFiles() override;

    /// Learns the secure keys of a message's attachments.
    void Announce(const VKMXPmMessage& message);

protected:
    void Offered(const File&) override {}
    std::string PathFor(const File& file) override;
    void Received(const File& file) override;
    void Failed(const std::string& what, const gloox::IQ* iq) override;

private:
    std::string KeyFor(const File& file) const;

    std::string m_saveDirectory;
    DeviceOutput& m_output;
    std::function<void(const Arrived&)> m_arrived;
    std::filesystem::path m_directory;
    std::map<std::pair<std::string, std::string>, std::string> m_keys; ///< secure key by job id and name
    int m_number = 0;
};

} // namespace vk
