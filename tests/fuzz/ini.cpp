#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "IniReaderWriter.h"
#include "VKIniReaderWriterEx.h"

namespace {

using Node = IniReaderWriter::Node;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

/// A file in memory, reached by a path.
class MemoryFile
{
public:
    MemoryFile() : m_fd(memfd_create("ini", MFD_CLOEXEC)), m_path("/proc/self/fd/" + std::to_string(m_fd)) {}
    ~MemoryFile() { close(m_fd); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const std::string& Path() const { return m_path; }
    void Set(const void* data, std::size_t size) const
    {
        Require(ftruncate(m_fd, 0) == 0 && pwrite(m_fd, data, size, 0) == static_cast<ssize_t>(size));
    }
    std::string Content() const
    {
        std::string text(static_cast<std::size_t>(lseek(m_fd, 0, SEEK_END)), '\0');
        Require(pread(m_fd, text.data(), text.size(), 0) == static_cast<ssize_t>(text.size()));
        return text;
    }

private:
    int m_fd;
    std::string m_path;
};

/// Removes and adds in every section by turns, and looks everything up on the way.
void Change(IniReaderWriter& ini)
{
    std::string key, value;
    for (int i = 0; ini.getKeyValue(nullptr, i, key, value, Node::KeyValue) && i < 50; ++i)
        ini.removeKey(nullptr, &key);
    const std::string heads[] = {"[main]", "[a]", "[common]"};
    for (const std::string& head : heads) {
        if (ini.getKeyValue(&head, 0, key, value, Node::KeyValue))
            ini.isValuePresent(&head, &key, &value);
        ini[head]["added"] = "1";
        Require(ini.getKeyValue(&head, "ADDED") == "1");
    }
    ini.createNewHead("[new]", "[main]");
    Require(ini.removeHead("[a]"));
    Require(ini.removeSection("[common]"));
}

} // namespace

/// What is read and written stays the same when it is read and written again, by both classes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFile in, out, again;
    std::string outPath = out.Path(), againPath = again.Path();
    in.Set(data, size);

    IniReaderWriter first(in.Path(), true, true, false);
    Require(first.isFileLoaded() && first.write(&outPath));

    VKIniReaderWriterEx open(in.Path(), false, false);
    Require(open.open(false) && open.read() && open.write(again.Path()));
    Require(out.Content() == again.Content());

    Change(first);
    Require(first.write(&outPath));
    // A key without a value is written with "=", and such a line is dropped when it is read: settled after one turn.
    Require(IniReaderWriter(outPath, true, true, false).write(&againPath));
    const std::string settled = again.Content();
    Require(IniReaderWriter(againPath, true, true, false).write(&outPath));
    Require(out.Content() == settled);
    return 0;
}
