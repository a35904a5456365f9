#pragma once

/// \file
/// The words with which a packet's field table says more than a name and a member: where a field stands and where it
/// departs from the form of its type. Without a mark a field is a child element of that name, must be there when read,
/// and is written and read in the form of its type.

namespace vk {

/// May be missing when read; the field then keeps what it had. It is written all the same.
struct Optional
{
};

/// A request is refused when this text is empty.
struct NotEmpty
{
};

/// A flag that is read as a number and set by 1 alone.
struct SetByOne
{
};

/// XML text with tags of its own: kept as received, written as it is, followed by a line feed even when empty.
struct Verbatim
{
};

/// A list: an element with an attribute `count`, and in it one child for each item. The reader takes every child,
/// whatever its name, and looks at no count. An item that is a record has a table of its own, Record::Fields().
struct ItemsNamed
{
    const char* name;
};

/// In an item's table: an attribute of the item's element.
struct Attribute
{
};

/// In an item's table: the contents of the item's element.
struct Contents
{
};

} // namespace vk
