#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

/// \file
/// Runs a fuzz target without libFuzzer: first each seed, whole and cut at every byte, then mutations of the seeds for
/// a few seconds, always in the same order. The input that ends the process is left in "fuzz-failure" in the working
/// directory; given as an argument it is run again.
///
///     vk_fuzz_NAME FILE-OR-FOLDER... [--seconds N]

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace {

constexpr std::size_t kMostBytes = 16 << 10;
constexpr unsigned kMostSecondsForOneInput = 20;

std::string g_input;

void KeepInput()
{
    std::ofstream("fuzz-failure", std::ios::binary) << g_input;
    std::fprintf(stderr, "the input of %zu bytes is in ./fuzz-failure\n", g_input.size());
}

[[noreturn]] void OnSignal(int number)
{
    KeepInput();
    std::signal(number, SIG_DFL);
    std::raise(number);
    std::_Exit(1);
}

void RunOne(std::string input)
{
    g_input = std::move(input);
    alarm(kMostSecondsForOneInput);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(g_input.data()), g_input.size());
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Changes, drops, doubles and moves pieces of the seeds.
class Mutator
{
public:
    explicit Mutator(const std::vector<std::string>& seeds) : m_vecSeeds(seeds) {}

    std::string Next()
    {
        std::string text = Seed();
        for (std::size_t changes = 1 + Below(6); changes > 0; --changes)
            Change(text);
        if (text.size() > kMostBytes)
            text.resize(kMostBytes);
        return text;
    }

private:
    std::size_t Below(std::size_t limit) { return limit ? m_objRandom() % limit : 0; }
    const std::string& Seed() { return m_vecSeeds[Below(m_vecSeeds.size())]; }

    /// A piece of a text: mostly short, now and then long.
    std::string_view Piece(std::string_view text)
    {
        return text.substr(Below(text.size()), 1 + Below(Below(4) ? 16 : 400));
    }

    void Change(std::string& text)
    {
        static constexpr char kBytes[] = "<>&'\"/=:;![]{}#\\\0\x01\x1F\x7F\x80\xC0\xED\xEF\xF4\xFF\t\n\r -09";
        const std::size_t at = Below(text.size() + 1);
        switch (Below(7)) {
        case 0:
            if (at < text.size())
                text[at] = static_cast<char>(text[at] ^ (1 << Below(8)));
            break;
        case 1:
            text.insert(at, 1, kBytes[Below(sizeof kBytes - 1)]);
            break;
        case 2:
            text.erase(at, 1 + Below(16));
            break;
        case 3:
            text.insert(at, std::string(Piece(text)));
            break;
        case 4:
            text.insert(at, std::string(Piece(Seed())));
            break;
        case 5:
            text.resize(at);
            break;
        default: { // the same piece many times, to nest and to grow
            const std::string piece(Piece(text));
            for (std::size_t times = Below(64); times > 0; --times)
                text.insert(at, piece);
        }
        }
    }

    const std::vector<std::string>& m_vecSeeds;
    std::mt19937 m_objRandom{20240229};
};

} // namespace

int main(int argc, char** argv)
{
    std::set<std::filesystem::path> paths;
    double seconds = 3;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--seconds" && i + 1 < argc)
            seconds = std::atof(argv[++i]);
        else if (std::filesystem::is_directory(argument))
            for (const auto& entry : std::filesystem::directory_iterator(argument))
                paths.insert(entry.path());
        else if (std::filesystem::exists(argument))
            paths.insert(argument);
    }
    std::vector<std::string> seeds;
    for (const auto& path : paths)
        seeds.push_back(ReadFile(path));
    if (seeds.empty()) {
        std::fprintf(stderr, "%s: no seeds; name files or folders of them\n", argv[0]);
        return 2;
    }
    if (__sanitizer_set_death_callback)
        __sanitizer_set_death_callback(KeepInput);
    for (const int number : {SIGABRT, SIGALRM})
        std::signal(number, OnSignal);

    std::size_t runs = 0;
    for (const std::string& seed : seeds)
        for (std::size_t size = 0; size <= seed.size(); ++size, ++runs)
            RunOne(seed.substr(0, size));
    Mutator mutator(seeds);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    for (; std::chrono::steady_clock::now() < end; ++runs)
        RunOne(mutator.Next());
    std::printf("%zu inputs from %zu seeds\n", runs, seeds.size());
    return 0;
}
