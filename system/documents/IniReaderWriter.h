#pragma once

#include <memory>
#include <string>

/// An INI file kept as one linked list of lines, so that comments, order and sections survive a rewrite; blank lines do
/// not. Heads, keys and values are compared without regard to case. A head is named with its brackets: "[main]".
///
/// A null `head` in the key operations means the start of the file, before any head. Nothing here throws on a bad file:
/// an operation answers false or an empty text. Not safe across threads; other processes are kept away by whole-file
/// locks when useLocks is set. Strings that go in are copied, pointers and references that come out live until the line
/// is removed, reset() or the next read().
class IniReaderWriter
{
public:
    /// One line of the file. Linked into the list of its document, which owns it; deleting a node takes it out.
    class Node
    {
    public:
        enum Type : unsigned char {
            Head = 1,    ///< begins with "["; the whole line is the key
            Comment = 2, ///< begins with "#"; the whole line is the key
            KeyValue = 3
        };

        Node(Type type, std::string key, std::string value);
        ~Node();
        Node(const Node&) = delete;
        Node& operator=(const Node&) = delete;

        /// The value of a key of this node's section; a missing key is added, empty, at the section's end.
        std::string& operator[](const std::string& key);

    private:
        friend class IniReaderWriter;

        void LinkBetween(Node* before, Node* behind);
        void MoveSectionTo(Node* newHead);
        Node* FirstOfSection();
        Node* LastOfSection();

        Type type;
        std::string key;
        std::string value;
        Node* previous = nullptr;
        Node* next = nullptr;
        Node* head = nullptr; // of a head: itself; null before the first head
        Node* previousHead = nullptr;
        Node* nextHead = nullptr;
        bool bulkDelete = false; // the whole list goes: the destructor need not unlink
    };

    /// readNow reads the file at once; isFileLoaded() tells how it went. A null path throws std::exception.
    /// retryLocks tries a lock that is held elsewhere up to ten times instead of once.
    IniReaderWriter(const char* path, bool readNow, bool useLocks, bool retryLocks);
    IniReaderWriter(const std::string& path, bool readNow, bool useLocks, bool retryLocks);
    ~IniReaderWriter(); // not virtual: the slots of this class are read and write
    IniReaderWriter(const IniReaderWriter&) = delete;
    IniReaderWriter& operator=(const IniReaderWriter&) = delete;

    /// Replaces what is held by the file's lines. False, with the lines held before, when it cannot be opened or
    /// locked.
    virtual bool read();
    /// Writes all lines to *path, or to the document's own path when null.
    virtual bool write(std::string* path);
    /// Forgets all lines.
    void reset();
    bool isFileLoaded() const { return m_bLoaded; }

    /// The head of that name; a missing one is added at the end of the file.
    Node& operator[](const std::string& head);

    /// The value, or an empty text.
    std::string getKeyValue(const std::string* head, const char* key) const;
    std::string getKeyValue(const std::string* head, const std::string* key) const;
    /// By position in the section: 0 is the first line behind the head, and comments count. Empty past the end.
    std::string getKeyValue(const std::string* head, int index) const;
    std::string getKey(const std::string* head, int index) const;
    /// False past the section's end; key and value are filled only when the line there is of this type (Node::Type).
    bool getKeyValue(const std::string* head, int index, std::string& key, std::string& value, int type) const;

    /// Changes an existing key. False, and nothing added, when there is none.
    bool setKeyValue(const std::string* head, const std::string* key, const std::string* value);

    bool isHeadPresent(const std::string& head) const;
    bool isKeyPresent(const std::string* head, const std::string* key) const;
    bool isValuePresent(const std::string* head, const std::string* key, const std::string* value) const;
    /// Whether any key of the section has this value.
    bool isValuePresentInSection(const std::string& head, const std::string& value) const;

    /// Adds a head behind the section named `after`, or at the end of the file when there is none of that name. False
    /// for a name that is already there or does not begin with "[", which could not be read back.
    bool createNewHead(const std::string& head, const std::string& after);
    /// Deletes the head line alone: its lines join the section before.
    bool removeHead(const std::string& head);
    /// Deletes the head and all lines of its section.
    bool removeSection(const std::string& head);
    bool removeKey(const std::string* head, const std::string* key);

protected:
    /// Bytes of a line's buffer with its closing zero. A settled limit of the format: longer lines are split by the
    /// reader, so the writer ends a line there.
    static constexpr int kLineBuffer = 512;

    const std::string& path() const { return m_strPath; }
    bool useLocks() const { return m_bUseLocks; }
    bool retryLocks() const { return m_bRetryLocks; }
    void setLoaded() { m_bLoaded = true; }

    /// Takes one line as it was read, line end and blanks included; what carries nothing is dropped.
    void appendLine(const char* line);
    /// The whole file as text.
    std::string toText() const;

private:
    Node* insert(std::unique_ptr<Node> node, Node* behind);
    void erase(Node* node);
    Node* lastLine() const;
    Node* findHead(const std::string& head) const;
    Node* beginOfSection(const std::string* head) const;
    template <class Test> Node* findInSection(const std::string* head, Test&& wanted) const;
    Node* findKey(const std::string* head, const std::string& key) const;
    Node* lineAt(const std::string* head, int index) const;
    bool lockFile(int descriptor, int mode) const;

    Node* m_pFirst = nullptr;
    Node* m_pFirstHead = nullptr;
    std::string m_strPath;
    bool m_bLoaded = false;
    bool m_bUseLocks;
    bool m_bRetryLocks;
    Node* m_pNearLast = nullptr; // at or shortly before the last line, so that reading a file is linear
};
