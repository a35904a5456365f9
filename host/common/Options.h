#pragma once

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// \file
/// The command line of every program: a program is a constant table of options and commands, and the parser, the checks
/// and the manual page are walks over it.

namespace vk {

/// How a program ends. Numbers above 3 are not used.
enum ExitCode {
    kExitOk = 0,
    /// The thing asked for was tried and did not come out.
    kExitFailed = 1,
    /// The call, or a file that it names, is wrong; nothing was done.
    kExitUsage = 2,
    /// What the program stands on could not be loaded, opened or reached.
    kExitUnavailable = 3
};

/// How often an option may be given: at most once, once, any number of times, once or more.
enum class Need { Optional, Required, Any, OneOrMore };

/// One option. A null `value` makes a switch, otherwise it names the value in the manual.
struct Option
{
    const char* name;
    const char* value;
    const char* help;
    Need need = Need::Optional;
    /// The words that the value may be, joined by "|"; null for any text.
    const char* words = nullptr;
};

/// Two lists of options as one, for commands that share most of theirs.
template <std::size_t N>
struct OptionRows
{
    Option rows[N];
};

template <std::size_t N, std::size_t M>
constexpr OptionRows<N + M> Joined(const Option (&first)[N], const Option (&second)[M])
{
    OptionRows<N + M> joined{};
    for (std::size_t i = 0; i < N + M; ++i)
        joined.rows[i] = i < N ? first[i] : second[i - N];
    return joined;
}

template <class T>
struct Slice
{
    const T* data = nullptr;
    std::size_t size = 0;

    constexpr Slice() = default;
    template <std::size_t N>
    constexpr Slice(const T (&rows)[N]) : data(rows), size(N)
    {
    }
    const T* begin() const { return data; }
    const T* end() const { return data + size; }
};

class Arguments;

/// A word behind the command's own that is no option.
struct Operand
{
    const char* name; ///< in the manual
    const char* help;
    Need need = Need::Required; ///< the last one may be OneOrMore or Optional, which here means any number
};

/// What a command takes besides its own options.
enum class Scope { Program, Alone };

/// One thing that a program does, called by its words: "session add". One that stands alone needs none of the program's
/// required options.
struct Command
{
    const char* words;
    const char* help;
    Slice<Option> options;
    int (*run)(const Arguments&);
    Slice<Operand> operands = {};
    Scope scope = Scope::Program;
};

/// One paragraph of the manual with its heading.
struct ManualSection
{
    const char* heading;
    const char* text;
};

/// A program. One without commands has a single row in `commands` with empty words.
struct Program
{
    const char* name;
    const char* summary;
    const char* description;
    /// Accepted by every command.
    Slice<Option> options;
    Slice<Command> commands;
    /// Behind the options: exit status, files, examples.
    Slice<ManualSection> sections;
};

/// The call is wrong; the message names the option at fault.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Something that the call names is wrong: a file, a directory, a record. The message says which and why.
class InputError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// What was given on the command line, checked against the table.
class Arguments
{
public:
    bool Has(std::string_view option) const { return m_values.find(option) != m_values.end(); }

    /// The last value given, or the fallback.
    std::string Text(std::string_view option, std::string_view fallback = "") const;

    /// All values of a repeatable option, in the order given.
    std::vector<std::string> All(std::string_view option) const;

    /// A whole number within these limits, or the fallback; anything else is a UsageError that names the option.
    long long Number(std::string_view option, long long least, long long most, long long fallback) const;

    const Command& GetCommand() const { return *m_command; }

    /// The words behind the command's, in the order given.
    const std::vector<std::string>& Operands() const { return m_operands; }

private:
    friend Arguments ParseArguments(const Program& program, const std::vector<std::string>& words);

    const Command* m_command = nullptr;
    std::vector<std::string> m_operands;
    std::map<std::string, std::vector<std::string>, std::less<>> m_values;
};

/// Throws UsageError unless exactly one of two options is given.
void RequireOneOf(const Arguments& arguments, const char* one, const char* other);

/// A record's id; 0 when it is not given.
unsigned long IdOption(const Arguments& arguments, const char* option = "--id");

/// The options "--page-size" and "--page" of a list; a size of 0 is all of it.
struct Page
{
    explicit Page(const Arguments& arguments);

    int size;
    int number;
};

/// Reads a command line without the program's name. Takes "--name value" and "--name=value" anywhere before a "--"; "-" is
/// an operand. Throws UsageError.
Arguments ParseArguments(const Program& program, const std::vector<std::string>& words);

/// The manual page of a program.
std::string Manual(const Program& program);

/// A program's main: answers --help and --version, parses, runs the command. Whatever is thrown becomes one line on
/// standard error: a UsageError or InputError ends with kExitUsage, anything else with kExitUnavailable.
int RunProgram(const Program& program, int argc, char** argv);

} // namespace vk
