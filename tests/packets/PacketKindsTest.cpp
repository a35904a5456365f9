#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "PacketKit.h"
#include "VKMXPmPlaces.h"

/// What holds for every kind of packet, by walks over its tables.

namespace {

using Place = vk::mxp::FieldPlace;
using Places = vk::mxp::FieldPlaces;

/// What the reader of a table looks at, from the packet's element down.
template <class Packet, class Table> Places PlacesBelow(const Table& table, const std::vector<std::string>& above)
{
    Places places = vk::mxp::PlacesOf<Packet>(table);
    for (Place& place : places)
        place.path.insert(place.path.begin(), above.begin(), above.end());
    return places;
}

template <class Packet> Places ParamPlaces() { return PlacesBelow<Packet>(Packet::ParamFields(), {"parameters"}); }

template <class Packet> Places ResultPlaces()
{
    return Packet::kReadsResult ? PlacesBelow<Packet>(Packet::ResultFields(), {"response", "result"}) : Places();
}

/// A packet's text after a change at one place.
std::string Changed(const std::string& text, const Place& place,
                    const std::function<void(XmlReaderWriter::Node& parent, XmlReaderWriter::Node& node)>& change)
{
    XmlReaderWriter document;
    EXPECT_TRUE(document.readFrom(text));
    XmlReaderWriter::Node parent;
    XmlReaderWriter::Node node = document.getRootNode();
    for (const std::string& name : place.path) {
        parent = node;
        node = parent[name];
    }
    change(parent, node);
    return document.getRootNode().toString();
}

std::string Without(const std::string& text, const Place& place)
{
    return Changed(text, place, [&](auto& parent, auto& node) {
        EXPECT_TRUE(place.attribute.empty() ? parent.delChild(place.path.back()) : node.delAttribute(place.attribute));
    });
}

std::string With(const std::string& text, const Place& place, const std::string& value)
{
    return Changed(text, place, [&](auto&, auto& node) {
        if (place.attribute.empty())
            node.value() = value;
        else
            node.attributeValue(place.attribute) = value;
    });
}

std::string At(const std::string& text, const Place& place)
{
    std::string value;
    Changed(text, place, [&](auto&, auto& node) {
        value = place.attribute.empty() ? node.contentsText() : node.attributeText(place.attribute);
    });
    return value;
}

/// Every text of a record, those of its lists and records included.
template <class Record, class Table>
void CollectTexts(Record& record, const Table& table, std::vector<std::string*>& texts)
{
    const auto collect = [&](auto& value, auto& self) {
        using Value = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::string>)
            texts.push_back(&value);
        else if constexpr (std::is_same_v<Value, std::optional<std::string>>)
            texts.push_back(&*value);
        else if constexpr (vk::mxp::kIsRecord<Value>)
            CollectTexts(value, vk::mxp::TableOf<Value>::Fields(), texts);
        else if constexpr (!std::is_arithmetic_v<Value> && !vk::mxp::kIsOptional<Value>)
            self(value.front(), self);
    };
    vk::mxp::ForEachFlatField(table, [&](const auto& row) {
        if constexpr (!std::decay_t<decltype(row)>::template has<vk::mxp::Verbatim>)
            collect(row.of(record), collect);
    });
}

template <class Packet> std::string FullText(std::int32_t type)
{
    auto packet = kit::Full<Packet>();
    packet->m_iPacketType = type;
    return kit::Sent(*packet);
}

template <class Packet> class PacketKind : public testing::Test
{
protected:
    /// Each place in turn is taken out of a text that is whole.
    static void TakeEachOut(const std::string& whole, const Places& places)
    {
        ASSERT_TRUE(kit::Received<Packet>(whole));
        for (const Place& place : places) {
            // A list may have less items, and an element no contents.
            if (place.what == Place::What::Item || place.what == Place::What::Contents)
                continue;
            std::string error;
            const auto packet = kit::Received<Packet>(Without(whole, place), &error);
            const std::string name = place.path.back() + " " + place.attribute;
            if (place.mayMiss)
                EXPECT_EQ(error, "") << name;
            else if (place.attribute.empty())
                EXPECT_EQ(error, "1007 XML parsing error. Unable to find child node '" + place.path.back() + "'.");
            else
                EXPECT_EQ(error, "1007 XML parsing error. No attribute by given name.") << name;
            EXPECT_EQ(packet != nullptr, place.mayMiss) << name;
        }
    }
};

TYPED_TEST_SUITE(PacketKind, kit::AllKinds);

TYPED_TEST(PacketKind, EveryFieldComesBack)
{
    const auto expectSame = [](const TypeParam& sent, const TypeParam& received, const auto& table) {
        const TypeParam fresh;
        vk::mxp::ForEachFlatField(table, [&](const auto& row) {
            EXPECT_FALSE(vk::mxp::SameValue(row.of(sent), row.of(fresh))) << row.name << " was not filled";
            EXPECT_TRUE(vk::mxp::SameValue(row.of(sent), row.of(received))) << row.name;
        });
    };
    for (const int type : {VKMXPmBase::kRequest, VKMXPmBase::kResponse}) {
        const auto sent = kit::Full<TypeParam>();
        sent->m_iPacketType = type;
        std::string error;
        const auto received = kit::Received<TypeParam>(kit::Sent(*sent), &error);
        ASSERT_TRUE(received) << error;
        EXPECT_EQ(received->m_iSequence, 7);
        expectSame(*sent, *received, TypeParam::ParamFields());
        if (type == VKMXPmBase::kResponse && TypeParam::kReadsResult)
            expectSame(*sent, *received, TypeParam::ResultFields());
        else
            EXPECT_TRUE(vk::mxp::SameFields(TypeParam(), *received, TypeParam::ResultFields()));
    }
}

TYPED_TEST(PacketKind, MissingElementOrAttributeIsNamed)
{
    this->TakeEachOut(FullText<TypeParam>(VKMXPmBase::kRequest), ParamPlaces<TypeParam>());
    this->TakeEachOut(FullText<TypeParam>(VKMXPmBase::kResponse), ResultPlaces<TypeParam>());
}

TYPED_TEST(PacketKind, EmptyTextIsRefusedWhereItMustNotBeButNotInAResponse)
{
    const Places places = ParamPlaces<TypeParam>();
    for (const Place& place : places) {
        if (!place.notEmpty)
            continue;
        for (const char* empty : {"", " \n"}) {
            std::string error;
            EXPECT_FALSE(kit::Received<TypeParam>(With(FullText<TypeParam>(1), place, empty), &error));
            EXPECT_EQ(error, "1008 NULL modal object.") << place.path.back();
            EXPECT_TRUE(kit::Received<TypeParam>(With(FullText<TypeParam>(2), place, empty))) << place.path.back();
        }
    }
}

TYPED_TEST(PacketKind, ResultThatIsNoXmlIsRefusedByAReaderThatNeedsIt)
{
    auto packet = kit::Full<TypeParam>();
    packet->m_iPacketType = VKMXPmBase::kResponse;
    packet->m_eResponseResultType = eRespResultText;
    std::string error;
    const bool refused = !kit::Received<TypeParam>(kit::Sent(*packet), &error);
    EXPECT_EQ(refused, TypeParam::kReadsResult && vk::FieldCount(TypeParam::ResultFields()) > 0);
    EXPECT_EQ(error, refused ? "1008 NULL modal object." : "");
}

TYPED_TEST(PacketKind, TextOfAMegabyteIsCarriedInAnyField)
{
    auto sent = kit::Full<TypeParam>();
    sent->m_iPacketType = VKMXPmBase::kResponse;
    std::vector<std::string*> texts;
    CollectTexts(*sent, TypeParam::ParamFields(), texts);
    CollectTexts(*sent, TypeParam::ResultFields(), texts);
    for (std::string* text : texts) {
        const std::string kept = std::exchange(*text, std::string(1 << 20, 'x') + "&");
        std::string error;
        const auto received = kit::Received<TypeParam>(kit::Sent(*sent), &error);
        ASSERT_TRUE(received) << error;
        EXPECT_TRUE(vk::mxp::SameParameters(*sent, *received));
        EXPECT_TRUE(!TypeParam::kReadsResult || vk::mxp::SameFields(*sent, *received, TypeParam::ResultFields()));
        *text = kept;
    }
}

/// How the digits are taken is told by the test of numbers; here, that every place takes them so. Beyond 32 bits a
/// number is cut, kept by 64 bits, or a real one.
TYPED_TEST(PacketKind, OddNumbersAreReadByTheirLeadingDigitsEverywhere)
{
    const std::pair<const char*, std::vector<std::string>> table[] = {
        {" +12z", {"12"}},
        {"", {"0"}},
        {"abc", {"0"}},
        {"-4294967295", {"1", "18446744069414584321", "-4.29497e+09"}},
        {"99999999999999999999", {"-1", "18446744073709551615", "1e+20"}},
    };
    const auto check = [&](const std::string& whole, const Places& places) {
        for (const Place& place : places) {
            for (const auto& [text, read] : table) {
                if (!place.number || (place.what == Place::What::Contents && *text == '\0'))
                    continue; // no contents: what may be left alone is left alone
                const auto packet = kit::Received<TypeParam>(With(whole, place, text));
                ASSERT_TRUE(packet) << place.path.back() << " '" << text << "'";
                EXPECT_THAT(read, testing::Contains(At(kit::Sent(*packet), place))) << place.path.back() << text;
            }
        }
    };
    check(FullText<TypeParam>(VKMXPmBase::kRequest), ParamPlaces<TypeParam>());
    check(FullText<TypeParam>(VKMXPmBase::kResponse), ResultPlaces<TypeParam>());
}

} // namespace
