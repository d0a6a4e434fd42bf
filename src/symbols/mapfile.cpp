// The two linker map formats, read line by line into the node tables. A map is a listing for
// people: what a line means is told by its columns and words, and lines of no rule are passed
// over in silence.
#include "symbols/mapfile.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <vector>

#include "calendar/archive.h"
#include "platform/plain_file.h"
#include "settings/settings.h"
#include "symbols/flash_info.h"
#include "symbols/listener.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/txfr.h"

namespace {

constexpr int LINE_SIZE = 512; // a longer line goes on as the next one

// Columns of a C166 map line, from 0.
constexpr size_t C166_LINE_MIN = 32;
constexpr size_t C166_NAME = 9;
constexpr size_t C166_SYMBOL_TYPE = 18;
constexpr size_t C166_SYMBOL_NAME = 31;
constexpr size_t C166_SHORT_TYPE = 40; // lines of 40 to 44 characters
constexpr size_t C166_SHORT_MAX = 44;
constexpr size_t C166_CLASS = 46;
constexpr size_t C166_SECTION = 59;

// Columns of a TMS map line: address, name (some linkers indent it by one more).
constexpr size_t TMS_NAME = 11;
constexpr size_t TMS_NAME_PAGED = 9; // at or behind: after the address and a blank
constexpr size_t PAGE_MAX = 3;       // characters of a page in front of it
constexpr uint32_t TMS_ADDRESS_LIMIT = 0x80000000u;
constexpr uint32_t TMS_BYTES_PER_ADDRESS = 2;

const char *const aszMClass1[] = {"NDATA", "NCONST", "SDATA", "FDATA", "FCONST"};
const char *const aszMClass2[] = {"byte", "word", "dword", "cmplx", "int", "long", "float"};
const char *const aszMClass3[] = {"byte", "word", "NULL"};
const char *const aszMClass4[] = {"?FD?", "?FD0?"};

template <int N> bool IsWordOf(const char *text, const char *const (&table)[N])
{
    return cmp_sz2aszKeyword(text, table, N);
}

int HexDigits(const char *text, int limit)
{
    int digits = 0;
    while (digits < limit && std::isxdigit(static_cast<unsigned char>(text[digits])))
        ++digits;
    return digits;
}

bool EndsWord(char c)
{
    return c == '\0' || std::isspace(static_cast<unsigned char>(c));
}

// A name like those of isID166, but of more characters than a node holds.
bool IsLongName(const char *text)
{
    if (!SYM_IsNameChar(*text) || std::isdigit(static_cast<unsigned char>(*text)))
        return false;
    const char *end = text;
    while (SYM_IsNameChar(*end))
        ++end;
    return end - text > NODE_NAME_MAX && EndsWord(*end);
}

typedef int (*LineParser)(const char *line, uint32_t *address, const char **name);

// The symbols first and the table then: what turns out to be no map changes nothing.
int ReadNodes(const char *fileName, LineParser parse, VarNode *table, int *count)
{
    const int handle = TXFR_Open(fileName);
    if (handle < 0)
        return SYM_MAP_ERR_OPEN;
    std::vector<SYM_Symbol> symbols;
    std::set<std::string> longNames; // a map may list a symbol twice
    char line[LINE_SIZE];
    while (TXFR_RdLine(handle, line, LINE_SIZE) >= 0) {
        uint32_t address = 0;
        const char *name = nullptr;
        const int kind = parse(line, &address, &name);
        if (kind == SYM_MAP_SYMBOL)
            symbols.push_back({address, name});
        else if (kind == SYM_MAP_LONG_NAME && longNames.size() < NODES_MAX)
            longNames.insert(std::string(name, std::strcspn(name, " \t")));
    }
    if (symbols.empty()) // a watch list, a script, the map of the other processor
        return SYM_MAP_ERR_NO_SYMBOL;
    int refused = 0;
    SYM_ReplaceNodes(table, count, symbols, &refused);
    SYM_WarnRefused(refused, static_cast<int>(longNames.size()));
    return 0;
}

} // namespace

const char *SYM_MapErrorText(int result)
{
    if (result == SYM_MAP_ERR_NO_SYMBOL)
        return "holds no symbol for the selected processor";
    return result == SYM_MAP_ERR_OPEN ? PLT_FileErrorText(PLT_FILE_ERR_OPEN) : "is damaged";
}

bool IsHexAddr(const char *text)
{
    const int digits = HexDigits(text, 6);
    return digits >= 5 && (text[digits] == 'H' || text[digits] == 'h');
}

bool IsTMSHexAddr(const char *text)
{
    return HexDigits(text, 8) == 8 && text[8] == ' ';
}

bool isID166(const char *text)
{
    if (!SYM_IsNameChar(*text) || std::isdigit(static_cast<unsigned char>(*text)))
        return false;
    int length = 1;
    while (length <= NODE_NAME_MAX && SYM_IsNameChar(text[length]))
        ++length;
    return length <= NODE_NAME_MAX && EndsWord(text[length]);
}

bool cmp_sz2szID(const char *text, const char *word)
{
    return cmp_sz2szID_Start(text, word) && EndsWord(text[std::strlen(word)]);
}

bool cmp_sz2szID_Start(const char *text, const char *word)
{
    return std::strncmp(text, word, std::strlen(word)) == 0;
}

bool cmp_sz2aszKeyword(const char *text, const char *const *table, int count)
{
    for (int i = 0; i < count; ++i)
        if (cmp_sz2szID(text, table[i]))
            return true;
    return false;
}

bool cmp_sz2aszKwdStart(const char *text, const char *const *table, int count)
{
    for (int i = 0; i < count; ++i)
        if (cmp_sz2szID_Start(text, table[i]))
            return true;
    return false;
}

int SYM_ParseC166MapLine(const char *line, uint32_t *address, const char **name)
{
    const size_t length = std::strlen(line);
    if (length < C166_LINE_MIN || !IsHexAddr(line) || !isID166(line + C166_NAME))
        return SYM_MAP_NO_SYMBOL;
    *address = static_cast<uint32_t>(std::strtoul(line, nullptr, 16));
    if (cmp_sz2szID(line + C166_NAME, "SYMBOL")) {
        *name = line + C166_SYMBOL_NAME;
        if (!IsWordOf(line + C166_SYMBOL_TYPE, aszMClass2))
            return SYM_MAP_NO_SYMBOL;
        return IsLongName(*name) ? SYM_MAP_LONG_NAME : SYM_MAP_SYMBOL;
    }
    // The name of a plain line counts when its type or class says that it is data.
    *name = line + C166_NAME;
    bool isData = false;
    if (length >= C166_SHORT_TYPE && length <= C166_SHORT_MAX)
        isData = IsWordOf(line + C166_SHORT_TYPE, aszMClass3);
    else if (length > C166_CLASS && IsWordOf(line + C166_CLASS, aszMClass1))
        isData = true;
    else
        isData = length > C166_SECTION && cmp_sz2aszKwdStart(line + C166_SECTION, aszMClass4, 2);
    return isData ? SYM_MAP_SYMBOL : SYM_MAP_NO_SYMBOL;
}

int SYM_ParseTMSMapLine(const char *line, uint32_t *address, const char **name)
{
    // Newer linkers write the page of a symbol ("0", "1", "abs") in front of its address.
    size_t page = std::strspn(line, "0123456789");
    if (page == 0 && cmp_sz2szID(line, "abs"))
        page = 3;
    const size_t blanks = std::strspn(line + page, " ");
    const bool isPaged = page >= 1 && page <= PAGE_MAX && blanks > 0;
    const char *at = isPaged ? line + page + blanks : line;
    if (!IsTMSHexAddr(at) || at[0] != '0' || std::strlen(at) <= TMS_NAME_PAGED)
        return SYM_MAP_NO_SYMBOL;
    const char *start = at + TMS_NAME_PAGED + std::strspn(at + TMS_NAME_PAGED, " ");
    if (!isPaged) { // without pages the name has its column
        start = std::strlen(at) > TMS_NAME ? at + TMS_NAME : "";
        if (*start == '\0' || SYM_IsNameChar(start[-1])) // begins earlier: not to be cut in two
            return SYM_MAP_NO_SYMBOL;
        if (!SYM_IsNameChar(*start))
            ++start;
    }
    const unsigned long words = std::strtoul(at, nullptr, 16);
    if (words >= TMS_ADDRESS_LIMIT)
        return SYM_MAP_NO_SYMBOL;
    *address = static_cast<uint32_t>(words) * TMS_BYTES_PER_ADDRESS;
    *name = start;
    if (IsLongName(start))
        return SYM_MAP_LONG_NAME;
    return isID166(start) ? SYM_MAP_SYMBOL : SYM_MAP_NO_SYMBOL;
}

int ReadMap(const char *fileName)
{
    return ReadNodes(fileName, SYM_ParseC166MapLine, aVarNode, &nNodes);
}

int Read_TMS_Map(const char *fileName)
{
    // A combined archive says so in its first bytes. What cannot be opened or read (a folder)
    // is told of by the reader of lines.
    std::FILE *file = nullptr;
    bool isArchive = false;
    if (PLT_OpenForReading(fileName, PLT_FILE_ANY_SIZE, &file) == PLT_FILE_OK) {
        char magic[sizeof QAR_MAGIC - 1];
        isArchive = std::fread(magic, 1, sizeof magic, file) == sizeof magic &&
                    std::memcmp(magic, QAR_MAGIC, sizeof magic) == 0;
        std::fclose(file);
    }
    if (isArchive)
        return Read_TMS_CombiMap(fileName);
    if (IsWordAddressing(Procesor))
        return ReadNodes(fileName, SYM_ParseTMSMapLine, aVarNode, &nNodes);
    // The map of a TMS320 behind a C166: the mailbox takes its addresses as words.
    const int result = ReadNodes(fileName, SYM_ParseTMSMapLine, aVarTMSNode, &nTMSNodes);
    if (result == 0) {
        SYM_BytesToWords(aVarTMSNode, nTMSNodes);
        openTMSStruct = OPEN_MAP_FILE;
    }
    return result;
}

namespace {

// What both loaders do once aVarNode holds a new map.
void UseNewMap(const char *fileName)
{
    mapFile = fileName;
    openStruct = OPEN_MAP_FILE;
    TMF_Rebuild();
    SYM_NamesChanged(SYM_MAP_LOADED);
}

} // namespace

int map2node(const char *fileName)
{
    const int result = ReadMap(fileName);
    if (result == 0)
        UseNewMap(fileName);
    return result;
}

int TMSmap2node(const char *fileName)
{
    const int result = Read_TMS_Map(fileName);
    if (result == 0 && IsWordAddressing(Procesor))
        UseNewMap(fileName);
    if (result == 0 && !IsWordAddressing(Procesor)) {
        TMS_mapFile = fileName;
        SYM_NamesChanged(SYM_TMS_MAP_LOADED);
    }
    return result;
}
