#pragma once

#include "ProgramOutput.h"
#include "QueueInstallation.h"
#include "VKDBexception.h"

/// The messenger on a queue, with a driver whose receivers do what a message's subject says.
class QueueOfMessages : public testing::TestWithParam<Backend>
{
protected:
    static std::vector<std::string> Call(const std::string& root, std::vector<std::string> more)
    {
        std::vector<std::string> words = {"send", "--root", root, "--queue", "1", "--driver",
                                          VK_BUILD_DIR "/libvk_fake_driver.so", "--settle", "100", "--poll", "20"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    ProgramRun Send(std::vector<std::string> more = {}) const
    {
        return ProgramRun::Of("vkmessenger", Call(installation.Root(), std::move(more)));
    }

    static std::string Body(const std::string& job, const std::string& subject, const std::string& body, bool twoWay)
    {
        return R"({"job_id": ")" + job + R"(", "receiver_pin": "a@b", "subject": ")" + subject + R"(", "body": ")" + body +
               R"(", "two_way": )" + (twoWay ? "true" : "false") +
               R"(, "response_choices": [{"text": "Coming", "type": "non-terminal"}, {"text": "Done", "type": "terminal"}]})";
    }
    void Add(const std::string& job, const std::string& body, const VK_MESSAGE_HEADER& header = {}) const
    {
        installation.Add(1, job, body, header, "fake");
    }

    const QueueInstallation installation{GetParam()};
};
