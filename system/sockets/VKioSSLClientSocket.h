#pragma once

#include "VKioClientSocket.h"

#include <memory>
#include <openssl/ossl_typ.h>
#include <string>
#include <vector>

struct ssl_method_st;

/// A client socket with TLS on it, and a client certificate where the peer asks for one. Any certificate of the peer is
/// accepted, on purpose: the peer's chain does not decide the connection. Failures are VKioException as for the base.
///
///     VKioSSLClientSocket socket(ca, certificate, key, passPhrase);
///     socket.Connect(host, port);
///     socket.StartSSL();
class VKioSSLClientSocket : public VKioClientSocket
{
public:
    /// Any number beyond the list means the library's general TLS client as well. The two SSL versions are not in the
    /// library any more: they end in "SSL creation failed.".
    enum MethodType { SSLv2 = 1, SSLv23 = 2, SSLv3 = 3, TLSv1 = 4 };

    using PeerVerify = int (*)(int, X509_STORE_CTX*);
    using PassPhraseCallback = int (*)(char*, int, int, void*);

    VKioSSLClientSocket() = default;
    /// Paths of PEM files: the CA bundle, the client certificate and its private key. An empty one is not used.
    VKioSSLClientSocket(const std::string& ca, const std::string& certificate, const std::string& key,
                        const std::string& passPhrase = "", MethodType method = SSLv23,
                        VKLogInterface* logger = nullptr, PeerVerify verify = &Callback_PeerVerify_AcceptAll,
                        PassPhraseCallback passPhraseCallback = &Callback_PEMPassword_Internal);
    ~VKioSSLClientSocket() override;

    /// The handshake on a connected socket, within 10 seconds. A certificate that cannot be used fails before any byte
    /// is sent. Throws, and the socket stays connected without TLS.
    void StartSSL();

    /// Say goodbye to the peer, without waiting for its answer, and close.
    void Close() override;
    void Reset();

    /// Throws "SSL Socket is closed" and "SSL Socket Read Error".
    unsigned int Read(unsigned char* buffer, unsigned int size, int ms, SocketStatus& status, bool log = true) override;
    /// Throws "SSL Write Error".
    unsigned int Write(unsigned char* data, unsigned int size) override;
    using VKioSocket::Write;
    VKioSSLClientSocket& operator<<(const std::string& text);
    /// Waits for bytes and takes what there is, at most 4096.
    VKioSSLClientSocket& operator>>(std::string& text);

    /// Looks without waiting and without taking anything: Readable when bytes wait to be read, TimedOut when the
    /// connection is quiet, Failed when the peer has closed it.
    SocketStatus Look();

    /// What an SSL operation with this result failed of: its kind and the texts of OpenSSL's error queue, which is
    /// empty afterwards, joined with " Error: ".
    std::string GetSSLErrorString(int result);
    static void GetSSLErrorStack(std::vector<std::string>& texts);

    static bool InitializeOpenSSLLibrary();
    /// Null for a method that the library does not have.
    static const ssl_method_st* GetSSLMethod(MethodType type);
    static int Callback_PeerVerify_AcceptAll(int preverified, X509_STORE_CTX* store);
    /// Copies the std::string behind `passPhrase`; 0 when it does not fit.
    static int Callback_PEMPassword_Internal(char* buffer, int size, int forWriting, void* passPhrase);

private:
    struct Free
    {
        void operator()(SSL_CTX* context) const;
        void operator()(SSL* ssl) const;
    };

    void MakeContext();
    void LoadCertificate();
    void Handshake();
    void LogPeer();
    SocketStatus WaitFor(int sslError, int ms);

    static bool m_bIsOpenSSLLibraryInitialized;

    std::unique_ptr<SSL_CTX, Free> m_pContext;
    std::unique_ptr<SSL, Free> m_pSsl; ///< null until StartSSL
    MethodType m_eMethod = SSLv23;
    std::string m_strCaPath;
    std::string m_strCertificate;
    std::string m_strKey;
    std::string m_strPassPhrase; ///< never logged
    PeerVerify m_pVerify = &Callback_PeerVerify_AcceptAll;
    PassPhraseCallback m_pPassPhraseCallback = &Callback_PEMPassword_Internal;
};
