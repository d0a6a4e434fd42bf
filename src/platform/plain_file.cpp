// Every file is examined once it is open: between a look at its name and the opening it could
// become another one.
#include "platform/plain_file.h"

#include <algorithm>

#include "platform/system.h"

namespace {

constexpr size_t BLOCK_SIZE = 65536;

} // namespace

bool PLF_Exists(const std::string &path)
{
    PLT_FileStamp stamp;
    return PLT_GetFileStamp(path, &stamp) == 0;
}

int PLF_Open(const std::string &path, int64_t sizeMax, std::FILE **file)
{
    int64_t size = 0;
    const int result = path.empty() ? PLF_ERR_OPEN : PLT_OpenPlainFile(path, file, &size);
    if (result == PLF_OK && size <= sizeMax)
        return PLF_OK;
    if (result == PLF_OK)
        std::fclose(*file);
    *file = nullptr;
    return result == PLF_OK ? PLF_ERR_LARGE : result;
}

int PLF_ReadAll(const std::string &path, int64_t sizeMax, std::string *content)
{
    content->clear();
    std::FILE *file = nullptr;
    const int result = PLF_Open(path, sizeMax, &file);
    if (result != PLF_OK)
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
    return isGood ? PLF_OK : PLF_ERR_OPEN;
}

const char *PLF_ErrorText(int result)
{
    if (result == PLF_ERR_SPECIAL)
        return "is a folder, device or pipe";
    return result == PLF_ERR_LARGE ? "is too large" : "cannot be opened";
}

const char *PLF_WhyUnreadable(const std::string &path)
{
    std::FILE *file = nullptr;
    const int result = PLF_Open(path, PLF_SIZE_MAX, &file);
    if (file != nullptr)
        std::fclose(file);
    // It opens, and its reader has failed all the same.
    return result == PLF_OK ? "cannot be read" : PLF_ErrorText(result);
}

std::string PLF_FailureText(const std::string &path)
{
    return "Could not read the file " + path + ".";
}
