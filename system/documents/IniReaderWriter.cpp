#include "IniReaderWriter.h"

#include "VKfile.h"
#include "VKstringTrim.h"
#include "VKthread.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <string_view>
#include <strings.h>
#include <utility>

using Node = IniReaderWriter::Node;

namespace {

constexpr int kReadLock = 0; // lock modes of VKfileLock
constexpr int kWriteLock = 1;
constexpr int kLockTries = 10;

bool SameName(const std::string& a, const std::string& b) { return strcasecmp(a.c_str(), b.c_str()) == 0; }

std::string PathOf(const char* path)
{
    if (!path)
        throw std::exception();
    return path;
}

/// Closes a descriptor of the VKfile functions.
class Descriptor
{
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor()
    {
        if (m_fd >= 0)
            VKfileClose(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

} // namespace

IniReaderWriter::IniReaderWriter(const char* path, bool readNow, bool useLocks, bool retryLocks)
    : IniReaderWriter(PathOf(path), readNow, useLocks, retryLocks)
{
}

IniReaderWriter::IniReaderWriter(const std::string& path, bool readNow, bool useLocks, bool retryLocks)
    : m_strPath(path), m_bUseLocks(useLocks), m_bRetryLocks(retryLocks)
{
    srand(static_cast<unsigned int>(time(nullptr))); // for the pauses between tries of a lock
    if (readNow)
        IniReaderWriter::read();
}

IniReaderWriter::~IniReaderWriter() { reset(); }

bool IniReaderWriter::lockFile(int descriptor, int mode) const
{
    const int tries = m_bRetryLocks ? kLockTries : 1;
    for (int i = 0; i < tries; ++i) {
        if (i > 0)
            VKsleep(std::abs(rand())); // meant as it stands: milliseconds, not bounded to a small range
        if (VKfileLock(descriptor, mode, 0) == 0)
            return true;
    }
    return false;
}

bool IniReaderWriter::read()
{
    const Descriptor file(VKfileFOpen(m_strPath.c_str(), "r"));
    if (file.get() < 0)
        return false;
    if (m_bUseLocks && !lockFile(file.get(), kReadLock))
        return false;

    reset();
    char line[kLineBuffer];
    errno = 0;
    while (VKfileFGets(line, sizeof line, file.get()))
        appendLine(line);
    if (errno == EISDIR || errno == EIO)
        return false;
    m_bLoaded = true;
    if (m_bUseLocks)
        VKfileUnlock(file.get());
    return true;
}

bool IniReaderWriter::write(std::string* path)
{
    // Mode "w" empties the file before the lock is taken. The order is meant.
    const std::string& target = path ? *path : m_strPath;
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(target.c_str(), "w"), fclose);
    if (!file)
        return false;
    if (m_bUseLocks && !lockFile(fileno(file.get()), kWriteLock))
        return false;

    const std::string text = toText();
    const bool written = fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    const bool flushed = fflush(file.get()) == 0;
    if (m_bUseLocks)
        VKfileUnlock(fileno(file.get()));
    return written && flushed;
}

void IniReaderWriter::reset()
{
    for (Node* line = m_pFirst; line;) {
        const std::unique_ptr<Node> gone(line);
        line = line->next;
        gone->bulkDelete = true;
    }
    m_pFirst = m_pFirstHead = m_pNearLast = nullptr;
    m_bLoaded = false;
}

void IniReaderWriter::appendLine(const char* line)
{
    const std::string_view text = vk::Trimmed(line);
    if (text.empty())
        return;

    std::unique_ptr<Node> node;
    if (text[0] == '[' || text[0] == '#') {
        node = std::make_unique<Node>(text[0] == '[' ? Node::Head : Node::Comment, std::string(text), std::string());
    } else {
        // Blanks before the "=" belong to the key. A line without "=" is a key with an empty value, but a line that
        // has one and nothing on either side of it carries nothing.
        const std::size_t equals = text.find('=');
        const std::string_view key = text.substr(0, equals);
        std::string_view value;
        if (equals != std::string_view::npos) {
            value = vk::Trimmed(text.substr(equals + 1));
            if (value.empty() || key.empty())
                return;
        }
        node = std::make_unique<Node>(Node::KeyValue, std::string(key), std::string(value));
    }
    insert(std::move(node), lastLine());
}

std::string IniReaderWriter::toText() const
{
    std::string text;
    for (const Node* line = m_pFirst; line; line = line->next) {
        std::string written = line->key;
        if (line->type == Node::KeyValue)
            written.append(1, '=').append(line->value);
        if (written.size() >= kLineBuffer)
            written.resize(kLineBuffer - 1);
        for (char& c : written)
            if (c == '\n' || c == '\r' || c == '\0')
                c = ' '; // or the rest would come back as a line of its own
        if (line->type == Node::Head)
            text += '\n';
        text.append(written).append(1, '\n');
    }
    return text;
}

Node* IniReaderWriter::insert(std::unique_ptr<Node> node, Node* behind)
{
    Node* const added = node.release(); // owned by the list
    added->LinkBetween(behind, behind ? behind->next : m_pFirst);
    if (!behind)
        m_pFirst = added;
    if (!added->next)
        m_pNearLast = added;

    Node* const before = behind ? behind->head : nullptr;
    if (added->type != Node::Head) {
        added->head = before;
        return added;
    }
    added->previousHead = before;
    added->nextHead = before ? before->nextHead : m_pFirstHead;
    if (added->previousHead)
        added->previousHead->nextHead = added;
    else
        m_pFirstHead = added;
    if (added->nextHead)
        added->nextHead->previousHead = added;
    return added;
}

void IniReaderWriter::erase(Node* node)
{
    const std::unique_ptr<Node> gone(node);
    if (m_pFirst == node)
        m_pFirst = node->next;
    if (m_pFirstHead == node)
        m_pFirstHead = node->nextHead;
    if (m_pNearLast == node)
        m_pNearLast = node->previous ? node->previous : m_pFirst;
}

Node* IniReaderWriter::lastLine() const
{
    Node* line = m_pNearLast;
    while (line && line->next)
        line = line->next;
    return line;
}

Node* IniReaderWriter::findHead(const std::string& head) const
{
    for (Node* line = m_pFirstHead; line; line = line->nextHead)
        if (SameName(line->key, head))
            return line;
    return nullptr;
}

/// The first line of a section, be it the next head; null when there is neither.
Node* IniReaderWriter::beginOfSection(const std::string* head) const
{
    if (!head)
        return m_pFirst;
    const Node* const found = findHead(*head);
    return found ? found->next : nullptr;
}

template <class Test> Node* IniReaderWriter::findInSection(const std::string* head, Test&& wanted) const
{
    for (Node* line = beginOfSection(head); line && line->type != Node::Head; line = line->next)
        if (wanted(*line))
            return line;
    return nullptr;
}

Node* IniReaderWriter::findKey(const std::string* head, const std::string& key) const
{
    return findInSection(head,
                         [&](const Node& line) { return line.type == Node::KeyValue && SameName(line.key, key); });
}

Node* IniReaderWriter::lineAt(const std::string* head, int index) const
{
    if (index < 0)
        return nullptr;
    return findInSection(head, [&](const Node&) { return index-- == 0; });
}

Node& IniReaderWriter::operator[](const std::string& head)
{
    if (Node* const found = findHead(head))
        return *found;
    return *insert(std::make_unique<Node>(Node::Head, head, std::string()), lastLine());
}

std::string IniReaderWriter::getKeyValue(const std::string* head, const char* key) const
{
    const Node* const line = key ? findKey(head, key) : nullptr;
    return line ? line->value : std::string();
}

std::string IniReaderWriter::getKeyValue(const std::string* head, const std::string* key) const
{
    return getKeyValue(head, key ? key->c_str() : static_cast<const char*>(nullptr));
}

std::string IniReaderWriter::getKeyValue(const std::string* head, int index) const
{
    const Node* const line = lineAt(head, index);
    return line ? line->value : std::string();
}

std::string IniReaderWriter::getKey(const std::string* head, int index) const
{
    const Node* const line = lineAt(head, index);
    return line ? line->key : std::string();
}

bool IniReaderWriter::getKeyValue(const std::string* head, int index, std::string& key, std::string& value,
                                  int type) const
{
    const Node* const line = lineAt(head, index);
    if (!line)
        return false;
    if (line->type == type) {
        key = line->key;
        value = line->value;
    }
    return true;
}

bool IniReaderWriter::setKeyValue(const std::string* head, const std::string* key, const std::string* value)
{
    Node* const line = key && value ? findKey(head, *key) : nullptr;
    if (!line)
        return false;
    line->value = *value;
    return true;
}

bool IniReaderWriter::isHeadPresent(const std::string& head) const { return findHead(head) != nullptr; }

bool IniReaderWriter::isKeyPresent(const std::string* head, const std::string* key) const
{
    return key && findKey(head, *key);
}

bool IniReaderWriter::isValuePresent(const std::string* head, const std::string* key, const std::string* value) const
{
    const Node* const line = key && value ? findKey(head, *key) : nullptr;
    return line && SameName(line->value, *value);
}

bool IniReaderWriter::isValuePresentInSection(const std::string& head, const std::string& value) const
{
    return findInSection(&head,
                         [&](const Node& line) { return line.type == Node::KeyValue && SameName(line.value, value); });
}

bool IniReaderWriter::createNewHead(const std::string& head, const std::string& after)
{
    if (head.empty() || head[0] != '[' || findHead(head))
        return false;
    Node* const section = findHead(after);
    insert(std::make_unique<Node>(Node::Head, head, std::string()), section ? section->LastOfSection() : lastLine());
    return true;
}

bool IniReaderWriter::removeHead(const std::string& head)
{
    Node* const found = findHead(head);
    if (found)
        erase(found);
    return found;
}

bool IniReaderWriter::removeSection(const std::string& head)
{
    Node* const found = findHead(head);
    if (!found)
        return false;
    while (found->next && found->next->type != Node::Head)
        erase(found->next);
    erase(found);
    return true;
}

bool IniReaderWriter::removeKey(const std::string* head, const std::string* key)
{
    Node* const line = key ? findKey(head, *key) : nullptr;
    if (line)
        erase(line);
    return line;
}
