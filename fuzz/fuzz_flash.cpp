// What the target's flash may hold: a directory, a variable map, compressed types. The
// first byte chooses the reader.
#include "fuzz_check.h"
#include "symbols/flash_files.h"
#include "symbols/flash_info.h"
#include "symbols/flash_varmap.h"
#include "symbols/packed_names.h"
#include "symbols/typemap.h"
#include "symbols/zip_types.h"
#include "text/txfrw.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr uint32_t BASE = 0x1000;
const uint8_t *memory;
size_t memorySize;

int ReadMemory(uint32_t address, uint32_t count, void *buffer)
{
    if (address < BASE || address - BASE > memorySize || count > memorySize - (address - BASE))
        return -1;
    std::memcpy(buffer, memory + (address - BASE), count);
    return 0;
}

void WalkDirectory(const uint8_t *data, size_t size)
{
    memory = data;
    memorySize = size;
    MFS_reader = ReadMemory;
    const uint32_t end = BASE + static_cast<uint32_t>(size);
    int32_t length;
    for (const char *name : {MFS_VAR_MAP, MFS_TYPE_DECLS, "x"}) {
        const int32_t found = MFS_FindFile(name, BASE, end, &length);
        FUZ_Check(found < 0 || (length >= 0 && static_cast<uint32_t>(found) + MFS_HEADER_SIZE +
                                                       static_cast<uint32_t>(length) <=
                                                   end));
    }
    const int32_t start = MFS_FindDirectory(BASE, end);
    FUZ_Check(start < 0 ||
              (static_cast<uint32_t>(start) >= BASE && static_cast<uint32_t>(start) < end));
}

void ReadVarMap(const std::string &content)
{
    const int handle = MFS_OpenVarMap("map", content);
    std::vector<SYM_Symbol> variables;
    if (handle >= 0 && MFS_ParseVarMap(handle, &variables) == 0) {
        for (const SYM_Symbol &variable : variables)
            FUZ_Check(variable.address < 0x1000000 && !variable.name.empty());
    }
    TXFRW_Close(handle);
}

void UnpackNames(const uint8_t *data, size_t size)
{
    for (int form = NAME_PLAIN; form <= NAME_SHARED_6BIT; form++) {
        std::string name;
        for (size_t at = 0; at < size;) {
            const int used = UnpackVarName(&name, data + at, size - at, form);
            FUZ_Check(used < 0 || (used > 0 && static_cast<size_t>(used) <= size - at));
            at = used < 0 ? size : at + static_cast<size_t>(used);
        }
    }
}

// Structures, declarations and variable map, parted by bytes FE.
void UnzipTypes(const std::string &content)
{
    const char *at = content.data(), *const end = at + content.size();
    int handles[3];
    for (int &handle : handles) {
        const char *partEnd = std::find(at, end, '\xFE');
        handle = TXFRW_Create("part", "r", at, static_cast<size_t>(partEnd - at));
        at = partEnd == end ? end : partEnd + 1;
    }
    const int output = TXFRW_Create("types", "rw", "", 0);
    if (UnzipTMF(output, handles[0], handles[1], handles[2]) == 0)
        TMF_LoadMapFrw(output);
    TMF_FreeTables();
    TXFRW_Close(output);
    for (const int handle : handles)
        TXFRW_Close(handle);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    if (size < 1)
        return 0;
    const uint8_t *rest = data + 1;
    const std::string content(reinterpret_cast<const char *>(rest), size - 1);
    switch (data[0]) {
    case 'd':
        WalkDirectory(rest, size - 1);
        break;
    case 'm':
        ReadVarMap(content);
        break;
    case 'n':
        UnpackNames(rest, size - 1);
        break;
    default:
        UnzipTypes(content);
        break;
    }
    return 0;
}
