#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

/// A directory of its own for one test, gone with all that is in it when the object goes.
class TempDir
{
public:
    TempDir()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vkmxp-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), name);
        m_path = name;
    }
    ~TempDir()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& Path() const { return m_path; }
    std::string operator/(std::string_view name) const { return (m_path / name).string(); }

    /// Writes a file below the directory, with its folders, and gives its path.
    std::string Write(std::string_view name, std::string_view content) const
    {
        const std::filesystem::path path = m_path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream out(path, std::ios::binary);
        out.write(content.data(), static_cast<std::streamsize>(content.size()));
        if (!out.flush())
            throw std::system_error(EIO, std::generic_category(), path.string());
        return path.string();
    }

    /// The content of a file below the directory; empty when there is none.
    std::string Read(std::string_view name) const
    {
        std::ifstream in(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

private:
    std::filesystem::path m_path;
};
