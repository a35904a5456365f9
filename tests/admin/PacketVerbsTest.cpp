#include "RunningProgram.h"
#include "TempDir.h"

#include <json/json.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::filesystem::path kGolden = VK_SOURCE_DIR "/tests/packets/golden";

ProgramRun Packet(std::vector<std::string> words)
{
    words.insert(words.begin(), "packet");
    return ProgramRun::Of("vkadmin", words);
}

Json::Value Parsed(const std::string& file)
{
    const ProgramRun run = Packet({"parse", file, "--json"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    Json::Value packet;
    std::istringstream(run.out) >> packet;
    return packet;
}

/// The keys of a packet's JSON as the operands that make it.
void Operands(const Json::Value& value, const std::string& key, std::vector<std::string>& words)
{
    const std::string below = key.empty() || key.back() == '.' ? key : key + ".";
    if (value.isObject())
        for (const std::string& name : value.getMemberNames())
            Operands(value[name], below + name, words);
    else if (value.isArray())
        for (Json::ArrayIndex i = 0; i < value.size(); ++i)
            Operands(value[i], below + std::to_string(i + 1), words);
    else
        words.push_back(key + "=" + value.asString());
}

std::vector<std::string> NamesOfKinds()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kGolden)) {
        const std::string name = entry.path().filename();
        if (name.find(".request.xml") != std::string::npos)
            names.push_back(name.substr(0, name.find('.')));
    }
    return names;
}

class PacketVerbs : public testing::TestWithParam<std::string>
{
protected:
    const TempDir dir;
};

TEST_P(PacketVerbs, MakeWhatParseShows)
{
    for (const char* which : {".request.xml", ".response.xml"}) {
        const Json::Value shown = Parsed(kGolden / (GetParam() + which));
        std::vector<std::string> words = {"make", GetParam(), "--seq", shown["seq"].asString()};
        Operands(shown["parameters"], "", words);
        if (const Json::Value& response = shown["response"]; !response.isNull()) {
            words.insert(words.end(),
                         {"--response", response["code"].asString(), "--message", response["message"].asString(),
                          "--result-type", response["result_type"].asString()});
            if (response["result"].isObject())
                Operands(response["result"], "result.", words);
        }
        const ProgramRun made = Packet(words);
        ASSERT_EQ(made.exitCode, 0) << made.err;
        Json::Value again = Parsed(dir.Write("made.xml", made.out));
        if (GetParam() == "set-permissions") // what the server writes is not what it reads
            again["parameters"]["settings"] = shown["parameters"]["settings"];
        if (shown["response"]["result_type"].asString() == "none")
            again["response"]["result"] = shown["response"]["result"];
        EXPECT_EQ(again, shown);
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, PacketVerbs, testing::ValuesIn(NamesOfKinds()), [](const auto& test) {
    std::string name = test.param;
    for (char& c : name)
        c = c == '-' ? '_' : c;
    return name;
});

TEST(PacketParse, TellsWhereAnEnvelopeIsRefusedAndShowsWhatCameBefore)
{
    const TempDir dir;
    const std::string head = "<mxp xmlns='vardock:mxp' version='1.0' dispatch='0' expire='0'>\n";
    const std::string good = "<deactivate xmlns='vardock:mxp:request' type='request' seq='1'>\n<parameters>\n"
                             "<activation-key>k</activation-key>\n</parameters>\n</deactivate>\n";
    struct Row
    {
        std::string text;
        const char* out;
        const char* err;
    };
    const Row table[] = {
        {"", "", "line 1: 1001 Empty input XML string."},
        {head + "<a>\n</b>", "", "line 3: 1003 XML Parsing failed. (mismatched tag)"},
        {"<mxq/>", "", "line 1: 1004 Unable to find root tag <mxp>."},
        {head + good + "\n<what/>\n</mxp>", "deactivate request", "line 8: 1008 NULL modal object. (packet 2, 'what')"},
        {head + good + good.substr(0, good.find("<activation")) + "</parameters></deactivate></mxp>",
         "deactivate request",
         "line 7: 1007 XML parsing error. Unable to find child node 'activation-key'. (packet 2, 'deactivate')"},
        {"<mxp version='1.0' xmlns='vardock:mxp'/>", "", "taken for a chat message"},
    };
    for (const Row& row : table) {
        const ProgramRun run = Packet({"parse", dir.Write("envelope.xml", row.text)});
        EXPECT_EQ(run.exitCode, 1) << row.text;
        EXPECT_THAT(run.out, StartsWith(row.out));
        EXPECT_THAT(run.err, HasSubstr(row.err));
    }
    const ProgramRun run = Packet({"parse", "--json", dir.Write("bad.xml", head + "<what/></mxp>")});
    EXPECT_EQ(run.out, "{\"detail\":\"packet 1, 'what'\",\"error\":1008,\"line\":2,\"text\":\"NULL modal object.\"}\n");
}

TEST(PacketMake, NamesWhatIsWrongWithTheCall)
{
    struct Row
    {
        std::vector<std::string> words;
        const char* error;
    };
    const Row table[] = {
        {{"parse"}, "FILE is missing"},
        {{"parse", "/no/such/file"}, "/no/such/file: No such file or directory"},
        {{"make"}, "NAME is missing"},
        {{"make", "wipe-all"}, "'wipe-all' is no packet"},
        {{"make", "confirm-msg", "job-id"}, "'job-id' is no KEY=VALUE"},
        {{"make", "confirm-msg", "job-id=1"}, "response is missing"},
        {{"make", "confirm-msg", "job=1"}, "it has job-id, response, remarks"},
        {{"make", "confirm-msg", "job-id.1=1"}, "has no 'job-id.1'"},
        {{"make", "confirm-msg", "result.x=1"}, "has no 'result.x'"},
        {{"make", "message", "severity=high"}, "severity: 'high' is no whole number"},
        {{"make", "message", "severity=4294967296"}, "severity: '4294967296' is no whole number"},
        {{"make", "message", "is-2way=1"}, "is-2way: '1' is neither true nor false"},
        {{"make", "message", "attachments.file.2.id=1"}, "attachments.file.2.id: there is no item 1 before it"},
        {{"make", "message", "attachments.file=1"}, "has no 'attachments.file'"},
        {{"make", "send-msg", "location.latitude=north"}, "location.latitude: 'north' is no number"},
        {{"make", "wipe", "--message", "m"}, "--message is for a response only"},
    };
    for (const Row& row : table) {
        const ProgramRun run = Packet(row.words);
        EXPECT_EQ(run.exitCode, 2) << row.error;
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.err, HasSubstr(row.error));
    }
    const ProgramRun run = Packet({"make", "deactivate", "activation-key=\x01"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.err, HasSubstr("1003 XML Parsing failed."));
}

TEST(PacketMake, WritesWhatTheSenderHasToWrite)
{
    const auto made = [](std::vector<std::string> words) {
        words.insert(words.begin(), "make");
        return Packet(words).out;
    };
    EXPECT_THAT(made({"set-permissions", "send-msg=true", "settings=4"}),
                HasSubstr("<parameters>\n<send-msg enable='true'/>\n<settings value='4'/>\n</parameters>"));
    EXPECT_THAT(made({"set-permissions"}), HasSubstr("<recv-msg enable='false'/>"));
    EXPECT_THAT(made({"getlist-receivers", "get-firstname=true"}), HasSubstr("<get-firstname enable='true'/>"));
    EXPECT_THAT(made({"send-msg", "is-2way=true", "recipients.name=a", "recipients.name=b"}),
                HasSubstr("<name>b</name>\n</recipients>\n<subject></subject>\n<message></message>\n"
                          "<is-2way>true</is-2way>"));
    EXPECT_THAT(made({"--response", "1", "get-msg-status", "jobid=1", "result.statuses.job.1.to=x"}),
                HasSubstr("<result type='xml'>\n<statuses count='1'>\n<job id='' to='x'"));
}

} // namespace
