#include "AdminInput.h"

#include "Options.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

namespace vk {

namespace {

constexpr char kBlanks[] = " \t\r\n";

} // namespace

std::string ReadBytes(const std::string& name)
{
    std::string text;
    try {
        std::ifstream file;
        if (name != "-")
            file.open(name, std::ios::binary);
        std::istream& in = name == "-" ? std::cin : file;
        if (!in)
            throw InputError(name + ": " + std::strerror(errno));
        text.assign(std::istreambuf_iterator<char>(in), {});
    } catch (const std::ios_base::failure&) {
        throw InputError(name + ": " + std::strerror(errno));
    }
    return text;
}

std::string ReadInput(const std::string& name)
{
    std::string text = ReadBytes(name);
    text.erase(0, std::min(text.find_first_not_of(kBlanks), text.size()));
    text.erase(text.find_last_not_of(kBlanks) + 1);
    return text;
}

std::string ReadPassword(const std::string& name)
{
    const std::string text = ReadInput(name);
    const std::string line = text.substr(0, text.find_first_of("\r\n"));
    if (line.empty())
        throw InputError(name + ": holds no password");
    return line;
}

} // namespace vk
