#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

/** A folder of its own for one test, removed with everything in it at the end. */
class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "surrogate-test-XXXXXX").string();
        folder = mkdtemp(pattern.data());
    }

    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return folder + '/' + name; }

    /** Writes a file and answers its path. */
    std::string write(const std::string& name, std::string_view content) const
    {
        std::ofstream(path(name), std::ios::binary) << content;
        return path(name);
    }

    std::string read(const std::string& name) const
    {
        std::ifstream in(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    std::size_t fileCount() const
    {
        const auto entries = std::filesystem::directory_iterator(folder);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

private:
    std::string folder;
};
