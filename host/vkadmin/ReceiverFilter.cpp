#include "ReceiverFilter.h"

#include "AdminInput.h"
#include "RecordForm.h"
#include "VKDBiReceiver.h"
#include "VKstringCase.h"

#include <limits>

namespace vk {

namespace {

constexpr CodeText<FltEnabled> kStates[] = {{FltOnlyEnabled, "true"}, {FltOnlyDisabled, "false"}};
constexpr CodeText<FltNameLetter> kLetters[] = {{FltOnlyLetters, "letters"}, {FltNoLetters, "others"}};

FltEnabled State(const Arguments& arguments, const char* option)
{
    return CodeOfText(kStates, arguments.Text(option), FltEither);
}

/// Receivers of one account: name and password are compared together.
void SetAccount(VKDBiReceiver& store, const Arguments& arguments)
{
    if (arguments.Has("--acct-name") != arguments.Has("--account-password-file"))
        throw UsageError("--acct-name and --account-password-file go together");
    if (arguments.Has("--acct-name"))
        store.SetFilterAccount(arguments.Text("--acct-name"), ReadPassword(arguments.Text("--account-password-file")));
}

void SetAttributes(VKDBiReceiver& store, const Arguments& arguments)
{
    std::map<unsigned long, std::string> values;
    for (const std::string& text : arguments.All("--attribute")) {
        const auto [name, value] = SplitAssignment(text, "--attribute");
        values[AttributeId(store, name, "--attribute")] = value;
    }
    if (!values.empty())
        store.SetFilterAttribute(values);
}

} // namespace

void SetReceiverFilter(VKDBiReceiver& store, const Arguments& arguments)
{
    constexpr long long most = std::numeric_limits<int>::max();
    store.ClearFilter();
    store.SetFilter(arguments.Text("--name"), arguments.Text("--pin"), IdOption(arguments, "--carrier-id"),
                    static_cast<int>(arguments.Number("--protocol-id", 0, most, 0)),
                    IdOption(arguments, "--department-id"), arguments.Text("--cover-name"),
                    CodeOfText(kLetters, arguments.Text("--initial"), FltAnyLetter));
    store.SetFilter(State(arguments, "--available"), State(arguments, "--voice-enable"),
                    State(arguments, "--advanced-messaging"));
    if (arguments.Has("--owner-id"))
        store.SetFilterOwner(IdOption(arguments, "--owner-id"));
    std::vector<unsigned long> ids;
    for (const std::string& text : arguments.All("--id"))
        SetFromText(ids.emplace_back(), text, "--id");
    if (!ids.empty())
        store.SetFilterReceiverIDs(ids);
    SetAttributes(store, arguments);
    SetAccount(store, arguments);
}

std::pair<std::string, std::string> SplitAssignment(const std::string& text, const std::string& option)
{
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos || sign == 0)
        throw UsageError(option + ": '" + text + "' is not NAME=VALUE");
    return {text.substr(0, sign), text.substr(sign + 1)};
}

unsigned long AttributeId(VKDBiReceiver& store, const std::string& name, const std::string& option)
{
    std::vector<VK_NAME_RECORD> attributes;
    store.GetAttributesNameList(attributes);
    std::string names;
    for (const VK_NAME_RECORD& attribute : attributes) {
        if (EqualNoCase(attribute.name, name))
            return attribute.id;
        names += (names.empty() ? "'" : ", '") + attribute.name + "'";
    }
    throw UsageError(option + ": there is no attribute '" + name + "'; " +
                     (names.empty() ? "\"attribute add\" makes one" : "there are " + names));
}

} // namespace vk
