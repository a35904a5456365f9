#pragma once

#include <string>

namespace vk {

/// What a message's name says: "M.2.JOB17.mxp" is status M, asked about twice, job "JOB17", protocol "mxp". The job may
/// hold points, the protocol may not. A name without a count ("M.JOB17.mxp") has not been asked about; what stands
/// alone behind the first point is the job.
struct MessageName
{
    char status = 'M';
    int queryCount = 0;
    std::string job;
    std::string protocol;

    std::string Text() const;

    /// Takes any text apart; the status of an empty one is a zero byte.
    static MessageName Parse(const std::string& name);
};

/// Whether a text can be the name of a file in a directory: 1 to 255 bytes without slash or control character.
bool IsFileName(const std::string& name);

/// Whether a name can be a message's: a file name, none of the queue's own files, none that directory locks have.
bool IsMessageName(const std::string& name);

/// Throws VKDBexception unless a name can be a message's.
void RequireMessageName(const std::string& name);

/// Whether a file in a queue's directory is the queue's own: the database and what stands beside it.
bool IsQueueOwnFile(const std::string& name);

/// Whether the name's first letter can be changed: at least three characters, the second a point.
bool HasStatusLetter(const std::string& name);

} // namespace vk
