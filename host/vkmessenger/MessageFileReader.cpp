#include "MessageFileReader.h"

#include "TextLine.h"
#include "MessageFields.h"
#include "Options.h"
#include "Utf8.h"

#include <json/json.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>
#include <type_traits>

namespace vk {

namespace {

constexpr std::size_t kLargestFile = 64 * 1024 * 1024;

/// The place is where a value stands, "response_choices[1].type"; a key in it may hold anything.
[[noreturn]] void Refuse(const std::string& place, const std::string& why)
{
    throw InputError(Printable(place) + " " + why);
}

template <class Table, class Record>
void ReadObject(const Json::Value& json, const Table& table, Record& record, const std::string& prefix);

void ReadValue(const Json::Value& json, std::string& value, const std::string& place)
{
    if (!json.isString())
        Refuse(place, "must be a text");
    value = json.asString();
    if (value.find('\0') != std::string::npos)
        Refuse(place, "contains a zero byte");
    // An escape can name half a surrogate pair although the file itself is sound.
    if (FindInvalidUtf8(value) != std::string_view::npos)
        Refuse(place, "contains characters that are not Unicode");
}

void ReadValue(const Json::Value& json, bool& value, const std::string& place)
{
    if (!json.isBool())
        Refuse(place, "must be true or false");
    value = json.asBool();
}

template <class Number>
void ReadNumber(const Json::Value& json, Number& value, const std::string& place, Number least, Number most)
{
    const std::string wanted = "must be a whole number from " + std::to_string(least) + " to " + std::to_string(most);
    // A number too large for 64 bits comes as a real one.
    if (json.type() != Json::intValue && json.type() != Json::uintValue)
        Refuse(place, wanted);
    if constexpr (std::is_signed_v<Number>) {
        if (!json.isInt64() || json.asInt64() < least || json.asInt64() > most)
            Refuse(place, wanted);
        value = static_cast<Number>(json.asInt64());
    } else {
        if (!json.isUInt64() || json.asUInt64() < least || json.asUInt64() > most)
            Refuse(place, wanted);
        value = static_cast<Number>(json.asUInt64());
    }
}

template <class Number>
std::enable_if_t<std::is_integral_v<Number>> ReadValue(const Json::Value& json, Number& value, const std::string& place)
{
    ReadNumber(json, value, place, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
}

void ReadValue(const Json::Value& json, VKMessageFile::ResponseChoice& value, const std::string& place)
{
    if (!json.isObject())
        Refuse(place, "must be an object with \"text\" and \"type\"");
    ReadObject(json, kResponseChoiceFields, value, place + ".");
}

template <class Item>
void ReadValue(const Json::Value& json, std::vector<Item>& value, const std::string& place)
{
    if (!json.isArray())
        Refuse(place, "must be an array");
    value.clear();
    for (Json::ArrayIndex i = 0; i < json.size(); ++i)
        ReadValue(json[i], value.emplace_back(), place + "[" + std::to_string(i) + "]");
}

void ReadActionType(const Json::Value& json, std::int32_t& value, const std::string& place)
{
    value = json.isString() ? CodeOfText(kActionTypes, json.asString(), -1) : -1;
    if (value < 0)
        Refuse(place, R"(must be "terminal" or "non-terminal")");
}

void ReadFlag(const Json::Value& json, std::int32_t& value, const std::string& place)
{
    const bool number = json.type() == Json::intValue && (json == 0 || json == 1);
    if (!json.isBool() && !number)
        Refuse(place, "must be true or false");
    value = json.asBool() ? 1 : 0;
}

template <class Row, class Value>
void ReadField(const Row& row, const Json::Value& json, Value& value, const std::string& place)
{
    if constexpr (Row::template has<ActionType>) {
        ReadActionType(json, value, place);
    } else if constexpr (Row::template has<Flag>) {
        ReadFlag(json, value, place);
    } else if constexpr (Row::template has<Range>) {
        const Range limits = row.template mark<Range>();
        ReadNumber(json, value, place, static_cast<Value>(limits.least), static_cast<Value>(limits.most));
    } else {
        ReadValue(json, value, place);
    }
    if constexpr (Row::template has<Required> && std::is_same_v<Value, std::string>) {
        if (value.empty())
            Refuse(place, "is empty");
    }
}

template <class Table, class Record>
void ReadObject(const Json::Value& json, const Table& table, Record& record, const std::string& prefix)
{
    for (const std::string& key : json.getMemberNames()) {
        const bool unknown = AllFields(table, [&](const auto& row) { return key != row.name; });
        if (unknown)
            Refuse(prefix + key, "is no key of a message");
    }
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if (json.isMember(row.name))
            ReadField(row, json[row.name], row.of(record), prefix + row.name);
        else if (Row::template has<Required>)
            Refuse(prefix + row.name, "is missing");
    });
}

Json::Value ParseJson(std::string_view text)
{
    const std::size_t invalid = FindInvalidUtf8(text);
    if (invalid != std::string_view::npos)
        throw InputError("is not UTF-8 at byte " + std::to_string(invalid));
    Json::CharReaderBuilder builder;
    Json::CharReaderBuilder::strictMode(&builder.settings_);
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string errors;
    try {
        if (reader->parse(text.data(), text.data() + text.size(), &root, &errors))
            return root;
    } catch (const Json::Exception& error) {
        errors = error.what();
    }
    // "* Line 1, Column 2" and what is wrong there on the next line.
    throw InputError("is no JSON: " + OneLine(errors.substr(std::min(errors.find_first_not_of("* "), errors.size()))));
}

} // namespace

Json::Value ParseObject(std::string_view json)
{
    Json::Value root = ParseJson(json);
    if (!root.isObject())
        throw InputError("must be one JSON object");
    return root;
}

void ReadMessage(const Json::Value& object, VKMessageFile& file)
{
    if (!object.isMember(kReportKey))
        return ReadObject(object, kMessageFields, file, "");
    Json::Value message = object;
    message.removeMember(kReportKey);
    ReadObject(message, kMessageFields, file, "");
}

void ParseMessage(std::string_view json, VKMessageFile& file) { ReadMessage(ParseObject(json), file); }

std::unique_ptr<HostMessageFile> ReadMessageFile(const std::string& path)
{
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    std::string text;
    char block[65536];
    while (in && text.size() <= kLargestFile) {
        in.read(block, sizeof block);
        text.append(block, static_cast<std::size_t>(in.gcount()));
    }
    if (in.bad() || !in.eof()) {
        const char* why = text.size() > kLargestFile ? "is larger than 64 MiB" : std::strerror(errno != 0 ? errno : EIO);
        throw InputError(path + ": " + why);
    }
    auto file = std::make_unique<HostMessageFile>();
    try {
        ParseMessage(text, *file);
    } catch (const InputError& error) {
        throw InputError(path + ": " + error.what());
    }
    return file;
}

} // namespace vk
