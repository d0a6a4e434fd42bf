// The two linker map formats, read line by line into the node tables.
#include "symbols/mapfile.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "calendar/archive.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/flash_info.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/txfr.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"

namespace {

constexpr int LINE_SIZE = 512; // a longer line goes on as the next one
constexpr int CANNOT_OPEN = -2;

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

bool IsIdentifierChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '?';
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

// The name of a plain (not SYMBOL) line counts when its type or class says that it is data.
bool IsDataLine(const char *line, size_t length)
{
    if (length >= C166_SHORT_TYPE && length <= C166_SHORT_MAX)
        return IsWordOf(line + C166_SHORT_TYPE, aszMClass3);
    if (length > C166_CLASS && IsWordOf(line + C166_CLASS, aszMClass1))
        return true;
    return length > C166_SECTION && cmp_sz2aszKwdStart(line + C166_SECTION, aszMClass4, 2);
}

// The first bytes of a file; false when it cannot be opened or read (a folder).
bool ReadMagic(const char *fileName, std::string *magic)
{
    std::FILE *file = std::fopen(fileName, "rb");
    if (file == nullptr)
        return false;
    char bytes[3];
    const size_t count = std::fread(bytes, 1, sizeof bytes, file);
    const bool readable = std::ferror(file) == 0;
    std::fclose(file);
    magic->assign(bytes, count);
    return readable;
}

typedef bool (*LineParser)(const char *line, uint32_t *address, const char **name);

int ReadNodes(const char *fileName, LineParser parse, VarNode *table, int *count)
{
    std::string magic;
    const int handle = ReadMagic(fileName, &magic) ? TXFR_Open(fileName) : -1;
    if (handle < 0)
        return CANNOT_OPEN;
    FreeNodes(table, count);
    char line[LINE_SIZE];
    int refused = 0;
    while (TXFR_RdLine(handle, line, LINE_SIZE) >= 0) {
        uint32_t address = 0;
        const char *name = nullptr;
        if (parse(line, &address, &name))
            VRN_AddNode(table, count, address, name, &refused);
    }
    VRN_SortByName(table, *count);
    VRN_RemoveDuplicates(table, count);
    if (table == aVarNode)
        SortMapNdxByAddr();
    MAP_ReportRefused(refused);
    return 0;
}

} // namespace

void MAP_ReportRefused(int refused)
{
    if (refused > 0)
        MessagePopup("Map file", "The map has " + std::to_string(refused) +
                                     " symbols more than the table can hold (" +
                                     std::to_string(NODES_MAX) + "). They were left out.");
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
    if (!IsIdentifierChar(*text) || std::isdigit(static_cast<unsigned char>(*text)))
        return false;
    int length = 1;
    while (length <= NODE_NAME_MAX && IsIdentifierChar(text[length]))
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

bool MAP_ParseC166Line(const char *line, uint32_t *address, const char **name)
{
    const size_t length = std::strlen(line);
    if (length < C166_LINE_MIN || !IsHexAddr(line) || !isID166(line + C166_NAME))
        return false;
    *address = static_cast<uint32_t>(std::strtoul(line, nullptr, 16));
    if (cmp_sz2szID(line + C166_NAME, "SYMBOL")) {
        *name = line + C166_SYMBOL_NAME;
        return IsWordOf(line + C166_SYMBOL_TYPE, aszMClass2);
    }
    *name = line + C166_NAME;
    return IsDataLine(line, length);
}

bool MAP_ParseTMSLine(const char *line, uint32_t *address, const char **name)
{
    if (!IsTMSHexAddr(line) || line[0] != '0' || std::strlen(line) <= TMS_NAME)
        return false;
    const char *start = line + TMS_NAME;
    if (IsIdentifierChar(start[-1])) // a name that begins earlier, not one to cut in two
        return false;
    if (!IsIdentifierChar(*start))
        ++start;
    const unsigned long words = std::strtoul(line, nullptr, 16);
    if (words >= TMS_ADDRESS_LIMIT || !isID166(start))
        return false;
    *address = static_cast<uint32_t>(words) * TMS_BYTES_PER_ADDRESS;
    *name = start;
    return true;
}

int ReadMap(const char *fileName)
{
    return ReadNodes(fileName, MAP_ParseC166Line, aVarNode, &nNodes);
}

int Read_TMS_Map(const char *fileName)
{
    std::string magic;
    if (ReadMagic(fileName, &magic) && magic == QAR_MAGIC)
        return Read_TMS_CombiMap(fileName);
    if (IsWordAddressing(Procesor))
        return ReadNodes(fileName, MAP_ParseTMSLine, aVarNode, &nNodes);
    const int result = ReadNodes(fileName, MAP_ParseTMSLine, aVarTMSNode, &nTMSNodes);
    if (result == 0) {
        VRN_BytesToWords(aVarTMSNode, nTMSNodes);
        openTMSStruct = OPEN_MAP_FILE;
    }
    return result;
}

namespace {

// What both loaders do once aVarNode holds a new map.
void TakeMap(const char *fileName)
{
    mapFile = fileName;
    openStruct = OPEN_MAP_FILE;
    TMF_Rebuild();
    VRN_RefreshVars();
}

} // namespace

int map2node(const char *fileName)
{
    const int result = ReadMap(fileName);
    if (result == 0)
        TakeMap(fileName);
    return result;
}

int TMSmap2node(const char *fileName)
{
    const int result = Read_TMS_Map(fileName);
    if (result == 0 && IsWordAddressing(Procesor))
        TakeMap(fileName);
    if (result == 0 && !IsWordAddressing(Procesor)) {
        LIT_ResolveAll(true);
        LSV_ShowAddresses();
    }
    return result;
}
