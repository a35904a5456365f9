#pragma once

#include "QueueMessage.h"
#include "QueueStore.h"

#include <memory>

namespace vk {

/// Numbers of queues with a meaning of their own.
enum QueueNumber : int { kArchiveQueue = 4, kErrorQueue = 5, kWaitingQueue = 10 };

/// The queues of one service, and how messages go from one to another.
///
/// Two queues cannot change together. Which order makes every crash point safe: the message's own row becomes Q with
/// its whole report and the target's number in the body; then the target gets its copy; then the row goes. Whoever
/// takes the row over later, by the rules for status Q, finishes what is left to do. One in status R that ends needs no
/// such note: after a crash it is sent again in any case, and ends under the same name. Throws VKDBexception where a
/// step does not come out; calling again goes on with it. One thread.
class QueueRouter
{
public:
    /// The queue that the service works on and the three that its messages go to. Throws std::runtime_error that names
    /// the one that cannot be opened.
    QueueRouter(VKDBsystem& system, int queue, const std::string& service);

    QueueStore& Own() { return m_own; }
    QueueStore& Waiting() { return m_waiting; }

    /// Whether one of them is cut off from its server; connects those anew. As QueueStore.
    bool IsCutOff() const;
    void Reconnect();

    /// Whether messages of this service go to that queue.
    bool Knows(int number) const;

    /// Moves a message from one of the queues to another.
    /// \return False when its row was not there any more and it did not move: it was deleted, or another service has it.
    bool Move(QueueMessage& message, QueueStore& from, int target);

    /// Stores a changed message that was found by its old name. A change whose end was not heard of, because the
    /// connection was cut then, may be called again. False when there is no such message.
    static bool Change(QueueStore& store, VK_MESSAGE_HEADER& row, const std::string& body, const std::string& oldName);

    /// Finishes a move that a service began which ended before it was done.
    void FinishMove(QueueMessage& message, QueueStore& from);

private:
    QueueStore& Store(int number);
    bool NoteTarget(QueueMessage& message, QueueStore& from);
    void Arrive(QueueMessage& message, QueueStore& from);
    std::string FreeName(QueueMessage& message, QueueStore& target);
    bool HasArrived(QueueMessage& message, QueueStore& from);

    QueueStore m_own;
    QueueStore m_archive;
    QueueStore m_error;
    QueueStore m_waiting;
};

} // namespace vk
