// Any command line, the arguments parted by line feeds: every option is taken, or refused
// with a message, and what is not exactly one of the documented forms is remarked upon.
#include "app/console_program/console_options.h"
#include "app/startup.h"
#include "scratch_folder.h"
#include "settings/limits.h"
#include "settings/settings.h"

#include <climits>
#include <cstring>
#include <sstream>

namespace {

// The documented forms, decided without the program's help.
bool IsPlain(const std::string &option)
{
    if (option.size() == 2 && std::strchr("1234C", option[1]) != nullptr && option[1] != '\0')
        return true;
    if (option.size() < 3 || (option[1] != 'b' && option[1] != 's'))
        return false;
    for (size_t i = 2; i < option.size(); ++i)
        if (option[i] < '0' || option[i] > '9')
            return false;
    const std::string digits =
        option.substr(std::min(option.find_first_not_of('0', 2), option.size()));
    const long value = digits.size() > 10 ? LONG_MAX : digits.empty() ? 0 : std::stol(digits);
    return value <= (option[1] == 's' ? static_cast<long>(STATION_MAX) : long{INT_MAX});
}

void CheckOptions(int argc, char **argv)
{
    ncom = 1;
    bRate = 19200;
    STATION = 1;
    VR_enAppMode = MODE_NORMAL;
    const int rest = GetCmdLineOptions(argc, argv);
    FUZ_Check(rest >= 1 && rest <= argc && (rest == argc || argv[rest][0] != '-'));
    FUZ_Check(ncom >= 1 && ncom <= 4 && bRate >= 0 && STATION >= 0);
    int odd = argc - rest > 1 ? argc - rest - 1 : 0;
    for (int i = 1; i < rest; ++i)
        odd += IsPlain(argv[i]) ? 0 : 1;
    FUZ_Check(static_cast<int>(VR_GetCmdLineRemarks(argc, argv).size()) == odd);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, size_t size)
{
    std::istringstream input(std::string(reinterpret_cast<const char *>(data), size));
    std::vector<std::string> words = {"vireo2"};
    for (std::string word; std::getline(input, word);)
        words.push_back(word.c_str()); // up to its first zero byte, as every argument
    std::vector<char *> argv;
    for (std::string &word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    const int given = static_cast<int>(words.size());
    std::vector<char *> desktop = argv;
    int argc = given;
    const bool isTaken = VR_RemoveTypesOption(&argc, desktop.data()) == 0;
    FUZ_Check(argc >= 1 && argc <= given && desktop.data()[argc] == nullptr);
    FUZ_Check(!isTaken || argc == given || !VR_szTypesOption.empty());
    CheckOptions(argc, desktop.data());
    argc = given;
    CPG_Options options;
    std::string message;
    if (CPG_ParseOptions(&argc, argv.data(), &options, &message) < 0) {
        FUZ_Check(!message.empty());
        return 0;
    }
    FUZ_Check(argc >= 1 && argc <= given && argv.data()[argc] == nullptr);
    FUZ_Check(options.sweeps >= 0 && options.scopeWait >= 0);
    for (int i = 1; i < argc; ++i)
        FUZ_Check(std::strncmp(argv.data()[i], "--", 2) != 0);
    CheckOptions(argc, argv.data());
    return 0;
}
