#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "XmlReaderWriter.h"

/// What the `result` of a response holds; the words on the wire stand in this order.
enum eRespResultType : int {
    eRespResultNone = 0,
    eRespResultText = 1,
    eRespResultXml = 2,
    eRespResultJson = 3,
    eRespResultBase64 = 4,
    eRespResultCData = 5,
    eRespResultUnknown = 6
};

/// A packet of the protocol: one element of an envelope, a request or the response to one. Knows the shape that all
/// packets share; what stands inside `parameters` and `result` is the concrete packet's. A packet owns all that it
/// holds and may outlive the document it was read from. Not safe for two threads at once.
class VKMXPmBase
{
public:
    using FileList = std::vector<std::pair<std::string, std::string>>;

    static constexpr std::int32_t kRequest = 1;
    static constexpr std::int32_t kResponse = 2;

    virtual ~VKMXPmBase();

    /// The packet's element name.
    virtual const char* GetName() const = 0;
    /// The inside of `parameters`.
    virtual std::string GenerateParamXML() const = 0;
    /// Reads the element `parameters`. Throws XmlReaderWriter::NodeException for what must be there and is not.
    virtual bool ParseParamXML(XmlReaderWriter::Node& parameters) = 0;
    /// Whether a request that was read holds all that it must.
    virtual bool ValidateParams() const = 0;
    /// The inside of `result`.
    virtual std::string GenerateResponseXML() const = 0;
    /// Reads the element `result`; a null node unless the result's type is XML.
    virtual bool ParseResponseXML(XmlReaderWriter::Node& result) = 0;

    /// The packet's text. A response to a request that was read echoes its parameters byte for byte.
    std::string GenerateXML() const;
    void AppendXML(std::string& out) const; ///< the same, appended

    /// The same with a given inside of `parameters` in place of the packet's own.
    void AppendXML(std::string& out, std::string_view parameters) const;

    /// Reads the packet's element and answers the valid flag. Throws XmlReaderWriter::NodeException for a missing
    /// child or attribute.
    bool ParseXML(XmlReaderWriter::Node& element);

    /// The same from a text of its own; false when it is empty or no well-formed XML.
    bool ParseXML(const std::string& text);

    static eRespResultType GetResponseResultTypeAsEnum(const std::string& word); ///< unknown when no word matches
    static std::string GetResponseResultTypeAsStr(eRespResultType type);

    bool AreAnyAttachedFiles() const { return !m_vecAttachedFiles.empty(); }
    std::size_t GetAttachedFilesCount() const { return m_vecAttachedFiles.size(); }
    FileList GetAttachedFiles() const { return m_vecAttachedFiles; }
    void AttachFile(const std::string& path, const std::string& name) { m_vecAttachedFiles.emplace_back(path, name); }
    void AttachFiles(const FileList& files);
    void RemoveFile(const std::string& path); ///< the first of that path, if any

    std::int32_t m_iSequence = 0;
    std::int32_t m_iPacketType = kRequest;
    std::int32_t m_iResponseCode = 0;      ///< 1 is success
    std::int32_t m_iResponseErrorCode = 0; ///< 0 is no error
    std::string m_strResponseMessage;
    std::string m_strResponseResultText;
    eRespResultType m_eResponseResultType = eRespResultNone;
    /// The `result` of type XML that was read; good as long as the packet, which keeps the document that it was read
    /// from.
    XmlReaderWriter::Node m_objResponseResultNode;
    FileList m_vecAttachedFiles;
    bool m_bValid = false;       ///< set by a whole successful ParseXML, or by hand for a packet that is to be sent
    std::string m_strParameters; ///< the element `parameters` of a request that was read, as received

private:
    void AppendStart(std::string& out) const;
    void AppendEnd(std::string& out) const;
    void AppendResponse(std::string& out) const;
    bool ReadKind(const XmlReaderWriter::Node& element);
    bool ReadResponse(XmlReaderWriter::Node response);
    void KeepResult(const XmlReaderWriter::Node& result);

    std::shared_ptr<XmlReaderWriter> m_pobjResultDocument; ///< what m_objResponseResultNode points into
};
