#include <cstdint>
#include <cstdlib>

#include "XmlReaderWriter.h"

namespace {

/// The received bytes of every element, by themselves, are that element again.
void CheckSources(XmlReaderWriter::Node element, int& elements)
{
    if (++elements > 100)
        return;
    XmlReaderWriter again;
    if (!again.readFrom(element.sourceText()) || !(again.getRootNode() == element))
        std::abort();
    for (auto child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        CheckSources(child, elements);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    XmlReaderWriter document;
    if (!document.readFrom(std::string_view(reinterpret_cast<const char*>(data), size))) {
        if (document.isDocumentPresent() || document.parseError().empty())
            std::abort();
        return 0;
    }
    int elements = 0;
    CheckSources(document.getRootNode(), elements);
    std::string text;
    if (!document.toString(text))
        std::abort();
    return 0;
}
