#include "VKioSSLClientSocket.h"

#include "VKField.h"
#include "VKLog.h"
#include "VKdeadline.h"
#include "VKioException.h"
#include "VKnoSigPipe.h"
#include "VKsystemError.h"

#include <cerrno>
#include <climits>
#include <cstring>
#include <mutex>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

namespace {

constexpr const char* kSource = "../src/VKioSSLClientSocket";

constexpr vk::CodeText<int> kSslErrors[] = {
    {SSL_ERROR_SSL, "TLS failure"},
    {SSL_ERROR_WANT_READ, "The peer says nothing"},
    {SSL_ERROR_WANT_WRITE, "The peer takes nothing"},
    {SSL_ERROR_SYSCALL, "Connection lost"},
    {SSL_ERROR_ZERO_RETURN, "The peer has closed the connection"},
};

struct FreeText
{
    void operator()(char* text) const { OPENSSL_free(text); }
};

/// The name as one line; empty when it cannot be made.
std::string OneLine(const X509_NAME* name)
{
    const std::unique_ptr<char, FreeText> line(name ? X509_NAME_oneline(name, nullptr, 0) : nullptr);
    return line ? line.get() : "";
}

} // namespace

bool VKioSSLClientSocket::m_bIsOpenSSLLibraryInitialized = false;

void VKioSSLClientSocket::Free::operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
void VKioSSLClientSocket::Free::operator()(SSL* ssl) const { SSL_free(ssl); }

VKioSSLClientSocket::VKioSSLClientSocket(const std::string& ca, const std::string& certificate, const std::string& key,
                                         const std::string& passPhrase, MethodType method, VKLogInterface* logger,
                                         PeerVerify verify, PassPhraseCallback passPhraseCallback)
    : m_eMethod(method), m_strCaPath(ca), m_strCertificate(certificate), m_strKey(key), m_strPassPhrase(passPhrase),
      m_pVerify(verify), m_pPassPhraseCallback(passPhraseCallback)
{
    m_pLogger = logger;
}

VKioSSLClientSocket::~VKioSSLClientSocket() { Reset(); }

bool VKioSSLClientSocket::InitializeOpenSSLLibrary()
{
    static std::once_flag once;
    std::call_once(once, [] {
        m_bIsOpenSSLLibraryInitialized =
            OPENSSL_init_ssl(OPENSSL_INIT_LOAD_SSL_STRINGS | OPENSSL_INIT_LOAD_CRYPTO_STRINGS |
                                 OPENSSL_INIT_ADD_ALL_CIPHERS | OPENSSL_INIT_ADD_ALL_DIGESTS,
                             nullptr) == 1;
    });
    return m_bIsOpenSSLLibraryInitialized;
}

const SSL_METHOD* VKioSSLClientSocket::GetSSLMethod(MethodType type)
{
    return type == SSLv2 || type == SSLv3 ? nullptr : TLS_client_method();
}

int VKioSSLClientSocket::Callback_PeerVerify_AcceptAll(int, X509_STORE_CTX*) { return 1; }

int VKioSSLClientSocket::Callback_PEMPassword_Internal(char* buffer, int size, int, void* passPhrase)
{
    const auto* const text = static_cast<const std::string*>(passPhrase);
    if (!text || size < 0 || text->size() > static_cast<std::size_t>(size))
        return 0;
    memcpy(buffer, text->data(), text->size());
    return static_cast<int>(text->size());
}

void VKioSSLClientSocket::GetSSLErrorStack(std::vector<std::string>& texts)
{
    char text[256];
    while (const unsigned long error = ERR_get_error()) {
        ERR_error_string_n(error, text, sizeof text);
        texts.emplace_back(text);
    }
}

std::string VKioSSLClientSocket::GetSSLErrorString(int result)
{
    const int systemError = errno;
    const int kind = m_pSsl ? SSL_get_error(m_pSsl.get(), result) : SSL_ERROR_SSL;
    std::string joined = vk::TextOfCode(kSslErrors, kind, "TLS failure");
    std::vector<std::string> texts;
    GetSSLErrorStack(texts);
    errno = systemError;
    if (texts.empty() && kind == SSL_ERROR_SYSCALL && systemError != 0)
        texts.push_back(VKgetLastError());
    for (const std::string& text : texts)
        joined += " Error: " + text;
    return joined;
}

void VKioSSLClientSocket::StartSSL()
{
    InitializeOpenSSLLibrary();
    ERR_clear_error();
    m_pSsl.reset();
    MakeContext();
    if (!m_strCertificate.empty())
        LoadCertificate();
    // OpenSSL seeds its random numbers from the system itself; nothing that this process knows would be better.
    Handshake();
    LogPeer();
}

void VKioSSLClientSocket::MakeContext()
{
    const SSL_METHOD* const method = GetSSLMethod(m_eMethod);
    m_pContext.reset(method ? SSL_CTX_new(method) : nullptr);
    if (!m_pContext)
        Fail(kSource, __LINE__, "SSL creation failed.", "");
    if (m_eMethod == TLSv1)
        SSL_CTX_set_max_proto_version(m_pContext.get(), TLS1_VERSION);
    SSL_CTX_set_verify(m_pContext.get(), SSL_VERIFY_PEER, m_pVerify);
    // A write that could only be made in part is gone on with from wherever its bytes are then.
    SSL_CTX_set_mode(m_pContext.get(), SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    // A peer that goes without a word of TLS has closed the connection all the same.
    SSL_CTX_set_options(m_pContext.get(), SSL_OP_IGNORE_UNEXPECTED_EOF);
    if (!m_strCaPath.empty() && SSL_CTX_load_verify_locations(m_pContext.get(), m_strCaPath.c_str(), nullptr) != 1)
        Fail(kSource, __LINE__, "SSL: Verify Location Failed", GetSSLErrorString(0).c_str());
}

void VKioSSLClientSocket::LoadCertificate()
{
    SSL_CTX* const context = m_pContext.get();
    if (SSL_CTX_use_certificate_file(context, m_strCertificate.c_str(), SSL_FILETYPE_PEM) != 1)
        Fail(kSource, __LINE__, "SSL: Setting Certificate file Failed", GetSSLErrorString(0).c_str());
    // Set also for an empty pass phrase: without a callback OpenSSL asks at the terminal.
    SSL_CTX_set_default_passwd_cb(context, m_pPassPhraseCallback);
    SSL_CTX_set_default_passwd_cb_userdata(context, &m_strPassPhrase);
    if (SSL_CTX_use_PrivateKey_file(context, m_strKey.c_str(), SSL_FILETYPE_PEM) != 1) {
        const std::string details = GetSSLErrorString(0);
        // OpenSSL compares the two as soon as it has both.
        const bool mismatch = details.find("mismatch") != std::string::npos;
        Fail(kSource, __LINE__,
             mismatch ? "SSL: Private key does not match the certificate public key" : "SSL: Setting Key file Failed",
             details.c_str());
    }
    if (SSL_CTX_check_private_key(context) != 1)
        Fail(kSource, __LINE__, "SSL: Private key does not match the certificate public key",
             GetSSLErrorString(0).c_str());
}

void VKioSSLClientSocket::Handshake()
{
    m_pSsl.reset(SSL_new(m_pContext.get()));
    if (!m_pSsl)
        Fail(kSource, __LINE__, "SSL: Set SSL Failed", GetSSLErrorString(0).c_str());
    if (m_iSocket < 0 || SSL_set_fd(m_pSsl.get(), m_iSocket) != 1) {
        m_pSsl.reset();
        Fail(kSource, __LINE__, "SSL: Set SSL Socket Failed", GetSSLErrorString(0).c_str());
    }
    SSL_set_connect_state(m_pSsl.get());
    SetNonBlockingMode(true); // so that every operation has an end; the waits are made here
    const vk::NoSigPipe noSignal;
    const vk::Deadline deadline(kStallMs);
    int result;
    while ((result = SSL_connect(m_pSsl.get())) != 1) {
        const SocketStatus status = WaitFor(SSL_get_error(m_pSsl.get(), result), deadline.RemainingMs());
        if (status == Readable || status == Writable)
            continue;
        const std::string details = "SSL: SSL Connect Failed. Details: " + GetSSLErrorString(result);
        m_pSsl.reset();
        Fail(kSource, __LINE__, details.c_str(), "");
    }
    NoteActive();
}

void VKioSSLClientSocket::LogPeer()
{
    const std::unique_ptr<X509, decltype(&X509_free)> certificate(SSL_get1_peer_certificate(m_pSsl.get()), &X509_free);
    if (!certificate)
        Fail(kSource, __LINE__, "SSL: Get Certificate Failed", "");
    const std::string subject = OneLine(X509_get_subject_name(certificate.get()));
    if (subject.empty())
        Fail(kSource, __LINE__, "SSL: Get Certificate Subject Name Failed", "");
    const std::string issuer = OneLine(X509_get_issuer_name(certificate.get()));
    if (issuer.empty())
        Fail(kSource, __LINE__, "SSL: Get Certificate Issuer Failed", "");
    VK_LOG_DEBUG(m_pLogger, "%s: the peer's certificate is for '%s', issued by '%s'.", m_strRemoteAddress.c_str(),
                 subject.c_str(), issuer.c_str());
}

/// Waits for what an unfinished SSL operation needs; Failed when it did not stop for want of traffic.
VKioSocket::SocketStatus VKioSSLClientSocket::WaitFor(int sslError, int ms)
{
    if (sslError != SSL_ERROR_WANT_READ && sslError != SSL_ERROR_WANT_WRITE)
        return Failed;
    return Wait(sslError == SSL_ERROR_WANT_READ, sslError == SSL_ERROR_WANT_WRITE, ms);
}

unsigned int VKioSSLClientSocket::Read(unsigned char* buffer, unsigned int size, int ms, SocketStatus& status, bool log)
{
    status = Failed;
    if (!m_pSsl)
        Fail(kSource, __LINE__, "SSL Socket is closed", "");
    const vk::NoSigPipe noSignal;
    const vk::Deadline deadline(ms);
    for (;;) {
        ERR_clear_error();
        errno = 0;
        const int count = SSL_read(m_pSsl.get(), buffer, static_cast<int>(std::min<unsigned int>(size, INT_MAX)));
        if (count > 0) {
            status = Done;
            NoteActive();
            if (log)
                LogTraffic("=> ", buffer, static_cast<unsigned int>(count));
            return static_cast<unsigned int>(count);
        }
        const int reason = SSL_get_error(m_pSsl.get(), count);
        if (reason == SSL_ERROR_ZERO_RETURN)
            Fail(kSource, __LINE__, "SSL Socket is closed", "");
        status = WaitFor(reason, deadline.RemainingMs());
        if (status == TimedOut)
            return 0;
        if (status == Failed)
            Fail(kSource, __LINE__, "SSL Socket Read Error", GetSSLErrorString(count).c_str());
    }
}

unsigned int VKioSSLClientSocket::Write(unsigned char* data, unsigned int size)
{
    if (!m_pSsl)
        Fail(kSource, __LINE__, "SSL Write Error", "No TLS session");
    const vk::NoSigPipe noSignal;
    unsigned int written = 0;
    while (written < size) {
        ERR_clear_error();
        errno = 0;
        const int count =
            SSL_write(m_pSsl.get(), data + written, static_cast<int>(std::min<unsigned int>(size - written, INT_MAX)));
        if (count > 0) {
            written += static_cast<unsigned int>(count);
            continue;
        }
        const SocketStatus status = WaitFor(SSL_get_error(m_pSsl.get(), count), kStallMs);
        if (status != Readable && status != Writable)
            Fail(kSource, __LINE__, "SSL Write Error", GetSSLErrorString(count).c_str());
    }
    NoteActive();
    LogTraffic("<= ", data, size);
    return written;
}

VKioSSLClientSocket& VKioSSLClientSocket::operator<<(const std::string& text)
{
    Write(text);
    return *this;
}

VKioSSLClientSocket& VKioSSLClientSocket::operator>>(std::string& text)
{
    unsigned char buffer[4096];
    SocketStatus status = Failed;
    const unsigned int count = Read(buffer, sizeof buffer, -1, status);
    text.assign(buffer, buffer + count);
    return *this;
}

VKioSocket::SocketStatus VKioSSLClientSocket::Look()
{
    if (!m_pSsl)
        return Failed;
    const vk::NoSigPipe noSignal;
    ERR_clear_error();
    unsigned char byte;
    const int count = SSL_peek(m_pSsl.get(), &byte, 1);
    if (count > 0)
        return Readable;
    // A record that carries no bytes for us, such as a session ticket, is taken in on the way.
    const bool quiet = SSL_get_error(m_pSsl.get(), count) == SSL_ERROR_WANT_READ;
    ERR_clear_error();
    return quiet ? TimedOut : Failed;
}

void VKioSSLClientSocket::Close()
{
    if (m_pSsl) {
        const vk::NoSigPipe noSignal;
        if (SSL_is_init_finished(m_pSsl.get()))
            SSL_shutdown(m_pSsl.get());
        ERR_clear_error();
        m_pSsl.reset();
    }
    VKioSocket::Close();
}

void VKioSSLClientSocket::Reset()
{
    Close();
    m_pContext.reset();
}
