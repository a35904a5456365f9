#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "MessageQueueStore.h"

/// The messages of a queue: bodies by name.
using QueueState = std::map<std::string, std::string>;

/// An operation on a queue with the messages A and B, what it does to rows, and what the queue holds behind it.
struct QueueOperation
{
    enum Kind { Change, Poll, List, Show };

    const char* name;
    Kind kind;
    const char* event; ///< the row event that it comes to; null for one that changes nothing
    std::function<void(VKDBiMessageQueue&)> run;
    QueueState after;
};

/// A queue on which each operation meets each fault.
template <class Database> class FaultyQueue : public QueuesOn<Database>
{
protected:
    using Base = QueuesOn<Database>;

    void Fill()
    {
        queue->EmptyQueue();
        for (const auto& [name, body] : kBefore)
            Base::Add(*queue, name, body);
    }

    static std::vector<QueueOperation> Operations()
    {
        using Op = QueueOperation;
        const auto replace = [](auto& q) { Base::Add(q, kA, "A2"); };
        const auto modify = [](auto& q) { Base::Modify(q, kB, "Q.1.B.mxp", "B2"); };
        const auto morph = [](auto& q) { q.Morph(kA, "R.", false, 0); };
        return {
            {"add", Op::Change, "INSERT", [](auto& q) { Base::Add(q, kC, "c"); }, {{kA, "a"}, {kB, "b"}, {kC, "c"}}},
            {"replace", Op::Change, "INSERT", replace, {{kA, "A2"}, {kB, "b"}}},
            {"modify", Op::Change, "UPDATE", modify, {{kA, "a"}, {"Q.1.B.mxp", "B2"}}},
            {"morph", Op::Change, "UPDATE", morph, {{"R.0.A.mxp", "a"}, {kB, "b"}}},
            {"delete", Op::Change, "DELETE", [](auto& q) { q.Delete(kB); }, {{kA, "a"}}},
            {"poll", Op::Poll, "UPDATE", [](auto& q) { EXPECT_EQ(Base::Ready(q).size(), 2u); }, kBefore},
            {"list", Op::List, nullptr, [](auto& q) { EXPECT_EQ(Base::Names(q).size(), 2u); }, kBefore},
            {"show", Op::Show, nullptr, [](auto& q) { EXPECT_EQ(Base::Body(q, kA), "a"); }, kBefore},
        };
    }

    static inline const std::string kA = "M.0.A.mxp";
    static inline const std::string kB = "M.0.B.mxp";
    static inline const std::string kC = "M.0.C.mxp";
    static inline const QueueState kBefore = {{kA, "a"}, {kB, "b"}};

    std::unique_ptr<VKDBiMessageQueue> queue = this->Open(1);
};
