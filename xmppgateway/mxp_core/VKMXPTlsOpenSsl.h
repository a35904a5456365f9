#pragma once

#include <gloox/tlsbase.h>

#include <memory>
#include <string>

struct ssl_st;
struct ssl_ctx_st;

/// TLS for an XMPP stream on OpenSSL memory buffers (RFC 6120, 5; RFC 8446), in place of gloox's own: TLS 1.2 and 1.3,
/// no leak for each client object, one shared context. It does no I/O: bytes come in through decrypt() and go out
/// through the handler.
///
/// Not for two threads at once; the owner of the client sees to that. The handler may call cleanup() from inside a
/// call of this class.
class VKMXPTlsOpenSsl : public gloox::TLSBase
{
public:
    /// \param domain the name that the server's certificate must carry when it is verified; also sent as SNI.
    /// \param caBundle empty: any certificate is accepted. Otherwise the path of a PEM bundle: chain and domain are
    ///        verified, and the handshake fails when they do not fit.
    VKMXPTlsOpenSsl(gloox::TLSHandler* handler, const std::string& domain, const std::string& caBundle);
    ~VKMXPTlsOpenSsl() override;

    /// Makes the session ready. Keys, certificates and the list of authorities are ignored. False when OpenSSL cannot
    /// be set up or the bundle cannot be read; ErrorText says why.
    bool init(const std::string& clientKey = std::string(), const std::string& clientCerts = std::string(),
              const gloox::StringList& cacerts = gloox::StringList()) override;

    bool encrypt(const std::string& data) override;
    int decrypt(const std::string& data) override;
    void cleanup() override;
    bool handshake() override;
    bool hasChannelBinding() const override;
    const std::string channelBinding() const override;
    void setCACerts(const gloox::StringList& cacerts) override;
    void setClientCert(const std::string& clientKey, const std::string& clientCerts) override;

    /// Why the last handshake or set-up failed; for a log.
    const std::string& ErrorText() const { return m_strError; }

private:
    struct FreeSsl
    {
        void operator()(ssl_st* ssl) const;
    };

    void FlushEncrypted();
    void FinishHandshake(bool good);
    void NoteError(const char* what);

    std::string m_strDomain;
    std::string m_strCaBundle;
    std::string m_strError;
    std::shared_ptr<ssl_ctx_st> m_objContext;
    std::unique_ptr<ssl_st, FreeSsl> m_objSsl;
};
