// One transfer brings the bytes of all lines: instruction by instruction would be a message each.
#include "code/listing.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

#include "code/bit_names.h"
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "symbols/varnode.h"
#include "text/bytes.h"
#include "watch/list/read_item.h"

namespace {

constexpr int BYTES_COLUMN = 11, INSTRUCTION_COLUMN = 34; // characters
constexpr int PAGE_POINTERS = 4;

std::string FormatAddress(uint32_t address)
{
    char text[16];
    std::snprintf(text, sizeof text, "%06x", address);
    return text;
}

// The register whose address it is exactly; null on a processor of another family.
const char *FindRegister(uint32_t address)
{
    const VarNode *node = openStruct166 ? SYM_RegisterAtOrAfter(address) : nullptr;
    return node != nullptr && node->addr == address ? node->name : nullptr;
}

// In lower case, as the instructions are written. Called back by CODE_ToText.
std::string NameRegister(uint32_t address)
{
    const char *found = FindRegister(address);
    std::string name = found != nullptr ? found : "";
    for (char &c : name)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return name;
}

// The name of what an operand uses, unless the instruction says it already.
std::string NameOperand(const CODE_Operand &operand)
{
    if (operand.address == CODE_NO_ADDRESS)
        return "";
    const std::string name = SYM_AddressToName(operand.address);
    const char *registerName = FindRegister(operand.address);
    switch (operand.kind) {
    case CODE_WORD_BIT:
        if (registerName != nullptr)
            return CODE_GetBitName(registerName, operand.extra);
        return name.empty() ? name : name + "." + std::to_string(operand.extra);
    case CODE_SPECIAL: // a register is named in the instruction
        return registerName != nullptr ? "" : name;
    case CODE_CODE_ADDRESS:
        return name;
    case CODE_MEMORY:
    case CODE_SEGMENT_OFFSET: // the instruction does not show the whole address
        return FormatAddress(operand.address) + (name.empty() ? "" : " " + name);
    default:
        return "";
    }
}

} // namespace

bool CODE_CanDecode()
{
    return Procesor == CPU_C166 || Procesor == CPU_C167;
}

CODE_Pages CODE_ReadPages()
{
    CODE_Pages pages;
    // A page pointer of a doubtful read would lead every operand to a wrong name.
    pages.isKnown = CODE_CanDecode() && UpdateQuickDPP() == 0 && UCM_Prove() == UCM_PROVEN;
    if (pages.isKnown)
        std::copy(awQRDPP, awQRDPP + PAGE_POINTERS, pages.pages);
    return pages;
}

int CODE_Read(int station, uint32_t address, int count, const CODE_Pages &pages,
              std::vector<CODE_Instruction> *code, std::string *cause)
{
    code->clear();
    // An odd address would decode, too, and every line of it would be wrong.
    if (address >= ADDR_LIMIT || address % 2 != 0 || count < 1 || count > CODE_LINES_MAX) {
        *cause = address % 2 != 0 ? "code stands at even addresses" : "no such address";
        return -1;
    }
    // Enough for the longest instructions; what is left over is not decoded. At the end of the
    // address space the last one may lack bytes, which makes it no instruction.
    const auto wanted = static_cast<uint32_t>(count * static_cast<int>(CODE_LENGTH_MAX));
    std::vector<uint8_t> bytes(std::min(wanted, ADDR_LIMIT - address));
    const auto size = static_cast<uint32_t>(bytes.size());
    if (RFR_ReadItemBytes(station, address, size, bytes.data(), cause) != 0)
        return -1;
    CODE_Scope scope;
    for (uint32_t at = 0; at < size && static_cast<int>(code->size()) < count;) {
        CODE_Instruction instruction;
        CODE_Decode(bytes.data() + at, size - at, address + at, pages, &scope, &instruction);
        code->push_back(instruction);
        at += instruction.length;
    }
    return 0;
}

std::string CODE_FormatInstruction(const CODE_Instruction &instruction)
{
    return CODE_ToText(instruction, NameRegister);
}

std::string CODE_FormatNames(const CODE_Instruction &instruction)
{
    std::string names;
    for (const CODE_Operand &operand : instruction.operands) {
        const std::string name = NameOperand(operand);
        if (!name.empty())
            names += (names.empty() ? "" : ", ") + name;
    }
    return names;
}

std::string CODE_FormatLine(const CODE_Instruction &instruction)
{
    std::string line = FormatAddress(instruction.address) + "  ";
    std::string bytes = TXT_FormatHexBytes(instruction.bytes, instruction.length);
    bytes.resize(std::max<size_t>(bytes.size(), BYTES_COLUMN), ' ');
    line += bytes + "  ";
    std::string text = CODE_FormatInstruction(instruction);
    const std::string names = CODE_FormatNames(instruction);
    // Without names a line has no blanks at its end.
    if (names.empty())
        return line + text;
    text.resize(std::max<size_t>(text.size(), INSTRUCTION_COLUMN), ' ');
    return line + text + " ; " + names;
}
