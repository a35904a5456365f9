#pragma once

#include "TempDir.h"

#include <cstdio>
#include <functional>
#include <memory>
#include <openssl/evp.h>
#include <openssl/x509.h>
#include <string>

namespace vktest {

/// Paths of a certificate and its private key, PEM.
struct Identity
{
    std::string certificate;
    std::string key;
};

/// A certificate authority of one test, with its files in a directory of its own. What it issues is good for an hour.
class TestAuthority
{
public:
    explicit TestAuthority(const std::string& name = "Test Authority");

    /// The authority's own certificate, for whoever is to trust it.
    const std::string& Bundle() const { return m_bundle; }

    /// A certificate for "localhost" and 127.0.0.1, or for the names given; its key is encrypted when there is a pass
    /// phrase.
    Identity Issue(const std::string& name, const std::string& passPhrase = "",
                   const std::string& subjectAltNames = "DNS:localhost,IP:127.0.0.1");

private:
    template <class T> using Owned = std::unique_ptr<T, void (*)(T*)>;

    std::string WriteKey(const std::string& name, EVP_PKEY* key, const std::string& passPhrase);
    std::string WriteCertificate(const std::string& name, X509* certificate);
    std::string Write(const std::string& name, const std::function<int(std::FILE*)>& write) const;

    TempDir m_dir;
    Owned<EVP_PKEY> m_key;
    Owned<X509> m_certificate;
    std::string m_bundle;
    long m_serial = 1;
};

} // namespace vktest
