// Assignment lines and type codes.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "symbols/assignment.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string line(reinterpret_cast<const char *>(data), size);
    static const int32_t defaults[] = {0, ATP_I2, ATP_U4, ATP_F4, ATP_SZ};
    for (int32_t type : defaults) {
        ScrPar records[SYM_ASSIGN_RECORDS];
        const int kind = ParseAssn2(line.c_str(), records, type);
        const bool hasName = (records[0].flags & PAR_NAME) != 0 || records[0].text[0] != '\0';
        if (kind != SYM_ASSIGN_NONE && kind != SYM_ASSIGN_VALUE && kind != SYM_ASSIGN_LABEL)
            std::abort();
        if (kind != SYM_ASSIGN_NONE && !hasName)
            std::abort();
        std::string text;
        ATP_toStr(records[1].flags, &text);
        if (ATP_SizeOf(records[0].flags) > 4 || text.size() < 2)
            std::abort();
    }
    return 0;
}
