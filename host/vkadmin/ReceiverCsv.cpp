#include "ReceiverCsv.h"

#include "ReceiverNoun.h"
#include "Utf8.h"

#include <algorithm>
#include <sstream>

namespace vk {

namespace {

constexpr const char* kGuestDepartments = "guest_departments";
constexpr const char* kNeeded[] = {"name", "pin"};

template <class Row> constexpr bool IsColumn = !std::decay_t<Row>::template has<Secret> &&
                                               !std::decay_t<Row>::template has<NotWritten>;

void FillGuests(const std::string& text, VK_RECEIVER& receiver)
{
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        unsigned long id = 0;
        SetFromText(id, word, kGuestDepartments);
        AddDeptRights(&receiver, id);
    }
}

void FillColumn(const std::string& column, const std::string& text, VK_RECEIVER& receiver)
{
    if (column == kGuestDepartments) {
        FillGuests(text, receiver);
        return;
    }
    ForEachField(kReceiverTable.fields, [&](const auto& row) {
        if constexpr (IsColumn<decltype(row)> && !std::decay_t<decltype(row)>::template has<PrimaryKey>)
            if (column == row.name)
                SetFromText(row.of(receiver), WithoutWord(text, WordsOfColumn(ReceiverNoun::kWords, row.name)), column);
    });
}

/// What no column takes; empty for none.
std::string Unfit(const std::string& text)
{
    if (text.find('\0') != std::string::npos)
        return "holds a zero byte";
    const std::size_t at = FindInvalidUtf8(text);
    return at == std::string::npos ? "" : "is no UTF-8 from byte " + std::to_string(at + 1) + " on";
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

std::vector<std::string> ReceiverCsvHeading()
{
    std::vector<std::string> heading;
    ForEachField(kReceiverTable.fields, [&](const auto& row) {
        if constexpr (IsColumn<decltype(row)>)
            heading.emplace_back(row.name);
    });
    heading.emplace_back(kGuestDepartments);
    return heading;
}

std::vector<std::string> ReceiverCsvFields(const VK_RECEIVER& receiver)
{
    std::vector<std::string> fields;
    ForEachField(kReceiverTable.fields, [&](const auto& row) {
        if constexpr (IsColumn<decltype(row)>)
            fields.push_back(ValueToJson(row.of(receiver), WordsOfColumn(ReceiverNoun::kWords, row.name)).asString());
    });
    std::string& guests = fields.emplace_back();
    for (int i = 0; i < receiver.dept_rights_count; ++i)
        guests += (i > 0 ? " " : "") + std::to_string(receiver.dept_rights[i].department_id);
    return fields;
}

ReceiverCsvColumns::ReceiverCsvColumns(std::vector<std::string> heading) : m_heading(std::move(heading))
{
    const std::vector<std::string> known = ReceiverCsvHeading();
    for (auto column = m_heading.begin(); column != m_heading.end(); ++column) {
        if (std::find(known.begin(), known.end(), *column) == known.end())
            throw InputError("there is no column '" + *column + "'; there are " + Joined(known));
        if (std::find(m_heading.begin(), column, *column) != column)
            throw InputError("the column '" + *column + "' stands there twice");
    }
    for (const char* needed : kNeeded)
        if (std::find(m_heading.begin(), m_heading.end(), needed) == m_heading.end())
            throw InputError(std::string("the column '") + needed + "' is missing");
}

std::string ReceiverCsvColumns::Fill(const std::vector<std::string>& fields, VK_RECEIVER& receiver) const
{
    if (fields.size() != m_heading.size())
        return "has " + std::to_string(fields.size()) + " fields, the heading has " + std::to_string(m_heading.size()) +
               "\n";
    std::string wrong;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        const std::string unfit = Unfit(fields[i]);
        if (!unfit.empty()) {
            wrong += m_heading[i] + ": " + unfit + "\n";
            continue;
        }
        if (fields[i].empty())
            continue;
        try {
            FillColumn(m_heading[i], fields[i], receiver);
        } catch (const UsageError& error) {
            wrong += std::string(error.what()) + "\n";
        }
    }
    ReceiverNoun::SetDefaults(receiver);
    return wrong;
}

} // namespace vk
