#include "AdminOutput.h"

#include "TextLine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vk {

namespace {

void PrintLine(const std::string& line)
{
    if (std::printf("%s\n", line.c_str()) < 0 || std::fflush(stdout) != 0)
        throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
}

/// A value for people: a list or an object as it stands in JSON.
std::string Text(const Json::Value& value)
{
    return Printable(value.isArray() || value.isObject() ? JsonLine(value) : value.asString());
}

std::string AsJson(const ShownRecord& record)
{
    Json::Value object(Json::objectValue);
    for (const auto& [key, value] : record)
        object[key] = value;
    return JsonLine(object);
}

std::string Cell(const ShownRecord& record, const char* column)
{
    for (const auto& [key, value] : record)
        if (key == column)
            return Text(value);
    return "";
}

std::string Row(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths)
{
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        line += cells[i];
        if (i + 1 < cells.size())
            line.append(widths[i] + 2 - std::min(cells[i].size(), widths[i]), ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace

void PrintRecord(const ShownRecord& record, bool json)
{
    if (json) {
        PrintLine(AsJson(record));
        return;
    }
    for (const auto& [key, value] : record)
        PrintLine(key + ": " + Text(value));
}

void PrintTable(const std::vector<ShownRecord>& records, Slice<const char*> columns, bool json)
{
    if (json) {
        for (const ShownRecord& record : records)
            PrintLine(AsJson(record));
        return;
    }
    std::vector<std::vector<std::string>> rows{{columns.begin(), columns.end()}};
    for (const ShownRecord& record : records) {
        rows.emplace_back();
        for (const char* column : columns)
            rows.back().push_back(Cell(record, column));
    }
    std::vector<std::size_t> widths(columns.size);
    for (const auto& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (const auto& row : rows)
        PrintLine(Row(row, widths));
}

void PrintNewId(unsigned long id, bool json)
{
    PrintLine(json ? AsJson({{"id", static_cast<Json::UInt64>(id)}}) : std::to_string(id));
}

void PrintDone(const std::string& sentence, const ShownRecord& facts, bool json)
{
    PrintLine(json ? AsJson(facts) : sentence);
}

int Refused(const std::string& why)
{
    std::fprintf(stderr, "vkadmin: %s\n", OneLine(why).c_str());
    return kExitFailed;
}

} // namespace vk
