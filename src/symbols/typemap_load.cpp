// Reads type map files into the three tables. The first bad line ends the reading, and all that
// was read goes: half a type map would give wrong addresses. The tables are globals that everything
// looks into, so that a map for the user is loaded beside them and changes places when it is good.
#include <cstdlib>
#include <cstring>

#include "symbols/listener.h"
#include "symbols/typemap.h"
#include "text/txfr.h"
#include "text/txfrw.h"
#include "text/xscan.h"

TMF_Decl *TMF_paDefVars = nullptr;
int32_t TMF_cnDefVars = 0;
TMF_Decl *TMF_paDefTypes = nullptr;
int32_t TMF_cnDefTypes = 0;
TMF_Struct *TMF_paDefStructCts = nullptr;
int32_t TMF_cnDefStructCts = 0;
// Line at which loading gave up, from 1; 0 when the file could not even be opened.
int TMF_nErrorLine = 0;
std::string TMF_szFileName;

namespace {

constexpr int STREAM_LINE_SIZE = 500; // 498 characters: a line that fills it counts as cut
constexpr int TEXT_LINE_SIZE = 1000;  // a line of a whole-file text always fits
constexpr int FIRST_RECORDS = 64;     // tables grow from here: a count may promise too much

// Where lines come from: a whole-file text or a stream.
struct LineSource {
    int handle;
    bool isStream;
    char line[TEXT_LINE_SIZE];
};

// A line that was cut is no line: half a chain of codes would be another type.
bool ReadSourceLine(LineSource *source)
{
    ++TMF_nErrorLine;
    if (!source->isStream)
        return TXFRW_ReadLine(source->handle, source->line, TEXT_LINE_SIZE) >= 0;
    return TXFR_RdLine(source->handle, source->line, STREAM_LINE_SIZE) >= 0 &&
           TXFR_IsBrokenLine(source->handle) != 1;
}

const char *AfterBlanks(const char *text)
{
    xscan("* ", &text);
    return text;
}

// Saturates: what is promised is never allocated before it is there.
int32_t ReadCount(const char *digits)
{
    const long value = std::strtol(digits, nullptr, 10);
    return value > INT32_MAX ? INT32_MAX : static_cast<int32_t>(value);
}

// The count of a section header such as "## 12 VARS"; -1 when the line is none.
int32_t ReadHeader(LineSource *source, const char *pattern)
{
    if (!ReadSourceLine(source))
        return -1;
    const char *cursor = source->line;
    if (xscan(pattern, &cursor) < 0)
        return -1;
    cursor = source->line;
    xscan("* /#/#* ", &cursor);
    return ReadCount(cursor);
}

// The line has been checked by TMF_IsVTLineOk: patterns only find their places here.
void ParseDecl(const char *line, int mode, TMF_Decl *decl)
{
    std::memset(decl, 0, sizeof *decl);
    char *name = decl->name;
    xscan("*^/'./'", &line);
    xscan("#_a-zA-Z.*#_0-9a-zA-Z.", &line, &name);
    xscan(mode == TMF_MODE_VARS ? "*^/._." : "*^_.", &line);
    // Codes beyond the tenth are dropped: no declaration of a compiler has so many.
    while (decl->codes < TMF_CODES_MAX && xscan("/_/@", &line) >= 0) {
        char *end = nullptr;
        const unsigned long code = std::strtoul(line, &end, 0);
        decl->chain[decl->codes++] = code > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(code);
        line = end;
    }
}

// Makes room for one more record in a table that is to hold `wanted`.
template <class Record> bool Reserve(Record **table, int32_t used, int32_t *room, int32_t wanted)
{
    if (used < *room)
        return true;
    int64_t larger = *room == 0 ? FIRST_RECORDS : static_cast<int64_t>(*room) * 2;
    larger = larger < wanted ? larger : wanted;
    // The old table stays whole when there is no memory for a larger one.
    void *grown = std::realloc(*table, static_cast<size_t>(larger) * sizeof(Record));
    if (grown == nullptr)
        return false;
    *table = static_cast<Record *>(grown);
    *room = static_cast<int32_t>(larger);
    return true;
}

bool LoadDecls(LineSource *source, int mode, int32_t wanted, TMF_Decl **table, int32_t *count,
               int32_t *room)
{
    for (*count = 0; *count < wanted; ++*count) {
        if (!ReadSourceLine(source) || !TMF_IsVTLineOk(source->line, mode) ||
            !Reserve(table, *count, room, wanted))
            return false;
        ParseDecl(source->line, mode, *table + *count);
    }
    return true;
}

void FreeDecls(TMF_Decl **table, int32_t *count)
{
    std::free(*table);
    *table = nullptr;
    *count = 0;
}

int LoadDeclSection(LineSource source, int mode, const char *header, TMF_Decl **table,
                    int32_t *count)
{
    FreeDecls(table, count);
    TMF_ForgetNames();
    const int32_t wanted = ReadHeader(&source, header);
    int32_t room = 0;
    if (wanted >= 0 && LoadDecls(&source, mode, wanted, table, count, &room))
        return 0;
    FreeDecls(table, count);
    return -1;
}

int LoadVars(const LineSource &source)
{
    return LoadDeclSection(source, TMF_MODE_VARS, "* /#/#* #1-9.*#0-9.* VARS* #", &TMF_paDefVars,
                           &TMF_cnDefVars);
}

int LoadTypes(const LineSource &source)
{
    return LoadDeclSection(source, TMF_MODE_TYPES, "* /#/#* @#0-9. TYPES* #", &TMF_paDefTypes,
                           &TMF_cnDefTypes);
}

void FreeStructs()
{
    for (int32_t i = 0; i < TMF_cnDefStructCts; ++i)
        std::free(TMF_paDefStructCts[i].paMembers);
    std::free(TMF_paDefStructCts);
    TMF_paDefStructCts = nullptr;
    TMF_cnDefStructCts = 0;
    TMF_ForgetLayouts();
}

int LoadStructs(LineSource source)
{
    FreeStructs();
    const int32_t wanted = ReadHeader(&source, "* /#/#* #1-9.*#0-9.* STRUCTS* #");
    bool ok = wanted >= 0;
    int32_t room = 0;
    while (ok && TMF_cnDefStructCts < wanted) {
        int32_t members = 0;
        ok = ReadSourceLine(&source) && TMF_ParseStructHead(source.line, &members) &&
             Reserve(&TMF_paDefStructCts, TMF_cnDefStructCts, &room, wanted);
        if (!ok)
            break;
        // Counted before its members are read: what a bad line leaves is freed with the rest.
        TMF_Struct *record = &TMF_paDefStructCts[TMF_cnDefStructCts++];
        *record = TMF_Struct();
        ok = LoadDecls(&source, TMF_MODE_MEMBER, members, &record->paMembers, &record->members,
                       &record->allocated);
    }
    if (!ok)
        FreeStructs();
    // Layouts are kept by the place of the table, which may be that of the old one.
    TMF_ForgetLayouts();
    return ok ? 0 : -1;
}

LineSource Text(int handle)
{
    return LineSource{handle, false, {}};
}

LineSource Stream(int handle)
{
    return LineSource{handle, true, {}};
}

int LoadSections(const LineSource &source)
{
    TMF_nErrorLine = 0;
    if (LoadVars(source) == 0 && LoadTypes(source) == 0 && LoadStructs(source) == 0)
        return 0;
    TMF_FreeTables();
    return -1;
}

struct Tables {
    TMF_Decl *vars, *types;
    TMF_Struct *structs;
    int32_t varCount, typeCount, structCount;
};

// The tables leave the globals, or come back; whoever holds them owns them.
void MoveTablesIn(const Tables &tables)
{
    TMF_paDefVars = tables.vars;
    TMF_cnDefVars = tables.varCount;
    TMF_paDefTypes = tables.types;
    TMF_cnDefTypes = tables.typeCount;
    TMF_paDefStructCts = tables.structs;
    TMF_cnDefStructCts = tables.structCount;
    TMF_ForgetLayouts();
    TMF_ForgetNames();
}

Tables MoveTablesOut()
{
    const Tables tables = {TMF_paDefVars, TMF_paDefTypes, TMF_paDefStructCts,
                           TMF_cnDefVars, TMF_cnDefTypes, TMF_cnDefStructCts};
    MoveTablesIn(Tables{});
    return tables;
}

// Loads into empty tables; those there were come back when the loader fails.
template <class Loader> int ReplaceTables(Loader load)
{
    const Tables old = MoveTablesOut();
    const int result = load();
    if (result != 0) {
        MoveTablesIn(old);
        return result;
    }
    // The old tables go last: up to here they could have come back.
    const Tables loaded = MoveTablesOut();
    MoveTablesIn(old);
    TMF_FreeTables();
    MoveTablesIn(loaded);
    return 0;
}

} // namespace

bool TMF_IsVTLineOk(const char *line, int mode)
{
    if (mode != TMF_MODE_MEMBER && xscan("* @#0-9.* /:", &line) < 0)
        return false;
    const char *quote = AfterBlanks(line);
    const bool isUnnamed = mode == TMF_MODE_TYPES && std::strncmp(quote, "''", 2) == 0;
    const int length = xscan("* /'#_a-zA-Z.*#_0-9a-zA-Z./'", &line);
    if (length < 0 && !isUnnamed)
        return false;
    if (length < 0)
        line = quote + 2;
    else if (line - quote - 2 >= TMF_NAME_SIZE) // cut, it might be another variable's name
        return false;
    if (xscan("* /_/@0x@#0-9a-fA-F.", &line) < 0)
        return false;
    while (xscan("/_/@0x@#0-9a-fA-F.", &line) >= 0) { // codes stand without a blank between
    }
    return xscan("* #", &line) >= 0;
}

bool TMF_ParseStructHead(const char *line, int32_t *members)
{
    const char *cursor = line;
    if (xscan("* /#* @#0-9.* //* #1-9.*#0-9.* /:#", &cursor) < 0)
        return false;
    *members = ReadCount(AfterBlanks(std::strchr(line, '/') + 1));
    return true;
}

int TMF_LoadVarTableFrw(int textHandle)
{
    return LoadVars(Text(textHandle));
}

int TMF_LoadTypeTableFrw(int textHandle)
{
    return LoadTypes(Text(textHandle));
}

int TMF_LoadStructTableFrw(int textHandle)
{
    return LoadStructs(Text(textHandle));
}

int TMF_LoadVarTable(int streamHandle)
{
    return LoadVars(Stream(streamHandle));
}

int TMF_LoadTypeTable(int streamHandle)
{
    return LoadTypes(Stream(streamHandle));
}

int TMF_LoadStructTable(int streamHandle)
{
    return LoadStructs(Stream(streamHandle));
}

int TMF_LoadMapFrw(int textHandle)
{
    TXFRW_SetWrkLineNo(textHandle, 0); // whoever made the text may have stopped elsewhere
    return LoadSections(Text(textHandle));
}

int TMF_LoadMap(const char *fileName)
{
    TMF_nErrorLine = 0;
    const int handle = TXFRW_Open(fileName, "r");
    if (handle < 0)
        return -1;
    if (TXFRW_GetCnLines(handle) < TXFRW_LINES_MAX) {
        const int result = TMF_LoadMapFrw(handle);
        TXFRW_Close(handle);
        return result;
    }
    // As many lines as a whole-file text holds: it may have been cut there. A stream is not.
    TXFRW_Close(handle);
    const int stream = TXFR_Open(fileName);
    if (stream < 0)
        return -1;
    const int result = LoadSections(Stream(stream));
    TXFR_Close(stream);
    return result;
}

int TMF_ReplaceMapFrw(int textHandle)
{
    const int result = ReplaceTables([textHandle] { return TMF_LoadMapFrw(textHandle); });
    if (result == 0) // there is no file that could be named
        TMF_szFileName.clear();
    return result;
}

int TMF_OpenMap(const char *fileName)
{
    const int result = ReplaceTables([fileName] { return TMF_LoadMap(fileName); });
    if (result != 0)
        return result;
    TMF_szFileName = fileName;
    TMF_Rebuild();
    SYM_NamesChanged(SYM_TYPES_LOADED);
    return 0;
}

std::string TMF_GetCountsText()
{
    return std::to_string(TMF_cnDefVars) + " variables, " + std::to_string(TMF_cnDefStructCts) +
           " structures";
}

void TMF_FreeTables()
{
    FreeDecls(&TMF_paDefVars, &TMF_cnDefVars);
    FreeDecls(&TMF_paDefTypes, &TMF_cnDefTypes);
    FreeStructs();
    TMF_ForgetNames();
}

void TMF_CleanTables()
{
    TMF_FreeTables();
    TMF_FreeSVNodes();
}
