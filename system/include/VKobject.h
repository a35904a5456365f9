#pragma once

/// Root of the concurrency classes. It carries no state, so copying an object copies nothing of it.
class VKobject
{
public:
    VKobject() = default;
    VKobject(const VKobject&) {}
    VKobject& operator=(const VKobject&) { return *this; }
    virtual ~VKobject() = default;
};
