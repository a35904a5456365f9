#pragma once

#include "RecordForm.h"
#include "TextLine.h"
#include "VKS2SProfile.h"

#include <algorithm>
#include <arpa/inet.h>
#include <limits>
#include <string>
#include <vector>

/// \file
/// The gateway's settings as an administrator sees them: each value has a key, and everything here is a walk over the
/// tables that read and write the files.

namespace vk {

/// The key of a value: the elements and the attribute that lead to it, joined by points. Elements of one name stand in
/// several groups.
template <class Row>
std::string SettingKey(const Row& row)
{
    std::string key;
    if constexpr (Row::template has<settings::In>)
        key = std::string(row.template mark<settings::In>().group) + ".";
    key += row.name;
    if constexpr (Row::template has<settings::InAttribute>)
        key += (key.empty() ? "" : ".") + std::string(row.template mark<settings::InAttribute>().attribute);
    return key;
}

template <class Table>
std::vector<std::string> SettingKeys(const Table& table)
{
    std::vector<std::string> keys;
    ForEachField(table, [&](const auto& row) { keys.push_back(SettingKey(row)); });
    return keys;
}

/// The error for a key that there is not: those that end alike, otherwise all.
inline UsageError UnknownSetting(const std::string& key, const std::vector<std::string>& known)
{
    std::string alike, all;
    const std::string end = "." + key.substr(key.rfind('.') + 1);
    for (const std::string& one : known) {
        all += (all.empty() ? "" : ", ") + one;
        const std::string dotted = "." + one;
        if (dotted.size() >= end.size() && dotted.compare(dotted.size() - end.size(), end.size(), end) == 0)
            alike += (alike.empty() ? "" : ", ") + one;
    }
    return UsageError("there is no key '" + key + "'; " +
                      (alike.empty() ? "the keys are: " + all : "did you mean " + alike + "?"));
}

/// What a number may be, where its type says too little.
struct SettingLimits
{
    const char* element;
    long long least;
    long long most;
};

inline constexpr long long kMostOfSettings = std::numeric_limits<std::int32_t>::max();
inline constexpr SettingLimits kSettingLimits[] = {
    {"server_port", 1, 65535},
    {"production_port", 1, 65535},
    {"development_port", 1, 65535},
    {"priority", 1, 10},
    {"socket_timeout", 1, kMostOfSettings},
    {"file_trans_timeout", 1, kMostOfSettings},
    {"file_trans_thread_pool_size", 1, kMostOfSettings},
    {"resp_act_exec_thread_pool_size", 1, kMostOfSettings},
};

template <class Number>
void SetNumber(const char* element, Number& value, const std::string& text, const std::string& key)
{
    long long least = 0;
    long long most = std::min<long long>(std::numeric_limits<Number>::max(), std::numeric_limits<long>::max());
    for (const SettingLimits& limits : kSettingLimits)
        if (std::strcmp(limits.element, element) == 0) {
            least = limits.least;
            most = limits.most;
        }
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
        throw UsageError(key + ": '" + text + "' is no whole number from " + std::to_string(least) + " to " +
                         std::to_string(most));
    value = static_cast<Number>(number);
}

/// Addresses with commas between them; an empty text for none.
inline void SetItems(std::vector<std::string>& items, const std::string& text, const std::string& key)
{
    std::vector<std::string> read;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find(',', at), text.size());
        const std::string item = text.substr(at, end - at);
        unsigned char address[sizeof(in6_addr)];
        if (inet_pton(AF_INET, item.c_str(), address) != 1 && inet_pton(AF_INET6, item.c_str(), address) != 1)
            throw UsageError(key + ": '" + item + "' is no IP address; several have commas between them");
        read.push_back(item);
        at = end + 1;
    }
    items = std::move(read);
}

template <class Row, class Record>
void SetSetting(const Row& row, Record& record, const std::string& text, const std::string& key);

/// A JSON list of objects, whose keys are those of one profile.
inline void SetItems(std::vector<VKS2SProfile>& items, const std::string& text, const std::string& key)
{
    const std::vector<std::string> known = SettingKeys(settings::kS2SProfileFields);
    Json::Value list;
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    if (!reader->parse(text.data(), text.data() + text.size(), &list, nullptr) || !list.isArray())
        throw UsageError(key + R"(: is no JSON list of objects, such as [{"name":"north","server_port":5269}])");
    std::vector<VKS2SProfile> read;
    for (const Json::Value& object : list) {
        if (!object.isObject())
            throw UsageError(key + ": " + JsonLine(object) + " is no JSON object");
        for (const std::string& member : object.getMemberNames()) {
            if (std::find(known.begin(), known.end(), member) == known.end())
                throw UnknownSetting(member, known);
            if (object[member].isObject() || object[member].isArray())
                throw UsageError(key + ": '" + member + "' is no text, number, true or false");
        }
        VKS2SProfile& profile = read.emplace_back();
        ForEachField(settings::kS2SProfileFields, [&](const auto& row) {
            const std::string member = SettingKey(row);
            if (object.isMember(member))
                SetSetting(row, profile, object[member].asString(), key + ": " + member);
        });
    }
    items = std::move(read);
}

/// Puts a text into the value of a row. Throws UsageError that names the key and what it would take.
template <class Row, class Record>
void SetSetting(const Row& row, Record& record, const std::string& text, const std::string& key)
{
    using Value = typename Row::Value;
    if constexpr (Row::template has<settings::Items>)
        SetItems(row.of(record), text, key);
    else if constexpr (std::is_integral_v<Value> && !std::is_same_v<Value, bool>)
        SetNumber(row.name, row.of(record), text, key);
    else
        SetFromText(row.of(record), text, key);
}

template <class Row, class Record>
Json::Value ShownSetting(const Row& row, const Record& record);

inline Json::Value ShownItem(const std::string& item) { return item; }
inline Json::Value ShownItem(const VKS2SProfile& profile)
{
    Json::Value object(Json::objectValue);
    ForEachField(settings::kS2SProfileFields,
                 [&](const auto& row) { object[SettingKey(row)] = ShownSetting(row, profile); });
    return object;
}

/// A value as it is shown; of a secret only whether there is one.
template <class Row, class Record>
Json::Value ShownSetting(const Row& row, const Record& record)
{
    if constexpr (Row::template has<Secret>) {
        return row.of(record).empty() ? "" : "***";
    } else if constexpr (Row::template has<settings::Items>) {
        Json::Value list(Json::arrayValue);
        for (const auto& item : row.of(record))
            list.append(ShownItem(item));
        return list;
    } else {
        return ValueToJson(row.of(record), {});
    }
}

} // namespace vk
