#pragma once

#include <ctime>
#include <string>

class VKLogInterface;
class VKioSocketEventHandler;

/// A socket with waits, whole writes and reads with a time-out, which logs its traffic at trace level. What fails
/// throws VKioException, whose path is "host:port". Times are milliseconds, a negative one waits without limit.
///
/// A socket belongs to one thread. SIGPIPE is never raised.
class VKioSocket
{
public:
    enum SocketType { Stream = 1, RawIcmp = 2 };

    /// What a wait or a read came to. A read that brought bytes ends with Done.
    enum SocketStatus { Done = 32, Readable = 33, Writable = 34, TimedOut = 35, Failed = 36 };

    VKioSocket() = default;
    virtual ~VKioSocket();
    VKioSocket(const VKioSocket&) = delete;
    VKioSocket& operator=(const VKioSocket&) = delete;

    /// Once per process; nothing is to be done on this platform. Always true.
    static bool InitialLibrary() { return true; }
    static bool CloseLibrary() { return true; }

    void SetEventLog(VKLogInterface* logger) { m_pLogger = logger; } ///< must outlive the socket; may be null
    void SetEventHandler(VKioSocketEventHandler* handler) { m_pEventHandler = handler; }
    VKioSocketEventHandler* GetEventHandler() const { return m_pEventHandler; }
    int GetSocket() const { return m_iSocket; }                ///< -1 when there is none
    time_t GetLastActiveTime() const { return m_tLastActive; } ///< of the last connect, read or write; 0 before
    const std::string& GetRemoteAddress() const { return m_strRemoteAddress; }
    bool SetNonBlockingMode(bool nonBlocking);
    /// The error that waits on the socket, as errno has it, which is cleared by asking; 0 for none.
    int GetErrorCode() const;

    /// May be called again. Throws nothing.
    virtual void Close();

    /// Readable (also when the peer is gone), else Writable, TimedOut, or Failed for a socket that is none.
    SocketStatus Wait(bool read, bool write, int ms);

    /// What there is, at most `size` bytes, waiting for the first one. Returns how many: 0 with TimedOut, or with
    /// Failed when the wait did. Throws "Socket is closed" when the peer is gone and "Socket Read Error". `log` false
    /// keeps the bytes out of the log.
    virtual unsigned int Read(unsigned char* buffer, unsigned int size, int ms, SocketStatus& status, bool log = true);
    /// One byte, -1 when there is none.
    int ReadChar(int ms, SocketStatus& status, bool log = true);
    /// A line without its line end. The time is for the whole line; what came of a line in vain is returned too.
    std::string ReadLine(SocketStatus& status, int ms);
    /// The same with its line end, as it was received.
    std::string ReadLine(int ms, SocketStatus& status);
    /// All bytes up to and with the mark, a zero-terminated text. More than 1 MiB without one is a "Socket Read Error".
    std::string ReadTill(unsigned char* mark, int ms, SocketStatus& status);

    /// Writes all of it; how many bytes. Throws "Socket Write Error", also when the peer takes nothing for 10 seconds.
    virtual unsigned int Write(unsigned char* data, unsigned int size);
    unsigned int Write(const std::string& text);
    unsigned int WriteFormat(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// A port number from a number or the name of a service ("https"), with its protocol ("tcp"); -1 for neither.
    static int VKAsciiToPort(char* service, char* protocol);

protected:
    /// The longest time in which nothing moves: a connect, a handshake, a write.
    static constexpr int kStallMs = 10000;

    /// Throws with the socket's address; `systemMessage` is the text of errno when it is null.
    [[noreturn]] void Fail(const char* file, int line, const char* message, const char* systemMessage = nullptr) const;
    void LogTraffic(const char* format, const unsigned char* data, unsigned int size) const;
    void NoteActive() { m_tLastActive = time(nullptr); }

    int m_iSocket = -1;
    std::string m_strRemoteAddress;
    VKLogInterface* m_pLogger = nullptr;
    VKioSocketEventHandler* m_pEventHandler = nullptr;
    time_t m_tLastActive = 0;
};
