#pragma once

#include "VKField.h"

/// \file
/// How the tables of "xmppgateway_config.xml" and "mxp_config.xml" say where a value stands. A row's name is that of
/// its element; without marks it is the element's text, below the root, and must be there. Booleans are "true" or
/// anything else; those in attributes are read as XmlReaderWriter reads one.

namespace vk::settings {

/// The element that the value's element stands in.
struct In
{
    const char* group;
};

/// The value is an attribute of the element; with an empty element name, of the root.
struct InAttribute
{
    const char* attribute;
};

/// May be missing, which leaves the default.
struct Optional
{
};

/// The whole group may be missing, with all that is in it.
struct OptionalGroup
{
};

/// Came later than the files that are in use: may be missing, with its group, and is not written into a file that lacks
/// it while it holds its default.
struct Extension
{
};

/// A list: the element has an attribute "count", which decides how many of its children of this name are read.
struct Items
{
    const char* name;
};

/// The number stands in the attribute "value"; the text is a word for the reader.
struct AuthMechanism
{
};

} // namespace vk::settings
