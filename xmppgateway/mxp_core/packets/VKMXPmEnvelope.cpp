#include "VKMXPmEnvelope.h"

#include <ctime>
#include <iterator>
#include <memory>

#include "VKMXPmPackets.h"
#include "VKMXPmValue.h"

namespace {

constexpr char kNamespace[] = "vardock:mxp";
constexpr char kRedirectNamespace[] = "vardock:mxp:redirect";

enum Error {
    kEmptyText = 1001,
    kNoBuffer = 1002,
    kNotParsed = 1003,
    kNoRoot = 1004,
    kWrongNamespace = 1005,
    kWrongTime = 1006, // meant: one code for too early and too late
    kMissingNode = 1007,
    kNullModel = 1008,
    kInvalidModel = 1009,
    kModelRefused = 1010,
    kUnknown = 1020
};

template <class Packet> VKMXPmBase* GetModelObjectInstance() { return std::make_unique<Packet>().release(); }

template <class... Packets> constexpr VKMXPmEnvelope::ModelMap MapOf(const std::tuple<vk::mxp::Kind<Packets>...>&)
{
    return {{{Packets::kElement, &GetModelObjectInstance<Packets>}..., {nullptr, nullptr}}};
}

} // namespace

const VKMXPmEnvelope::ModelMap VKMXPmEnvelope::arrModelMap = MapOf(vk::mxp::kPackets);

VKMXPmEnvelope::~VKMXPmEnvelope() { ClearModels(); }

bool VKMXPmEnvelope::Add(VKMXPmBase* model)
{
    if (!model || !model->m_bValid)
        return false;
    m_vecModels.push_back(model);
    return true;
}

VKMXPmBase* VKMXPmEnvelope::Detach(std::size_t index)
{
    if (index >= m_vecModels.size())
        return nullptr;
    const auto at = m_vecModels.begin() + static_cast<std::ptrdiff_t>(index);
    VKMXPmBase* model = *at;
    m_vecModels.erase(at);
    return model;
}

bool VKMXPmEnvelope::ClearModels()
{
    for (VKMXPmBase* model : m_vecModels)
        std::unique_ptr<VKMXPmBase>{model};
    m_vecModels.clear();
    m_bValid = false;
    ResetError();
    return true;
}

void VKMXPmEnvelope::SetError(int code, const std::string& text)
{
    m_iErrorCode = code;
    m_strErrorText = m_strErrorText.empty() ? text : text + " " + m_strErrorText;
}

void VKMXPmEnvelope::ResetError()
{
    m_iErrorCode = 0;
    m_strErrorText.clear();
}

std::string VKMXPmEnvelope::GenerateXML() const
{
    std::string text;
    text.reserve(128 + 1536 * m_vecModels.size());
    text.append("<mxp xmlns='").append(m_bRedirect ? kRedirectNamespace : kNamespace).append("' version='");
    vk::AppendValue(text, m_strVersion);
    text += "' dispatch='";
    vk::AppendValue(text, m_tDispatchTime);
    text += "' expire='";
    vk::AppendValue(text, m_tExpireTime);
    text += "'>\n";
    for (const VKMXPmBase* model : m_vecModels) {
        model->AppendXML(text);
        text += '\n';
    }
    text += "</mxp>";
    return text;
}

VKMXPmBase* VKMXPmEnvelope::GetModelObject(XmlReaderWriter::Node& element)
{
    const std::string_view name = element.nameText();
    for (const auto& [word, make] : arrModelMap) {
        if (!word || name != word)
            continue;
        std::unique_ptr<VKMXPmBase> model(make());
        return model && model->ParseXML(element) ? model.release() : nullptr;
    }
    return nullptr;
}

bool VKMXPmEnvelope::ParseXML(const std::string& text)
{
    ResetError();
    m_bValid = false;
    try {
        m_bValid = Read(text);
    } catch (const XmlReaderWriter::NodeException& exception) {
        FailQuietly(kMissingNode, "XML parsing error. ", exception.what());
    } catch (...) {
        FailQuietly(kUnknown, "Unknown server error.", "");
    }
    return m_bValid;
}

bool VKMXPmEnvelope::Fail(int code, const std::string& text)
{
    SetError(code, text);
    return false;
}

/// The code comes through even when there is no memory for the text.
void VKMXPmEnvelope::FailQuietly(int code, const char* text, const char* detail) noexcept
{
    m_iErrorCode = code;
    try {
        SetError(code, std::string(text) + detail);
    } catch (const std::exception&) {
    }
}

bool VKMXPmEnvelope::Read(const std::string& text)
{
    if (text.empty())
        return Fail(kEmptyText, "Empty input XML string.");
    if (!text.data())
        return Fail(kNoBuffer, "Unable to get input XML string buffer.");
    XmlReaderWriter document;
    if (!document.readFrom(text))
        return Fail(kNotParsed, "XML Parsing failed.");
    const XmlReaderWriter::Node root = document.getRootNode();
    if (root.nameText() != "mxp")
        return Fail(kNoRoot, "Unable to find root tag <mxp>.");

    const std::string_view space = root.attributeText("xmlns");
    m_bRedirect = space == kRedirectNamespace;
    if (m_bRedirect)
        return true;
    if (space != kNamespace)
        return Fail(kWrongNamespace, "Incorrect XML namespace specification.");
    if (m_bCheckTimes && !ReadTimes(root))
        return false;
    for (auto child = root.firstChild(); !child.isNull(); child = child.nextSibling())
        if (!ReadModel(child))
            return false;
    return true;
}

bool VKMXPmEnvelope::ReadTimes(const XmlReaderWriter::Node& root)
{
    m_strVersion = root.attributeText("version");
    m_tDispatchTime = vk::NumberOf(root.attributeText("dispatch"));
    m_tExpireTime = vk::NumberOf(root.attributeText("expire"));
    const std::time_t now = std::time(nullptr);
    if (now <= m_tDispatchTime)
        return Fail(kWrongTime, "Incorrect envelope dispatch time.");
    if (now >= m_tExpireTime)
        return Fail(kWrongTime, "Envelope is expired.");
    return true;
}

bool VKMXPmEnvelope::ReadModel(XmlReaderWriter::Node& element)
{
    std::unique_ptr<VKMXPmBase> model(GetModelObject(element));
    if (!model)
        return Fail(kNullModel, "NULL modal object.");
    const std::string name = model->GetName();
    if (!model->m_bValid)
        return Fail(kInvalidModel, "Modal object '" + name + "' is invalid.");
    if (!Add(model.get()))
        return Fail(kModelRefused, "Unable to add modal object '" + name + "'.");
    static_cast<void>(model.release());
    return true;
}
