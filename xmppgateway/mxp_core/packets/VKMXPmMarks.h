#pragma once

/// \file
/// The words with which a packet's field table says more than a name and a member: where a field stands and where it
/// departs from the form of its type. Without a mark a field is a child element of that name, must be there when read,
/// and is written and read in the form of its type. Where writer and reader of the protocol differ, one of the marks
/// that speak of only one of them stands on the field: the difference is meant.

namespace vk::mxp {

// Whether a field is there.

/// May be missing when read; the field then keeps what it had. It is written all the same.
struct Optional
{
};

/// A request is refused when this text is empty; an optional one only when it is there.
struct NotEmpty
{
};

/// Not written when empty, and may be missing when read.
struct OmitEmpty
{
};

/// A group or record of values that may be left alone: not written when none of them is there, and may be missing when
/// read.
struct OmitUnset
{
};

/// Written only while this flag of the same record is not set; may be missing when read.
template <class Record> struct Unless
{
    bool Record::*flag;
};
template <class Record> Unless(bool Record::*) -> Unless<Record>;

/// Read, but never written.
struct NeverWritten
{
};

// Where a field stands.

/// In the table of a record or group: an attribute of its element. An element of nothing but attributes closes itself.
struct Attribute
{
};

/// In the table of a record or group: the contents of its element.
struct Contents
{
};

/// The contents of `result`, which the packet's frame has put on a line of its own: that line's feeds are not read.
struct OnOwnLine
{
};

/// The value stands in an attribute of the field's element, which closes itself.
struct InAttribute
{
    const char* name;
};

/// The same for the writer alone; the reader takes the element's contents.
struct WrittenInAttribute
{
    const char* name;
};

/// The same for the reader alone; the writer gives the element contents.
struct ReadInAttribute
{
    const char* name;
};

/// A list: an element with an attribute `count`, and in it one child for each item. The reader takes every child,
/// whatever its name, and looks at no count. An item that is a record has a table of its own, Record::Fields().
struct ItemsNamed
{
    const char* name;
};

/// A list in a group that writes more than the count, or none: one child of the group, by the row's name, for each
/// item. The reader takes every child of the group.
struct Items
{
};

/// An attribute with the number of items of a list. Never read.
struct CountOf
{
};

// How a value looks.

/// A flag that is written "true" or "false" instead of 1 or 0.
struct InWords
{
};

/// A flag that is read as a number and set by 1 alone.
struct SetByOne
{
};

/// A flag that is set by exactly these words and cleared by any other text.
struct SetByWord
{
    const char* word;
    const char* other = nullptr;
};

/// XML text with tags of its own: kept as received, written as it is, followed by a line feed even when empty.
struct Verbatim
{
};

// How an element looks.

/// No line feed behind the element.
struct NoLineFeed
{
};

/// An element without children closes itself and has a line feed, whatever is said about one that has some.
struct ClosedWhenEmpty
{
};

/// A blank before the end of an element that closes itself.
struct BlankBeforeEnd
{
};

/// The attributes of this row stand in double quotes.
struct DoubleQuoted
{
};

} // namespace vk::mxp
