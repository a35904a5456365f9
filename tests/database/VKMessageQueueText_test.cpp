#include <gmock/gmock.h>

#include <functional>

#include "BackendDatabase.h"
#include "MessageQueueStore.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Hostile text in every place of a queue: it comes back as it was given and every filter finds it and nothing else, or
/// an error names the field.

namespace {

class VKMessageQueueText : public QueuesOn<BackendDatabase>
{
protected:
    VKMessageQueueText() : queue(Open(1)) {}

    std::unique_ptr<VKDBiMessageQueue> queue;
};

/// A text of a header, and the filters that look for it.
struct Place
{
    using Filter = std::function<void(VKDBiMessageQueue&, const std::string&)>;

    const char* field;
    std::size_t size; ///< with the zero byte
    char* (*of)(VK_MESSAGE_HEADER&);
    std::vector<Filter> filters;
};

const Place kPlaces[] = {
    {"sender_name", 51, [](VK_MESSAGE_HEADER& h) { return h.sender_name; },
     {[](auto& q, auto& t) { q.SetFilterView("", t, "", "", "", "", 0, 0, 0, 0, 0); }}},
    {"receiver_name", 51, [](VK_MESSAGE_HEADER& h) { return h.receiver_name; },
     {[](auto& q, auto& t) { q.SetFilterView("", "", t, "", "", "", 0, 0, 0, 0, 0); }}},
    {"rcv_group_name", 51, [](VK_MESSAGE_HEADER& h) { return h.rcv_group_name; },
     {[](auto& q, auto& t) { q.SetFilterView("", "", "", t, "", "", 0, 0, 0, 0, 0); }}},
    {"pin", 256, [](VK_MESSAGE_HEADER& h) { return h.pin; },
     {[](auto& q, auto& t) { q.SetFilterView("", "", "", "", t, "", 0, 0, 0, 0, 0); },
      [](auto& q, auto& t) { q.SetFilterByPin("", t); }, [](auto& q, auto& t) { q.SetFilterByPin("mxp", t + "*"); }}},
    {"carrier_name", 51, [](VK_MESSAGE_HEADER& h) { return h.carrier_name; },
     {[](auto& q, auto& t) { q.SetFilterView("", "", "", "", "", t, 0, 0, 0, 0, 0); }}},
};

const std::string kHostile[] = {"O'Neil",
                                "''",
                                "'; DROP TABLE VK_QUEUE_PAGING; --",
                                "end\\",
                                "\\' OR 1=1 --",
                                "\\\\host\\share",
                                "100%",
                                "%",
                                "a_c",
                                "\"quoted\"",
                                "[x]{}{0}?:$1$$@p",
                                "NULL",
                                " spaces around ",
                                "\xF0\x9F\x9A\x92 L\xC3\xB6schzug",
                                "first\nsecond\r\n\tthird\x01\x1F\x7F"};

/// The same text with whatever a pattern might take for a wild card as an ordinary letter.
std::string WithoutWildCards(std::string text)
{
    for (char& c : text)
        if (c == '_' || c == '\\')
            c = 'X';
    return text;
}

bool FitsAName(const std::string& text)
{
    const auto refused = [](char c) { return (c >= 0 && c < ' ') || c == '\x7f' || c == '/'; };
    return std::none_of(text.begin(), text.end(), refused);
}

} // namespace

TEST_P(VKMessageQueueText, EveryFilterFindsATextAsItWasGiven)
{
    for (const std::string& text : kHostile)
        for (const Place& place : kPlaces) {
            SCOPED_TRACE(std::string(place.field) + " [" + text + "]");
            const std::string tame = WithoutWildCards(text);
            queue->EmptyQueue();
            Add(*queue, "M.0.empty.mxp");
            Add(*queue, "M.0.hostile.mxp", text, {{place.field, text}});
            Add(*queue, "M.0.another.mxp", "{}", {{place.field, tame == text ? "another" : tame}});
            EXPECT_EQ(Header(*queue, "M.0.hostile.mxp", place.field), text);
            EXPECT_EQ(Body(*queue, "M.0.hostile.mxp"), text);
            if (text != "%") // which finds all: it is the operator's wild card
                for (const auto& filter : place.filters) {
                    filter(*queue, text);
                    EXPECT_THAT(Names(*queue), ElementsAre("M.0.hostile.mxp"));
                    EXPECT_EQ(queue->GetFilteredRecordCount(), 1);
                    queue->ClearFilter();
                }
        }
}

TEST_P(VKMessageQueueText, NamesJobsAndServicesTakeAnyTextThatAFileNameMay)
{
    for (const std::string& text : kHostile) {
        SCOPED_TRACE(text);
        queue->EmptyQueue();
        const std::string name = "M.0." + text + ".mxp";
        if (!FitsAName(text)) {
            EXPECT_THAT(ErrorOf([&] { Add(*queue, name); }), HasSubstr("message name"));
            EXPECT_THAT(ErrorOf([&] { Add(*queue, "M.0.J." + text); }), HasSubstr("message name"));
            continue;
        }
        const std::string tame = WithoutWildCards(text);
        const std::string other = "M.0." + (tame == text ? "another" : tame) + ".snpp";
        Add(*queue, name, "body");
        Add(*queue, other);
        queue->SetFilter("", name, 0, 0);
        EXPECT_THAT(Names(*queue), ElementsAre(name));
        queue->ClearFilter();
        queue->SetFilterView(name, "", "", "", "", "", 0, 0, 0, 0, 0);
        EXPECT_THAT(Names(*queue), ElementsAre(name));
        queue->ClearFilter();
        std::vector<VK_MESSAGE_CONTENT> found;
        EXPECT_TRUE(queue->GetByNameList(name, found));
        EXPECT_EQ(found.size(), 1u);
        for (VK_MESSAGE_CONTENT& one : found)
            EmptyMessageContent(&one);
        EXPECT_FALSE(queue->IsUniqueName(name));
        EXPECT_TRUE(queue->UpdateTime(name, 1));
        EXPECT_TRUE(queue->Morph(name, "Q.", false, 0));
        EXPECT_EQ(Body(*queue, "Q" + name.substr(1)), "body");
        EXPECT_TRUE(queue->UpdateName("Q" + name.substr(1), name));

        const auto service = Open(1, text);
        EXPECT_EQ(Ready(*service).size(), 2u);
        EXPECT_THAT(Ready(*Open(1, tame + "X")), IsEmpty());
        service->Morph(name, "R.", true, 1);
        std::vector<std::string> held;
        queue->GetLockedUpMsgsServiceNames(held);
        EXPECT_THAT(held, ElementsAre(text));
        EXPECT_TRUE(queue->UnprocessLockedUpMsgs(held));
        EXPECT_TRUE(queue->UnprocessMsgList(text));
        EXPECT_EQ(Ready(*queue).size(), 2u);
        EXPECT_TRUE(queue->Delete(name));
        EXPECT_THAT(Names(*queue), ElementsAre(other));

        if (text.size() <= 15 && text.find('.') == std::string::npos) {
            const std::string spoken = "M.0.J." + text;
            Add(*queue, spoken);
            queue->SetFilter(text, "", 0, 0);
            const auto spokenByAny = Names(*queue);
            EXPECT_THAT(spokenByAny, testing::Contains(spoken));
            EXPECT_EQ(spokenByAny.size(), text == "%" ? 2u : 1u);
            queue->ClearFilter();
        }
    }
}

TEST_P(VKMessageQueueText, WhatIsTooLongOrHoldsAZeroByteIsRefusedByName)
{
    for (const Place& place : kPlaces) {
        const std::string longest(place.size - 1, 'x');
        Message message("M.0.x.mxp", "", {{place.field, longest}});
        place.of(message.header)[place.size - 1] = 'x';
        EXPECT_THAT(ErrorOf([&] { queue->Add(&message); }), HasSubstr(place.field));
        Add(*queue, "M.0.x.mxp", "", {{place.field, longest}});
        EXPECT_EQ(Header(*queue, "M.0.x.mxp", place.field), longest) << place.field;
        queue->EmptyQueue();
    }
    const std::pair<std::string, const char*> names[] = {{"M.0." + std::string(65, 'j') + ".mxp", "msg_job_id"},
        {"M.0." + std::string(64, 'j') + ".mxp", ""},
                 {"M.0.J.p234567890123456", "msg_protocol"},
                 {"M.0.J.p23456789012345", ""},
                 {"", "message name"},
                 {"lock", "message name"},
                 {"queue_metabase.sdb", "message name"},
                 {"../M.0.J.mxp", "message name"},
                 {"M.0./etc/passwd.mxp", "message name"},
                 {"..", "message name"},
                 {"M.0.J\n.mxp", "message name"},
                 {"M.0.J\t.mxp", "message name"}};
    for (const auto& [name, expected] : names) {
        const std::string error = ErrorOf([&] { Add(*queue, name); });
        EXPECT_EQ(error.empty(), *expected == '\0') << name;
        EXPECT_THAT(error, HasSubstr(expected));
        if (!error.empty()) {
            EXPECT_NE(ErrorOf([&] { queue->UpdateName("M.0.J.p23456789012345", name); }), "") << name;
        }
    }
    EXPECT_EQ(queue->GetTotalRecordCount(), 2);

    EXPECT_EQ(OnFiles() ? Files(*queue).size() : 2, 2u) << "no file of a refused one";

    using namespace std::string_literals;
    const std::string zero = "M.0.J\0' OR 1=1 --"s;
    VK_MESSAGE_CONTENT none;
    std::vector<VK_MESSAGE_CONTENT> nones;
    const auto filtered = [&](auto&& set) {
        set();
        queue->GetFilteredRecordCount();
    };
    const std::pair<const char*, std::function<void()>> calls[] = {
        {"message name", [&] { queue->Delete(zero); }},
        {"message name", [&] { queue->UpdateName("M.0.J.p23456789012345", zero); }},
        {"message name", [&] { queue->Morph("M.0.J.p23456789012345", zero, false, 0); }},
        {"'msg_name' ", [&] { queue->UpdateTime(zero, 1); }},
        {"'msg_name' ", [&] { queue->GetByName(zero, &none, true, true); }},
        {"'msg_name' ", [&] { queue->GetByNameList(zero, nones); }},
        {"'msg_name' ", [&] { queue->IsUniqueName(zero); }},
        {"'msg_name' ", [&] { queue->IsMsgExisting(zero); }},
        {"'last_lock_owner_svc_name' ", [&] { queue->UnprocessMsgList(zero); }},
        {"'last_lock_owner_svc_name' ", [&] { queue->UnprocessLockedUpMsgs({zero}); }},
        {"'last_lock_owner_svc_name' ", [&] { Ready(*Open(1, zero)); }},
        {"'msg_name' ", [&] { filtered([&] { queue->SetFilter("", zero, 0, 0); }); }},
        {"'msg_protocol' ", [&] { filtered([&] { queue->SetFilter(zero, "", 0, 0); }); }},
        {"'pin' ", [&] { filtered([&] { queue->SetFilterByPin("", zero); }); }},
        {"'sender_name' ", [&] { filtered([&] { kPlaces[0].filters[0](*queue, zero); }); }},
        {"'carrier_name' ", [&] { filtered([&] { kPlaces[4].filters[0](*queue, zero); }); }},
    };
    int call = 0;
    for (const auto& [field, run] : calls) {
        EXPECT_THAT(ErrorOf(run), HasSubstr(field)) << call;
        queue->ClearFilter();
        ++call;
    }
    EXPECT_EQ(queue->GetTotalRecordCount(), 2);
}

TEST_P(VKMessageQueueText, BytesThatAreNoUtf8AreKeptInFilesAndRefusedByNameOnAServer)
{
    const std::string broken = "M\xFCller \xED\xA0\x80 \xC0\x80";
    const auto expect = [&](const char* field, const std::function<void()>& add) {
        const std::string error = ErrorOf(add);
        EXPECT_EQ(error.empty(), OnFiles()) << field;
        EXPECT_THAT(error, HasSubstr(OnFiles() ? "" : "'" + std::string(field) + "' "));
    };
    for (const Place& place : kPlaces)
        expect(place.field, [&] { Add(*queue, "M.0.x.mxp", "{}", {{place.field, broken}}); });
    expect("msg_name", [&] { Add(*queue, "M.0." + broken + ".mxp"); });
    Add(*queue, "M.0.x.mxp");
    expect("msg_name", [&] { queue->Morph("M.0.x.mxp", "Q.\xFF", false, 0); });
    expect("last_lock_owner_svc_name", [&] { Ready(*Open(1, broken)); });
    expect("pin", [&] {
        queue->SetFilterByPin("", broken);
        Names(*queue);
    });
    queue->ClearFilter();
    queue->EmptyQueue();
    expect("msg_contents", [&] { Add(*queue, "M.0.x.mxp", broken); });
    EXPECT_EQ(Body(*queue, "M.0.x.mxp"), OnFiles() ? broken : "(none)");
    using namespace std::string_literals;
    expect("msg_contents", [&] { Add(*queue, "M.0.zero.mxp", "a\0b"s); });
    EXPECT_EQ(Body(*queue, "M.0.zero.mxp"), OnFiles() ? "a\0b"s : "(none)");
    const std::string longest = std::string(300000, 'x') + "'";
    Add(*queue, "M.0.long.mxp", longest);
    EXPECT_EQ(Body(*queue, "M.0.long.mxp"), longest) << "no statement is too long for a body";
}

VK_ON_BOTH_BACKENDS(VKMessageQueueText);
