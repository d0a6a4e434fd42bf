// A folder for the files of one fuzzer, in memory where the system has such a place: the
// saves under test wait for the disk.
#ifndef FUZZ_SCRATCH_FOLDER_H
#define FUZZ_SCRATCH_FOLDER_H

#include "fuzz_check.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

inline const std::string &FUZ_Folder()
{
    // Never destroyed: it is still needed when the program has ended.
    static const std::string &folder = *new std::string([] {
        const std::string base = access("/dev/shm", W_OK) == 0
                                     ? "/dev/shm"
                                     : std::filesystem::temp_directory_path().string();
        std::string path = base + "/vireo2-fuzz-XXXXXX";
        if (mkdtemp(path.data()) == nullptr)
            std::abort();
        std::atexit([] { std::filesystem::remove_all(FUZ_Folder()); });
        return path;
    }());
    return folder;
}

inline void FUZ_WriteFile(const std::string &name, const std::string &text)
{
    std::FILE *file = std::fopen((FUZ_Folder() + "/" + name).c_str(), "wb");
    if (file == nullptr || std::fwrite(text.data(), 1, text.size(), file) != text.size())
        std::abort();
    std::fclose(file);
}

#endif
