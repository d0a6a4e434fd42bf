// The map commands of the console: which map is open, opening another, reading the
// project's own map from the target's flash. A map that cannot be read leaves the open one as
// it was.
#include <string>

#include "comm/ucm.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "settings/settings.h"
#include "symbols/flash_info.h"
#include "symbols/flash_varmap.h"
#include "symbols/mapfile.h"
#include "symbols/varnode.h"
#include "text/tokens.h"
#include "text/words.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

namespace {

int ReportC166Map()
{
    if (!openStruct) {
        PrintMonStr("The S166 map file is not opened. Try \"m filename\".\n");
        return 0;
    }
    CON_Print("S166 MapFile: %s", mapFile.c_str());
    CON_Print("Nodes:        %d\n", nNodes);
    return 0;
}

// While a TMS320 is the selected processor its map is the loaded one.
int ReportTmsMap()
{
    const bool isOwnMap = !IsWordAddressing(Procesor);
    if (!(isOwnMap ? openTMSStruct : openStruct)) {
        PrintMonStr("The TMS map file is not opened. Try \"mt filename\".\n");
        return 0;
    }
    CON_Print("TMS MapFile: %s", isOwnMap ? TMS_mapFile.c_str() : mapFile.c_str());
    CON_Print("Nodes:       %d\n", isOwnMap ? nTMSNodes : nNodes);
    return 0;
}

// The two maps differ in where they go and in how they are told of.
struct MapKind {
    int (*load)(const char *fileName);
    int (*report)();
    bool isTms;
};
const MapKind C166_MAP = {map2node, ReportC166Map, false};
const MapKind TMS_MAP = {TMSmap2node, ReportTmsMap, true};

int LoadOrReport(const MapKind &kind, const std::string &fileName)
{
    if (fileName.empty())
        return kind.report();
    // What is wrong with the file is told here; the map in use is still the old one then.
    const int result = kind.load(fileName.c_str());
    if (result == SYM_MAP_ERR_NO_SYMBOL) {
        CON_Print(" Error: the MAP file %s.\n", SYM_MapErrorText(result));
        return -1;
    }
    if (result < 0) {
        PrintMonStr(" Error: the MAP file doesn't exist.\n");
        return -1;
    }
    // For the reload, and for the settings file of the next run.
    WIN_RememberMap(fileName, kind.isTms);
    SetMainPanelAttributes();
    return kind.report();
}

int LoadFromFlash(bool isOldPlace)
{
    PrintMonStr(isOldPlace ? "Reading FLASH from 1C000H, wait for a while please ..."
                           : "Reading FLASH from end, wait for a while please ...");
    const int result = fl2node(isOldPlace ? MFS_AT_1C000 : MFS_AT_END);
    if (result != 0) {
        PrintMonStr("Error during flash read.");
        // Only a line that failed has left a text; another cause has been told by the reader.
        if (result == MFS_VAR_MAP_ERR_COMMUNICATION)
            CON_Print("Cause: %s.", UCM_LastErrorText().c_str());
        return -1;
    }
    CON_Print("%d vars", nNodes);
    SetMainPanelAttributes();
    return 0;
}

} // namespace

int LoadMapFile(int, const char *name)
{
    if (map2node(name) < 0) {
        PrintMonStr("Error in open MAP file (don't exist)\n");
        return -1;
    }
    WIN_RememberMap(name, false);
    CON_Print("MapFile: %s", mapFile.c_str());
    CON_Print("Nodes:     %d", nNodes);
    SetMainPanelAttributes();
    return 0;
}

int RdMapFile(int, const char *text)
{
    const std::string form(text, TXT_WordLength(text));
    if (form.empty()) // a blank or nothing behind the letter: what follows is a file
        return LoadOrReport(C166_MAP, TXT_Trim(text));
    if (form == "t")
        return LoadOrReport(TMS_MAP, TXT_Trim(text + 1));
    if (form == "f" || form == "fn" || form == "fo")
        return LoadFromFlash(form == "fo");
    PrintMonStr(" Error: the syntax is \"m [file]\", \"mt [file]\", \"mf\", \"mfn\" or \"mfo\".\n");
    return -1;
}
