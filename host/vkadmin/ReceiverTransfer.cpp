#include "ReceiverTransfer.h"

#include "Csv.h"
#include "ReceiverCsv.h"
#include "ReceiverNoun.h"
#include "TextLine.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace vk {

namespace {

using Receivers = EntityVerbs<ReceiverNoun>;
using ReceiversGuard = ListGuard<VK_RECEIVER_LIST, EmptyReceiverList>;

constexpr const char* kColumns[] = {"line", "name", "reason"};

/// A new file, or one in place of an old one: the old one stays until the new one is whole.
void WriteFile(const std::string& name, const std::string& text)
{
    const std::string part = name + ".part";
    std::ofstream out(part, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (out && std::rename(part.c_str(), name.c_str()) == 0)
        return;
    const int why = errno;
    std::remove(part.c_str());
    throw InputError(name + ": " + std::strerror(why));
}

void WriteOutput(const std::string& text)
{
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
        throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
}

/// A row that is not stored.
struct BadRow
{
    long line;
    std::string name;
    std::string reasons;
};

/// The rows of a file: those that could be read as receivers, and the others.
struct ReadRows
{
    ReadRows() = default;
    ~ReadRows() { EmptyReceiverList(&list); }
    ReadRows(const ReadRows&) = delete;
    ReadRows& operator=(const ReadRows&) = delete;

    VK_RECEIVER_LIST list;
    std::vector<long> lines; ///< of those in the list
    std::vector<BadRow> bad;
};

void ReadRow(const CsvRow& row, const ReceiverCsvColumns& columns, ReadRows& rows)
{
    Receivers::Owned receiver;
    const std::string wrong = row.error.empty() ? columns.Fill(row.fields, receiver.value) : row.error;
    if (!wrong.empty()) {
        rows.bad.push_back({row.line, receiver.value.name, wrong});
        return;
    }
    AddReceiver(&rows.list, &receiver.value);
    rows.lines.push_back(row.line);
}

void ReadFile(const std::string& file, ReadRows& rows)
{
    const std::string text = ReadBytes(file);
    CsvReader reader(text);
    CsvRow row;
    if (!reader.Next(row))
        throw InputError(file + ": is empty; its first line names the columns");
    if (!row.error.empty())
        throw InputError(file + ": line " + std::to_string(row.line) + ": " + row.error);
    try {
        const ReceiverCsvColumns columns(row.fields);
        while (reader.Next(row))
            ReadRow(row, columns, rows);
    } catch (const InputError& error) {
        throw InputError(file + ": " + error.what());
    }
}

void PrintBadRows(std::vector<BadRow>& rows, bool json)
{
    std::sort(rows.begin(), rows.end(), [](const BadRow& a, const BadRow& b) { return a.line < b.line; });
    std::vector<ShownRecord> shown;
    for (const BadRow& row : rows)
        shown.push_back({{"line", Json::Int64(row.line)}, {"name", row.name}, {"reason", OneLine(row.reasons)}});
    PrintTable(shown, kColumns, json);
}

} // namespace

int ExportReceivers(const Arguments& arguments)
{
    VKDBiReceiver& store = Receivers::Store(arguments);
    SetReceiverFilter(store, arguments);
    VK_RECEIVER_LIST list;
    const ReceiversGuard guard{list};
    store.Get(&list, true);
    std::string text = CsvLine(ReceiverCsvHeading());
    for (int i = 0; i < list.count; ++i)
        text += CsvLine(ReceiverCsvFields(list.list[i]));
    const std::string& file = arguments.Operands().front();
    if (file == "-") {
        WriteOutput(text);
        return kExitOk;
    }
    WriteFile(file, text);
    PrintDone(std::to_string(list.count) + (list.count == 1 ? " receiver" : " receivers") + " written to " + file,
              {{"exported", list.count}}, arguments.Has("--json"));
    return kExitOk;
}

int ImportReceivers(const Arguments& arguments)
{
    const std::string& file = arguments.Operands().front();
    const bool json = arguments.Has("--json"), dryRun = arguments.Has("--dry-run");
    ReadRows rows;
    ReadFile(file, rows);
    return UnlessRefused([&] {
        std::vector<VKRefusedRecord> refused;
        Receivers::Store(arguments).AddAll(&rows.list, dryRun || !rows.bad.empty(), refused);
        for (const VKRefusedRecord& record : refused) {
            const auto index = static_cast<std::size_t>(record.index);
            rows.bad.push_back({rows.lines[index], rows.list.list[index].name, record.reasons});
        }
        if (!rows.bad.empty()) {
            const std::size_t all = rows.lines.size() + rows.bad.size() - refused.size();
            PrintBadRows(rows.bad, json);
            return Refused(file + ": " + std::to_string(rows.bad.size()) + " of " + std::to_string(all) +
                           " rows cannot be stored; nothing was");
        }
        const std::string count = std::to_string(rows.list.count) + (rows.list.count == 1 ? " receiver" : " receivers");
        PrintDone(count + (dryRun ? " would be added" : " added"), {{dryRun ? "checked" : "added", rows.list.count}},
                  json);
        return static_cast<int>(kExitOk);
    });
}

} // namespace vk
