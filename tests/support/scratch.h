// Files of a test's own: a folder that goes with the test, whole files as text.
#ifndef TESTS_SUPPORT_SCRATCH_H
#define TESTS_SUPPORT_SCRATCH_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>

inline std::string ReadFileText(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

inline void WriteFileText(const std::filesystem::path &path, const std::string &text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// Empty at first; with `isCurrent` the current folder until it goes.
struct ScratchFolder {
    std::string path = (std::filesystem::temp_directory_path() / "vireo2-XXXXXX").string();
    const std::filesystem::path home = std::filesystem::current_path();

    explicit ScratchFolder(bool isCurrent = false)
    {
        EXPECT_NE(mkdtemp(path.data()), nullptr);
        if (isCurrent)
            std::filesystem::current_path(path);
    }
    ~ScratchFolder()
    {
        std::error_code ignored;
        std::filesystem::current_path(home, ignored);
        std::filesystem::remove_all(path, ignored);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;
    std::filesystem::path operator/(const std::string &name) const
    {
        return std::filesystem::path(path) / name;
    }
};

#endif
