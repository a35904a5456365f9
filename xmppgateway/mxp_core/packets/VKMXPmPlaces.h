#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "VKMXPmRead.h"

/// \file
/// Lists what a table's reader looks at, for those who describe or check it: tools, documents, tests.

namespace vk::mxp {

/// One thing below `parameters` or `result`.
struct FieldPlace
{
    /// Contents are those of an element that is told by itself.
    enum class What { Container, Item, Contents, Value };

    What what = What::Value;
    std::vector<std::string> path; ///< elements from the outside in
    std::string attribute;         ///< of the last element; empty for its contents
    std::string key;               ///< how tools name it, "attachments.file.N.id"; empty for what holds no value itself
    std::string form;              ///< what the value is, in words
    bool mayMiss = false;
    bool notEmpty = false;
    bool number = false;
};

using FieldPlaces = std::vector<FieldPlace>;

namespace detail {

/// How far a walk has come.
struct Road
{
    std::vector<std::string> path;
    std::string key;

    Road Down(const std::string& element, const char* index = "") const
    {
        Road next{path, KeyOf(element) + index};
        next.path.push_back(element);
        return next;
    }
    std::string KeyOf(const std::string& name) const { return key.empty() ? name : key + "." + name; }
};

/// What a value is, with the rule by which its reader takes a flag.
template <class Value, class Row> std::string FormOf(const Row& row)
{
    if constexpr (kIsOptional<Value>) {
        return FormOf<typename Value::value_type>(row);
    } else if constexpr (Row::template has<Verbatim>) {
        return "XML, kept as it is";
    } else if constexpr (Row::template has<SetByOne>) {
        return "`1` or `0`";
    } else if constexpr (Row::template has<SetByWord>) {
        const SetByWord& mark = row.template mark<SetByWord>();
        return std::string("set by `") + mark.word + (mark.other ? std::string("` or `") + mark.other : "") + "` alone";
    } else if constexpr (std::is_same_v<Value, bool>) {
        return "cleared by `false`, `0`, `no` or nothing";
    } else if constexpr (std::is_same_v<Value, double>) {
        return "real number";
    } else {
        return std::is_arithmetic_v<Value> ? "whole number" : "text";
    }
}

template <class Value, class Row>
FieldPlace ValueAt(const Row& row, const Road& road, const std::string& attribute, const std::string& key, bool mayMiss)
{
    FieldPlace place{FieldPlace::What::Value, road.path, attribute, key, FormOf<Value>(row), mayMiss, false, false};
    place.notEmpty = Row::template has<NotEmpty>;
    place.number = place.form == "whole number" || place.form == "real number";
    return place;
}

template <class Record, class Table> void AddPlaces(const Table& table, const Road& road, FieldPlaces& places);

inline void AddHolder(FieldPlace::What what, const Road& road, bool mayMiss, FieldPlaces& places)
{
    places.push_back({what, road.path, "", "", "", mayMiss, false, false});
}

template <class Item, class Row> void AddItem(const Row& row, const char* name, const Road& road, FieldPlaces& places)
{
    if constexpr (kIsRecord<Item>) {
        const Road item = road.Down(name, ".N");
        AddHolder(FieldPlace::What::Item, item, true, places);
        AddPlaces<Item>(TableOf<Item>::Fields(), item, places);
    } else {
        const Road item = road.Down(name);
        places.push_back(ValueAt<Item>(row, item, "", item.key, true));
        places.back().what = FieldPlace::What::Item;
    }
}

/// A row that is an element of its own.
template <class Record, class Row> void AddElement(const Row& row, const Road& road, FieldPlaces& places)
{
    constexpr bool mayMiss = MayMiss<Record, Row>();
    if constexpr (kIsGroup<Row>) {
        AddHolder(FieldPlace::What::Container, road, mayMiss, places);
        AddPlaces<Record>(row.rows, road, places);
    } else {
        using Value = typename Row::Value;
        if constexpr (Row::template has<ItemsNamed>) {
            AddHolder(FieldPlace::What::Container, road, mayMiss, places);
            AddItem<typename Value::value_type>(row, row.template mark<ItemsNamed>().name, road, places);
        } else if constexpr (kIsRecord<Value>) {
            AddHolder(FieldPlace::What::Container, road, mayMiss, places);
            AddPlaces<Value>(TableOf<Value>::Fields(), road, places);
        } else if constexpr (kValueInAttribute<Form::Read, Row>) {
            AddHolder(FieldPlace::What::Container, road, mayMiss, places);
            places.push_back(ValueAt<Value>(row, road, ValueAttribute<Form::Read>(row), road.key, false));
        } else {
            places.push_back(ValueAt<Value>(row, road, "", road.key, mayMiss));
        }
    }
}

template <class Record, class Table> void AddPlaces(const Table& table, const Road& road, FieldPlaces& places)
{
    ForEachField(table, [&](const auto& row) {
        using Row = std::decay_t<decltype(row)>;
        if constexpr (kIsFixed<Row> || Row::template has<CountOf>)
            return; // no reader looks at them
        else if constexpr (Row::template has<Contents>) {
            places.push_back(ValueAt<typename Row::Value>(row, road, "", road.KeyOf("text"), true));
            places.back().what = FieldPlace::What::Contents;
        } else if constexpr (Row::template has<Attribute>)
            places.push_back(
                ValueAt<typename Row::Value>(row, road, row.name, road.KeyOf(row.name), MayMiss<Record, Row>()));
        else if constexpr (Row::template has<Items>)
            AddItem<typename Row::Value::value_type>(row, row.name, road, places);
        else
            AddElement<Record>(row, road.Down(row.name), places);
    });
}

} // namespace detail

/// The places of a record's table, in the order of the wire.
template <class Record, class Table> FieldPlaces PlacesOf(const Table& table)
{
    FieldPlaces places;
    detail::AddPlaces<Record>(table, {}, places);
    return places;
}

} // namespace vk::mxp
