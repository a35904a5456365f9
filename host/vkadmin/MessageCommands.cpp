#include "MessageCommands.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "VKConfiguration.h"
#include "VKDBexception.h"
#include "VKMessageConstantsReader.h"
#include "VKMessageManager.h"
#include "VKShippedMessages.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace vk {

namespace {

/// How many texts a constants file has. A file without any is refused: the catalogue would be empty.
int CountTexts(const std::string& path)
{
    std::ifstream in(path);
    if (!in || std::filesystem::is_directory(path))
        throw InputError(path + ": " + (in ? "is a directory" : std::strerror(errno)));
    MessageConstantsReader reader;
    int count = 0;
    for (std::string line; std::getline(in, line);)
        count += reader.Take(line) ? 1 : 0;
    if (count == 0)
        throw InputError(path + ": holds no text; one is a line \"#define NAME NUMBER /* text */\"");
    return count;
}

/// What failed, and behind it why, as the store says it.
std::string WithCause(const std::exception& failure)
{
    try {
        std::rethrow_if_nested(failure);
    } catch (const VKDBexception& cause) {
        return std::string(failure.what()) + " (" + cause.GetSysMsg() + ")";
    }
    return failure.what();
}

void Build(const std::string& constantsFile)
{
    try {
        VKMessageManager::BuildMessageDB(constantsFile);
    } catch (const std::logic_error& failure) {
        throw InputError(constantsFile + ": " + WithCause(failure));
    }
}

} // namespace

int BuildMessages(const Arguments& arguments)
{
    UseRoot(arguments);
    const std::string& file = arguments.Operands().front();
    const int count = CountTexts(file);
    VKMessageManager::CreateInstance(VKConfiguration::getVKConfiguration()->getConfDirectory(false));
    Build(file);
    const std::string catalogue = VKMessageManager::GetMessageDBFilePath("");
    PrintDone("made " + catalogue + " with " + std::to_string(count) + " texts",
              {{"catalogue", catalogue}, {"texts", count}}, arguments.Has("--json"));
    return kExitOk;
}

void MakeFirstCatalogue(const std::string& configDirectory)
{
    const std::string constants = configDirectory + "/message_constants.h";
    std::ofstream out(constants, std::ios::binary);
    out << kShippedMessageConstants;
    out.close();
    if (!out)
        throw InputError("--root: " + constants + ": " + std::strerror(errno));
    VKMessageManager::CreateInstance(configDirectory);
    Build(constants);
}

} // namespace vk
