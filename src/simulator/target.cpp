// The target is a program of its own, so that it shares no mistake with this one: its first line
// says where it listens, the others are its log, and what it shall do is written to it.
#include "simulator/target.h"

#include <algorithm>
#include <cstdlib>

#include "comm/communication.h"
#include "comm/ucm.h"
#include "platform/child.h"
#include "platform/remote_ports.h"
#include "platform/system.h"
#include "platform/tcp_port.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/words.h"
#include "watch/main_window.h"

namespace {

constexpr uint32_t START_WAIT_MS = 5000; // of a machine with much else to do
constexpr unsigned LOOK_MS = 5;          // between two looks at what it has written

// The settings of communication that a simulated target borrows.
struct Link {
    int32_t port = 0, baud = 0, station = 0;
    int16_t protocol = 0;
};

PLT_Child *child = nullptr;
TGT_Options running;
std::string address; // "" until it has said so
int lentPort = 0;    // leads to it while it is connected; 0 = it is not
Link before;

std::vector<std::string> MakeCommand(const TGT_Options &options)
{
    // Port 0: whichever is free. The log comes on standard output, behind the address.
    std::vector<std::string> words = {
        PLT_FindOwnProgram("vireo2-target"), "--tcp", "0", "--control", "--log", "-"};
    if (options.program == TGT_LOADER)
        words.push_back("--loader");
    else if (options.isModbus)
        words.push_back("--modbus");
    if (options.program == TGT_EMPTY)
        words.push_back("--no-demo");
    if (options.baud > 0)
        words.insert(words.end(), {"--baud", std::to_string(options.baud)});
    if (!options.stations.empty())
        words.insert(words.end(), {"--stations", options.stations});
    words.insert(words.end(), {"--scope", options.scopes});
    return words;
}

// The first line is where to reach it; a target that cannot start says why.
bool WaitForAddress(std::string *cause)
{
    std::deque<std::string> lines;
    const uint32_t start = PLT_TickMs();
    for (bool isRunning = true; isRunning && lines.empty();) {
        // One that has ended may have left its reason: once more is looked, whatever this says.
        isRunning = PLT_IsChildRunning(child) && PLT_TickMs() - start < START_WAIT_MS;
        PLT_FetchChildLines(child, &lines);
        if (lines.empty())
            PLT_SleepMs(LOOK_MS);
    }
    const std::string first = lines.empty() ? "it does not say where it listens" : lines.front();
    if (TCP_IsAddress(first)) {
        address = first;
        return true;
    }
    *cause = TXT_Visible(first);
    return false;
}

// The first station of "0,2,5-7"; the present one when the list has it or names none.
int32_t ChooseStation()
{
    const std::string &list = running.stations; // the target has checked it when it started
    int32_t first = -1;
    for (size_t at = 0; at < list.size();) {
        const size_t comma = std::min(list.find(',', at), list.size());
        const size_t dash = list.find('-', at);
        const auto low = static_cast<int32_t>(std::strtol(list.c_str() + at, nullptr, 10));
        const auto high =
            dash < comma ? static_cast<int32_t>(std::strtol(list.c_str() + dash + 1, nullptr, 10))
                         : low;
        if (STATION >= low && STATION <= high)
            return STATION;
        first = first < 0 ? low : first;
        at = comma + 1;
    }
    if (first < 0)
        first = STATION >= 0 && STATION <= STATION_MAX ? STATION : 1;
    return running.isModbus && first == 0 ? 1 : first; // slave 0 is nobody
}

// With the port closed, so that nothing of it goes to the wrong place.
void UseLink(const Link &link)
{
    VIR2_StopPeriodicASC();
    UCM_Close(); // the link may be open without the timer, for a command of the console
    ncom = link.port;
    bRate = link.baud;
    VR_nProtocol = link.protocol;
    VIR2_SetStation(link.station);
    SetMainPanelAttributes();
    COM_TellState();
}

} // namespace

int TGT_Start(const TGT_Options &options, void (*notify)(), std::string *cause)
{
    TGT_Stop(); // first: it gives back the settings of before
    running = options;
    const std::vector<std::string> command = MakeCommand(options);
    child = PLT_StartChild(command, notify);
    if (child == nullptr) {
        *cause = "'" + TXT_Visible(command[0]) + "' cannot be started";
        return -1;
    }
    if (WaitForAddress(cause))
        return 0;
    TGT_Stop();
    return -1;
}

void TGT_Stop()
{
    TGT_Disconnect();
    if (child != nullptr)
        PLT_StopChild(child);
    child = nullptr;
    address.clear();
}

bool TGT_IsStarted()
{
    return child != nullptr;
}

bool TGT_HasEnded()
{
    return child != nullptr && !PLT_IsChildRunning(child);
}

std::string TGT_GetAddress()
{
    return address;
}

int TGT_SetFault(const std::string &name, const std::string &value)
{
    return child != nullptr ? PLT_SendLineToChild(child, name + " " + value) : -1;
}

void TGT_TakeLog(std::deque<std::string> *lines)
{
    if (child != nullptr &&
        PLT_FetchChildLines(child, lines) > 0) // lines that nobody came for in time
        lines->push_front("...");
}

int TGT_Connect(std::string *cause)
{
    if (child == nullptr || TGT_IsConnected())
        return 0;
    const int port = TCP_LendPort(address);
    if (port == 0) {
        *cause = "all port numbers are in use";
        return -1;
    }
    before = {ncom, bRate, STATION, VR_nProtocol};
    Link link = before;
    link.port = port;
    link.baud = running.baud > 0 ? running.baud : bRate;
    link.station = ChooseStation();
    link.protocol = running.isModbus ? PROTOCOL_MODBUS : PROTOCOL_MR166;
    lentPort = port;
    UseLink(link);
    if (running.program != TGT_LOADER) // which answers nothing but its own protocol
        VIR2_StartPeriodicASC();
    return 0;
}

void TGT_Disconnect()
{
    if (lentPort == 0)
        return;
    // Who has chosen another port meanwhile has left already.
    const bool wasConnected = TGT_IsConnected();
    const int port = lentPort;
    lentPort = 0;
    if (wasConnected)
        UseLink(before);
    TCP_TakePortBack(port);
    SetMainPanelAttributes();
}

bool TGT_IsConnected()
{
    return lentPort != 0 && ncom == lentPort;
}
