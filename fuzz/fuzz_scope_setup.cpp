// Any file as the scope's settings: it is read without harm, what is wrong is named by its
// line, and what is saved says the same when it is read again.
#include "runtime/headless/headless.h"
#include "scope/setup.h"
#include "scratch_folder.h"

namespace {

std::string NumbersOf(const SCP_Setup &setup)
{
    std::string text = setup.id + "|" + std::to_string(setup.subPd) + "|" +
                       std::to_string(setup.mode) + "|" + std::to_string(setup.slope) + "|" +
                       SCP_NumberText(setup.level) + "|" + SCP_NumberText(setup.position);
    for (const SCP_ChannelSetup &channel : setup.channels)
        text += "|" + channel.place + "," + std::to_string(channel.isOn) + "," +
                std::to_string(channel.type) + "," + channel.unit + "," +
                SCP_NumberText(channel.factor) + "," + SCP_NumberText(channel.offset);
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string content(reinterpret_cast<const char *>(data), size);
    const std::string file = FUZ_Folder() + "/scope.ini";
    FUZ_WriteFile("scope.ini", content);
    SCP_Setup setup, again;
    std::vector<std::string> problems;
    if (SCP_LoadSetup(file, &setup, &problems) != 0)
        return 0;
    FUZ_Check(setup.subPd >= 1 && setup.mode >= 0 && setup.mode <= 2 && setup.position >= 0 &&
              setup.position <= 100);
    for (const SCP_ChannelSetup &channel : setup.channels)
        FUZ_Check(channel.type >= 0 && channel.type < SX_TYPES && channel.factor != 0);
    for (const std::string &problem : problems)
        FUZ_Check(problem.compare(0, 5, "line ") == 0);
    FUZ_Check(SCP_SaveSetup(file, setup) == 0);
    problems.clear();
    FUZ_Check(SCP_LoadSetup(file, &again, &problems) == 0);
    FUZ_Check(NumbersOf(again) == NumbersOf(setup));
    return 0;
}
