#pragma once

#include <string>

namespace vk {

/// How a queue is worked on. docs/host.md tells operators what the numbers mean.
struct QueueSettings
{
    int queue = 0;
    /// Who the messages belong to while they are held; two services that run at once have two names.
    std::string service;
    /// The pattern of the protocols whose messages are taken, "mxp*".
    std::string protocol;
    bool follow = false;

    long long pollMilliseconds = 200;
    long long settleMilliseconds = 2000;
    long long waitSeconds = 30;
    long long querySeconds = 60;
    long long answerSeconds = 86400;
    long long expireSeconds = 86400;
    long long tries = 3;
    long long retrySeconds = 10;
};

} // namespace vk
