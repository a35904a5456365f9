#include "TestAuthority.h"

#include <openssl/ec.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <stdexcept>

namespace vktest {

namespace {

void Need(bool good)
{
    if (!good)
        throw std::runtime_error("a test certificate could not be made");
}

X509* MakeCertificate(const std::string& name, EVP_PKEY* key, long serial)
{
    X509* const made = X509_new();
    Need(made != nullptr);
    X509_set_version(made, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(made), serial);
    X509_gmtime_adj(X509_getm_notBefore(made), -60);
    X509_gmtime_adj(X509_getm_notAfter(made), 3600);
    X509_set_pubkey(made, key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(made), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    return made;
}

void Extend(X509* certificate, X509* issuer, int what, const std::string& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION* const extension = X509V3_EXT_conf_nid(nullptr, &context, what, value.c_str());
    Need(extension && X509_add_ext(certificate, extension, -1) == 1);
    X509_EXTENSION_free(extension);
}

} // namespace

TestAuthority::TestAuthority(const std::string& name)
    : m_key(EVP_EC_gen("P-256"), &EVP_PKEY_free), m_certificate(MakeCertificate(name, m_key.get(), 1), &X509_free)
{
    X509_set_issuer_name(m_certificate.get(), X509_get_subject_name(m_certificate.get()));
    Extend(m_certificate.get(), m_certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    Need(X509_sign(m_certificate.get(), m_key.get(), EVP_sha256()) > 0);
    m_bundle = WriteCertificate("authority", m_certificate.get());
}

Identity TestAuthority::Issue(const std::string& name, const std::string& passPhrase,
                              const std::string& subjectAltNames)
{
    const Owned<EVP_PKEY> key(EVP_EC_gen("P-256"), &EVP_PKEY_free);
    const Owned<X509> certificate(MakeCertificate(name, key.get(), ++m_serial), &X509_free);
    X509_set_issuer_name(certificate.get(), X509_get_subject_name(m_certificate.get()));
    Extend(certificate.get(), m_certificate.get(), NID_subject_alt_name, subjectAltNames);
    Need(X509_sign(certificate.get(), m_key.get(), EVP_sha256()) > 0);
    const std::string file = "issued" + std::to_string(m_serial);
    return {WriteCertificate(file, certificate.get()), WriteKey(file, key.get(), passPhrase)};
}

std::string TestAuthority::WriteKey(const std::string& name, EVP_PKEY* key, const std::string& passPhrase)
{
    return Write(name + ".key", [&](FILE* file) {
        return PEM_write_PKCS8PrivateKey(file, key, passPhrase.empty() ? nullptr : EVP_aes_256_cbc(),
                                         passPhrase.empty() ? nullptr : passPhrase.data(),
                                         static_cast<int>(passPhrase.size()), nullptr, nullptr);
    });
}

std::string TestAuthority::WriteCertificate(const std::string& name, X509* certificate)
{
    return Write(name + ".crt", [&](FILE* file) { return PEM_write_X509(file, certificate); });
}

std::string TestAuthority::Write(const std::string& name, const std::function<int(FILE*)>& write) const
{
    const std::string path = m_dir / name;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "w"), &fclose);
    Need(file && write(file.get()) == 1);
    return path;
}

} // namespace vktest
