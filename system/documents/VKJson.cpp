#include "VKJson.h"

#include <memory>

namespace vk {

bool ParseJsonObject(std::string_view text, Json::Value& object)
{
    object = Json::Value(Json::objectValue);
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = 64;
    builder["allowTrailingCommas"] = false;
    builder["failIfExtra"] = true;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value parsed;
    std::string errors;
    try {
        if (!reader->parse(text.data(), text.data() + text.size(), &parsed, &errors) || !parsed.isObject())
            return false;
    } catch (const Json::Exception&) { // too deep
        return false;
    }
    object = parsed;
    return true;
}

std::string CompactJson(const Json::Value& value)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

const Json::Value& JsonMember(const Json::Value& object, const char* name)
{
    return object.isObject() && object.isMember(name) ? object[name] : Json::Value::nullSingleton();
}

std::string JsonText(const Json::Value& object, const char* name)
{
    const Json::Value& member = JsonMember(object, name);
    return member.isString() ? member.asString() : std::string();
}

} // namespace vk
