#include "DeviceFiles.h"

#include "DeviceOutput.h"
#include "VKEncryption.h"

#include <gloox/bytestream.h>
#include <gloox/clientbase.h>
#include <gloox/disco.h>
#include <gloox/siprofileft.h>
#include <openssl/evp.h>

#include <array>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

namespace vk {

namespace {

std::string Sha256(const std::string& content)
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    if (EVP_Digest(content.data(), content.size(), digest.data(), &length, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 is not to be had");
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text += kDigits[digest[i] >> 4U];
        text += kDigits[digest[i] & 15U];
    }
    return text;
}

/// False with the reason in error.
bool Decrypt(const std::string& secureKey, const std::string& cipher, std::string& clear, std::string& error)
{
    std::string key;
    unsigned char* out = nullptr;
    int length = 0;
    if (!VKEncryption::TransformKeyForCipher(secureKey, key, VK_ENCRYPT_AES256_ECB)) {
        error = "its key cannot be used";
        return false;
    }
    const bool done =
        VKEncryption::SharedKeyDecrypt(key, reinterpret_cast<const unsigned char*>(cipher.data()),
                                       static_cast<int>(cipher.size()), out, length, error, VK_ENCRYPT_AES256_ECB);
    const std::unique_ptr<unsigned char[]> owned(out);
    if (done)
        clear.assign(reinterpret_cast<char*>(out), static_cast<std::size_t>(length));
    return done;
}

std::filesystem::path PrivateDirectory()
{
    std::string name = (std::filesystem::temp_directory_path() / "vkmxpdevice-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error(name + ": cannot be made");
    return name;
}

} // namespace

DeviceFiles::DeviceFiles(gloox::ClientBase& client, int streamTypes, std::string saveDirectory, DeviceOutput& output,
                         std::function<void(const Arrived&)> arrived)
    : FileReceiver(client, streamTypes), m_saveDirectory(std::move(saveDirectory)), m_output(output),
      m_arrived(std::move(arrived)), m_directory(PrivateDirectory())
{
    // The library announces the profile by itself, and servers take that for in-band streams.
    if (streamTypes == gloox::SIProfileFT::FTTypeS5B)
        client.disco()->removeFeature(gloox::XMLNS_SI_FT);
}

DeviceFiles::~DeviceFiles()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

void DeviceFiles::Announce(const VKMXPmMessage& message)
{
    for (const auto& attachment : message.m_vecAttachments)
        m_keys[{message.m_strJobID, SafeFileName(attachment.m_strID)}] = attachment.m_strSecureKey;
}

std::string DeviceFiles::PathFor(const File&) { return m_directory / std::to_string(++m_number); }

/// The packet's key; the offer's own for a file whose packet has not come.
std::string DeviceFiles::KeyFor(const File& file) const
{
    const auto found = m_keys.find({file.description, file.name});
    return found == m_keys.end() ? file.hash : found->second;
}

void DeviceFiles::Received(const File& file)
{
    std::ifstream stream(file.path, std::ios::binary);
    const std::string cipher{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    std::filesystem::remove(file.path);
    std::string clear;
    std::string error;
    if (!Decrypt(KeyFor(file), cipher, clear, error)) {
        m_output.Other(file.from.full(), "file " + file.name + ": " + error);
        return;
    }
    Arrived arrived{file.description, file.name, static_cast<long long>(clear.size()), Sha256(clear),
                    file.bytestream->type() == gloox::Bytestream::S5B ? "socks5" : "inband", ""};
    if (!m_saveDirectory.empty()) {
        arrived.savedAs = m_saveDirectory + "/" + std::to_string(m_number) + "_" + file.name;
        std::ofstream saved(arrived.savedAs, std::ios::binary);
        if (!saved.write(clear.data(), static_cast<std::streamsize>(clear.size())))
            throw std::runtime_error(arrived.savedAs + ": cannot be written");
    }
    m_arrived(arrived);
}

void DeviceFiles::Failed(const std::string& what, const gloox::IQ*) { m_output.Other("", "file transfer: " + what); }

} // namespace vk
