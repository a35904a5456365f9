#include "ProgramRun.h"
#include "TempDir.h"

#include <json/json.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace {

using testing::HasSubstr;

class Vkmessenger : public testing::Test
{
protected:
    Vkmessenger() { MakeRoot("root"); }

    void MakeRoot(const std::string& name)
    {
        for (const char* folder : {"config", "temp", "logs"})
            std::filesystem::create_directories(dir.Path() / name / folder);
    }

    ProgramRun Send(std::vector<std::string> more, const std::string& root = "root",
                    const std::string& driver = VK_BUILD_DIR "/libvk_fake_driver.so")
    {
        std::vector<std::string> arguments = {"send", "--root", dir / root, "--driver", driver};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return ProgramRun::Of("vkmessenger", arguments);
    }

    /// The receiver does what `subject` says; sending comes out as `body` says.
    std::string Message(const std::string& job, const std::string& subject, const std::string& body = "")
    {
        return dir.Write(job + ".json", R"({"job_id": ")" + job + R"(", "receiver_pin": "a@b", "subject": ")" + subject +
                                            R"(", "body": ")" + body + R"(", "response_choices": [
                                            {"text": "Coming", "type": "non-terminal"},
                                            {"text": "Done", "type": "terminal"}]})");
    }

    static std::vector<Json::Value> Lines(const std::string& out)
    {
        std::vector<Json::Value> lines;
        std::istringstream in(out);
        for (std::string line; std::getline(in, line);)
            std::istringstream(line) >> lines.emplace_back();
        return lines;
    }

    static std::string Told(const std::string& out)
    {
        std::string told;
        for (const Json::Value& line : Lines(out))
            told += line["event"].asString() + " " + line["status"].asString() + " " + line["status_name"].asString() +
                    (line["keep_open"].asBool() ? " open" : " final") + " [" + line["text"].asString() + "|" +
                    line["delivery_status"].asString() + "|" + line["response"].asString() + "|" +
                    line["failure_reason"].asString() + "]\n";
        return told;
    }

    const TempDir dir;
};

TEST_F(Vkmessenger, TellsEveryReportInOrder)
{
    const auto run = Send({"--json", "--message", Message("j-1", "RECEIVED READ Coming Done")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(Told(run.out), "send 3 SENT open [|||]\n"
                             "report 6 DELIVERED open [: RECEIVED|DELIVERED-RECEIVED||]\n"
                             "report 6 DELIVERED open [: READ|DELIVERED-READ||]\n"
                             "report 5 REPLIED_WITH open [|DELIVERED-READ|Coming|]\n"
                             "report 5 REPLIED_WITH final [|DELIVERED-READ|Done|]\n");
    const Json::Value first = Lines(run.out).front();
    EXPECT_EQ(first["job_id"].asString(), "j-1");
    EXPECT_THAT(first["time"].asString(), testing::MatchesRegex("....-..-..T..:..:..\\....Z"));
}

TEST_F(Vkmessenger, ExitStatusSaysWhetherAMessageFailed)
{
    const struct
    {
        const char* subject;
        const char* body;
        int exitCode;
        const char* told;
    } cases[] = {
        {"CONFIRM", "", 0, "send 3 SENT open [|||]\nreport 15 CONFIRMED final [||CONFIRM|]\n"},
        {"Maybe", "", 0, "send 3 SENT open [|||]\nreport 6 DELIVERED final [||Maybe|]\n"},
        {"BREAK", "", 1, "send 3 SENT open [|||]\nreport 2 FAILED final [|||File transfer failed.]\n"},
        {"", "refuse", 1, "send 2 FAILED final [|||Receiver is offline.]\n"},
        {"", "wait", 0, "send 13 DEVICE_OFFLINE final [DEV OFFLINE|||]\n"},
    };
    for (const auto& row : cases) {
        const auto run = Send({"--json", "--message", Message("j", row.subject, row.body)});
        EXPECT_EQ(run.exitCode, row.exitCode) << row.told << run.err;
        EXPECT_EQ(Told(run.out), row.told);
    }
}

TEST_F(Vkmessenger, WaitsNoLongerThanTold)
{
    const auto run = Send({"--wait", "0", "--message", Message("j", "")});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("j  send    SENT"));
}

TEST_F(Vkmessenger, AWrongCallSaysWhatAndSendsNothing)
{
    MakeRoot("bare");
    std::filesystem::remove(dir.Path() / "bare" / "temp");
    const std::string good = Message("j", "CONFIRM");
    const std::string twin = dir.Write("twin.json", R"({"job_id": "j", "receiver_pin": "x"})");
    const struct
    {
        std::vector<std::string> more;
        std::string root;
        const char* error;
    } cases[] = {
        {{"--message", good, "--message", twin}, "root", "job_id 'j' is used by another file"},
        {{"--message", good, "--message", dir / "none"}, "root", "none: No such file or directory"},
        {{"--message", good, "--wait", "soon"}, "root", "--wait: 'soon' is no whole number from 0 to"},
        {{"--message", good, "--wait", "-1"}, "root", "--wait"},
        {{"--message", good, "--quick"}, "root", "unknown option --quick"},
        {{"--message", good, "--log-level", "loud"}, "root", "--log-level: 'loud' is none of"},
        {{"--message"}, "root", "--message needs a value"},
        {{}, "root", "--message is missing"},
        {{"--message", good}, "bare", "temp is no directory"},
        {{"--message", good}, "nowhere", "--root"},
    };
    for (const auto& row : cases) {
        const auto run = Send(row.more, row.root);
        EXPECT_EQ(run.exitCode, 2) << row.error;
        EXPECT_THAT(run.err, HasSubstr(row.error));
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << "one line: " << run.err;
        EXPECT_EQ(run.out, "");
    }
}

TEST_F(Vkmessenger, ADriverThatCannotBeUsedIsNamed)
{
    MakeRoot("unconfigurable");
    const std::string good = Message("j", "");
    const auto absent = Send({"--message", good}, "root", dir / "libnone.so");
    EXPECT_EQ(absent.exitCode, 3);
    EXPECT_THAT(absent.err, HasSubstr("libnone.so"));
    const auto noDriver = Send({"--message", good}, "root", "libjsoncpp.so.25");
    EXPECT_EQ(noDriver.exitCode, 3);
    EXPECT_THAT(noDriver.err, HasSubstr("does not export GetDriverInstance"));
    const auto broken = Send({"--message", good}, "unconfigurable");
    EXPECT_EQ(broken.exitCode, 3);
    EXPECT_THAT(broken.err, HasSubstr("Error in getting the configuration object."));
    EXPECT_THAT(dir.Read("unconfigurable/logs/vkmessenger.log"), HasSubstr("[ERROR] Error in getting"));
}

TEST_F(Vkmessenger, HelpAndVersionNeedNothingElse)
{
    const auto help = ProgramRun::Of("vkmessenger", {"send", "--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.out, HasSubstr("EXIT STATUS"));
    const auto version = ProgramRun::Of("vkmessenger", {"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_THAT(version.out, testing::StartsWith("vkmessenger 1."));
}

} // namespace
