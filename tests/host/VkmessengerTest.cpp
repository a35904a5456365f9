#include "ProgramOutput.h"

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

    static std::string Told(const std::string& out)
    {
        std::string told;
        for (const Json::Value& line : JsonLines(out))
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
    const Json::Value first = JsonLines(run.out).front();
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
    for (const auto& row : cases)
        ExpectOneLine(Send(row.more, row.root), 2, row.error);
}

TEST_F(Vkmessenger, ADriverThatCannotBeUsedIsNamed)
{
    MakeRoot("unconfigurable");
    const std::string good = Message("j", "");
    ExpectOneLine(Send({"--message", good}, "root", dir / "libnone.so"), 3, "libnone.so");
    ExpectOneLine(Send({"--message", good}, "root", "libjsoncpp.so.25"), 3, "does not export GetDriverInstance");
    ExpectOneLine(Send({"--message", good}, "unconfigurable"), 3, "Error in getting the configuration object.");
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
