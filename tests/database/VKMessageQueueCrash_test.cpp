#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <random>
#include <sys/wait.h>
#include <thread>

#include "BackendDatabase.h"
#include "ChildProcess.h"
#include "DatabaseCells.h"
#include "MessageQueueStore.h"

/// Processes that share a queue, and processes that die in the middle of a change.

namespace {

class VKMessageQueueProcesses : public QueuesOn<BackendDatabase>
{
protected:
    /// Another process works on a connection of its own.
    void ConnectAnew()
    {
        if (!OnFiles())
            system.SetCustomDatabaseInstance(system.CreateNewDatabaseInstance());
    }

    /// What bodies there are, by name; on a server they are in the rows.
    std::set<std::string> Bodies(VKDBiMessageQueue& queue, const std::vector<std::string>& names)
    {
        if (OnFiles())
            return Files(queue);
        std::set<std::string> bodies;
        for (const std::string& name : names)
            if (Body(queue, name) != "(none)")
                bodies.insert(name);
        return bodies;
    }
};

constexpr int kMessages = 4;

std::string JobOf(const std::string& name) { return name.substr(2); }

/// Changes messages until it is killed. Messages only change their letter, so that none may ever be missing.
[[noreturn]] void ChangeForEver(VKDBiMessageQueue& queue, int from, unsigned seed)
{
    std::mt19937 random(seed);
    VK_MESSAGE_HEADER_LIST list;
    for (int n = 0;; ++n) {
        queue.Get(&list, false);
        for (int i = 0; i < list.count; ++i) {
            const std::string name = list.list[i].msg_name;
            const bool kept = name.find(".keep") != std::string::npos;
            const std::string letter = std::string(1, "MRQ"[random() % 3]) + ".";
            Message message;
            switch (random() % 4) {
            case 0: queue.Morph(name, letter, false, 0); break;
            case 1:
                if (queue.GetByName(name, &message, true, true)) {
                    vk::SetText(message.header.msg_name, letter + JobOf(name), "msg_name");
                    queue.Modify(&message, name);
                }
                break;
            case 2: queue.GetByName(name, &message, true, true) && queue.Add(&message); break;
            default:
                if (!kept)
                    queue.Delete(name);
            }
        }
        Message added("M.0.new" + std::to_string(from) + "x" + std::to_string(n), "new");
        queue.Add(&added);
        VK_MESSAGE_HEADER_LIST ready;
        queue.GetReadyMsg(&ready, false);
        EmptyMessageHeaderList(&ready);
    }
}

} // namespace

TEST_P(VKMessageQueueProcesses, KilledAtAnyPointLosesNothingAndLeavesNoHalf)
{
    const char* const wished = std::getenv("VK_QUEUE_KILLS");
    const int kills = wished != nullptr ? std::atoi(wished) : 40;
    for (int i = 0; i < kMessages; ++i)
        Add(*Open(1), "M.0.keep" + std::to_string(i), "body " + std::to_string(i));
    std::mt19937 random(7);
    for (int kill = 0; kill < kills; ++kill) {
        Signal started;
        const pid_t child = fork();
        if (child == 0) {
            try {
                ConnectAnew();
                const auto queue = Open(1, "dying");
                started.Send();
                ChangeForEver(*queue, kill, static_cast<unsigned>(kill));
            } catch (...) {
                _exit(1);
            }
        }
        ASSERT_TRUE(started.Await());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000)); // anywhere in its work
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child failed by itself";
        ASSERT_TRUE(OnFiles() || AwaitConnections(*server, "1")) << "a server ends what a dead client began";

        const auto queue = Open(1, "living");
        const auto names = Names(*queue);
        const auto bodies = Bodies(*queue, names);
        ASSERT_EQ(std::set<std::string>(names.begin(), names.end()), bodies) << "kill " << kill;
        ASSERT_EQ(static_cast<long>(names.size()), queue->GetTotalRecordCount());
        ASSERT_EQ(Backups(*queue), 0u) << "kill " << kill;
        int kept = 0;
        for (const std::string& name : names) {
            const std::size_t at = name.find("keep");
            const std::string body = at == std::string::npos ? "new" : "body " + name.substr(at + 4);
            ASSERT_EQ(Body(*queue, name), body) << name << " after kill " << kill;
            kept += at != std::string::npos;
        }
        ASSERT_EQ(kept, kMessages) << "kill " << kill;
        queue->UnprocessMsgList("dying");
        for (const std::string& name : Names(*queue))
            if (name.find("keep") == std::string::npos)
                queue->Delete(name);
    }
}

TEST_P(VKMessageQueueProcesses, EachMessageIsTakenByExactlyOneOfThem)
{
    constexpr int kCount = 200;
    constexpr int kProcesses = 6;
    {
        const auto queue = Open(1);
        for (int i = 0; i < kCount; ++i)
            Add(*queue, "M.0.J" + std::to_string(i) + ".mxp");
    }
    std::vector<std::unique_ptr<ChildProcess>> processes;
    for (int p = 0; p < kProcesses; ++p)
        processes.push_back(std::make_unique<ChildProcess>([&, p] {
            ConnectAnew();
            const auto queue = Open(1, "svc" + std::to_string(p));
            queue->SetFilter(5, 1);
            std::string taken;
            for (auto names = Ready(*queue); !names.empty(); names = Ready(*queue))
                for (const std::string& name : names) {
                    taken += JobOf(name) + "\n";
                    if (!queue->Delete(name))
                        return 1;
                }
            dir.Write("taken" + std::to_string(p), taken);
            return 0;
        }));
    for (auto& process : processes)
        EXPECT_EQ(process->Wait(), 0);
    std::multiset<std::string> taken;
    for (int p = 0; p < kProcesses; ++p) {
        std::istringstream lines(dir.Read("taken" + std::to_string(p)));
        for (std::string line; std::getline(lines, line);)
            taken.insert(line);
    }
    EXPECT_EQ(taken.size(), static_cast<std::size_t>(kCount));
    EXPECT_EQ(std::set<std::string>(taken.begin(), taken.end()).size(), taken.size()) << "one was taken twice";
}

VK_ON_BOTH_BACKENDS(VKMessageQueueProcesses);
