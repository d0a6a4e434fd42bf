// One map is remembered by name, that of the selected processor: it is read again by key, and
// saved in the settings. What a load says stands in the message area until the map changes.
#include "watch/windows/map_loading.h"

#include <cstdio>

#include "comm/communication.h"
#include "platform/plain_file.h"
#include "platform/system.h"
#include "runtime/userint.h"
#include "settings/settings.h"
#include "symbols/flash_info.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "text/words.h"
#include "watch/main_window.h"

std::string szMapFileStamp;

namespace {

struct MapKind {
    const char *pattern;
    const char *title;
    int (*load)(const char *fileName);
};
const MapKind mapKinds[] = {{"*.m66", "Open C166 map-file", map2node},
                            {"*.m28xt", "Open C28x map-file", TMSmap2node}};
// An archive carries a map among other files of a project.
const char SYM_TYPES[] = "*.m66;*.map;*.m28xt;*.qar";

int ModeOfProcessor()
{
    return IsWordAddressing(Procesor) ? LOADMAP_TMS : LOADMAP_C166;
}

// Splits a remembered path into the dialog's folder and file; a bare name or none stays
// in the current folder.
bool AskForMap(const MapKind &kind, std::string *path)
{
    std::string folder = PLT_CurrentDir();
    std::string spec = kind.pattern;
    if (!szMapFileName.empty()) {
        const size_t cut = szMapFileName.find_last_of("/\\");
        spec = cut == std::string::npos ? szMapFileName : szMapFileName.substr(cut + 1);
        if (cut != std::string::npos)
            folder = szMapFileName.substr(0, cut + 1);
    }
    return FileSelectPopup(folder, spec, SYM_TYPES, kind.title, FILE_LOAD, path) !=
           CON_NO_FILE_SELECTED;
}

void OpenTypes(const std::string &path)
{
    WIN_Outdate(WIN_TOPIC_MAP);
    std::string message;
    const bool isOpen = WIN_OpenTypeMap(path, &message) == 0;
    if (isOpen)
        SetMainPanelAttributes();
    VR_ShowMessage(isOpen ? message : "Error: " + message, WIN_TOPIC_MAP);
}

} // namespace

int GetFileStamp(std::string *text, const char *fileName)
{
    PLT_FileStamp stamp;
    if (PLT_GetFileStamp(fileName, &stamp) != 0)
        return -1;
    *text = TXT_Format("%4d-%02d-%02d/%02d:%02d:%02d", stamp.year, stamp.month, stamp.day,
                       stamp.hour, stamp.minute, stamp.second);
    return 0;
}

void WIN_RememberMap(const std::string &path, bool isTMS)
{
    if (isTMS && !IsWordAddressing(Procesor))
        return;
    szMapFileName = path;
    if (GetFileStamp(&szMapFileStamp, path.c_str()) != 0)
        szMapFileStamp.clear();
}

int WIN_OpenTypeMap(const std::string &path, std::string *message)
{
    const std::string name = TXT_Visible(path);
    if (TMF_OpenMap(path.c_str()) == 0) {
        *message = "Type map: " + name + ", " + TMF_GetCountsText() + ".";
        return 0;
    }
    const std::string line =
        TMF_nErrorLine > 0 ? ", line " + std::to_string(TMF_nErrorLine) : std::string();
    *message = "Could not open type map file " + name + line + ".";
    return -1;
}

int LoadMap(int mode)
{
    const bool isTMS = (mode & LOADMAP_TMS) != 0;
    const MapKind &kind = mapKinds[isTMS ? 1 : 0];
    std::string path = szMapFileName;
    // A file that is not there any more is asked for, as if none had been remembered.
    std::FILE *file = nullptr;
    const bool isReload = (mode & LOADMAP_RELOAD) != 0 &&
                          PLT_OpenForReading(path, PLT_FILE_ANY_SIZE, &file) == PLT_FILE_OK;
    if (file != nullptr)
        std::fclose(file);
    if (!isReload && !AskForMap(kind, &path))
        return -1;
    WIN_Outdate(WIN_TOPIC_MAP);
    const int result = kind.load(path.c_str());
    if (result < 0) {
        VR_ShowMessage(result == SYM_MAP_ERR_NO_SYMBOL ? "Error: MAP file '" + TXT_Visible(path) +
                                                             "' " + SYM_MapErrorText(result) + "."
                                                       : "Error: Could not open MAP file.",
                       WIN_TOPIC_MAP);
        return result;
    }
    WIN_RememberMap(path, isTMS);
    SetMainPanelAttributes();
    return 0;
}

int LoadFlash()
{
    VR_ComRequest(); // whatever the answer: without communication the read says why it fails
    WIN_Outdate(WIN_TOPIC_MAP);
    const int result = fl2node(MFS_AT_END);
    SetMainPanelAttributes();
    return result;
}

void OpenMapCB(int, int)
{
    LoadMap(ModeOfProcessor());
}

// The map and the type map belong together: one command reads both again.
void ReloadMapFile(int, int)
{
    const std::string types = TMF_szFileName; // a map may bring its own types
    const bool isMap = !szMapFileName.empty() || types.empty();
    if (isMap && LoadMap(ModeOfProcessor() | LOADMAP_RELOAD) != 0)
        return;
    if (!types.empty() && types == TMF_szFileName)
        OpenTypes(types);
}

void OpenTypeMapCB(int, int)
{
    std::string path;
    if (FileSelectPopup(PLT_CurrentDir(), "*.tmf", "*.tmf", "Open type map-file", FILE_LOAD,
                        &path) != CON_NO_FILE_SELECTED)
        OpenTypes(path);
}

int MapBtnCB(int, int, int event, int)
{
    if (event == EVENT_COMMIT)
        ReloadMapFile(0, 0);
    return 0;
}
