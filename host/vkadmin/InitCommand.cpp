#include "InitCommand.h"

#include "AdminOutput.h"
#include "MessageCommands.h"
#include "VKConfiguration.h"
#include "VKsysEventLogInterface.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace vk {

namespace {

namespace fs = std::filesystem;

/// Where a key of the file "dir" points in a new root: "waiting_dir" is the folder "waiting".
std::string FolderOf(const char* key)
{
    const std::string name = key;
    return name == "log_dir" ? "logs" : name.substr(0, name.rfind("_dir"));
}

constexpr const char* kOtherFolders[] = {"config", "temp", "bin"};

/// A daemon adds its own when it starts; this one is there to be copied.
constexpr const char* kFirstLogger = "messenger";

void MakeFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        throw InputError("--root: " + folder.string() + ": " + error.message());
}

void WriteNew(const fs::path& file, const std::string& content)
{
    std::ofstream out(file, std::ios::binary);
    out << content;
    if (!out.flush())
        throw InputError("--root: " + file.string() + ": " + std::strerror(errno));
}

/// A root must not be there yet: no directory of that name, or an empty one.
fs::path CheckedNewRoot(const std::string& given)
{
    std::error_code error;
    const fs::path root = fs::absolute(given, error).lexically_normal();
    if (fs::exists(root, error) && (!fs::is_directory(root, error) || !fs::is_empty(root, error)))
        throw InputError("--root: " + root.string() + " is there already and is left as it is");
    if (error)
        throw InputError("--root: " + root.string() + ": " + error.message());
    return root;
}

/// The folders of the queues and the file "dir" that names them.
void WriteDirectories(const fs::path& root, VKConfiguration& configuration)
{
    VK_DIRECTORY_PATH* const directories = configuration.getDirectory(true);
    ForEachField(kDirectoryFields, [&](const auto& row) {
        if (row.template has<ReadAsSpool>)
            return; // the same folder under its other name
        const fs::path folder = root / FolderOf(row.name);
        auto& path = row.of(*directories);
        if (folder.string().size() >= sizeof path)
            throw InputError("--root: " + root.string() + " is too long a path");
        std::memcpy(path, folder.c_str(), folder.string().size() + 1);
        MakeFolder(folder);
    });
    if (!configuration.setDirectory())
        throw InputError("--root: " + (root / "config" / "dir").string() + " cannot be written");
}

void WriteLogSettings(const fs::path& root)
{
    const std::string config = (root / "config").string();
    if (!VKsysEventLogInterface::generateConfigFile(kFirstLogger, config, (root / "logs").string()))
        throw InputError("--root: " + config + "/vklogs.ini cannot be written");
}

std::string FirstLine(const std::string& path)
{
    std::ifstream in(path);
    std::string line;
    if (!std::getline(in, line))
        throw InputError("--db-password-file: " + path + " cannot be read, or is empty");
    return line;
}

std::string DataSource(const Arguments& arguments)
{
    if (!arguments.Has("--dsn")) {
        if (arguments.Has("--db-user") || arguments.Has("--db-password-file"))
            throw UsageError("--db-user and --db-password-file go with --dsn");
        return "database_type:\tSdb\n";
    }
    std::string text =
        "database_type:\tOdbc\ndb_connect_type:\tDSN\ndb_connect_string:\t" + arguments.Text("--dsn") + "\n";
    if (arguments.Has("--db-user"))
        text += "db_user:\t" + arguments.Text("--db-user") + "\n";
    if (arguments.Has("--db-password-file"))
        text += "db_password:\t" + FirstLine(arguments.Text("--db-password-file")) + "\n";
    return text;
}

void KeepPrivate(const fs::path& file)
{
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

void MakeRoot(const fs::path& root, const std::string& dataSource)
{
    for (const char* folder : kOtherFolders)
        MakeFolder(root / folder);
    const fs::path config = root / "config";
    WriteNew(config / "version", VK_VERSION "\n");
    WriteNew(config / "datasource", dataSource);
    if (dataSource.find("db_password:") != std::string::npos)
        KeepPrivate(config / "datasource");
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    configuration.setConfDirectory(config);
    WriteDirectories(root, configuration);
    WriteLogSettings(root);
    MakeFirstCatalogue(config);
}

} // namespace

int RunInit(const Arguments& arguments)
{
    const std::string dataSource = DataSource(arguments);
    const fs::path root = CheckedNewRoot(arguments.Text("--root"));
    try {
        MakeRoot(root, dataSource);
    } catch (...) {
        // Half a root would only be in the way of the next try. There was nothing in it before.
        std::error_code ignored;
        fs::remove_all(root, ignored);
        throw;
    }
    PrintDone("made " + root.string(), {{"root", root.string()}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace vk
