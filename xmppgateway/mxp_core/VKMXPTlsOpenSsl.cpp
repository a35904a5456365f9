#include "VKMXPTlsOpenSsl.h"

#include <gloox/tlshandler.h>

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <array>
#include <map>
#include <mutex>

namespace {

constexpr std::size_t kRecordSize = 16U << 10;

/// One context for each bundle (the empty name: no verification), made on first use and kept while a session uses it.
/// A bundle that was exchanged on disk is read when the last session on the old one has ended.
std::shared_ptr<SSL_CTX> ContextFor(const std::string& caBundle)
{
    static std::mutex guard;
    static std::map<std::string, std::weak_ptr<SSL_CTX>> contexts;
    static std::shared_ptr<SSL_CTX> unverified; // never changes, so it is kept

    const std::lock_guard<std::mutex> lock(guard);
    if (std::shared_ptr<SSL_CTX> known = contexts[caBundle].lock())
        return known;
    std::shared_ptr<SSL_CTX> made(SSL_CTX_new(TLS_client_method()), &SSL_CTX_free);
    if (!made)
        return nullptr;
    SSL_CTX_set_min_proto_version(made.get(), TLS1_2_VERSION);
    SSL_CTX_set_mode(made.get(), SSL_MODE_RELEASE_BUFFERS);
    SSL_CTX_set_session_cache_mode(made.get(), SSL_SESS_CACHE_OFF);
    if (caBundle.empty())
        SSL_CTX_set_verify(made.get(), SSL_VERIFY_NONE, nullptr);
    else {
        if (SSL_CTX_load_verify_locations(made.get(), caBundle.c_str(), nullptr) != 1)
            return nullptr;
        SSL_CTX_set_verify(made.get(), SSL_VERIFY_PEER, nullptr);
    }
    contexts[caBundle] = made;
    if (caBundle.empty())
        unverified = made;
    return made;
}

} // namespace

void VKMXPTlsOpenSsl::FreeSsl::operator()(ssl_st* ssl) const { SSL_free(ssl); }

VKMXPTlsOpenSsl::VKMXPTlsOpenSsl(gloox::TLSHandler* handler, const std::string& domain, const std::string& caBundle)
    : gloox::TLSBase(handler, domain), m_strDomain(domain), m_strCaBundle(caBundle)
{
}

VKMXPTlsOpenSsl::~VKMXPTlsOpenSsl() = default;

bool VKMXPTlsOpenSsl::init(const std::string&, const std::string&, const gloox::StringList&)
{
    ERR_clear_error();
    m_secure = false;
    m_objSsl.reset();
    m_objContext = ContextFor(m_strCaBundle);
    if (!m_objContext) {
        NoteError(m_strCaBundle.empty() ? "no TLS context" : ("cannot read '" + m_strCaBundle + "'").c_str());
        return false;
    }
    std::unique_ptr<SSL, FreeSsl> session(SSL_new(m_objContext.get()));
    BIO* in = BIO_new(BIO_s_mem());
    BIO* out = BIO_new(BIO_s_mem());
    if (!session || !in || !out) {
        BIO_free(in);
        BIO_free(out);
        NoteError("no TLS session");
        return false;
    }
    SSL_set_bio(session.get(), in, out); // the session owns both
    SSL_set_connect_state(session.get());
    SSL_set_tlsext_host_name(session.get(), m_strDomain.c_str());
    if (!m_strCaBundle.empty())
        SSL_set1_host(session.get(), m_strDomain.c_str());
    m_objSsl = std::move(session);
    m_valid = true;
    return true;
}

bool VKMXPTlsOpenSsl::handshake()
{
    if (!m_objSsl && !init()) {
        FinishHandshake(false);
        return false;
    }
    if (m_secure)
        return true;
    ERR_clear_error();
    const int result = SSL_do_handshake(m_objSsl.get());
    const int reason = SSL_get_error(m_objSsl.get(), result);
    if (result != 1 && reason != SSL_ERROR_WANT_READ)
        NoteError("TLS handshake failed");
    FlushEncrypted();
    if (!m_objSsl)
        return false;
    if (result == 1) {
        FinishHandshake(true);
        return true;
    }
    if (reason == SSL_ERROR_WANT_READ)
        return true;
    FinishHandshake(false);
    return false;
}

void VKMXPTlsOpenSsl::FinishHandshake(bool good)
{
    m_secure = good;
    m_certInfo.status = good ? gloox::CertOk : gloox::CertInvalid;
    if (good) {
        m_certInfo.protocol = SSL_get_version(m_objSsl.get());
        m_certInfo.cipher = SSL_get_cipher_name(m_objSsl.get());
    }
    m_handler->handleHandshakeResult(this, good, m_certInfo);
}

int VKMXPTlsOpenSsl::decrypt(const std::string& data)
{
    if (!m_objSsl || data.empty())
        return 0;
    if (BIO_write(SSL_get_rbio(m_objSsl.get()), data.data(), static_cast<int>(data.size())) <= 0)
        return 0;
    if (!m_secure && (!handshake() || !m_secure))
        return static_cast<int>(data.size());

    std::array<char, kRecordSize> buffer;
    while (m_objSsl) { // the handler may clean up while it handles a piece
        ERR_clear_error();
        std::size_t got = 0;
        if (SSL_read_ex(m_objSsl.get(), buffer.data(), buffer.size(), &got) == 1) {
            m_handler->handleDecryptedData(this, std::string(buffer.data(), got));
            continue;
        }
        const int reason = SSL_get_error(m_objSsl.get(), 0);
        FlushEncrypted();
        if (m_objSsl && (reason == SSL_ERROR_SSL || reason == SSL_ERROR_SYSCALL)) {
            NoteError("TLS stream broken");
            FinishHandshake(false); // a stream that cannot be read any more ends as a failed handshake does
        }
        break;
    }
    return static_cast<int>(data.size());
}

bool VKMXPTlsOpenSsl::encrypt(const std::string& data)
{
    if (!m_objSsl || !m_secure)
        return false;
    ERR_clear_error();
    std::size_t written = 0;
    if (!data.empty() && SSL_write_ex(m_objSsl.get(), data.data(), data.size(), &written) != 1) {
        NoteError("TLS write failed");
        return false;
    }
    FlushEncrypted();
    return true;
}

/// Hands on what OpenSSL wants to have sent, in one piece.
void VKMXPTlsOpenSsl::FlushEncrypted()
{
    char* bytes = nullptr;
    BIO* out = SSL_get_wbio(m_objSsl.get());
    const long size = BIO_get_mem_data(out, &bytes);
    if (size <= 0)
        return;
    const std::string pending(bytes, static_cast<std::size_t>(size));
    (void)BIO_reset(out);
    m_handler->handleEncryptedData(this, pending);
}

void VKMXPTlsOpenSsl::cleanup()
{
    m_objSsl.reset();
    m_secure = false;
    m_valid = false;
}

/// "tls-unique" (RFC 5929) exists up to TLS 1.2 only; with TLS 1.3 the login goes without channel binding.
bool VKMXPTlsOpenSsl::hasChannelBinding() const
{
    return m_objSsl && m_secure && SSL_version(m_objSsl.get()) < TLS1_3_VERSION;
}

const std::string VKMXPTlsOpenSsl::channelBinding() const
{
    if (!hasChannelBinding())
        return {};
    std::array<char, EVP_MAX_MD_SIZE> finished;
    const std::size_t size = SSL_get_finished(m_objSsl.get(), finished.data(), finished.size());
    return std::string(finished.data(), std::min(size, finished.size()));
}

void VKMXPTlsOpenSsl::setCACerts(const gloox::StringList&) {}

void VKMXPTlsOpenSsl::setClientCert(const std::string&, const std::string&) {}

void VKMXPTlsOpenSsl::NoteError(const char* what)
{
    m_strError = what;
    const unsigned long code = ERR_peek_last_error();
    if (code != 0) {
        const char* reason = ERR_reason_error_string(code);
        m_strError += std::string(": ") + (reason ? reason : "unknown reason");
    }
    if (m_objSsl && !m_strCaBundle.empty()) {
        const long verified = SSL_get_verify_result(m_objSsl.get());
        if (verified != X509_V_OK)
            m_strError += std::string(" (") + X509_verify_cert_error_string(verified) + ")";
    }
}
