#include "VKMXPmBase.h"

#include <algorithm>

#include "VKField.h"
#include "VKMXPmValue.h"

namespace {

constexpr vk::CodeText<eRespResultType> kResultTypes[] = {
    {eRespResultNone, "none"},       {eRespResultText, "text"},     {eRespResultXml, "xml"},
    {eRespResultJson, "json"},       {eRespResultBase64, "base64"}, {eRespResultCData, "cdata"},
    {eRespResultUnknown, "unknown"},
};

/// A request and a response are told by both attributes together.
struct Kind
{
    std::int32_t type;
    std::string_view space;
    std::string_view word;
};

/// What follows a result at most, the end of its envelope included.
constexpr std::size_t kTailBytes = 128;

constexpr Kind kKinds[] = {
    {VKMXPmBase::kRequest, "vardock:mxp:request", "request"},
    {VKMXPmBase::kResponse, "vardock:mxp:response", "response"},
};

} // namespace

VKMXPmBase::~VKMXPmBase() = default;

eRespResultType VKMXPmBase::GetResponseResultTypeAsEnum(const std::string& word)
{
    return vk::CodeOfText(kResultTypes, word, eRespResultUnknown);
}

std::string VKMXPmBase::GetResponseResultTypeAsStr(eRespResultType type)
{
    return vk::TextOfCode(kResultTypes, type, "unknown");
}

void VKMXPmBase::AttachFiles(const FileList& files)
{
    m_vecAttachedFiles.insert(m_vecAttachedFiles.end(), files.begin(), files.end());
}

void VKMXPmBase::RemoveFile(const std::string& path)
{
    const auto found = std::find_if(m_vecAttachedFiles.begin(), m_vecAttachedFiles.end(),
                                    [&](const auto& file) { return file.first == path; });
    if (found != m_vecAttachedFiles.end())
        m_vecAttachedFiles.erase(found);
}

std::string VKMXPmBase::GenerateXML() const
{
    std::string text;
    AppendXML(text);
    return text;
}

void VKMXPmBase::AppendXML(std::string& out) const
{
    if (m_iPacketType != kResponse || m_strParameters.empty())
        return AppendXML(out, GenerateParamXML());
    AppendStart(out);
    out += m_strParameters;
    AppendEnd(out);
}

void VKMXPmBase::AppendXML(std::string& out, std::string_view parameters) const
{
    AppendStart(out);
    out.append("<parameters>\n").append(parameters).append("</parameters>\n");
    AppendEnd(out);
}

void VKMXPmBase::AppendStart(std::string& out) const
{
    const Kind& kind = m_iPacketType == kRequest ? kKinds[0] : kKinds[1];
    out.append("<").append(GetName()).append(" xmlns='").append(kind.space);
    out.append("' type='").append(kind.word).append("' seq='");
    vk::AppendValue(out, m_iSequence);
    out += "'>\n";
}

void VKMXPmBase::AppendEnd(std::string& out) const
{
    if (m_iPacketType == kResponse)
        AppendResponse(out);
    out.append("</").append(GetName()).append(">");
}

void VKMXPmBase::AppendResponse(std::string& out) const
{
    out += "<response>\n<code>";
    vk::AppendValue(out, m_iResponseCode);
    out += "</code>\n<err-code>";
    vk::AppendValue(out, m_iResponseErrorCode);
    out += "</err-code>\n<message>";
    vk::AppendValue(out, m_strResponseMessage);
    out.append("</message>\n<result type='").append(GetResponseResultTypeAsStr(m_eResponseResultType)).append("'>\n");
    const std::string result = GenerateResponseXML();
    out.reserve(out.size() + result.size() + kTailBytes); // a long result is copied once
    if (!result.empty())
        out.append(result).append("\n");
    out += "</result>\n</response>\n";
}

bool VKMXPmBase::ParseXML(const std::string& text)
{
    m_bValid = false;
    XmlReaderWriter document;
    if (text.empty() || !document.readFrom(text))
        return false;
    XmlReaderWriter::Node root = document.getRootNode();
    return ParseXML(root);
}

bool VKMXPmBase::ParseXML(XmlReaderWriter::Node& element)
{
    m_bValid = false;
    if (element.nameText() != GetName() || !ReadKind(element))
        return false;
    m_iSequence = vk::NumberOf(element.attributeText("seq"));
    XmlReaderWriter::Node parameters = element["parameters"];
    if (!ParseParamXML(parameters))
        return false;
    if (m_iPacketType == kRequest) {
        if (!ValidateParams())
            return false;
        m_strParameters = parameters.sourceText();
    } else if (!ReadResponse(element["response"])) {
        return false;
    }
    m_bValid = true;
    return true;
}

bool VKMXPmBase::ReadKind(const XmlReaderWriter::Node& element)
{
    const std::string_view space = element.attributeText("xmlns");
    const std::string_view word = element.attributeText("type");
    for (const Kind& kind : kKinds) {
        if (kind.space == space && kind.word == word) {
            m_iPacketType = kind.type;
            return true;
        }
    }
    return false;
}

bool VKMXPmBase::ReadResponse(XmlReaderWriter::Node response)
{
    m_iResponseCode = vk::NumberOf(response["code"].contentsText());
    m_iResponseErrorCode = vk::NumberOf(response["err-code"].contentsText());
    m_strResponseMessage = response["message"].contentsText();
    XmlReaderWriter::Node result = response["result"];
    m_eResponseResultType = GetResponseResultTypeAsEnum(std::string(result.attributeText("type")));
    m_strResponseResultText.clear();
    m_objResponseResultNode = {};
    m_pobjResultDocument.reset();
    if (m_eResponseResultType == eRespResultXml) {
        KeepResult(result);
    } else {
        m_strResponseResultText = result.contentsText();
        if (m_strResponseResultText.empty())
            m_strResponseResultText = result.sourceText();
    }
    return ParseResponseXML(m_objResponseResultNode);
}

/// The packet outlives the envelope's document object, so it takes part in the document.
void VKMXPmBase::KeepResult(const XmlReaderWriter::Node& result)
{
    m_pobjResultDocument = std::make_shared<XmlReaderWriter>();
    m_objResponseResultNode = result.shareWith(*m_pobjResultDocument);
}
