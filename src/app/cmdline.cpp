// Command line options. They are parsed twice: before the settings file, because they
// choose it, and after it, because they win over it.
#include "settings/settings.h"

#include <cctype>
#include <climits>
#include <cstdlib>

namespace {

constexpr int PORT_OPTION_MAX = 4;
constexpr int BAUD_DEFAULT = 19200;

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

} // namespace

int GetCmdLineOptions(int argc, char **argv)
{
    int index = 1;
    for (; index < argc && argv[index][0] == '-'; index++)
        ApplyOption(argv[index]);
    return index;
}
