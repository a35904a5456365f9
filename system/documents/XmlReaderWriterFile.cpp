#include "XmlReaderWriter.h"

#include "VKioException.h"
#include "VKioFile.h"
#include "XmlTree.h"

#include <algorithm>

namespace {

/// Runs one operation on a file; false when it fails.
template <class Operation> bool Tried(Operation&& operation)
{
    try {
        operation();
        return true;
    } catch (const VKioException&) {
        return false;
    }
}

} // namespace

XmlReaderWriter::XmlReaderWriter() = default;

XmlReaderWriter::XmlReaderWriter(const std::string& path, int flags)
    : m_bMutable((flags & MutableDocument) != 0), m_strPath(path)
{
    if (flags & OpenNow)
        open(flags);
    if (flags & ReadDocument)
        read();
    if (flags & UnlockAfterReading)
        unlock();
}

XmlReaderWriter::~XmlReaderWriter() { close(); }

bool XmlReaderWriter::open(bool create, bool makeMutable)
{
    return open(OpenNow | (create ? CreateFile : 0) | (makeMutable ? MutableDocument : 0));
}

bool XmlReaderWriter::open(int flags)
{
    m_bMutable = (flags & MutableDocument) != 0;
    if (m_bFileOpened)
        return false;
    m_pobjFile = std::make_unique<VKioFile>(m_strPath);
    m_bFileOpened = Tried([&] { m_pobjFile->Open(flags & CreateFile ? "w+" : "r+"); });
    if (!m_bFileOpened)
        return false;
    if ((flags & TruncateFile) && !Tried([&] { m_pobjFile->Truncate(0); }))
        return false;
    return !(flags & LockShared) || lock(true, true);
}

bool XmlReaderWriter::close()
{
    unlock();
    const bool closed = m_bFileOpened && Tried([&] { m_pobjFile->Close(); });
    m_bFileOpened = false;
    m_pobjFile.reset();
    return closed;
}

bool XmlReaderWriter::lock(bool shared, bool wait)
{
    if (!m_bFileOpened || m_bFileLocked)
        return m_bFileOpened;
    m_bFileLocked = Tried([&] { m_pobjFile->Lock(shared ? 'r' : 'w', wait); });
    return m_bFileLocked;
}

bool XmlReaderWriter::unlock()
{
    if (!m_bFileOpened || !m_bFileLocked)
        return m_bFileOpened;
    m_bFileLocked = false;
    return Tried([&] { m_pobjFile->Unlock(); });
}

bool XmlReaderWriter::isFileLocked(bool shared)
{
    // Closing any descriptor of a file drops the process's locks on it, so an own lock is not put to the test.
    if (m_bFileLocked)
        return true;
    VKioFile file(m_strPath);
    if (!Tried([&] { file.Open("r+"); }))
        return false;
    const bool free = Tried([&] { file.Lock(shared ? 'r' : 'w', false); });
    Tried([&] {
        if (free)
            file.Unlock();
        file.Close();
    });
    return !free;
}

void XmlReaderWriter::setXmlDocumentFile(const std::string& path)
{
    close();
    m_strPath = path;
}

void XmlReaderWriter::resetDocument(bool tree, bool file)
{
    if (tree)
        m_pobjTree.reset();
    if (file)
        close();
}

bool XmlReaderWriter::read()
{
    m_pobjTree.reset();
    m_strParseError = m_bFileOpened ? "the file cannot be read" : "the file is not open";
    std::string text;
    const bool taken = m_bFileOpened && Tried([&] {
                           m_pobjFile->Rewind();
                           const auto size = static_cast<std::size_t>(m_pobjFile->GetSize());
                           text.resize(std::min(size, vk::kXmlMaxBytes + 1)); // with the byte too many it is refused
                           text.resize(m_pobjFile->Read(reinterpret_cast<unsigned char*>(text.data()),
                                                        static_cast<unsigned int>(text.size())));
                       });
    return taken && Fill(text, true);
}

bool XmlReaderWriter::write(const std::string& path)
{
    std::string text;
    if (!toString(text))
        return false;
    const auto writeOver = [&](VKioFile& file) {
        file.Truncate(0);
        file.Rewind();
        file.Write(text);
        file.Flush();
    };
    if (path.empty()) {
        const bool written = m_bFileOpened && Tried([&] { writeOver(*m_pobjFile); });
        return close() && written;
    }
    VKioFile file(path);
    return Tried([&] {
        file.Open("w");
        writeOver(file);
        file.Close();
    });
}
