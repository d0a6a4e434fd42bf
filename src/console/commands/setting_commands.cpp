// Commands that change the program's settings, talk to the user or end the monitor.
#include "comm/communication.h"
#include "console/commands/commands.h"
#include "console/monitor/link.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script.h"
#include "console/script/script_command.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "text/tokens.h"
#include "text/words.h"
#include "text/xscan.h"
#include "watch/list/item_names.h"
#include "watch/list/list_view.h"
#include "watch/list/litem.h"
#include "watch/main_window.h"
#include "watch/windows/map_loading.h"

bool SCR_bGotoCmd = false;
std::string SCR_szGotoLabel;
bool SCR_isExit = false;

namespace {

struct Choice {
    const char *name;
    int value;
};
const Choice LANGUAGES[] = {{"CZ", LANGUAGE_CZ}, {"EN", LANGUAGE_EN}, {"RU", LANGUAGE_RU}};

struct CpuNumber {
    uint32_t number;
    int32_t processor;
};
const CpuNumber CPUS[] = {{166, CPU_C166}, {167, CPU_C167}, {28335, CPU_F283XX}};

// The command's own list: the menu offers 115200 as well.
const uint32_t BAUD_RATES[] = {9600, 19200, 38400, 57600};

// No command selects a C269; its number has a prompt all the same.
struct CpuPrompt {
    int32_t processor;
    const char *prompt;
};
const CpuPrompt CPU_PROMPTS[] = {{CPU_C166, "C166"},
                                 {CPU_C167, "C167"},
                                 {2, "C269"},
                                 {CPU_F283XX, "F28335"},
                                 {CPU_F2803X, "F2803"}};

} // namespace

const char *VR1_GetCpuPrompt()
{
    for (const CpuPrompt &row : CPU_PROMPTS)
        if (row.processor == Procesor)
            return row.prompt;
    return "VIR2";
}

int SCR_Help(ScrPar *)
{
    PrintCmdHelp(consolePanel);
    return 0;
}

// The panels are refreshed only on a change: scripts set the same station often.
int SCR_Station(ScrPar *par)
{
    if (par[0].value > static_cast<uint32_t>(STATION_MAX))
        return SCR_Fail("station: cislo stanice ma byt od 0 do 15.");
    const int32_t station = static_cast<int32_t>(par[0].value);
    if (station != STATION) {
        VIR2_SetStation(station);
        SetMainPanelAttributes();
    }
    return 0;
}

int SCR_Procesor(ScrPar *par)
{
    for (const CpuNumber &cpu : CPUS) {
        if (cpu.number != par[0].value)
            continue;
        if (Procesor != cpu.processor) { // scripts name the same one often
            Procesor = cpu.processor;
            initRgMap(Procesor); // before the list, whose items may be registers
            VR_ResolveWatchList();
            VR_FillDebugItems();
            SetMainPanelAttributes();
        }
        return 0;
    }
    // The wrong command's name stays: service procedures look for this text.
    return SCR_Fail("station: cislo procesoru ma byt 166, 167 nebo 28335.");
}

int SCR_ListVars(ScrPar *par)
{
    if (!openStruct)
        return SCR_Fail("listvars: musi byt nactena mapa promennych.");
    const char *mask = par[0].text;
    if (*mask == '\0' || xscan("*#_/?a-zA-Z0-9.?/*#", &mask) < 0)
        return SCR_Fail("listvars: neplatna maska promenne.");
    const char *name = nullptr;
    int position = 0;
    while (RdTblVarName(par[0].text, &name, aVarNode, nNodes, &position) == 0)
        CON_Print(" %06x  %s", aVarNode[position - 1].addr, name); // position: behind it
    return 0;
}

// The parameter is the whole line. Without a file it says which type map is loaded.
int SCR_TypeMap(ScrPar *par)
{
    const std::string path = TXT_Trim(par[0].text + TXT_NameLength(par[0].text));
    std::string message;
    if (!path.empty() && WIN_OpenTypeMap(path, &message) < 0)
        return SCR_Fail("tm: " + message);
    if (!path.empty())
        SetMainPanelAttributes();
    if (TMF_cnDefVars == 0 && TMF_cnDefStructCts == 0)
        PrintMonStr("No type map is loaded. Try \"tm filename\".");
    else
        CON_Print("Type map: %s, %s.",
                  TMF_szFileName.empty() ? "from the target" : TXT_Visible(TMF_szFileName).c_str(),
                  TMF_GetCountsText().c_str());
    return 0;
}

int SCR_Language(ScrPar *par)
{
    for (const Choice &language : LANGUAGES) { // of listings; the program itself has one
        if (TXT_IsSameWord(par[0].text, language.name)) {
            Option_nLanguage = language.value;
            return 0;
        }
    }
    return SCR_Fail("language: available languages are CZ, EN and RU.");
}

int SCR_Exit(ScrPar *)
{
    // The line is finished first: the view closes, or the program ends, behind it.
    SCR_isExit = true;
    return 0;
}

int SCR_ComPar(ScrPar *par)
{
    const uint32_t port = par[0].value;
    const uint32_t rate = par[1].value;
    // "compar 0,0" is how the help calls for the usage.
    if (port == 0 && rate == 0) {
        PrintMonStr("use: compar com, baudrate");
        PrintMonStr("     com ... number of the serial port (1 to 255)");
        PrintMonStr("     baudrate ... 9600, 19200, 38400 or 57600");
        return 0;
    }
    if (port == 0)
        return SCR_Fail("compar: cislo COM smi byt od 1 do 255.");
    for (uint32_t allowed : BAUD_RATES) {
        if (allowed != rate)
            continue;
        ncom = static_cast<int32_t>(port);
        bRate = static_cast<int32_t>(rate);
        SetMainPanelAttributes();
        CON_DropLink(); // an open port goes on with the old rate otherwise
        return 0;
    }
    return SCR_Fail("compar: rychlost smi byt 9600, 19200, 38400 nebo 57600.");
}

int SCR_Msg(ScrPar *par)
{
    MessagePopup("message", par[0].text);
    return 0;
}

// Closing the box is a "no": nothing dangerous happens by accident.
int SCR_Qst(ScrPar *par)
{
    if (GenericMessagePopup("Question", par[0].text, {"Yes", par[1].text}, nullptr, 0) != 1) {
        SCR_bGotoCmd = true;
        SCR_szGotoLabel = par[2].text;
    }
    return 0;
}
