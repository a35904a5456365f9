#pragma once

#include <cstdint>
#include <string>

/// How attachments travel, under the names that a messenger's daemon record gives these values.
struct VKFileTransferSettings
{
    /// Room for any DNS name (253 characters) or numeric address and its end.
    static constexpr unsigned kServerSize = 256;

    /// Seconds without progress after which an attachment transfer is given up.
    std::uint32_t FileTransferTimeOut = 15;
    /// Address that this server announces as SOCKS5 stream host; empty for none. Ended by a zero byte.
    char FileTransferServer[kServerSize] = {};
    /// Local port of the SOCKS5 stream host; 0 for none.
    std::uint32_t FileTransferPort = 0;
    /// Chunk size of a SOCKS5 transfer, KiB.
    std::uint32_t PacketSizeInKBs = 65;
};

/// What a host tells a driver of the messenger process that it runs in. The host owns it; a driver copies what it needs
/// during Setup.
struct VKMessengerInstConfBasic
{
    /// The host's own text; no driver reads it.
    std::string strName;
    /// From the daemon record of this messenger.
    VKFileTransferSettings objDaemon;
};
