#include <algorithm>
#include <exception>
#include <random>

#include <expat.h>

#include "XmlTree.h"

namespace vk {

namespace {

struct FreeParser
{
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

using ParserPtr = std::unique_ptr<XML_ParserStruct, FreeParser>;

/// Texts beyond this size leave no parser behind, because a parser never gives its buffer back.
constexpr std::size_t kKeepParserBelow = 256u << 10;

/// expat copies what it is given at once. A large text goes in a few pieces, so that the copy stays small; few, because
/// a tag that is longer than a piece is looked at anew with each.
constexpr std::size_t kPiece = 64u << 10;
constexpr std::size_t kMostPieces = 8;

constexpr std::string_view kBlanks = " \t\r\n";

} // namespace

/// Builds trees from expat's events; one a thread, used again for each text, because making a parser and growing its
/// buffers costs more than parsing a packet does.
class XmlTreeBuilder
{
public:
    std::unique_ptr<XmlTree> Parse(std::string_view text, XmlEncoding encoding, std::string& why);

private:
    struct OpenElement
    {
        pugi::xml_node element;
        std::size_t textBegin; ///< where the element's own text begins in m_strPending
        std::size_t range;
    };

    bool PrepareParser(XmlEncoding encoding);
    bool Feed(std::string_view text);
    void OnStart(const char* name, const char** attributes);
    void OnEnd();
    void Refuse(const char* reason);
    std::string Reason() const;

    template <class Event> void Guard(Event&& event) noexcept;

    static XmlTreeBuilder& Of(void* user) { return *static_cast<XmlTreeBuilder*>(user); }

    ParserPtr m_pobjParser;
    unsigned long m_iHashSalt = 0;
    XmlTree* m_pobjTree = nullptr;
    std::vector<OpenElement> m_vecOpen;
    std::string m_strPending; ///< text of all open elements, the innermost last
    std::size_t m_iNodes = 0;
    const char* m_szRefused = nullptr;
};

/// Runs one event; nothing may be thrown through expat.
template <class Event> void XmlTreeBuilder::Guard(Event&& event) noexcept
{
    if (m_szRefused)
        return; // expat hands out what it has at hand even after a stop
    try {
        event();
    } catch (const std::exception&) { // only allocation can fail here
        Refuse("out of memory");
    }
}

void XmlTreeBuilder::Refuse(const char* reason)
{
    m_szRefused = reason;
    XML_StopParser(m_pobjParser.get(), XML_FALSE);
}

bool XmlTreeBuilder::PrepareParser(XmlEncoding encoding)
{
    const char* name = encoding == XmlEncoding::Utf8 ? "UTF-8" : nullptr;
    if (!m_pobjParser)
        m_pobjParser.reset(XML_ParserCreate(name));
    else if (!XML_ParserReset(m_pobjParser.get(), name))
        m_pobjParser.reset();
    if (!m_pobjParser)
        return false;

    // A random salt of our own, kept for the thread's life, saves the system call that expat spends on one each time.
    while (m_iHashSalt == 0)
        m_iHashSalt = (static_cast<unsigned long>(std::random_device()()) << 32) ^ std::random_device()();
    XML_Parser parser = m_pobjParser.get();
    XML_SetHashSalt(parser, m_iHashSalt);
    XML_SetUserData(parser, this);
    XML_SetElementHandler(
        parser,
        [](void* user, const char* element, const char** attributes) {
            Of(user).Guard([&] { Of(user).OnStart(element, attributes); });
        },
        [](void* user, const char*) { Of(user).Guard([&] { Of(user).OnEnd(); }); });
    XML_SetCharacterDataHandler(parser, [](void* user, const char* text, int size) {
        Of(user).Guard([&] { Of(user).m_strPending.append(text, static_cast<std::size_t>(size)); });
    });
    XML_SetXmlDeclHandler(parser, [](void* user, const char* version, const char*, int standalone) {
        Of(user).Guard([&] {
            Of(user).m_pobjTree->version = version ? version : "";
            Of(user).m_pobjTree->standalone = standalone == 1;
        });
    });
    XML_SetStartDoctypeDeclHandler(parser, [](void* user, const char*, const char*, const char*, int) {
        Of(user).Guard([&] { Of(user).Refuse("a document type declaration is not allowed"); });
    });
    return true;
}

void XmlTreeBuilder::OnStart(const char* name, const char** attributes)
{
    if (m_vecOpen.size() >= kXmlMaxDepth)
        return Refuse("elements are nested too deeply");
    pugi::xml_node parent = m_vecOpen.empty() ? pugi::xml_node(m_pobjTree->document) : m_vecOpen.back().element;
    pugi::xml_node element = parent.append_child(name);
    bool kept = !element.empty();
    ++m_iNodes;
    for (; kept && *attributes; attributes += 2, ++m_iNodes)
        kept = element.append_attribute(attributes[0]).set_value(attributes[1]);
    if (!kept)
        return Refuse("out of memory");
    if (m_iNodes > kXmlMaxNodes)
        return Refuse("too many elements and attributes");
    const auto begin = static_cast<std::uint32_t>(XML_GetCurrentByteIndex(m_pobjParser.get()));
    m_vecOpen.push_back({element, m_strPending.size(), m_pobjTree->m_vecRanges.size()});
    m_pobjTree->m_vecRanges.push_back({element.internal_object(), begin, begin});
}

void XmlTreeBuilder::OnEnd()
{
    const OpenElement& closed = m_vecOpen.back();
    const std::string_view text = std::string_view(m_strPending).substr(closed.textBegin);
    // White space between elements is layout, not contents; beside other characters it is kept.
    if (text.find_first_not_of(kBlanks) != std::string_view::npos && !SetContents(closed.element, text.data()))
        return Refuse("out of memory");
    const XML_Index end = XML_GetCurrentByteIndex(m_pobjParser.get()) + XML_GetCurrentByteCount(m_pobjParser.get());
    m_pobjTree->m_vecRanges[closed.range].end = static_cast<std::uint32_t>(end);
    m_strPending.resize(closed.textBegin);
    m_vecOpen.pop_back();
}

std::string XmlTreeBuilder::Reason() const
{
    XML_Parser parser = m_pobjParser.get();
    const char* reason = m_szRefused ? m_szRefused : XML_ErrorString(XML_GetErrorCode(parser));
    return "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ": " + (reason ? reason : "not well-formed");
}

bool XmlTreeBuilder::Feed(std::string_view text)
{
    const std::size_t piece = std::max(kPiece, text.size() / kMostPieces + 1);
    for (; text.size() > piece; text.remove_prefix(piece))
        if (XML_Parse(m_pobjParser.get(), text.data(), static_cast<int>(piece), XML_FALSE) != XML_STATUS_OK)
            return false;
    return XML_Parse(m_pobjParser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
}

std::unique_ptr<XmlTree> XmlTreeBuilder::Parse(std::string_view text, XmlEncoding encoding, std::string& why)
{
    if (text.size() > kXmlMaxBytes) {
        why = "the text has " + std::to_string(text.size()) + " bytes, more than the " + std::to_string(kXmlMaxBytes) +
              " allowed";
        return nullptr;
    }
    if (!PrepareParser(encoding)) {
        why = "no parser: out of memory";
        return nullptr;
    }
    auto tree = std::make_unique<XmlTree>();
    tree->m_strText.assign(text);
    m_pobjTree = tree.get();
    m_vecOpen.clear();
    m_strPending.clear();
    m_iNodes = 0;
    m_szRefused = nullptr;

    // Of the tags half open an element, mostly; with that room nothing is copied on the way.
    tree->m_vecRanges.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '<')) / 2 + 1);

    if (!Feed(text)) {
        why = Reason();
        tree.reset();
    } else if (encoding == XmlEncoding::Declared) {
        tree->Changed(); // the bytes may be in another encoding than the tree, which is UTF-8
    }
    if (text.size() > kKeepParserBelow) {
        m_pobjParser.reset();
        m_strPending = std::string();
    }
    return tree;
}

std::unique_ptr<XmlTree> ParseXmlText(std::string_view text, XmlEncoding encoding, std::string& why)
{
    thread_local XmlTreeBuilder builder;
    return builder.Parse(text, encoding, why);
}

} // namespace vk
