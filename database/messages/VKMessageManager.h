#pragma once

#include <memory>
#include <string>

class VKSQLite3Database;

/// The catalogue of the texts that people read: by number and language, in the file "messages.sdb" of the configuration
/// directory, so that an installation can have its own wording. It is made from a constants file (see
/// VKMessageConstants.h for the one that is shipped).
///
/// One a process. Any thread may use it; the file is opened when it is first needed and may be shared with other
/// processes.
class VKMessageManager
{
public:
    /// English, as Windows and its successors number the languages. The language until SetLanguage names another.
    static constexpr unsigned long kEnglish = 1033;

    /// Makes the one instance, for the catalogue of this directory, and keeps its path. Gives the present one when there
    /// is one already. Owned by the class.
    static VKMessageManager* CreateInstance(const std::string& dir);
    /// Closes the catalogue and forgets its path.
    static void DeleteInstance();

    /// The language that is read and built.
    static void SetLanguage(unsigned long language);

    /// The text of a number; a "%" of it stands doubled, as in a format. Empty when there is none, no catalogue, or one
    /// that cannot be read; never throws.
    static std::string GetMsg(unsigned long id);

    /// Replaces all that is in the catalogue by the texts of a constants file, all or nothing; makes the catalogue when
    /// it is missing. Throws std::logic_error with the cause nested in it (std::rethrow_if_nested), and VKDBexception or
    /// VKioException when one of the files cannot be opened.
    static void BuildMessageDB(const std::string& constantsFile);

    /// The kept path, else that of "messages.sdb" in this directory; an empty one is "/usr/local/vardock/config".
    static std::string GetMessageDBFilePath(const std::string& dir);

    VKMessageManager(const VKMessageManager&) = delete;
    VKMessageManager& operator=(const VKMessageManager&) = delete;
    ~VKMessageManager();

private:
    VKMessageManager();
    static VKMessageManager& Instance();
    VKSQLite3Database& Open();
    std::string Read(unsigned long id);
    void Build(const std::string& constantsFile);
    void Store(unsigned long id, const std::string& text);

    static std::unique_ptr<VKMessageManager> m_pMsgManager; ///< this and all below: guarded by one lock of the class
    static std::string m_strDBFilePath;

    std::unique_ptr<VKSQLite3Database> m_pDatabase; ///< null until it is needed
    unsigned long m_ulLanguage = kEnglish;
};
