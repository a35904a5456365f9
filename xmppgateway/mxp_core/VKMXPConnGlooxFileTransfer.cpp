// The file sender during a transfer: from the offer of the first file to the one status report.

#include "VKLog.h"
#include "VKMXPConnGlooxFileSender.h"
#include "VKMXPHub.h"

#include <gloox/bytestream.h>
#include <gloox/siprofileft.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr int kSent = 3;
constexpr int kFailed = 2;
constexpr std::int32_t kGone = -1;         // the size of a copy that somebody has taken away
constexpr std::size_t kInBandBlock = 5760; // bytes; as Base64 the stanza stays below 8 KiB, which any server takes
constexpr int kInBandWindow = 8;           // blocks on their way to the peer; more only wait at the server
constexpr int kLookEvery = 50;             // milliseconds; the upper limit of a wait for the stream
constexpr std::chrono::milliseconds kGoodbyeLimit = 2s;         // for a peer that has all of the file and does not close its end
constexpr const char* kTransferError = "File Transfer Error.";
constexpr const char* kDisconnected = "Disconnection Error.";

/// An open copy, read block by block.
class CopyReader
{
public:
    explicit CopyReader(const std::string& path) : m_file(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~CopyReader()
    {
        if (m_file >= 0)
            ::close(m_file);
    }
    CopyReader(const CopyReader&) = delete;
    CopyReader& operator=(const CopyReader&) = delete;

    bool IsOpen() const { return m_file >= 0; }

    /// False when there is nothing to read where the file's size says there is.
    bool Read(std::string& block, std::size_t size, long position) const
    {
        block.resize(size);
        const ssize_t got = ::pread(m_file, block.data(), size, position);
        block.resize(static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }

private:
    int m_file;
};

/// Why a path's last name is what the peer sees: the number and the "_" in front are ours.
std::string OfferedName(const std::string& path)
{
    const std::string name = path.substr(path.find_last_of('/') + 1);
    return name.substr(name.find('_') + 1);
}

/// Bytes that the peer's TCP has not confirmed.
int Unconfirmed(int stream)
{
    int bytes = 0;
    return ::ioctl(stream, SIOCOUTQ, &bytes) == 0 ? bytes : 0;
}

/// Drops what the peer says on its stream, and notes when it has ended its half. False when the stream is broken.
bool ReadsOn(int stream, bool& ended)
{
    std::array<char, 1024> ignored;
    const ssize_t got = ::recv(stream, ignored.data(), ignored.size(), MSG_DONTWAIT);
    if (got < 0)
        return errno == EAGAIN || errno == EINTR;
    ended = ended || got == 0;
    int error = 0;
    socklen_t size = sizeof error;
    return !ended || (::getsockopt(stream, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0);
}

} // namespace

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SetFileAttachmentParams(FileAttachmentDetails& record)
{
    m_objTargetJID.setJID(record.strTargetJID);
    m_vecFiles.clear();
    m_iFileIndex = 0;
    m_tLastDataSent = {};
    m_pobjConnection->SetLastError(std::string());
    m_strPacketId = record.strPacketId;
    m_eMechanism = record.eMechanism;
    for (const auto& [path, secureKey] : record.vecFiles) {
        struct stat state{};
        const bool there = ::stat(path.c_str(), &state) == 0;
        m_vecFiles.push_back({there ? static_cast<std::int32_t>(state.st_size) : kGone, path, secureKey});
    }
    const ClientLock inside(m_pobjConnection->m_mtxClient);
    m_iPosition = 0;
    m_bQuit = false;
    m_strTransferError.clear();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SendFileAttachment()
{
    if (m_vecFiles.empty())
        return;
    if (DecideMechanism())
        for (m_iFileIndex = 0; !m_bQuit; ++m_iFileIndex) {
            const std::size_t index = static_cast<std::size_t>(m_iFileIndex);
            if (!SendFile(m_vecFiles[index]))
                break;
            Note(VKLogInterface::INFO, "File [" + m_vecFiles[index].strPath + "] transfer complete.");
            if (index + 1 == m_vecFiles.size()) {
                m_bQuit = true;
                Note(VKLogInterface::DEBUG, "Quit transfer");
            }
        }
    EndStream(false);
    Report();
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::DecideMechanism()
{
    if (m_eMechanism == FileTransferMechanism::Either)
        m_eMechanism = m_bSocks5Running ? FileTransferMechanism::Socks5 : FileTransferMechanism::InBand;
    const bool socks5 = m_eMechanism == FileTransferMechanism::Socks5;
    m_uBlock = 0;
    if (m_eMechanism == FileTransferMechanism::InBand)
        m_uBlock = kInBandBlock;
    else if (socks5 && m_bSocks5Running)
        m_uBlock = static_cast<std::size_t>(std::max(m_pobjConnection->m_iChunkSizeKB.load(), 0)) * 1024;
    if (m_uBlock == 0) {
        Fail(kDisconnected, "Inappropriate File Transfer Mechanism.");
        return false;
    }
    Note(VKLogInterface::INFO, std::string("File Transfer Mechanism used: [") + (socks5 ? "Socks5" : "IBB") + "]");
    return true;
}

/// An empty file is complete at once: it is not offered, and nothing waits for it.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SendFile(VKFileEntry& file)
{
    Note(VKLogInterface::DEBUG, "Got new file. File Index updated to: [" + std::to_string(m_iFileIndex) + "]");
    if (file.iSize == 0)
        return true;
    if (file.iSize == kGone)
        Fail(kTransferError, "File Transfer Error: File Stream is not open.");
    if (m_bQuit || !Offer(file) || !AwaitStream())
        return false;
    const bool sent = m_eMechanism == FileTransferMechanism::Socks5 ? SendOverSocks5(file) : SendInBand(file);
    if (sent)
        EndStream(static_cast<std::size_t>(m_iFileIndex) + 1 < m_vecFiles.size());
    return sent;
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Offer(const VKFileEntry& file)
{
    const bool socks5 = m_eMechanism == FileTransferMechanism::Socks5;
    const ClientLock inside(m_pobjConnection->m_mtxClient);
    m_tLastDataSent = Clock::now();
    m_iPosition = 0;
    m_iInFlight = 0;
    m_bStreamReady = false;
    m_bStreamClosed = false;
    if (m_pobjConnection->m_pobjClient && m_pobjProfile)
        m_strStreamID = m_pobjProfile->requestFT(
            m_objTargetJID, OfferedName(file.strPath), file.iSize, file.strSecureKey, m_strPacketId, std::string(),
            std::string(), socks5 ? gloox::SIProfileFT::FTTypeS5B : gloox::SIProfileFT::FTTypeIBB, gloox::JID(),
            std::string());
    if (m_strStreamID.empty())
        Fail(kTransferError, "File Transfer Error: Bytestream could not connect.");
    return !m_strStreamID.empty();
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::AwaitStream()
{
    ClientLock inside(m_pobjConnection->m_mtxClient);
    while (!m_bStreamReady && MayGoOn())
        WaitForPeer(inside);
    return m_bStreamReady && !m_bQuit;
}

/// Whether the transfer can still come to a good end. Any failure is noted.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::MayGoOn()
{
    if (m_bQuit)
        return false;
    const std::chrono::seconds limit(m_pobjConnection->m_iTransferTimeout);
    if (IsStopRequested() || !m_pobjConnection->m_bConnected)
        Fail(kDisconnected, "Disconnection Error: Client reference lost.");
    else if (limit.count() > 0 && Clock::now() - m_tLastDataSent >= limit) {
        Fail(kTransferError, "File Transfer Error: Timeout has occurred.");
        // On purpose: a stalled transfer takes its connection down, and the work thread then removes it.
        m_pobjConnection->m_bConnected = false;
        if (m_pobjConnection->m_pobjHub)
            m_pobjConnection->m_pobjHub->Traffic().Wake();
    }
    return !m_bQuit;
}

/// Until a callback has noted something; the work thread has the client meanwhile.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::WaitForPeer(ClientLock& lock)
{
    m_cvPeer.wait_for(lock, std::chrono::milliseconds(kLookEvery));
}

bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SendOverSocks5(const VKFileEntry& file)
{
    const CopyReader copy(file.strPath);
    std::string block;
    std::size_t begin = 0;
    while (MayGoOn() && (begin < block.size() || m_iPosition < file.iSize)) {
        if (begin == block.size()) {
            begin = 0;
            const std::size_t left = static_cast<std::size_t>(file.iSize - m_iPosition);
            if (!copy.IsOpen() || !copy.Read(block, std::min(m_uBlock, left), m_iPosition)) {
                Fail(kTransferError, "File Transfer Error: File Stream is not open.");
                return false;
            }
        }
        const ssize_t put = ::send(m_iStream, block.data() + begin, block.size() - begin, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (put > 0) {
            begin += static_cast<std::size_t>(put);
            m_iPosition += static_cast<std::int32_t>(put);
            m_tLastDataSent = Clock::now();
        }
        else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd polled{m_iStream, POLLOUT, 0};
            ::poll(&polled, 1, kLookEvery);
        }
        else if (errno == EPIPE || errno == ECONNRESET)
            Fail(kTransferError, "File Transfer Error. Bytestream closed without complete data transfer.");
        else if (errno != EINTR)
            Fail(kTransferError, "File Transfer Error: Error occurred while sending data on stream.");
    }
    return !m_bQuit && DrainSocks5();
}

/// What was written has to reach the peer before the stream is closed: waits until the peer has all of it and has closed
/// its end, or at least lets us wait. It may have closed its end long before.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::DrainSocks5()
{
    const std::chrono::milliseconds limit = std::chrono::seconds(m_pobjConnection->m_iTransferTimeout);
    const auto goodbye = limit > 0ms ? std::min<std::chrono::milliseconds>(kGoodbyeLimit, limit / 2) : kGoodbyeLimit;
    ::shutdown(m_iStream, SHUT_WR);
    int unconfirmed = Unconfirmed(m_iStream);
    bool ended = false;
    while (MayGoOn()) {
        pollfd polled{m_iStream, POLLIN, 0};
        if (ended)
            std::this_thread::sleep_for(1ms); // there is always something to read where a stream has ended
        else
            ::poll(&polled, 1, kLookEvery);
        if (!ReadsOn(m_iStream, ended)) {
            Fail(kTransferError, "File Transfer Error. Bytestream closed without complete data transfer.");
            return false;
        }
        const int left = Unconfirmed(m_iStream);
        if (left < unconfirmed)
            m_tLastDataSent = Clock::now();
        unconfirmed = left;
        if (left == 0 && (ended || Clock::now() - m_tLastDataSent > goodbye))
            return true;
    }
    return false;
}

/// A window of blocks is on its way at any time; the file is sent when the peer has acknowledged the last one.
bool VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::SendInBand(const VKFileEntry& file)
{
    const CopyReader copy(file.strPath);
    std::string block;
    ClientLock inside(m_pobjConnection->m_mtxClient);
    while (MayGoOn() && (m_iPosition < file.iSize || m_iInFlight > 0)) {
        if (m_bStreamClosed)
            Fail(kTransferError, "File Transfer Error. Bytestream closed without complete data transfer.");
        else if (m_iPosition == file.iSize || m_iInFlight == kInBandWindow)
            WaitForPeer(inside);
        else if (!copy.IsOpen() || !copy.Read(block, m_uBlock, m_iPosition))
            Fail(kTransferError, "File Transfer Error: File Stream is not open.");
        else if (!m_pobjBytestream->send(block))
            Fail(kTransferError, "File Transfer Error: Error occurred while sending data on stream.");
        else {
            ++m_iInFlight;
            m_iPosition += static_cast<std::int32_t>(block.size());
            m_tLastDataSent = Clock::now();
        }
    }
    return !m_bQuit;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::EndStream(bool more)
{
    const ClientLock inside(m_pobjConnection->m_mtxClient);
    m_strStreamID.clear();
    m_iStream = -1;
    if (m_pobjListener)
        m_pobjListener->DropWaiting();
    if (m_pobjListener && m_pobjListener->Dropped() > 0 && m_bSocks5Running)
        RenewSocks5Server();
    if (!m_pobjBytestream)
        return;
    if (more)
        Note(VKLogInterface::DEBUG, "Closing Bytestream");
    m_pobjBytestream->removeBytestreamDataHandler();
    if (m_pobjBytestream->isOpen())
        m_pobjBytestream->close(); // before it is disposed of: what it awaits then ends with it
    m_pobjProfile->dispose(m_pobjBytestream);
    m_pobjBytestream = nullptr;
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Report()
{
    // With the copies of in-band transfers left where they are, on purpose.
    if (m_eMechanism == FileTransferMechanism::Socks5)
        m_objCopies.Delete();
    else
        m_objCopies.Release();
    std::string error;
    {
        const ClientLock inside(m_pobjConnection->m_mtxClient);
        error = m_strTransferError;
    }
    const int status = error.empty() ? kSent : kFailed;
    Note(VKLogInterface::INFO, "Sending attachment status [" + std::to_string(status) + "] for [" + m_strPacketId + "]");
    m_pobjConnection->TellAttachmentStatus(m_strPacketId, status, error); // the connection may be gone behind this
}

/// The first failure of a transfer is the one that is reported.
void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Fail(const char* lastError, const std::string& line,
                                                        const gloox::Error* error)
{
    const ClientLock inside(m_pobjConnection->m_mtxClient);
    m_pobjConnection->LogTransferError(m_objTargetJID.full(), line, error);
    m_pobjConnection->SetLastError(lastError);
    if (m_strTransferError.empty())
        m_strTransferError = lastError;
    m_bQuit = true;
    m_cvPeer.notify_all();
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileSender::Note(VKLogInterface::LogLevel level, const std::string& line) const
{
    VK_LOG(m_pLogger, level, "Connection ID: [%s], JID: [%s] >> %s", m_pobjConnection->m_strConnectionID.c_str(),
           m_objTargetJID.full().c_str(), line.c_str());
}
