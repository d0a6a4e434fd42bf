// Command line options. They are parsed twice: before the settings file, because they
// choose it, and after it, because they win over it. What they take without effect, or as
// another value than was typed, is said once.
#include "app/startup.h"

#include <cctype>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "settings/limits.h"
#include "settings/settings.h"

std::string VR_szTypesOption;

namespace {

constexpr int PORT_OPTION_MAX = 4; // "-12" is port 1: an option is one digit
constexpr int BAUD_DEFAULT = 19200;
const char TYPES_OPTION[] = "--types";

// Text that is no number counts as 0, which is the station 0 and no baud rate: the remarks say so.
int ParseNumber(const char *text, int ifNegative)
{
    const long value = std::strtol(text, nullptr, 10);
    if (value < 0)
        return ifNegative;
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

void ApplyOption(const char *option)
{
    const char letter = option[1];
    if (std::isdigit(static_cast<unsigned char>(letter)) != 0) {
        const int port = letter - '0';
        ncom = port >= 1 && port <= PORT_OPTION_MAX ? port : 1;
    } else if (letter == 'b') {
        bRate = ParseNumber(option + 2, BAUD_DEFAULT);
    } else if (letter == 's') {
        STATION = ParseNumber(option + 2, 0);
    } else if (letter == 'C') {
        VR_enAppMode = MODE_CONFIGURATION;
    }
}

// Digits to the end, and no more than the program's numbers hold.
bool IsNumber(const char *text)
{
    const size_t digits = std::strspn(text, "0123456789");
    return digits > 0 && text[digits] == '\0' && std::strtol(text, nullptr, 10) <= INT_MAX;
}

// What an option does that its user may not have meant, "" when nothing.
std::string RemarkOn(const char *option)
{
    const char letter = option[1];
    const char *rest = option[1] == '\0' ? "" : option + 2;
    const bool isDigit = std::isdigit(static_cast<unsigned char>(letter)) != 0;
    if (isDigit && (letter > '0' + PORT_OPTION_MAX || letter == '0'))
        return "ports are -1 to -4; port 1 is used";
    if (letter == 'b' && !IsNumber(rest))
        return "no number; the baud rate is " + std::to_string(ParseNumber(rest, BAUD_DEFAULT));
    if (letter == 's' && !IsNumber(rest))
        return "no number; the station is " + std::to_string(ParseNumber(rest, 0));
    if (letter == 's' && VR_nProtocol == PROTOCOL_MR166 && ParseNumber(rest, 0) > STATION_MAX)
        return "stations are 0 to " + std::to_string(STATION_MAX);
    if ((isDigit || letter == 'C') && *rest != '\0')
        return std::string("taken as -") + letter;
    return isDigit || (letter != '\0' && std::strchr("bsC", letter)) ? "" : "has no effect";
}

} // namespace

int GetCmdLineOptions(int argc, char **argv)
{
    int index = 1; // of the first that is no option: a script
    for (; index < argc && argv[index][0] == '-'; index++)
        ApplyOption(argv[index]);
    return index;
}

std::vector<std::string> VR_GetCmdLineRemarks(int argc, char **argv)
{
    std::vector<std::string> remarks;
    const int script = GetCmdLineOptions(argc, argv);
    for (int i = 1; i < script; i++) {
        const std::string remark = RemarkOn(argv[i]);
        if (!remark.empty())
            remarks.push_back(std::string(argv[i]) + ": " + remark + ".");
    }
    for (int i = script + 1; i < argc; i++)
        remarks.push_back(std::string(argv[i]) + ": has no effect behind the script.");
    return remarks;
}

int VR_RemoveTypesOption(int *argc, char **argv)
{
    const size_t length = std::strlen(TYPES_OPTION);
    int kept = 1;
    int result = 0;
    for (int i = 1; i < *argc; i++) {
        if (std::strncmp(argv[i], TYPES_OPTION, length) != 0 ||
            (argv[i][length] != '=' && argv[i][length] != '\0')) {
            argv[kept++] = argv[i];
            continue;
        }
        // "--types=FILE" or "--types FILE"; both leave the arguments, with their file.
        if (argv[i][length] == '=')
            VR_szTypesOption = argv[i] + length + 1;
        else
            VR_szTypesOption = i + 1 < *argc ? argv[++i] : "";
        result = VR_szTypesOption.empty() ? -1 : result;
    }
    argv[kept] = nullptr;
    *argc = kept;
    return result;
}
