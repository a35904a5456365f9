#include "Options.h"

#include "TextLine.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <exception>
#include <limits>

namespace vk {

namespace {

const Option* FindOption(Slice<Option> options, std::string_view name)
{
    const auto row = std::find_if(options.begin(), options.end(), [&](const Option& o) { return name == o.name; });
    return row == options.end() ? nullptr : row;
}

/// The option in the table of the program or of any of its commands: what tells whether a value follows.
const Option* FindAnywhere(const Program& program, std::string_view name)
{
    if (const Option* option = FindOption(program.options, name))
        return option;
    for (const Command& command : program.commands)
        if (const Option* option = FindOption(command.options, name))
            return option;
    return nullptr;
}

/// The command whose words come first in the text; what follows are operands, if it takes any.
const Command* FindCommand(const Program& program, std::string_view text)
{
    for (const Command& command : program.commands) {
        const std::string_view words = command.words;
        if (text == words)
            return &command;
        const bool begins = text.substr(0, words.size()) == words && (words.empty() || text[words.size()] == ' ');
        if (begins && command.operands.size > 0)
            return &command;
    }
    return nullptr;
}

std::size_t CountWords(std::string_view text)
{
    return text.empty() ? 0 : 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), ' '));
}

void CheckOperands(const Command& command, std::size_t given)
{
    std::size_t most = 0;
    for (const Operand& operand : command.operands) {
        if (most >= given && operand.need != Need::Optional)
            throw UsageError(std::string(operand.name) + " is missing");
        most = operand.need == Need::Required ? most + 1 : std::string_view::npos;
    }
    if (given > most)
        throw UsageError(std::string("too many words for '") + command.words + "'");
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const auto& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

bool IsNeeded(Need need) { return need == Need::Required || need == Need::OneOrMore; }

bool IsRepeatable(Need need) { return need == Need::Any || need == Need::OneOrMore; }

bool IsOneOf(const char* words, std::string_view value)
{
    const std::string all = "|" + std::string(words) + "|";
    return value.find('|') == std::string_view::npos && all.find("|" + std::string(value) + "|") != std::string::npos;
}

void CheckValue(const Option& option, const std::string& value)
{
    if (option.words != nullptr && !IsOneOf(option.words, value))
        throw UsageError(std::string(option.name) + ": '" + value + "' is none of " + option.words);
}

/// Every option must belong to the command or to the whole program, and those that are required must be there.
void CheckAgainstTable(const Program& program, const Command& command,
                       const std::map<std::string, std::vector<std::string>, std::less<>>& values)
{
    for (const auto& [name, given] : values) {
        const Option* option = FindOption(program.options, name);
        if (option == nullptr)
            option = FindOption(command.options, name);
        if (option == nullptr)
            throw UsageError(name + " is no option of '" + command.words + "'");
        if (given.size() > 1 && !IsRepeatable(option->need))
            throw UsageError(name + " is given twice");
        for (const std::string& value : given)
            CheckValue(*option, value);
    }
    const Slice<Option> all[] = {command.scope == Scope::Alone ? Slice<Option>() : program.options, command.options};
    for (const auto& options : all)
        for (const Option& option : options)
            if (IsNeeded(option.need) && values.find(option.name) == values.end())
                throw UsageError(std::string(option.name) + " is missing");
}

constexpr std::size_t kLineWidth = 100;
constexpr std::size_t kIndent = 7;

/// Text broken at blanks; its own line ends are kept.
std::string Wrapped(std::string_view text, std::size_t indent)
{
    std::string out;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        while (line.size() > kLineWidth - indent) {
            std::size_t cut = line.rfind(' ', kLineWidth - indent);
            if (cut == std::string_view::npos || cut == 0)
                cut = kLineWidth - indent;
            out += std::string(indent, ' ').append(line.substr(0, cut)) + "\n";
            line.remove_prefix(line[cut] == ' ' ? cut + 1 : cut);
        }
        out += line.empty() ? "\n" : std::string(indent, ' ').append(line) + "\n";
    }
    return out;
}

std::string OptionWord(const Option& option)
{
    return option.value == nullptr ? option.name : std::string(option.name) + " " + option.value;
}

std::string Synopsis(const Program& program, const Command& command)
{
    std::string line = program.name;
    if (command.words[0] != '\0')
        line += std::string(" ") + command.words;
    const bool alone = command.scope == Scope::Alone;
    for (const auto& options : {program.options, command.options})
        for (const Option& option : options) {
            const std::string word = OptionWord(option);
            if (alone && options.data == program.options.data && IsNeeded(option.need))
                continue;
            line += IsNeeded(option.need) ? " " + word : " [" + word + "]";
            line += IsRepeatable(option.need) ? " ..." : "";
        }
    for (const Operand& operand : command.operands)
        line += std::string(operand.need == Need::Optional ? " [" : " ") + operand.name +
                (operand.need == Need::Required ? "" : operand.need == Need::Optional ? " ...]" : " ...");
    return line;
}

std::string OptionList(Slice<Option> options, std::size_t indent)
{
    std::string text;
    for (const Option& option : options) {
        text += std::string(indent, ' ') + OptionWord(option) + "\n";
        std::string help = option.help;
        if (option.words != nullptr) {
            help += " One of ";
            for (const char* c = option.words; *c != '\0'; ++c)
                help += *c == '|' ? std::string(", ") : std::string(1, *c);
            help += '.';
        }
        text += Wrapped(help, indent + kIndent);
    }
    return text;
}

} // namespace

std::string Arguments::Text(std::string_view option, std::string_view fallback) const
{
    const auto found = m_values.find(option);
    return found == m_values.end() ? std::string(fallback) : found->second.back();
}

std::vector<std::string> Arguments::All(std::string_view option) const
{
    const auto found = m_values.find(option);
    return found == m_values.end() ? std::vector<std::string>{} : found->second;
}

long long Arguments::Number(std::string_view option, long long least, long long most, long long fallback) const
{
    if (!Has(option))
        return fallback;
    const std::string text = Text(option);
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < least || number > most) {
        const std::string limits = most == std::numeric_limits<long long>::max()
                                       ? " of " + std::to_string(least) + " or more"
                                       : " from " + std::to_string(least) + " to " + std::to_string(most);
        throw UsageError(std::string(option) + ": '" + text + "' is no whole number" + limits);
    }
    return number;
}

void RequireOneOf(const Arguments& arguments, const char* one, const char* other)
{
    if (arguments.Has(one) == arguments.Has(other))
        throw UsageError(std::string("give one of ") + one + " and " + other);
}

unsigned long IdOption(const Arguments& arguments, const char* option)
{
    return static_cast<unsigned long>(arguments.Number(option, 0, std::numeric_limits<long long>::max(), 0));
}

Page::Page(const Arguments& arguments)
    : size(static_cast<int>(arguments.Number("--page-size", 0, 1000000, 0))),
      number(static_cast<int>(arguments.Number("--page", 1, 1000000, 1)))
{
}

Arguments ParseArguments(const Program& program, const std::vector<std::string>& words)
{
    Arguments arguments;
    std::vector<std::string> commandWords;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == "--") {
            commandWords.insert(commandWords.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            break;
        }
        if (words[i].rfind("-", 0) != 0 || words[i] == "-") {
            commandWords.push_back(words[i]);
            continue;
        }
        const std::size_t equals = words[i].find('=');
        const std::string name = words[i].substr(0, equals);
        const Option* option = FindAnywhere(program, name);
        if (option == nullptr)
            throw UsageError("unknown option " + name);
        std::string value;
        if (option->value == nullptr) {
            if (equals != std::string::npos)
                throw UsageError(name + " takes no value");
        } else if (equals != std::string::npos) {
            value = words[i].substr(equals + 1);
        } else if (++i < words.size()) {
            value = words[i];
        } else {
            throw UsageError(name + " needs a value: " + option->value);
        }
        arguments.m_values[name].push_back(value);
    }
    const std::string command = Joined(commandWords);
    arguments.m_command = FindCommand(program, command);
    if (arguments.m_command == nullptr)
        throw UsageError(command.empty() ? "no command given" : "'" + command + "' is no command");
    const auto operands = static_cast<std::ptrdiff_t>(CountWords(arguments.m_command->words));
    arguments.m_operands.assign(commandWords.begin() + operands, commandWords.end());
    CheckOperands(*arguments.m_command, arguments.m_operands.size());
    CheckAgainstTable(program, *arguments.m_command, arguments.m_values);
    return arguments;
}

std::string Manual(const Program& program)
{
    std::string text = "NAME\n" + Wrapped(std::string(program.name) + " - " + program.summary, kIndent) + "\nSYNOPSIS\n";
    for (const Command& command : program.commands)
        text += Wrapped(Synopsis(program, command), kIndent);
    text += "\nDESCRIPTION\n" + Wrapped(program.description, kIndent);
    const bool hasCommands = program.commands.size > 1 || program.commands.data->words[0] != '\0';
    if (hasCommands) {
        text += "\nCOMMANDS\n";
        for (const Command& command : program.commands) {
            text += std::string(kIndent, ' ') + command.words + "\n" + Wrapped(command.help, 2 * kIndent);
            for (const Operand& operand : command.operands)
                text += std::string(2 * kIndent, ' ') + operand.name + "\n" + Wrapped(operand.help, 3 * kIndent);
            text += OptionList(command.options, 2 * kIndent) + "\n";
        }
        text.pop_back();
    }
    text += "\nOPTIONS\n" + OptionList(program.options, kIndent);
    if (!hasCommands)
        text += OptionList(program.commands.data->options, kIndent);
    constexpr Option common[] = {{"--help", nullptr, "Shows this page."},
                                 {"--version", nullptr, "Shows the version."}};
    text += OptionList(common, kIndent);
    for (const ManualSection& section : program.sections)
        text += std::string("\n") + section.heading + "\n" + Wrapped(section.text, kIndent);
    return text;
}

int RunProgram(const Program& program, int argc, char** argv)
{
    const std::vector<std::string> words(argv + 1, argv + argc);
    for (const auto& word : words) {
        if (word == "--help")
            return std::fputs(Manual(program).c_str(), stdout) < 0 ? kExitFailed : kExitOk;
        if (word == "--version")
            return std::printf("%s %s\n", program.name, VK_VERSION) < 0 ? kExitFailed : kExitOk;
    }
    try {
        const Arguments arguments = ParseArguments(program, words);
        return arguments.GetCommand().run(arguments);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "%s: %s (see %s --help)\n", program.name, OneLine(error.what()).c_str(), program.name);
        return kExitUsage;
    } catch (const InputError& error) {
        std::fprintf(stderr, "%s: %s\n", program.name, OneLine(error.what()).c_str());
        return kExitUsage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", program.name, OneLine(error.what()).c_str());
        return kExitUnavailable;
    }
}

} // namespace vk
