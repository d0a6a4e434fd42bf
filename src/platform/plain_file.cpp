// Every file is examined once it is open: between a look at its name and the opening it could
// become another one.
#include "platform/plain_file.h"

#include <algorithm>

#include "platform/system.h"

namespace {

constexpr size_t BLOCK_SIZE = 65536;

} // namespace

bool PLT_FileExists(const std::string &path)
{
    PLT_FileStamp stamp;
    return PLT_GetFileStamp(path, &stamp) == 0;
}

int PLT_OpenForReading(const std::string &path, int64_t sizeMax, std::FILE **file)
{
    int64_t size = 0;
    const int result = path.empty() ? PLT_FILE_ERR_OPEN : PLT_OpenPlainFile(path, file, &size);
    if (result == PLT_FILE_OK && size <= sizeMax)
        return PLT_FILE_OK;
    if (result == PLT_FILE_OK)
        std::fclose(*file);
    *file = nullptr;
    return result == PLT_FILE_OK ? PLT_FILE_ERR_LARGE : result;
}

int PLT_ReadFile(const std::string &path, int64_t sizeMax, std::string *content)
{
    content->clear();
    std::FILE *file = nullptr;
    const int result = PLT_OpenForReading(path, sizeMax, &file);
    if (result != PLT_FILE_OK)
        return result;
    char block[BLOCK_SIZE];
    // By the bytes that come, not by the size of before: a file may grow under its reader.
    const size_t most = static_cast<size_t>(sizeMax);
    for (size_t got = 1; got > 0 && content->size() < most;) {
        got = std::fread(block, 1, std::min(sizeof block, most - content->size()), file);
        content->append(block, got);
    }
    const bool isGood = std::ferror(file) == 0;
    std::fclose(file);
    // Half a file looks like a shorter one: nobody gets it.
    if (!isGood)
        content->clear();
    return isGood ? PLT_FILE_OK : PLT_FILE_ERR_OPEN;
}

const char *PLT_FileErrorText(int result)
{
    if (result == PLT_FILE_ERR_SPECIAL)
        return "is a folder, device or pipe";
    return result == PLT_FILE_ERR_LARGE ? "is too large" : "cannot be opened";
}

const char *PLT_WhyUnreadable(const std::string &path)
{
    std::FILE *file = nullptr;
    const int result = PLT_OpenForReading(path, PLT_FILE_SIZE_MAX, &file);
    if (file != nullptr)
        std::fclose(file);
    // It opens, and its reader has failed all the same.
    return result == PLT_FILE_OK ? "cannot be read" : PLT_FileErrorText(result);
}

std::string PLT_ReadFailureText(const std::string &path)
{
    return "Could not read the file " + path + ".";
}
