// Any text as a header of a variable set: what is taken fits the target and lies apart, what
// is refused says why; values of a taken one go through a data file and back.
#include "app/rooms.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "sets/data.h"
#include "sets/set.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"

namespace {

bool Prepare()
{
    VR_ConnectRooms();
    Procesor = CPU_C167;
    AddMapVar(0x8100, "wGain");
    AddMapVar(0x8104, "fLimit");
    AddMapVar(0x8120, "aw");
    AddMapVar(0x8140, "st");
    AddMapVar(0x8200, "qw");
    SortMapByName();
    openStruct = OPEN_MAP_FILE;
    FUZ_WriteFile("t", "## 3 VARS\n1: 'aw' _@0x20000003_@0x20000002_@0x142\n2: 'st' _@0x38000001\n"
                       "3: 'qw' _@0x442\n## 0 TYPES\n## 2 STRUCTS\n# 1 / 2:\n'nA' _@0x122\n"
                       "'un' _@0x30000002\n# 2 / 2:\n'by' _@0xC2\n'w' _@0x142\n");
    FUZ_WriteFile("inc", "group \"I\"\nfLimit\ninclude \"h\"\n");
    return TMF_LoadMap((FUZ_Folder() + "/t").c_str()) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const bool isReady = Prepare();
    FUZ_Check(isReady);
    FUZ_WriteFile("h", std::string(reinterpret_cast<const char *>(data), size));
    PST_Set set;
    PST_Problems problems;
    const int result = PST_ReadHeader(FUZ_Folder() + "/h", &set, &problems);
    FUZ_Check((result == 0) == (problems.count == 0));
    FUZ_Check(PST_FormatProblems(problems).empty() == (result == 0));
    if (result != 0)
        return 0;
    FUZ_Check(!set.entries.empty() && set.places.size() >= set.entries.size());
    PST_Image image(set.entries.size());
    for (size_t i = 0; i < set.places.size(); i++) {
        const PST_Place &place = set.places[i];
        const PST_Entry &entry = set.entries[place.entry];
        FUZ_Check(entry.size >= 1 && entry.size <= PST_PIECE_MAX && entry.item < set.items.size());
        FUZ_Check(place.address + entry.size <= ADDR_LIMIT);
        FUZ_Check(place.name.empty() == (i < set.entries.size()));
        if (i >= image.size())
            continue;
        image[i].isThere = true;
        for (size_t k = 0; k < entry.size; k++)
            image[i].bytes[k] = data[(i + k) % size];
    }
    const std::string path = FUZ_Folder() + "/d";
    FUZ_Check(PST_WriteData(path, set, image, {}) == 0);
    PST_File file;
    PST_Image back;
    FUZ_Check(PST_ReadData(path, &file, &problems) == 0);
    PST_Bind(set, file, &back, nullptr, &problems); // limits may refuse a value
    for (size_t i = 0; i < back.size(); i++)
        FUZ_Check(!back[i].isThere || PST_IsSame(set.entries[i], back[i], image[i]));
    return 0;
}
