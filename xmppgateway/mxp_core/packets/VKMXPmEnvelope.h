#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "VKMXPmBase.h"

/// The body of one XMPP message: an element `mxp` with packets in it. Owns its packets. Not safe for two threads at
/// once.
class VKMXPmEnvelope
{
public:
    using Models = std::vector<VKMXPmBase*>;
    using ModelRow = std::pair<const char*, VKMXPmBase* (*)()>;

    /// How many kinds of packets there are.
    static constexpr std::size_t kModelCount = 18;
    using ModelMap = std::array<ModelRow, kModelCount + 1>;

    /// Element names and what makes their packets; ends with a null row.
    static const ModelMap arrModelMap;

    VKMXPmEnvelope() = default;
    ~VKMXPmEnvelope();
    VKMXPmEnvelope(const VKMXPmEnvelope&) = delete;
    VKMXPmEnvelope& operator=(const VKMXPmEnvelope&) = delete;

    /// Reads an envelope and answers the valid flag; on false code and text tell why. Packets that were read before a
    /// failure stay in the envelope. Never throws, whatever the text is.
    bool ParseXML(const std::string& text);

    std::string GenerateXML() const;

    /// Takes the packet over. False, and the packet stays the caller's, for a null pointer or one that is not valid.
    bool Add(VKMXPmBase* model);

    VKMXPmBase* Get(std::size_t index) const { return m_vecModels[index]; } ///< unchecked
    std::size_t GetCount() const { return m_vecModels.size(); }
    Models::iterator GetIterator() { return m_vecModels.begin(); }
    Models::iterator GetIteratorLast() { return m_vecModels.end(); }

    /// Takes a packet out; the caller owns it. Null past the end.
    VKMXPmBase* Detach(std::size_t index);

    bool ClearModels(); ///< deletes all packets; always true

    void SetError(int code, const std::string& text); ///< texts gather, the newest first
    void ResetError();

    /// A new packet read from its element, the caller's; null for an unknown name or a packet that is not valid.
    /// Throws XmlReaderWriter::NodeException for a missing child or attribute.
    static VKMXPmBase* GetModelObject(XmlReaderWriter::Node& element);

    // Meant: nothing sets the times of an envelope that is sent, nor the check of one that is received.
    std::int32_t m_tDispatchTime = 0; ///< seconds since the epoch
    std::int32_t m_tExpireTime = 0;   ///< seconds since the epoch
    std::string m_strVersion = "1.0";
    bool m_bRedirect = false;
    Models m_vecModels; ///< owned
    std::int32_t m_iErrorCode = 0;
    std::string m_strErrorText;
    bool m_bValid = false;
    bool m_bCheckTimes = false;

private:
    bool Read(const std::string& text);
    bool ReadTimes(const XmlReaderWriter::Node& root);
    bool ReadModel(XmlReaderWriter::Node& element);
    bool Fail(int code, const std::string& text);
    void FailQuietly(int code, const char* text, const char* detail) noexcept;
};
