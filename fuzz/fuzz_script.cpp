// Command lines and script files: the first byte chooses a parameter code, the rest is
// the text. Nothing may reach past its bounds, and a refused parameter moves nothing.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "console/script/script_command.h"
#include "text/script_param.h"

namespace {

int Check(ScrPar *par)
{
    for (int i = 0; i < PARAMS_MAX; i++)
        if (std::memchr(par[i].text, '\0', sizeof par[i].text) == nullptr)
            std::abort();
    return 0;
}

int CheckOne(ScrPar *par)
{
    return std::memchr(par->text, '\0', sizeof par->text) == nullptr ? -1 : 0;
}

const ScrRow ROWS[] = {
    {Check, "write", {0x6, 0x10, 0xB0}},   {Check, "save", {0xB0, 0x120, 0xA, 0x400}},
    {Check, "qst", {0x800, 0x800, 0x800}}, {Check, "set", {0x6020, 0x1000, 0x9, 0x5, 0x11}},
    {CheckOne, "whole", {PAR_EXTERN}},     {Check, "none", {}}};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    uint16_t code = 0;
    std::memcpy(&code, data, sizeof code);
    const std::string text(reinterpret_cast<const char *>(data + 2), size - 2);
    const char *const begin = text.c_str();
    const char *cursor = begin;
    ScrPar par;
    const int result = ScrGetPar(&cursor, &par, code);
    if (cursor < begin || cursor > begin + std::strlen(begin) || (result < 0 && cursor != begin) ||
        CheckOne(&par) < 0)
        std::abort();
    ExecScrCmd(begin, ROWS, sizeof ROWS / sizeof ROWS[0]);
    return 0;
}
