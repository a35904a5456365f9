#include "AdminRoot.h"

#include "VKConfiguration.h"
#include "VKDatabase.h"

#include <filesystem>

namespace vk {

namespace {

constexpr const char* kNeededFiles[] = {"dir", "datasource"};

} // namespace

std::string UseRoot(const std::string& given, const std::string& option)
{
    std::error_code error;
    const auto root = std::filesystem::canonical(given, error);
    if (error)
        throw InputError(option + ": " + given + ": " + error.message());
    const auto config = root / "config";
    for (const char* name : kNeededFiles)
        if (!std::filesystem::is_regular_file(config / name, error))
            throw InputError(option + ": " + (config / name).string() + " is missing; \"init\" makes a new root");
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    configuration.setConfDirectory(config);
    configuration.loadPrimaryConfiguration(true);
    const VK_DATA_SOURCE* const source = configuration.getDataSource(true);
    if (source == nullptr || source->database_type == 0)
        throw InputError(option + ": " + (config / "datasource").string() +
                         (source == nullptr ? " cannot be read" : " names no database_type that is known"));
    return root;
}

std::string UseRoot(const Arguments& arguments) { return UseRoot(arguments.Text("--root"), "--root"); }

VKDatabase& UseDatabase(const Arguments& arguments)
{
    UseRoot(arguments);
    VKDatabase* const database = VKDatabase::getVKDatabase(nullptr, false);
    if (!database->isReady())
        throw std::runtime_error("the database cannot be opened: " + database->getLastErrorString());
    return *database;
}

} // namespace vk
