// Maps from a target's flash, or from an archive with the same files: all of it is read and checked
// before any table changes.
#include "symbols/flash_info.h"

#include "calendar/archive.h"
#include "calendar/crc32.h"
#include "platform/safe_file.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/flash_files.h"
#include "symbols/flash_varmap.h"
#include "symbols/listener.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "symbols/zip_types.h"
#include "text/txfrw.h"

#include <cstdio>
#include <vector>

namespace {

// Where the directory stood in earlier firmware, with no end that is known.
constexpr uint32_t OLD_DIRECTORY = 0x1C000;
constexpr uint32_t RESERVED_AT_END = 0x100; // start vector and passwords of the chip

// Flash of the processors that carry project information, by byte address.
struct FlashRange {
    int processor;
    uint32_t start;
    uint32_t end;
};
constexpr FlashRange FLASH_RANGES[] = {{CPU_F283XX, 0x600000, 0x680000},
                                       {CPU_F2803X, 0x7D0000, 0x7F0000}};

struct ErrorText {
    int result;
    const char *text;
};
constexpr ErrorText ERROR_TEXTS[] = {
    {MFS_ERR_NO_MAP, "Error: Map of variables not found in memory."},
    {MFS_VAR_MAP_ERR_COMMUNICATION, "Communication error."},
    {MFS_VAR_MAP_ERR_CANCELLED, "Reading the flash was cancelled."},
    {MFS_ERR_ADDRESS, "The memory map contains invalid addresses (>24bits)."},
    {MFS_ERR_TYPES, "Error: The type map in memory is damaged."},
    {MFS_VAR_MAP_ERR_TOO_MANY, "Error: The flash directory has more than 1000 files."},
};

// What was last read from flash, as texts, for saving.
std::string flashVarMap, flashTypeMap;

// A text handle that closes itself.
struct Text {
    int handle;
    explicit Text(int opened) : handle(opened)
    {
    }
    ~Text()
    {
        TXFRW_Close(handle);
    }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
};

// As a file is written: the archive is for people, too.
std::string ContentOf(int handle)
{
    std::string content;
    for (int i = 0; i < TXFRW_GetCnLines(handle); i++)
        content += std::string(TXFRW_GetLinePtr(handle, i)) + "\r\n";
    return content;
}

// Both maps or none: the types first, because after them nothing can fail any more.
int ReplaceMaps(int varMap, int typeMap)
{
    std::vector<SYM_Symbol> variables;
    const int result = MFS_ParseVarMap(varMap, &variables);
    if (result != 0)
        return result;
    if (typeMap >= 0 && TMF_ReplaceMapFrw(typeMap) != 0)
        return MFS_ERR_TYPES;
    const int count = MFS_ReplaceVariables(variables, aVarNode, &nNodes);
    // Members have their addresses from both maps.
    TMF_Rebuild();
    return count;
}

// The map of a TMS320 behind a C166 station; the type map stays that of the station.
int ReplaceTMSNodes(int varMap)
{
    std::vector<SYM_Symbol> variables;
    const int result = MFS_ParseVarMap(varMap, &variables);
    if (result != 0)
        return result;
    openTMSStruct = OPEN_MAP_FILE;
    const int taken = MFS_ReplaceVariables(variables, aVarTMSNode, &nTMSNodes);
    // Behind a station it is reached through the mailbox, which takes word addresses.
    SYM_BytesToWords(aVarTMSNode, nTMSNodes);
    return taken;
}

int LoadFlashText(const char *name, uint32_t start, uint32_t end)
{
    const int handle = MFS_LoadFrw(name, start, end);
    return handle == -1 ? MFS_ERR_TYPES : handle;
}

// The type map as a text handle; MFS_ERR_NO_MAP when the directory holds none.
int OpenTypeMap(uint32_t start, uint32_t end, int varMap)
{
    int32_t length;
    const int32_t whole = MFS_FindFile(MFS_TYPE_MAP, start, end, &length);
    // -1 is "no such file"; everything else ends the search.
    if (whole >= 0 || whole != -1)
        return whole >= 0 ? LoadFlashText(MFS_TYPE_MAP, start, end) : whole;
    if (MFS_FindFile(MFS_TYPE_DECLS, start, end, &length) == -1)
        return MFS_ERR_NO_MAP;
    const Text declarations(LoadFlashText(MFS_TYPE_DECLS, start, end));
    if (declarations.handle < 0)
        return declarations.handle;
    const Text structures(LoadFlashText(MFS_TYPE_STRUCTS, start, end));
    if (structures.handle < 0)
        return structures.handle;
    // The types come in two compressed parts, whose lines belong to those of the map.
    const int output = TXFRW_Create(MFS_TYPE_MAP, "rw", "", 0);
    if (UnzipTMF(output, structures.handle, declarations.handle, varMap) == 0)
        return output;
    TXFRW_Close(output);
    return MFS_ERR_TYPES;
}

int OpenFlashVarMap(uint32_t start, uint32_t end)
{
    std::string content;
    const int result = MFS_Load(MFS_VAR_MAP, start, end, &content);
    return result < 0 ? result : MFS_OpenVarMap(MFS_VAR_MAP, content);
}

// Byte range of the directory to read; 0, or a negative code when there is none.
int FindRange(int place, uint32_t *start, uint32_t *end)
{
    *start = OLD_DIRECTORY;
    *end = ADDR_LIMIT;
    if (place == MFS_AT_1C000)
        return 0;
    for (const FlashRange &range : FLASH_RANGES) {
        if (range.processor != Procesor)
            continue;
        *end = range.end - RESERVED_AT_END;
        const int32_t found = MFS_FindDirectory(range.start, *end);
        *start = static_cast<uint32_t>(found);
        return found < 0 ? found : 0;
    }
    return MFS_ERR_NO_MAP;
}

// The members are in memory already: an archive of files would want them on the disk.
bool PutMember(std::FILE *file, long index, const char *name, const std::string &content)
{
    QarHeader header;
    header.index = index;
    header.count = 2;
    header.size = static_cast<long>(content.size());
    header.check = Crc32_LSB(content.data(), content.size(), CRC32_POLYNOMIAL);
    header.name = name;
    return QAR_Put_file_header(file, header) == 0 &&
           std::fwrite(content.data(), 1, content.size(), file) == content.size();
}

} // namespace

const char *MFS_GetErrorText(int result)
{
    for (const ErrorText &error : ERROR_TEXTS) {
        if (error.result == result)
            return error.text;
    }
    return "";
}

int LoadFrwVarMap283xx(int textHandle)
{
    return ReplaceMaps(textHandle, -1);
}

int LoadFVarMap283xx(uint32_t start, uint32_t end)
{
    const Text varMap(OpenFlashVarMap(start, end));
    return varMap.handle < 0 ? varMap.handle : LoadFrwVarMap283xx(varMap.handle);
}

int LoadFMap283xx(uint32_t start, uint32_t end)
{
    const Text varMap(OpenFlashVarMap(start, end));
    if (varMap.handle < 0)
        return varMap.handle;
    const Text typeMap(OpenTypeMap(start, end, varMap.handle));
    if (typeMap.handle < 0 && typeMap.handle != MFS_ERR_NO_MAP)
        return typeMap.handle;
    const int count = ReplaceMaps(varMap.handle, typeMap.handle);
    if (count >= 0) { // what cannot be used is not saved either; the texts before stay
        flashVarMap = ContentOf(varMap.handle);
        flashTypeMap = ContentOf(typeMap.handle);
    }
    return count;
}

int ReadMaps283xx(const char *archiveName)
{
    std::string content;
    if (QAR_Extract_file(&content, archiveName, MFS_VAR_MAP) != 0)
        return MFS_ERR_NO_MAP;
    const Text varMap(MFS_OpenVarMap(MFS_VAR_MAP, content));
    const Text typeMap(QAR_Extract_txfrw(archiveName, MFS_TYPE_MAP));
    if (varMap.handle < 0)
        return MFS_ERR_NO_MAP;
    if (typeMap.handle < 0)
        return MFS_ERR_TYPES;
    const int count = IsWordAddressing(Procesor) ? ReplaceMaps(varMap.handle, typeMap.handle)
                                                 : ReplaceTMSNodes(varMap.handle);
    return count < 0 ? count : 0;
}

int Read_TMS_CombiMap(const char *archiveName)
{
    return ReadMaps283xx(archiveName);
}

int fl2node(int place)
{
    uint32_t start, end;
    SYM_ShowMessage("Reading memory map:");
    int result = FindRange(place, &start, &end);
    if (result == 0)
        result = LoadFMap283xx(start, end);
    if (result < 0) {
        SYM_ShowMessage(MFS_GetErrorText(result));
        return result;
    }
    // There is no file that could be loaded again.
    mapFile.clear();
    openStruct = OPEN_FROM_MEMORY;
    SYM_NamesChanged(SYM_MAP_LOADED);
    SYM_ShowMessage("Reading memory map: " + std::to_string(result) + " vars");
    return 0;
}

int SaveFlash(const char *fileName)
{
    SafeFile safe;
    if (flashVarMap.empty() || flashTypeMap.empty() || PLT_BeginSave(&safe, fileName, "wb") != 0)
        return -1;
    if (PutMember(safe.file, 1, MFS_VAR_MAP, flashVarMap) &&
        PutMember(safe.file, 2, MFS_TYPE_MAP, flashTypeMap))
        return PLT_CommitSave(&safe);
    PLT_CancelSave(&safe);
    return -1;
}
