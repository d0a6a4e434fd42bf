// Everything shown here comes from one set of live reads, which is proven as a whole. Registers
// that change by being read are never in it.
#include "code/debugger_values.h"

#include <algorithm>
#include <cstdio>

#include "code/bit_names.h"
#include "code/listing.h"
#include "code/live_reads.h"
#include "code/register_groups.h"
#include "runtime/userint.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "symbols/addr_name.h"
#include "text/bytes.h"
#include "ui/resource.h"
#include "watch/list/read_item.h"

namespace {

constexpr int PANEL = PANEL_DEBUGGER;
constexpr int GENERAL_GROUP = -1; // in the ring, beside places in `groups`
constexpr uint32_t GENERAL_REGISTERS = 16, WORD_BYTES = 2;
// Special function registers that the core itself uses, the same on every C166 and C167.
constexpr uint32_t ADDR_DPP0 = 0xFE00, ADDR_CP = 0xFE10, ADDR_SP = 0xFE12, ADDR_STKUN = 0xFE16;
constexpr uint32_t ADDR_PSW = 0xFF10;
constexpr int PAGE_POINTERS = 4;
// The system stack lies in the internal RAM; how much of it is used, only STKUN and SP tell.
constexpr uint32_t STACK_WORDS_MAX = 32, STACK_FIRST = 0xF600, STACK_LAST = 0xFDFE;
constexpr uint32_t MEMORY_BYTES = 128, MEMORY_LINE_BYTES = 16;

struct Line {
    std::string name;
    uint32_t address = 0;
    bool isTouchy = false;
};

std::vector<CODE_RegisterGroup> groups;
std::vector<Line> registerLines; // as shown
uint32_t memoryAddress = CODE_NO_ADDRESS;
CODE_LiveReads live; // of the last refresh
uint32_t contextPointer = CODE_NO_ADDRESS, stackPointer = CODE_NO_ADDRESS;
std::vector<std::pair<uint32_t, uint32_t>> lastValues; // of the registers shown, by address

std::string FormatHex(uint32_t value, int digits)
{
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, value);
    return text;
}

UI_Cell MakeCell(const std::string &text)
{
    UI_Cell cell;
    cell.text = text;
    return cell;
}

// --- registers --------------------------------------------------------------------------

// Those of the group that the ring shows.
void CollectRegisterLines()
{
    registerLines.clear();
    int group = GENERAL_GROUP;
    GetCtrlVal(PANEL, DEBUG_GROUP, &group);
    if (group == GENERAL_GROUP && CODE_CanDecode() && contextPointer != CODE_NO_ADDRESS) {
        for (uint32_t i = 0; i < GENERAL_REGISTERS; ++i)
            registerLines.push_back({"R" + std::to_string(i), contextPointer + i * WORD_BYTES});
        // The flags belong to the registers they were computed from.
        registerLines.push_back({"PSW", ADDR_PSW});
    }
    if (group >= 0 && group < static_cast<int>(groups.size()))
        for (const CODE_Register &row : groups[static_cast<size_t>(group)].registers)
            registerLines.push_back({row.name, row.address, row.isTouchy});
}

// Single bits that are set, and fields with their number.
std::string FormatBits(const std::string &name, uint32_t value)
{
    std::string text;
    for (const CODE_BitField &field : CODE_GetBitFields(name)) {
        const uint32_t mask = (1u << (field.last - field.first + 1)) - 1;
        const uint32_t number = value >> field.first & mask;
        if (field.first == field.last && number == 0)
            continue;
        text += (text.empty() ? "" : " ") + field.name;
        if (field.first != field.last)
            text += "=" + std::to_string(number);
    }
    return text;
}

// A register that was not read shows a dash, never its last value.
void ShowRegister(int index, uint32_t value, bool isRead, unsigned style)
{
    const Line &line = registerLines[static_cast<size_t>(index)];
    const std::string tip = "0x" + FormatHex(line.address, 6);
    std::vector<UI_Cell> cells = {{line.name, UIS_NORMAL, tip}};
    if (isRead) {
        cells.push_back({FormatHex(value, 4), style, tip});
        cells.push_back({std::to_string(value), style, ""});
        cells.push_back({FormatBits(line.name, value), style, ""});
    } else {
        const bool isOnRequest = line.isTouchy;
        cells.push_back({"-", UIS_DIM,
                         isOnRequest ? "Reading it tells the peripheral that it was "
                                       "taken: Enter reads it once."
                                     : ""});
    }
    SetListCells(PANEL, DEBUG_REGISTERS, index, cells);
}

void FillRegisterList()
{
    // Lines are kept where there are as many as before, so that the selection stays.
    int count = 0;
    GetNumListItems(PANEL, DEBUG_REGISTERS, &count);
    if (count != static_cast<int>(registerLines.size())) {
        ClearListCtrl(PANEL, DEBUG_REGISTERS);
        for (const Line &line : registerLines)
            InsertListItem(PANEL, DEBUG_REGISTERS, -1, line.name, 0);
    }
    std::vector<std::pair<uint32_t, uint32_t>> values;
    for (size_t i = 0; i < registerLines.size(); ++i) {
        uint32_t value = 0;
        const bool isRead = !registerLines[i].isTouchy &&
                            CODE_GetLive(live, registerLines[i].address, WORD_BYTES, &value);
        const uint32_t address = registerLines[i].address;
        // By address, not by line: the context pointer moves the general registers.
        unsigned style = UIS_NORMAL;
        for (const auto &[place, last] : lastValues)
            if (place == address && last != value)
                style = UIS_CHANGED;
        ShowRegister(static_cast<int>(i), value, isRead, style);
        if (isRead)
            values.push_back({address, value});
    }
    lastValues = values;
}

// --- stack and memory -------------------------------------------------------------------

void ShowStack()
{
    uint32_t bottom = 0;
    ClearListCtrl(PANEL, DEBUG_STACK);
    if (!CODE_GetLive(live, ADDR_STKUN, WORD_BYTES, &bottom))
        return;
    // The words in use: from the stack pointer up to where the stack begins. Before a start-up has
    // set them the two are anything, and nothing is shown.
    uint32_t words = 0;
    if (stackPointer >= STACK_FIRST && stackPointer <= STACK_LAST && bottom > stackPointer &&
        bottom <= STACK_LAST + WORD_BYTES)
        words = std::min((bottom - stackPointer) / WORD_BYTES, STACK_WORDS_MAX);
    for (uint32_t i = 0; i < words; ++i) {
        uint32_t value = 0;
        const uint32_t address = stackPointer + i * WORD_BYTES;
        if (!CODE_GetLive(live, address, WORD_BYTES, &value))
            return;
        const std::string text = FormatHex(address, 4) + (i == 0 ? "  SP" : "");
        InsertListItem(PANEL, DEBUG_STACK, -1, text, 0);
        SetListCells(
            PANEL, DEBUG_STACK, static_cast<int>(i),
            {MakeCell(text), MakeCell(FormatHex(value, 4)), MakeCell(std::to_string(value))});
    }
    if (words == 0)
        InsertListItem(PANEL, DEBUG_STACK, -1,
                       "SP " + FormatHex(stackPointer, 4) + "\033p110lempty", 0);
}

// Line by line as far as was read; the end of the target's memory cuts the last one.
void ShowMemory()
{
    ClearListCtrl(PANEL, DEBUG_MEMORY);
    for (uint32_t at = 0; at < MEMORY_BYTES; at += MEMORY_LINE_BYTES) {
        uint8_t bytes[MEMORY_LINE_BYTES];
        uint32_t count = 0, value = 0;
        while (count < MEMORY_LINE_BYTES && memoryAddress != CODE_NO_ADDRESS &&
               CODE_GetLive(live, memoryAddress + at + count, 1, &value))
            bytes[count++] = static_cast<uint8_t>(value);
        if (count == 0)
            return;
        const uint32_t address = memoryAddress + at;
        const std::string name = SYM_AddressToName(address);
        const int line = static_cast<int>(at / MEMORY_LINE_BYTES);
        InsertListItem(PANEL, DEBUG_MEMORY, -1, FormatHex(address, 6), 0);
        SetListCells(PANEL, DEBUG_MEMORY, line,
                     {{FormatHex(address, 6), UIS_NORMAL, name},
                      {TXT_FormatHexBytes(bytes, count), UIS_NORMAL, name},
                      MakeCell(TXT_PlainBytes(bytes, count)),
                      MakeCell(name)});
    }
}

// --- operands ---------------------------------------------------------------------------

// The general register an operand uses, or -1.
int GetRegister(const CODE_Operand &operand)
{
    switch (operand.kind) {
    case CODE_WORD_REGISTER:
    case CODE_INDIRECT:
    case CODE_INDIRECT_INC:
    case CODE_INDIRECT_DEC:
    case CODE_INDEXED:
    case CODE_REGISTER_BIT:
        return operand.value;
    case CODE_BYTE_REGISTER:
        return operand.value / 2;
    default:
        return -1;
    }
}

bool IsInMemory(const CODE_Operand &operand)
{
    return operand.address != CODE_NO_ADDRESS &&
           (operand.kind == CODE_MEMORY || operand.kind == CODE_SPECIAL ||
            operand.kind == CODE_WORD_BIT);
}

// Either byte of a register that is not to be read: reading one half takes the whole.
bool IsTouchyAddress(uint32_t address)
{
    for (const CODE_RegisterGroup &group : groups)
        for (const CODE_Register &row : group.registers)
            if (row.isTouchy && address / 2 == row.address / 2)
                return true;
    return false;
}

// "" for what holds no value of its own (numbers, targets) or was not read.
std::string FormatOperand(const CODE_Operand &operand)
{
    uint32_t value = 0;
    const int number = GetRegister(operand);
    // A general register is memory at the context pointer, which may be another task's next time.
    if (number >= 0 && contextPointer != CODE_NO_ADDRESS &&
        CODE_GetLive(live, contextPointer + static_cast<uint32_t>(number) * WORD_BYTES, WORD_BYTES,
                     &value))
        return "r" + std::to_string(number) + "=" + FormatHex(value, 4);
    const uint32_t size = operand.isByte ? 1 : WORD_BYTES;
    if (!IsInMemory(operand) || !CODE_GetLive(live, operand.address, size, &value))
        return "";
    // Of a bit the word was read; the bit alone is what the instruction uses.
    if (operand.kind == CODE_WORD_BIT)
        return std::to_string(value >> operand.extra & 1);
    return FormatHex(value, operand.isByte ? 2 : 4);
}

// --- the two steps of a refresh ---------------------------------------------------------

// All whose place is known beforehand. From CP to STKUN is one stretch: three registers in it are
// wanted, and one message costs less than three.
void WantAll(const std::vector<CODE_Instruction> *code, int firstLine, int lines)
{
    CollectRegisterLines();
    for (const Line &line : registerLines)
        if (!line.isTouchy)
            CODE_WantLive(&live, line.address, WORD_BYTES);
    if (memoryAddress != CODE_NO_ADDRESS)
        CODE_WantLive(&live, memoryAddress, std::min(MEMORY_BYTES, ADDR_LIMIT - memoryAddress));
    if (!CODE_CanDecode())
        return;
    CODE_WantLive(&live, ADDR_PSW, WORD_BYTES);
    CODE_WantLive(&live, ADDR_DPP0, PAGE_POINTERS * WORD_BYTES);
    CODE_WantLive(&live, ADDR_CP, ADDR_STKUN + WORD_BYTES - ADDR_CP);
    if (code == nullptr)
        return;
    const int end = std::min(firstLine + lines, static_cast<int>(code->size()));
    for (int i = std::max(firstLine, 0); i < end; ++i)
        for (const CODE_Operand &operand : (*code)[static_cast<size_t>(i)].operands)
            if (IsInMemory(operand) && !IsTouchyAddress(operand.address))
                CODE_WantLive(&live, operand.address & ~1u, WORD_BYTES);
}

// Where registers and stack are, is itself in registers.
void WantWhatIsPointedAt(CODE_LiveReads *set)
{
    contextPointer = stackPointer = CODE_NO_ADDRESS;
    if (!CODE_CanDecode())
        return;
    CODE_GetLive(*set, ADDR_CP, WORD_BYTES, &contextPointer);
    CODE_GetLive(*set, ADDR_SP, WORD_BYTES, &stackPointer);
    CODE_WantLive(set, contextPointer, GENERAL_REGISTERS * WORD_BYTES);
    if (stackPointer >= STACK_FIRST && stackPointer <= STACK_LAST)
        CODE_WantLive(
            set, stackPointer,
            std::min(STACK_WORDS_MAX * WORD_BYTES, STACK_LAST + WORD_BYTES - stackPointer));
}

} // namespace

void CODE_FillGroups()
{
    groups = CODE_GetRegisterGroups();
    ClearListCtrl(PANEL, DEBUG_GROUP);
    if (CODE_CanDecode())
        InsertListItem(PANEL, DEBUG_GROUP, -1, "General registers", GENERAL_GROUP);
    for (size_t i = 0; i < groups.size(); ++i)
        InsertListItem(PANEL, DEBUG_GROUP, -1, groups[i].name, static_cast<int>(i));
    // Groups of another processor: none of what was selected or shown need exist.
    SetCtrlIndex(PANEL, DEBUG_GROUP, 0);
    ClearListCtrl(PANEL, DEBUG_REGISTERS);
    ClearListCtrl(PANEL, DEBUG_STACK);
    live = CODE_LiveReads();
    lastValues.clear();
}

void CODE_SetMemory(uint32_t address)
{
    memoryAddress = address;
}

int CODE_RefreshValues(const std::vector<CODE_Instruction> *code, int firstLine, int lines,
                       std::string *cause)
{
    live = CODE_LiveReads();
    contextPointer = stackPointer = CODE_NO_ADDRESS;
    WantAll(code, firstLine, lines);
    // Nothing of a failed refresh is shown; what stands on the screen is marked as of before.
    if (CODE_ReadLive(&live, STATION, cause, WantWhatIsPointedAt) != 0) {
        CODE_MarkOld();
        return -1;
    }
    CollectRegisterLines(); // again: the general ones lie where the context pointer says
    FillRegisterList();
    ShowStack();
    ShowMemory();
    return 0;
}

void CODE_MarkOld()
{
    live = CODE_LiveReads();
    for (const int list : {DEBUG_REGISTERS, DEBUG_STACK, DEBUG_MEMORY}) {
        int count = 0;
        GetNumListItems(PANEL, list, &count);
        for (int i = 0; i < count; ++i) {
            std::vector<UI_Cell> cells;
            GetListCells(PANEL, list, i, &cells);
            for (UI_Cell &cell : cells)
                cell.style = UIS_DIM;
            SetListCells(PANEL, list, i, cells);
        }
    }
}

std::string CODE_FormatOperands(const CODE_Instruction &instruction)
{
    std::string text;
    for (const CODE_Operand &operand : instruction.operands) {
        const std::string value = FormatOperand(operand);
        if (!value.empty())
            text += (text.empty() ? "" : ", ") + value;
    }
    return text;
}

CODE_Pages CODE_GetPages()
{
    CODE_Pages pages;
    // All four or none: a wrong page would name another variable.
    pages.isKnown = CODE_CanDecode();
    for (uint32_t i = 0; i < PAGE_POINTERS; ++i) {
        uint32_t value = 0;
        pages.isKnown =
            pages.isKnown && CODE_GetLive(live, ADDR_DPP0 + i * WORD_BYTES, WORD_BYTES, &value);
        pages.pages[i] = static_cast<uint16_t>(value);
    }
    return pages;
}

int CODE_ReadTouchy(int line, std::string *cause)
{
    if (line < 0 || line >= static_cast<int>(registerLines.size()) ||
        !registerLines[static_cast<size_t>(line)].isTouchy)
        return 0;
    uint8_t bytes[WORD_BYTES];
    const uint32_t address = registerLines[static_cast<size_t>(line)].address;
    if (RFR_ReadItemBytes(STATION, address, WORD_BYTES, bytes, cause) != 0)
        return -1;
    // Until the next refresh puts the dash back: the peripheral has given the value away.
    ShowRegister(line, static_cast<uint32_t>(TXT_GetLittle(bytes, WORD_BYTES)), true, UIS_NORMAL);
    return 1;
}
