// Lines piped into the console, against a target in memory that fails now and then. The
// input is a file for the lines to read ("f"), a zero byte, then the lines. Whatever they
// say, no access leaves the target's memory and no line keeps the link.
#include "app/rooms.h"
#include "comm/mr166_frame.h"
#include "comm/mr166_link.h"
#include "comm/tms_mailbox.h"
#include "comm/ucm.h"
#include "comm/ucm_protocol.h"
#include "console/monitor/monitor.h"
#include "runtime/headless/headless.h"
#include "scratch_folder.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/typemap.h"
#include "symbols/varnode.h"
#include "ui/resource.h"
#include "watch/list/litem.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <vector>

namespace {

constexpr uint32_t PAGE = 0x1000;
constexpr uint32_t BYTES_MAX = 1 << 18; // of one input; behind them the target is silent
constexpr size_t LINES_MAX = 40;

// --- the target ------------------------------------------------------------------------
bool isOpen;
uint32_t moved; // bytes
std::map<uint32_t, std::vector<uint8_t>> pages;

uint8_t *Byte(int station, uint32_t address)
{
    std::vector<uint8_t> &page = pages[(static_cast<uint32_t>(station) << 24 | address) / PAGE];
    page.resize(PAGE);
    return &page[address % PAGE];
}

// Whether the access happens. An access that no target has must never come down here.
bool Begin(int station, uint32_t address, uint32_t count)
{
    FUZ_Check(isOpen && station >= 0 && station <= STATION_MAX);
    FUZ_Check(address < ADDR_LIMIT && count <= ADDR_LIMIT - address);
    moved += count + 4;
    return count < BYTES_MAX && moved < BYTES_MAX && moved % 61 != 0;
}

int Read(int station, uint32_t address, uint32_t count, void *buffer)
{
    if (!Begin(station, address, count))
        return UCM_CountErr(-1);
    for (uint32_t i = 0; i < count; ++i)
        static_cast<uint8_t *>(buffer)[i] = *Byte(station, address + i);
    return 0;
}

int Write(int station, uint32_t address, uint32_t count, const void *data)
{
    if (!Begin(station, address, count))
        return UCM_CountErr(-1);
    for (uint32_t i = 0; i < count; ++i)
        *Byte(station, address + i) = static_cast<const uint8_t *>(data)[i];
    if (address == TMS_BOX_COMMAND)
        *Byte(station, address) = 0; // done at once
    return 0;
}

int ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    return Read(station, *address, *count, *buffer) < 0 ? -1 : 1;
}

int WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    return Write(station, *address, *count, *data) < 0 ? -1 : 1;
}

int Message(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    if (command == TARGET_WRITE)
        return Write(station, address, word, data) < 0 ? 0 : 1;
    return Begin(station, address, 1) ? 1 : 0;
}

int Open(int, int)
{
    isOpen = true;
    return 0;
}

void Close()
{
    isOpen = false;
}

int IsOpened()
{
    return isOpen ? 1 : 0;
}

int Prove()
{
    return moved % 127 == 0 ? UCM_READ_AGAIN : UCM_PROVEN;
}

// --- the program -----------------------------------------------------------------------

void Prepare()
{
    VR_ConnectRooms();
    FUZ_Check(HL_LoadAllPanels() == 0);
    HL_SetStreams(nullptr, nullptr);
    mainPanel = PANEL_MAIN;
    consolePanel = PANEL_CONSOLE;
    for (int port = 0; port <= 256; ++port) // never a real one
        setenv(("VIREO2_COM" + std::to_string(port)).c_str(), "/nonexistent", 1);
    std::filesystem::current_path(FUZ_Folder());
}

void Forget(bool isFull)
{
    UCM_Close();
    UCM_Init();
    VR_isFullCommandSet = isFull;
    Procesor = CPU_C167;
    VR_nProtocol = PROTOCOL_MR166;
    ncom = STATION = 1;
    command = CMD_C166;
    dwAddr = 0;
    CON_isExit = false;
    pages.clear();
    moved = 0;
    TMF_CleanTables();
    FreeNodes(aVarNode, &nNodes);
    FreeNodes(aVarTMSNode, &nTMSNodes);
    openStruct = openTMSStruct = OPEN_NONE;
    nLItems = 0;
    ResetTextBox(consolePanel, CONSOLE_BOX, "");
    for (const auto &entry : std::filesystem::directory_iterator(FUZ_Folder()))
        std::filesystem::remove_all(entry.path());
}

void Enter(std::string line)
{
    line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
    HL_SetUserVal(consolePanel, CONSOLE_INPUT, line);
    HL_Key(consolePanel, CONSOLE_INPUT, KEY_ENTER);
    FUZ_Check(nASC_Opened == 0 && !isOpen && isTimer == 0);
    FUZ_Check(STATION >= 0 && STATION <= STATION_MAX);
    FUZ_Check(HL_CountAnswers() == 0);
}

} // namespace

const UCM_Protocol UCM_PROTOCOL_MR166 = {
    PROTOCOL_MR166,
    0,
    STATION_MAX,
    MR166_WRITE_MAX,
    Open,
    Close,
    IsOpened,
    [](int) { return 0; },
    Read,
    [](int, uint32_t, uint32_t) { return uint32_t{0}; }, // no block proves itself
    nullptr,
    Write,
    ReadBg,
    WriteBg,
    Message,
    Message,
    Prove,
    [] { return false; },
    [] { return std::string("no answer"); },
    [](UCM_Statistics *) {},
    [] { return false; },
};

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    static const bool isReady = (Prepare(), true);
    FUZ_Check(isReady);
    const std::string input(reinterpret_cast<const char *>(data), size);
    const size_t cut = input.find('\0');
    if (cut == std::string::npos)
        return 0;
    Forget(cut % 4 != 0);
    FUZ_WriteFile("f", input.substr(0, cut));
    // Names of files stay in the folder.
    std::string lines = input.substr(cut + 1);
    std::replace(lines.begin(), lines.end(), '/', '_');
    std::istringstream stream(lines);
    std::string line;
    for (size_t i = 0; i < LINES_MAX && std::getline(stream, line); ++i)
        Enter(line);
    return 0;
}
