// Names as the manuals of the C167 have them. Registers that are built alike are not listed: their
// fields follow from their names.
#include "code/bit_names.h"

namespace {

struct Row {
    const char *registerName; // "" = of the register above
    const char *name;
    int first, last;
};

// clang-format off
const Row ROWS[] = {
    {"PSW", "N", 0, 0}, {"", "C", 1, 1}, {"", "V", 2, 2}, {"", "Z", 3, 3}, {"", "E", 4, 4},
    {"", "MULIP", 5, 5}, {"", "USR0", 6, 6}, {"", "HLDEN", 10, 10}, {"", "IEN", 11, 11},
    {"", "ILVL", 12, 15},
    {"MDC", "MDRIU", 4, 4},
    {"TFR", "ILLBUS", 0, 0}, {"", "ILLINA", 1, 1}, {"", "ILLOPA", 2, 2}, {"", "PRTFLT", 3, 3},
    {"", "UNDOPC", 7, 7}, {"", "STKUF", 13, 13}, {"", "STKOF", 14, 14}, {"", "NMI", 15, 15},
    {"T01CON", "T0I", 0, 2}, {"", "T0M", 3, 3}, {"", "T0R", 6, 6}, {"", "T1I", 8, 10},
    {"", "T1M", 11, 11}, {"", "T1R", 14, 14},
    {"T78CON", "T7I", 0, 2}, {"", "T7M", 3, 3}, {"", "T7R", 6, 6}, {"", "T8I", 8, 10},
    {"", "T8M", 11, 11}, {"", "T8R", 14, 14},
    {"T2CON", "T2I", 0, 2}, {"", "T2M", 3, 5}, {"", "T2R", 6, 6}, {"", "T2UD", 7, 7},
    {"", "T2UDE", 8, 8},
    {"T3CON", "T3I", 0, 2}, {"", "T3M", 3, 5}, {"", "T3R", 6, 6}, {"", "T3UD", 7, 7},
    {"", "T3UDE", 8, 8}, {"", "T3OE", 9, 9}, {"", "T3OTL", 10, 10},
    {"T4CON", "T4I", 0, 2}, {"", "T4M", 3, 5}, {"", "T4R", 6, 6}, {"", "T4UD", 7, 7},
    {"", "T4UDE", 8, 8},
    {"T5CON", "T5I", 0, 2}, {"", "T5M", 3, 4}, {"", "T5R", 6, 6}, {"", "T5UD", 7, 7},
    {"", "T5UDE", 8, 8}, {"", "CI", 12, 13}, {"", "T5CLR", 14, 14}, {"", "T5SC", 15, 15},
    {"T6CON", "T6I", 0, 2}, {"", "T6M", 3, 5}, {"", "T6R", 6, 6}, {"", "T6UD", 7, 7},
    {"", "T6UDE", 8, 8}, {"", "T6OE", 9, 9}, {"", "T6OTL", 10, 10}, {"", "T6SR", 15, 15},
    {"S0CON", "S0M", 0, 2}, {"", "S0STP", 3, 3}, {"", "S0REN", 4, 4}, {"", "S0PEN", 5, 5},
    {"", "S0FEN", 6, 6}, {"", "S0OEN", 7, 7}, {"", "S0PE", 8, 8}, {"", "S0FE", 9, 9},
    {"", "S0OE", 10, 10}, {"", "S0ODD", 12, 12}, {"", "S0BRS", 13, 13}, {"", "S0LB", 14, 14},
    {"", "S0R", 15, 15},
    {"S1CON", "S1M", 0, 2}, {"", "S1STP", 3, 3}, {"", "S1REN", 4, 4}, {"", "S1PEN", 5, 5},
    {"", "S1FEN", 6, 6}, {"", "S1OEN", 7, 7}, {"", "S1PE", 8, 8}, {"", "S1FE", 9, 9},
    {"", "S1OE", 10, 10}, {"", "S1LB", 14, 14}, {"", "S1R", 15, 15},
    {"ADCON", "ADCH", 0, 3}, {"", "ADM", 4, 5}, {"", "ADST", 7, 7}, {"", "ADBSY", 8, 8},
    {"", "ADWR", 9, 9}, {"", "ADCIN", 10, 10}, {"", "ADCRQ", 11, 11}, {"", "ADSTC", 12, 13},
    {"", "ADCTC", 14, 15},
    {"WDTCON", "WDTIN", 0, 0}, {"", "WDTR", 1, 1}, {"", "WDTREL", 8, 15},
    {"PWMCON0", "PTR0", 0, 0}, {"", "PTR1", 1, 1}, {"", "PTR2", 2, 2}, {"", "PTR3", 3, 3},
    {"", "PTI0", 4, 4}, {"", "PTI1", 5, 5}, {"", "PTI2", 6, 6}, {"", "PTI3", 7, 7},
    {"", "PIE0", 8, 8}, {"", "PIE1", 9, 9}, {"", "PIE2", 10, 10}, {"", "PIE3", 11, 11},
    {"", "PIR0", 12, 12}, {"", "PIR1", 13, 13}, {"", "PIR2", 14, 14}, {"", "PIR3", 15, 15},
    {"PWMCON1", "PEN0", 0, 0}, {"", "PEN1", 1, 1}, {"", "PEN2", 2, 2}, {"", "PEN3", 3, 3},
    {"", "PM0", 4, 4}, {"", "PM1", 5, 5}, {"", "PM2", 6, 6}, {"", "PM3", 7, 7},
    {"", "PB01", 12, 12}, {"", "PS2", 14, 14}, {"", "PS3", 15, 15},
};
// clang-format on

// Three bits of mode, one that chooses the timer.
constexpr int CAPTURES_PER_REGISTER = 4, BITS_PER_CAPTURE = 4;

} // namespace

std::vector<CODE_BitField> CODE_GetBitFields(const std::string &registerName)
{
    // Every interrupt control register is built alike: "T2IC" has T2IE and T2IR.
    const size_t length = registerName.size();
    if (length > 2 && registerName.compare(length - 2, 2, "IC") == 0) {
        const std::string source = registerName.substr(0, length - 2);
        return {{"GLVL", 0, 1}, {"ILVL", 2, 5}, {source + "IE", 6, 6}, {source + "IR", 7, 7}};
    }
    std::vector<CODE_BitField> fields;
    // "CCM2": modes and allocation of the captures 8 to 11.
    if (length == 4 && registerName.compare(0, 3, "CCM") == 0 && registerName[3] >= '0' &&
        registerName[3] <= '7') {
        for (int i = 0; i < CAPTURES_PER_REGISTER; ++i) {
            const std::string number =
                std::to_string((registerName[3] - '0') * CAPTURES_PER_REGISTER + i);
            const int bit = i * BITS_PER_CAPTURE;
            fields.push_back({"CCMOD" + number, bit, bit + 2});
            fields.push_back({"ACC" + number, bit + 3, bit + 3});
        }
        return fields;
    }
    // Rows with an empty name belong to the register named above them.
    const char *current = "";
    for (const Row &row : ROWS) {
        if (*row.registerName != '\0')
            current = row.registerName;
        if (registerName == current)
            fields.push_back({row.name, row.first, row.last});
    }
    return fields;
}

std::string CODE_GetBitName(const std::string &registerName, int bit)
{
    for (const CODE_BitField &field : CODE_GetBitFields(registerName))
        if (bit >= field.first && bit <= field.last)
            return field.first == field.last ? field.name
                                             : field.name + "." + std::to_string(bit - field.first);
    return "";
}
