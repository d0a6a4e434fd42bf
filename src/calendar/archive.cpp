// Reading believes no size before the bytes are there: buffers grow with what has been
// read, and a member shorter than its header says is as bad as one with a wrong check.
#include "calendar/archive.h"

#include "calendar/crc32.h"
#include "platform/plain_file.h"
#include "platform/safe_file.h"
#include "text/txfrw.h"
#include "text/words.h"
#include "text/xscan.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr size_t FIRST_BLOCK = 4096;              // bytes that are got before anything is known
constexpr size_t HEADER_MAX = QAR_NAME_MAX + 100; // characters: the name, four numbers, the mark
constexpr int ERR_BAD_MEMBER = -2;

// Closed on every way out.
struct OpenFile {
    std::FILE *file = nullptr;
    explicit OpenFile(const char *name)
    {
        (void)PLT_OpenForReading(name, PLT_FILE_ANY_SIZE, &file);
    }
    ~OpenFile()
    {
        if (file != nullptr)
            std::fclose(file);
    }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
};

// A header's line without its end; false at the end of the file or when it does not end.
bool ReadHeaderLine(std::FILE *file, std::string *line)
{
    line->clear();
    for (int c = std::getc(file); c != EOF && line->size() <= HEADER_MAX; c = std::getc(file)) {
        if (c == '\n')
            return true;
        line->push_back(static_cast<char>(c));
    }
    return false;
}

// A number behind `prefix`; false when it does not stand there or is too large to be one.
bool ReadNumber(const char **cursor, const char *prefix, const char *digits, int base,
                unsigned long long most, unsigned long long *number)
{
    if (xscan(prefix, cursor) < 0)
        return false;
    const char *start = *cursor;
    if (xscan(digits, cursor) < 0)
        return false;
    *number = std::strtoull(start, nullptr, base); // saturates
    return *number <= most;
}

bool ParseHeader(const char *line, QarHeader *header)
{
    unsigned long long index, count, size, check;
    if (!ReadNumber(&line, QAR_MAGIC "* ", "@#0-9.", 10, INT_MAX, &index) ||
        !ReadNumber(&line, "* //* ", "@#0-9.", 10, INT_MAX, &count) ||
        !ReadNumber(&line, "* ;* ", "@#0-9.", 10, INT_MAX, &size) ||
        !ReadNumber(&line, "* ;* 0x", "@#0-9a-fA-F.", 16, UINT32_MAX, &check) ||
        xscan("* ;* \"", &line) < 0)
        return false;
    // The last quote closes the name, which may hold quotes of its own.
    const char *quote = std::strrchr(line, '"');
    header->index = static_cast<long>(index);
    header->count = static_cast<long>(count);
    header->size = static_cast<long>(size);
    header->check = static_cast<uint32_t>(check);
    header->name = quote != nullptr ? std::string(line, quote) : std::string(line);
    return true;
}

// Content of the member behind its header: 0, or -1 when it is not what the header says.
int ReadMember(std::FILE *file, const QarHeader &header, std::string *content)
{
    uint32_t check;
    const size_t size = static_cast<size_t>(header.size);
    if (QAR_Read_content(file, size, content, &check) == 0 && content->size() == size &&
        check == header.check)
        return 0;
    content->clear();
    return -1;
}

// Steps from the first member to the wanted one; false when it is not there.
bool FindMember(std::FILE *file, const char *name, QarHeader *header)
{
    if (QAR_Get_file_header(file, header) != 0 || header->index != 1)
        return false;
    // The members are numbered in their order: another number is no header of this archive.
    while (header->name != name) {
        const long index = header->index, count = header->count;
        if (index >= count || std::fseek(file, header->size, SEEK_CUR) != 0 ||
            QAR_Get_file_header(file, header) != 0 || header->index != index + 1 ||
            header->count != count)
            return false;
    }
    return true;
}

} // namespace

int QAR_Get_file_header(std::FILE *file, QarHeader *header)
{
    std::string line;
    return file != nullptr && ReadHeaderLine(file, &line) && ParseHeader(line.c_str(), header) ? 0
                                                                                               : -1;
}

int QAR_Put_file_header(std::FILE *file, const QarHeader &header)
{
    if (file == nullptr || header.index < 1 || header.index > header.count || header.size < 0 ||
        header.name.size() > QAR_NAME_MAX || header.name.find('\n') != std::string::npos)
        return -1;
    // A name with a line's end in it would have ended the header.
    const int written =
        std::fprintf(file, QAR_MAGIC "%ld/%ld;%ld;0x%08lx;\"%s\"\n", header.index, header.count,
                     header.size, static_cast<unsigned long>(header.check), header.name.c_str());
    return written > 0 ? 0 : -1;
}

int QAR_Read_content(std::FILE *file, size_t size, std::string *content, uint32_t *check)
{
    content->clear();
    *check = 0;
    try {
        // A quarter more each time: few copies, and never much more than the file has.
        size_t room = FIRST_BLOCK;
        for (size_t got = 1; got > 0 && content->size() < size; room += room / 4 + FIRST_BLOCK) {
            const size_t before = content->size();
            content->resize(std::min(size, room));
            got = std::fread(&(*content)[before], 1, content->size() - before, file);
            content->resize(before + got);
            *check = Crc32_LSBNext(*check, content->data() + before, got, CRC32_POLYNOMIAL);
        }
    } catch (const std::bad_alloc &) {
        // The file may be larger than this machine's memory.
        content->clear();
        return -1;
    }
    return std::ferror(file) != 0 ? -1 : 0;
}

int QAR_Read_file(const char *fileName, size_t limit, std::string *content, uint32_t *check)
{
    const OpenFile open(fileName);
    return open.file != nullptr ? QAR_Read_content(open.file, limit, content, check) : -1;
}

int QAR_Add_file(std::FILE *archive, const char *fileName, long index, long count)
{
    std::string content;
    QarHeader header;
    // One byte more than a member may hold shows a file that would be cut.
    if (QAR_Read_file(fileName, QAR_FILE_MAX + 1, &content, &header.check) != 0 ||
        content.size() > QAR_FILE_MAX)
        return -1;
    header.index = index;
    header.count = count;
    header.size = static_cast<long>(content.size());
    header.name = fileName;
    if (QAR_Put_file_header(archive, header) != 0)
        return -1;
    return std::fwrite(content.data(), 1, content.size(), archive) == content.size() ? 0 : -1;
}

int QAR_CheckMembers(const std::vector<std::string> &fileNames, std::string *message)
{
    for (size_t i = 0; i < fileNames.size(); ++i) {
        const std::string &name = fileNames[i];
        const size_t path = name.find_last_of("/\\:");
        std::FILE *file = nullptr;
        const int result = PLT_OpenForReading(name, QAR_FILE_MAX, &file);
        if (file != nullptr)
            std::fclose(file);
        if (path != std::string::npos)
            *message = "member '" + name + "' has a path, but a reader looks for '" +
                       name.substr(path + 1) + "': name it so, in its own folder";
        else if (result == PLT_FILE_ERR_LARGE)
            *message = "member '" + name + "' has more than 128 MiB";
        else if (result != PLT_FILE_OK)
            *message = "member '" + name + "' " + PLT_FileErrorText(result);
        else if (TXT_Visible(name) != name || name.size() > QAR_NAME_MAX) // control characters
            *message = "the name of member " + std::to_string(i + 1) + " does not fit a header";
        else if (std::find(fileNames.begin(), fileNames.begin() + static_cast<long>(i), name) !=
                 fileNames.begin() + static_cast<long>(i))
            *message = "member '" + name + "' is given twice";
        else
            continue;
        return -1;
    }
    return 0;
}

int QAR_Make(const char *archiveName, const std::vector<std::string> &fileNames)
{
    SafeFile safe;
    if (fileNames.empty() || PLT_BeginSave(&safe, archiveName, "wb") != 0)
        return -1;
    const long count = static_cast<long>(fileNames.size());
    for (long i = 0; i < count; i++) { // the header says how many follow: all or none
        if (QAR_Add_file(safe.file, fileNames[static_cast<size_t>(i)].c_str(), i + 1, count) != 0) {
            PLT_CancelSave(&safe);
            return -1;
        }
    }
    return PLT_CommitSave(&safe);
}

// The arguments of a packing program: its name, "-a", the archive, the members.
int QAR_Create_archiv(int argumentCount, const char *const *arguments)
{
    if (argumentCount < 4 || std::strcmp(arguments[1], "-a") != 0)
        return -1;
    return QAR_Make(arguments[2],
                    std::vector<std::string>(arguments + 3, arguments + argumentCount));
}

int QAR_Extract_file(std::string *content, const char *archiveName, const char *memberName)
{
    content->clear();
    const OpenFile open(archiveName);
    QarHeader header;
    if (open.file == nullptr || !FindMember(open.file, memberName, &header))
        return -1;
    return ReadMember(open.file, header, content);
}

int QAR_Extract_txfrw(const char *archiveName, const char *memberName)
{
    std::string content;
    if (QAR_Extract_file(&content, archiveName, memberName) != 0)
        return -1;
    return TXFRW_Create(memberName, "r", content.data(), content.size());
}

int QAR_Extract(std::string *content, std::string *name, std::FILE *archive)
{
    QarHeader header;
    content->clear();
    if (QAR_Get_file_header(archive, &header) != 0 || header.index < 1 ||
        header.index > header.count)
        return ERR_BAD_MEMBER;
    *name = header.name;
    if (ReadMember(archive, header, content) != 0)
        return std::ferror(archive) != 0 ? ERR_BAD_MEMBER : -1;
    // How many follow: 0 ends the caller's loop.
    return static_cast<int>(header.count - header.index);
}
