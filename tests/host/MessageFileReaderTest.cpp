#include "MessageFileReader.h"

#include "Options.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace {

template <class Read> std::string ErrorOf(const Read& read)
{
    try {
        read();
    } catch (const vk::InputError& error) {
        return error.what();
    }
    return "";
}

/// A message file with one more member.
std::string With(const std::string& member) { return R"({"job_id": "j", "receiver_pin": "a@b", )" + member + "}"; }

TEST(MessageFileReader, ReadsEveryKeyIntoItsMember)
{
    vk::HostMessageFile file;
    vk::ParseMessage(R"({"job_id": "j-1", "sender": "S", "fallback_sender": "F", "subject": "Sub", "body": "Bö\ndy",
        "receiver_pin": "a@b", "receiver_id": 18446744073709551615, "carrier_name": "C", "server": "127.0.0.1",
        "domain": "D", "user_id": "U", "password": "P", "resource": "R", "port": 65535, "dispatch_at": -2147483648,
        "severity": 2147483647, "expiration": -1, "confidential": true, "queue_when_offline": true,
        "seconds_to_live": 60, "two_way": true, "attachments": ["/a", "b"], "push_enabled": true,
        "push_device_token": "T", "push_service_name": "apns", "custom_parameters": "<x/>",
        "response_choices": [{"text": "Yes", "type": "terminal"}, {"text": "Later", "type": "non-terminal"}]})",
                     file);
    EXPECT_EQ(std::tie(file.strJobID, file.strSender, file.strFallbackSender, file.strSubject, file.strBody,
                       file.strReceiverPin, file.strCarrierName, file.strServer, file.strDomain, file.strUserID,
                       file.strPassword, file.strResource, file.strPushDeviceToken, file.strPushServiceName,
                       file.strCustomParameters),
              std::make_tuple("j-1", "S", "F", "Sub", "B\xC3\xB6\ndy", "a@b", "C", "127.0.0.1", "D", "U", "P", "R", "T",
                              "apns", "<x/>"));
    EXPECT_EQ(std::tie(file.ulReceiverID, file.iPort, file.tDispatchAt, file.iSeverity, file.iExpiration,
                       file.iSecondsToLive, file.bTwoWay, file.bConfidential, file.bQueueWhenOffline, file.bPushEnabled),
              std::make_tuple(18446744073709551615u, 65535, INT32_MIN, INT32_MAX, -1, 60, 1, true, true, true));
    EXPECT_EQ(file.vecAttachments, (std::vector<std::string>{"/a", "b"}));
    ASSERT_EQ(file.vecResponseChoices.size(), 2u);
    EXPECT_EQ(file.vecResponseChoices[0].strText, "Yes");
    EXPECT_NE(file.vecResponseChoices[0].iType, VKMessageFile::kNonTerminalAction);
    EXPECT_EQ(file.vecResponseChoices[1].iType, VKMessageFile::kNonTerminalAction);
}

TEST(MessageFileReader, WhatIsNotGivenHasTheHostsDefaults)
{
    vk::HostMessageFile file;
    vk::ParseMessage(R"({"job_id": "j", "receiver_pin": "a@b"})", file);
    EXPECT_EQ(file.iPort, 5222);
    EXPECT_GT(file.tDispatchAt, 0);
    EXPECT_EQ(file.bTwoWay, 0);
}

TEST(MessageFileReader, AMistakeIsNamed)
{
    const struct
    {
        std::string json;
        const char* error;
    } cases[] = {
        {"", "is no JSON"},
        {"[]", "must be one JSON object"},
        {"{", "is no JSON"},
        {R"({"job_id": "j", "receiver_pin": "a"} x)", "is no JSON: Line 1, Column"},
        {R"({"job_id": "j", "job_id": "k"})", "Duplicate key: 'job_id'"},
        {std::string(5000, '['), "is no JSON"},
        {"{\"job_id\": \"\xC3\x28\"}", "is not UTF-8 at byte 12"},
        {"{\"job_id\": \"\xED\xA0\x80\"}", "is not UTF-8 at byte 12"},
        {R"({"job_id": "j"})", "receiver_pin is missing"},
        {R"({"receiver_pin": "a"})", "job_id is missing"},
        {R"({"job_id": "", "receiver_pin": "a"})", "job_id is empty"},
        {With(R"("Body": "x")"), "Body is no key of a message"},
        {With(R"("body": 1)"), "body must be a text"},
        {With(R"("body": null)"), "body must be a text"},
        {With(R"("body": "\u0000")"), "body contains a zero byte"},
        {With(R"("body": "\udc00")"), "body contains characters that are not Unicode"},
        {With(R"("confidential": "true")"), "confidential must be true or false"},
        {With(R"("two_way": 2)"), "two_way must be true or false"},
        {With(R"("port": 0)"), "port must be a whole number from 1 to 65535"},
        {With(R"("port": 65536)"), "port must be a whole number from 1 to 65535"},
        {With(R"("port": "5222")"), "port must be a whole number"},
        {With(R"("severity": 2147483648)"), "severity must be a whole number from -2147483648 to 2147483647"},
        {With(R"("severity": 1.0)"), "severity must be a whole number"},
        {With(R"("severity": 1e400)"), "'1e400' is not a number"},
        {With(R"("receiver_id": -1)"), "receiver_id must be a whole number from 0 to 18446744073709551615"},
        {With(R"("receiver_id": 18446744073709551616)"), "receiver_id must be a whole number"},
        {With(R"("attachments": "x")"), "attachments must be an array"},
        {With(R"("attachments": ["x", 2])"), "attachments[1] must be a text"},
        {With(R"("response_choices": ["x"])"), "response_choices[0] must be an object"},
        {With(R"("response_choices": [{"text": "x"}])"), "response_choices[0].type is missing"},
        {With(R"("response_choices": [{"text": "x", "type": "final"}])"), "response_choices[0].type must be"},
        {With(R"("response_choices": [{"text": "x", "type": "terminal", "id": 1}])"),
         "response_choices[0].id is no key"},
    };
    for (const auto& row : cases) {
        vk::HostMessageFile file;
        const std::string error = ErrorOf([&] { vk::ParseMessage(row.json, file); });
        EXPECT_NE(error.find(row.error), std::string::npos) << row.json.substr(0, 80) << "\n  gave: " << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST(MessageFileReader, FilesThatCannotBeReadAreNamed)
{
    const TempDir dir;
    const auto errorOf = [](const std::string& path) { return ErrorOf([&] { vk::ReadMessageFile(path); }); };
    EXPECT_EQ(errorOf(dir / "none"), (dir / "none") + ": No such file or directory");
    EXPECT_NE(errorOf(dir.Path().string()), "");
    EXPECT_NE(errorOf("/dev/zero").find("is larger than 64 MiB"), std::string::npos);
    EXPECT_EQ(errorOf(dir.Write("m", With(R"("bodi": "")"))), (dir / "m") + ": bodi is no key of a message");
}

} // namespace
