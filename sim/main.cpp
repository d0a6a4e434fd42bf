// vireo2-target: the simulated target as a program, for the demo and for users without
// hardware. Prints the device to open first, then serves until it is told to end.
#include "scope.h"
#include "sim.h"
#include "wire.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>

#include <getopt.h>

namespace {

constexpr int EXIT_USAGE = 2;
constexpr int BAUD_MIN = 50; // slower than this no program waits for an answer
constexpr int BAUD_MAX = 4000000;
constexpr int DELAY_MAX_MS = 60000;
constexpr int ERASE_MAX_S = 60, ERASE_DEFAULT_S = 2;
constexpr int STATION_MAX = 15;
constexpr long PORT_LAST = 65535;
constexpr unsigned long ADDRESS_END = 0x1000000;

const char HELP[] =
    "Usage: vireo2-target [options]\n"
    "A simulated target on a pseudo terminal or a TCP port. Prints the device to open,\n"
    "then serves it until it gets SIGTERM or SIGINT (Ctrl-C).\n"
    "  --tcp [HOST:]PORT  listen there instead; without HOST for this machine alone\n"
    "  --modbus           a Modbus RTU slave: stations 1 to 15 are slaves 1 to 15\n"
    "  --refuse P         answer this share of the Modbus requests with an exception\n"
    "  --link PATH        make PATH a symbolic link to the device\n"
    "  --baud N           give every character its time on the wire (11 bits)\n"
    "  --echo             echo what is received, as a two-wire line does\n"
    "  --drop P           leave this share of the answers out (0 to 1)\n"
    "  --repeat P         send this share of the answers twice (0 to 1)\n"
    "  --corrupt P        damage one character in this share of the answers (0 to 1)\n"
    "  --delay MS         wait before each answer\n"
    "  --silent-after N   answer N requests, then no more\n"
    "  --seed N           seed of the faults (default 1)\n"
    "  --log FILE         write a line for each request to FILE, - = standard output\n"
    "  --control          take faults from standard input while it runs, a line each:\n"
    "                     refuse, drop, repeat, corrupt, delay, silent-after, echo, stations,\n"
    "                     each with its value (-1 = never, 1 or 0); ends with that input\n"
    "  --stations LIST    stations that answer, such as 0,2,5-7 (default all)\n"
    "  --flash FILE@HEX   put a file into every station's memory at a byte address\n"
    "  --loader           run the boot-strap loader of a flash of 512 KiB instead\n"
    "  --erase-seconds N  time that erasing takes (default 2)\n"
    "  --flash-image FILE write the loader's flash to FILE at the end\n"
    "  --scope LIST       sampling scopes of the demo: 2, 3, 3c166, none (default all)\n"
    "  --no-demo          no live variables, memory starts as zeros\n"
    "  --help             this text\n";

bool ParseWhole(const char *text, long low, long high, long *value)
{
    char *end;
    errno = 0;
    *value = strtol(text, &end, 10);
    return end != text && *end == 0 && errno == 0 && *value >= low && *value <= high;
}

bool ParseShare(const char *text, double *value)
{
    char *end;
    *value = strtod(text, &end);
    return end != text && *end == 0 && *value >= 0 && *value <= 1;
}

// Numbers and ranges between commas, each 0..15.
bool ParseStations(const char *text, uint32_t *mask)
{
    *mask = 0;
    for (;;) {
        char *end;
        const long first = strtol(text, &end, 10);
        long last = first;
        if (end == text)
            return false;
        if (*end == '-') {
            text = end + 1;
            last = strtol(text, &end, 10);
            if (end == text)
                return false;
        }
        if (first < 0 || last < first || last > STATION_MAX)
            return false;
        for (long i = first; i <= last; i++)
            *mask |= 1U << i;
        if (*end == 0)
            return true;
        if (*end != ',')
            return false;
        text = end + 1;
    }
}

// One row an option; `apply` is null for those that only end the program.
struct OptionRow {
    option getopt;
    bool (*apply)(const char *text, SIM_Options *options);
    bool isLive = false; // may be changed while the target runs
};

bool isControlled = false; // --control

bool ApplyBaud(const char *text, SIM_Options *options)
{
    long value = 0;
    const bool good = ParseWhole(text, BAUD_MIN, BAUD_MAX, &value);
    options->baud = static_cast<int>(value);
    return good;
}

// Which host it is shows when it is listened at; the port must be a number.
bool ApplyTcp(const char *text, SIM_Options *options)
{
    const char *colon = strrchr(text, ':');
    long port = 0;
    options->tcp = text;
    return colon != text && ParseWhole(colon ? colon + 1 : text, 0, PORT_LAST, &port);
}

bool ApplyDelay(const char *text, SIM_Options *options)
{
    long value = 0;
    const bool good = ParseWhole(text, 0, DELAY_MAX_MS, &value);
    options->delayMs = static_cast<int>(value);
    return good;
}

// An option has no value, a line of the control has one.
bool ApplyEcho(const char *text, SIM_Options *options)
{
    options->echo = text == nullptr || strcmp(text, "1") == 0;
    return text == nullptr || options->echo || strcmp(text, "0") == 0;
}

bool ApplyEraseSeconds(const char *text, SIM_Options *options)
{
    long value = 0;
    const bool good = ParseWhole(text, 0, ERASE_MAX_S, &value);
    options->eraseSeconds = static_cast<int>(value);
    return good;
}

bool ApplySeed(const char *text, SIM_Options *options)
{
    long value = 0;
    const bool good = ParseWhole(text, 0, UINT32_MAX, &value);
    options->seed = static_cast<uint32_t>(value);
    return good;
}

bool ApplyScope(const char *text, SIM_Options *options)
{
    const std::string list = text;
    options->scopes = 0; // "none" says so; an empty list is a mistake
    for (size_t begin = 0; begin <= list.size();) {
        const size_t comma = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, comma - begin);
        begin = comma + 1;
        if (name == "2")
            options->scopes |= SIM_SCOPE_2;
        else if (name == "3")
            options->scopes |= SIM_SCOPE_3;
        else if (name == "3c166")
            options->scopes |= SIM_SCOPE_3C166;
        else if (name != "none")
            return false;
    }
    return true;
}

// "FILE@67F000": the address is hexadecimal; a file name may hold an "@" itself.
bool ApplyFlash(const char *text, SIM_Options *options)
{
    const char *at = strrchr(text, '@');
    if (!at || at == text || !isxdigit(static_cast<unsigned char>(at[1])))
        return false;
    char *end;
    const unsigned long address = strtoul(at + 1, &end, 16);
    options->flash.assign(text, at);
    options->flashAddress = static_cast<uint32_t>(address);
    return *end == 0 && address < ADDRESS_END;
}

const OptionRow rows[] = {
    {{"modbus", no_argument, nullptr, 0},
     [](const char *, SIM_Options *o) { return o->modbus = true; }},
    {{"refuse", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) { return ParseShare(text, &o->refuse); },
     true},
    {{"link", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) {
         o->link = text;
         return *text != 0;
     }},
    {{"tcp", required_argument, nullptr, 0}, ApplyTcp},
    {{"baud", required_argument, nullptr, 0}, ApplyBaud},
    {{"echo", no_argument, nullptr, 0}, ApplyEcho, true},
    {{"drop", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) { return ParseShare(text, &o->drop); },
     true},
    {{"repeat", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) { return ParseShare(text, &o->repeat); },
     true},
    {{"corrupt", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) { return ParseShare(text, &o->corrupt); },
     true},
    {{"delay", required_argument, nullptr, 0}, ApplyDelay, true},
    {{"silent-after", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) {
         return ParseWhole(text, -1, LONG_MAX, &o->silentAfter);
     },
     true},
    {{"seed", required_argument, nullptr, 0}, ApplySeed},
    {{"log", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) {
         o->log = text;
         return *text != 0;
     }},
    {{"stations", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) { return ParseStations(text, &o->stations); },
     true},
    {{"control", no_argument, nullptr, 0},
     [](const char *, SIM_Options *) { return isControlled = true; }},
    {{"flash", required_argument, nullptr, 0}, ApplyFlash},
    {{"loader", no_argument, nullptr, 0},
     [](const char *, SIM_Options *o) { return o->loader = true; }},
    {{"erase-seconds", required_argument, nullptr, 0}, ApplyEraseSeconds},
    {{"flash-image", required_argument, nullptr, 0},
     [](const char *text, SIM_Options *o) {
         o->flashImage = text;
         return *text != 0;
     }},
    {{"scope", required_argument, nullptr, 0}, ApplyScope},
    {{"no-demo", no_argument, nullptr, 0},
     [](const char *, SIM_Options *o) {
         o->demo = false;
         return true;
     }},
    {{"help", no_argument, nullptr, 0}, nullptr},
};
constexpr size_t ROWS = sizeof rows / sizeof *rows;

[[noreturn]] void EndRefusing()
{
    fputs("Try 'vireo2-target --help'.\n", stderr);
    exit(EXIT_USAGE);
}

void ParseArguments(int argc, char **argv, SIM_Options *options)
{
    option table[ROWS + 1] = {};
    for (size_t i = 0; i < ROWS; i++)
        table[i] = rows[i].getopt;
    int index = 0;
    int got;
    // 0 is one of ours: no option has a letter.
    while ((got = getopt_long(argc, argv, "", table, &index)) == 0) {
        const OptionRow &row = rows[index];
        if (!row.apply) {
            fputs(HELP, stdout);
            exit(EXIT_SUCCESS);
        }
        if (!row.apply(optarg, options)) {
            fprintf(stderr, "vireo2-target: bad value for --%s: %s\n", row.getopt.name, optarg);
            EndRefusing();
        }
    }
    if (got != -1) // getopt has named the option
        EndRefusing();
    if (optind < argc) {
        fprintf(stderr, "vireo2-target: unexpected argument: %s\n", argv[optind]);
        EndRefusing();
    }
}

// --- faults while it runs ---------------------------------------------------------------

// The thread that waits for lines is never joined: the target may have ended before it.
std::mutex controlLock;
SIM_Target *controlled = nullptr;
SIM_Options controlOptions;

// "drop 0.05"; anything else is answered with "? " and the line.
void ObeyLine(const std::string &line)
{
    const size_t blank = line.find(' ');
    const std::string name = line.substr(0, blank);
    const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
    const std::lock_guard<std::mutex> guard(controlLock);
    for (const OptionRow &row : rows) {
        // Of a refused value nothing stays: a parser may have written half of it.
        SIM_Options fresh = controlOptions;
        if (!row.isLive || name != row.getopt.name || !row.apply(value.c_str(), &fresh))
            continue;
        controlOptions = fresh;
        if (controlled)
            SIM_SetFaults(controlled, controlOptions);
        return;
    }
    printf("? %s\n", line.c_str());
    fflush(stdout);
}

void ObeyInput()
{
    constexpr size_t LINE_MAX_CHARS = 200;
    char bytes[256];
    std::string line;
    while (const size_t count = SIM_ReadInput(bytes, sizeof bytes))
        // A read may bring half a line or several; what exceeds the bound is cut and refused.
        for (size_t i = 0; i < count; i++) {
            if (bytes[i] == '\n') {
                ObeyLine(line);
                line.clear();
            } else if (bytes[i] != '\r' && line.size() < LINE_MAX_CHARS) {
                line += bytes[i];
            }
        }
    SIM_EndProgram();
}

void SetControlled(SIM_Target *target)
{
    const std::lock_guard<std::mutex> guard(controlLock);
    controlled = target;
}

} // namespace

int main(int argc, char **argv)
{
    SIM_Options options;
    options.eraseSeconds = ERASE_DEFAULT_S;
    ParseArguments(argc, argv, &options);

    SIM_PrepareEnding();
    std::string error;
    SIM_Target *target = SIM_Start(options, &error);
    if (!target) {
        fprintf(stderr, "vireo2-target: %s\n", error.c_str());
        return EXIT_FAILURE;
    }
    // Scripts wait for this line and open what it names.
    printf("%s\n", SIM_DevicePath(target));
    fflush(stdout);
    controlOptions = options;
    SetControlled(target);
    if (isControlled)
        std::thread(ObeyInput).detach();
    SIM_WaitForEnding();
    // A line that comes from here on must not reach a target that is freed.
    SetControlled(nullptr);
    if (!SIM_Stop(target, &error)) {
        fprintf(stderr, "vireo2-target: %s\n", error.c_str());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
