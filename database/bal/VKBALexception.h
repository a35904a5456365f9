#pragma once

#include "VKDBexception.h"

/// A record breaks rules of the business layer: the message is the list of all of them, a line each.
class VKBALexception : public VKDBexception
{
public:
    using VKDBexception::VKDBexception;
};
