#include "SettingsCommands.h"

#include "AdminInput.h"
#include "AdminOutput.h"
#include "AdminRoot.h"
#include "SettingsForm.h"
#include "VKConfiguration.h"
#include "VKJson.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/file.h>
#include <unistd.h>

namespace vk {

namespace {

constexpr const char* kPolicyKey = "mxp_general_policy";
constexpr const char* kPolicySecret = "master_pswrd";
constexpr const char* kMasked = "***";

/// One of the two files: its name, its table and the library's operations on it.
struct MxpFile
{
    using Settings = VKMXPManagerSettings;
    static constexpr const char* kName = "mxp_config.xml";
    static constexpr const auto& kFields = settings::kMXPManagerFields;
    static constexpr auto kGet = &VKConfiguration::getMXPManagerSettings;
    static constexpr auto kSet = &VKConfiguration::setMXPManagerSettings;
};

struct GatewayFile
{
    using Settings = VKXMPPGatewaySettings;
    static constexpr const char* kName = "xmppgateway_config.xml";
    static constexpr const auto& kFields = settings::kXMPPGatewayFields;
    static constexpr auto kGet = &VKConfiguration::getXMPPGatewaySettings;
    static constexpr auto kSet = &VKConfiguration::setXMPPGatewaySettings;
};

template <class File>
std::string PathOf()
{
    return VKConfiguration::getVKConfiguration()->getConfDirectory(false) + "/" + File::kName;
}

/// An administrator's turn at a settings file, as long as the object lives: what is read, changed and written must not
/// be changed by another one meanwhile. Waits for its turn.
class Turn
{
public:
    explicit Turn(const std::string& settingsFile)
    {
        const std::string path = settingsFile + ".lock";
        m_file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
        if (m_file < 0)
            throw InputError(path + ": " + std::strerror(errno));
        while (flock(m_file, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~Turn() { close(m_file); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    int m_file;
};

/// What the file holds; nothing when there is no file. Throws InputError for one that cannot be understood.
template <class File>
std::optional<typename File::Settings> Read()
{
    if (!std::filesystem::exists(PathOf<File>()))
        return std::nullopt;
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    if (const auto* const read = (configuration.*File::kGet)(true))
        return *read;
    throw InputError(configuration.getGatewaySettingsError());
}

// --- The general policy, a JSON text inside the file, with a password of its own.

std::string MaskedPolicy(const std::string& text)
{
    Json::Value policy;
    if (text.empty() || !ParseJsonObject(text, policy))
        return text.empty() ? text : kMasked;
    const Json::Value& settings = JsonMember(JsonMember(policy, "GeneralPolicy"), "settings");
    if (!JsonText(settings, kPolicySecret).empty())
        policy["GeneralPolicy"]["settings"][kPolicySecret] = kMasked;
    return JsonLine(policy);
}

/// Throws UsageError for the first member of the text that has another kind than its value.
void RequireAllTaken(const Json::Value& given, const Json::Value& taken)
{
    for (const std::string& member : given.getMemberNames()) {
        const Json::Value& value = given[member];
        const bool isThere = taken.isObject() && taken.isMember(member);
        if (isThere && value.isObject())
            RequireAllTaken(value, taken[member]);
        if (!isThere && !(value.isObject() && value.empty()))
            throw UsageError(std::string(kPolicyKey) + ": '" + member + "' has a value of another kind; switches " +
                             "take true and false, periods and tones a number from 0, " + kPolicySecret + " a text");
    }
}

void SetPolicy(VKMXPManagerSettings& settings, const std::string& text, bool fromFile)
{
    const std::string key = kPolicyKey;
    VKMXPManagerSettings trial;
    Json::Value given, taken;
    if (!text.empty() && (!ParseJsonObject(text, given) || !JsonMember(given, "GeneralPolicy").isObject()))
        throw UsageError(key + R"(: is no JSON such as {"GeneralPolicy":{"settings":{},"permissions":{}}})");
    VKConfiguration::ConvertJSONToGeneralPolicyData(text, &trial);
    ParseJsonObject(VKConfiguration::ConvertGeneralPolicyToJSON(&trial), taken);
    if (given.isObject())
        RequireAllTaken(given, taken);
    const std::string password = trial.m_objPolicySettings.m_optPassword.value_or("");
    if (!password.empty() && !fromFile)
        throw UsageError(key + ": a " + kPolicySecret + " comes from --file: everybody can read a command line");
    if (password == kMasked)
        throw UsageError(key + ": the " + kPolicySecret + " is \"***\", which only stands for one that is not shown");
    VKConfiguration::ConvertJSONToGeneralPolicyData(text, &settings);
}

// --- Showing and setting.

template <class File>
ShownRecord Shown(const typename File::Settings& values)
{
    ShownRecord shown;
    ForEachField(File::kFields, [&](const auto& row) {
        const std::string key = SettingKey(row);
        Json::Value value = ShownSetting(row, values);
        shown.emplace_back(key, key == kPolicyKey ? MaskedPolicy(value.asString()) : value);
    });
    return shown;
}

/// Lists as one line, for those who read no JSON.
std::string AsText(const Json::Value& value)
{
    if (!value.isArray())
        return value.asString();
    std::string line;
    for (const Json::Value& item : value)
        line += (line.empty() ? "" : ",") + (item.isString() ? item.asString() : JsonLine(item));
    return line.empty() || value[0].isString() ? line : "[" + line + "]";
}

void RequireKey(const std::string& key, const std::vector<std::string>& known)
{
    if (std::find(known.begin(), known.end(), key) == known.end())
        throw UnknownSetting(key, known);
}

template <class File>
int Show(const Arguments& arguments)
{
    const std::vector<std::string>& wanted = arguments.Operands();
    for (const std::string& key : wanted)
        RequireKey(key, SettingKeys(File::kFields));
    UseRoot(arguments);
    const auto values = Read<File>();
    if (!values)
        return Refused(PathOf<File>() + " is not there; setting any value makes it with the defaults");
    const bool json = arguments.Has("--json");
    ShownRecord shown;
    for (auto& [key, value] : Shown<File>(*values))
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), key) != wanted.end())
            shown.emplace_back(key, json ? value : AsText(value));
    PrintRecord(shown, json);
    return kExitOk;
}

/// The new value: the second operand or the file of --file, never both. A secret comes from a file.
std::string GivenValue(const Arguments& arguments, const std::string& key, bool secret)
{
    const std::vector<std::string>& words = arguments.Operands();
    if ((words.size() > 1) == arguments.Has("--file"))
        throw UsageError(key + ": give one of VALUE and --file");
    if (words.size() > 2)
        throw UsageError(key + ": takes one VALUE; quote one that has blanks");
    if (arguments.Has("--file"))
        return secret ? ReadPassword(arguments.Text("--file")) : ReadInput(arguments.Text("--file"));
    if (secret && !words[1].empty())
        throw UsageError(key + ": a secret comes from --file: everybody can read a command line");
    return words[1];
}

template <class Row, class Settings>
void SetRow(const Arguments& arguments, const Row& row, Settings& values)
{
    const std::string key = SettingKey(row);
    const std::string text = GivenValue(arguments, key, Row::template has<Secret>);
    if constexpr (std::is_same_v<Settings, VKMXPManagerSettings>) {
        if (key == kPolicyKey) {
            SetPolicy(values, text, arguments.Has("--file"));
            return;
        }
    }
    SetSetting(row, values, text, key);
}

template <class File>
int Set(const Arguments& arguments)
{
    const std::string& key = arguments.Operands().front();
    RequireKey(key, SettingKeys(File::kFields));
    UseRoot(arguments);
    const Turn turn(PathOf<File>());
    typename File::Settings values = Read<File>().value_or(typename File::Settings{});
    ForEachField(File::kFields, [&](const auto& row) {
        if (SettingKey(row) == key)
            SetRow(arguments, row, values);
    });
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    if (!(configuration.*File::kSet)(&values))
        throw InputError(configuration.getGatewaySettingsError());
    for (const auto& [name, value] : Shown<File>(values))
        if (name == key)
            PrintDone(key + " is now '" + Printable(AsText(value)) + "' in " + PathOf<File>(),
                      {{"key", key}, {"value", value}, {"file", PathOf<File>()}}, arguments.Has("--json"));
    return kExitOk;
}

} // namespace

int ShowMxpSettings(const Arguments& arguments) { return Show<MxpFile>(arguments); }
int SetMxpSetting(const Arguments& arguments) { return Set<MxpFile>(arguments); }
int ShowGatewaySettings(const Arguments& arguments) { return Show<GatewayFile>(arguments); }
int SetGatewaySetting(const Arguments& arguments) { return Set<GatewayFile>(arguments); }

} // namespace vk
