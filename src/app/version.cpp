// The version text: on Windows the description of the device configuration tool,
// read through the system's version library, which is bound at run time; where that
// library does not exist, the program's own version.
#include "app/version.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "platform/system.h"
#include "settings/settings.h"

namespace {

constexpr const char *CONFIG_TOOL_PATH = "C:\\Program Files\\Vireo2\\Vireo2Config.exe";
constexpr uint32_t VERSION_BLOCK_MAX = 1u << 20; // bytes; more is no version block

typedef uint32_t (*SizeFn)(const char *path, uint32_t *unused);
typedef int32_t (*InfoFn)(const char *path, uint32_t unused, uint32_t size, void *block);
typedef int32_t (*QueryFn)(const void *block, const char *name, void **value, uint32_t *length);

struct VersionApi {
    SizeFn size;
    InfoFn info;
    QueryFn query;
};

// The description in the first language the block offers.
std::string ReadDescription(const VersionApi &api)
{
    uint32_t unused = 0; // the system sets it to 0 and wants nothing from it
    const uint32_t size = api.size(CONFIG_TOOL_PATH, &unused);
    if (size == 0 || size > VERSION_BLOCK_MAX)
        return "";
    std::vector<char> block(size);
    if (api.info(CONFIG_TOOL_PATH, 0, size, block.data()) == 0)
        return "";
    void *value = nullptr;
    uint32_t length = 0;
    // Language and code page: in hexadecimal they name the block that holds the texts.
    uint16_t language[2] = {0, 0};
    if (api.query(block.data(), "\\VarFileInfo\\Translation", &value, &length) == 0 ||
        length < sizeof language)
        return "";
    std::memcpy(language, value, sizeof language);
    char name[64];
    std::snprintf(name, sizeof name, "\\StringFileInfo\\%04X%04X\\FileDescription", language[0],
                  language[1]);
    if (api.query(block.data(), name, &value, &length) == 0 || length == 0)
        return "";
    // The length counts the closing zero, where there is one.
    const char *text = static_cast<const char *>(value);
    return std::string(text, strnlen(text, length));
}

} // namespace

const char *VR_GetBuildVersion()
{
    return VIREO2_VERSION;
}

int VR_LoadDllFnTable(const char *dllName, int count, VR_DllFn *table)
{
    // Never unloaded: the table's functions may be called as long as the program runs.
    void *library = PLT_LoadLibrary(dllName);
    if (!library)
        return -1;
    int resolved = 0;
    for (int i = 0; i < count; i++) {
        table[i].address = PLT_GetSymbol(library, table[i].name);
        resolved += table[i].address != nullptr;
    }
    return count > 0 && resolved == count ? 0 : -2;
}

void *VR_GetDllFn(const char *name, int count, const VR_DllFn *table)
{
    for (int i = 0; i < count; i++)
        if (std::strcmp(table[i].name, name) == 0)
            return table[i].address;
    return nullptr;
}

void GetVRVersion(const char *)
{
    VR_DllFn table[] = {{"GetFileVersionInfoSizeA", nullptr},
                        {"GetFileVersionInfoA", nullptr},
                        {"VerQueryValueA", nullptr}};
    constexpr int COUNT = sizeof table / sizeof table[0];
    VR_szVersion.clear();
    const int result = VR_LoadDllFnTable("version.dll", COUNT, table);
    // Only Windows has the library. Where a function of it is missing the text stays empty.
    if (result == -1)
        VR_szVersion = VIREO2_VERSION;
    if (result != 0)
        return;
    const VersionApi api = {
        reinterpret_cast<SizeFn>(VR_GetDllFn(table[0].name, COUNT, table)),
        reinterpret_cast<InfoFn>(VR_GetDllFn(table[1].name, COUNT, table)),
        reinterpret_cast<QueryFn>(VR_GetDllFn(table[2].name, COUNT, table)),
    };
    VR_szVersion = ReadDescription(api);
}
