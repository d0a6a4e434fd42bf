// Any Modbus slave by register number: the commands `mbread` and `mbwrite`. They need no map
// and no tunnel, so they are what one tries first on a device one does not know.
#include <algorithm>
#include <vector>

#include "comm/modbus.h"
#include "comm/sysaddr.h"
#include "comm/ucm.h"
#include "comm/ucm_modbus.h"
#include "console/commands/commands.h"
#include "console/monitor/monitor.h"
#include "console/monitor/text_box.h"
#include "console/script/script_command.h"
#include "settings/limits.h"
#include "settings/settings.h"
#include "text/tokens.h"
#include "text/words.h"

namespace {

constexpr uint32_t ADDRESSES = 0x10000;
constexpr uint32_t NUMBER = PAR_WORD | PAR_UNSIGNED, VALUE = PAR_WORD; // -32768 to 65535
constexpr uint32_t BITS_AT_ONCE = 240; // whole rows; the master checks 8 bits of a count
constexpr uint32_t BITS_A_ROW = 16;
constexpr char READ_USE[] = "mbread [slave:]function, start, quantity (function 1 to 4)";
constexpr char WRITE_USE[] = "mbwrite [slave:]start, value [, value ...] (up to 123 values)";

// The command's numbers, and the slave: STATION, or what stands in front of a colon.
struct Request {
    int slave = 0;
    std::vector<uint32_t> numbers;
};

// False unless there are `least` to `most` numbers. All but the first `unsignedCount` may be
// negative.
bool ParseRequest(const char *line, size_t unsignedCount, size_t least, size_t most,
                  Request *request)
{
    const char *cursor = TXT_SkipBlanks(line + TXT_NameLength(line));
    const int slave = GetStationModifier(&cursor);
    request->slave = slave >= 0 ? slave : STATION;
    do {
        ScrPar par;
        const bool isUnsigned = request->numbers.size() < unsignedCount;
        if (ScrGetPar(&cursor, &par, isUnsigned ? NUMBER : VALUE) < 0)
            return false;
        request->numbers.push_back(par.value & 0xFFFF);
    } while (request->numbers.size() < most && TXT_SkipComma(&cursor));
    return request->numbers.size() >= least && *TXT_SkipBlanks(cursor) == '\0';
}

int FailExchange(const char *command)
{
    return SCR_Fail(TXT_Format("%s: %s", command, UCM_LastErrorText().c_str()));
}

void PrintRegisters(uint32_t start, const uint16_t *registers, size_t count)
{
    CON_Print("  address       hex  signed  unsigned");
    for (size_t i = 0; i < count; ++i) {
        const auto address = static_cast<unsigned>(start + i);
        const unsigned value = registers[i];
        CON_Print("%5u  %04Xh   %04Xh  %6d    %6u", address, address, value,
                  static_cast<int16_t>(registers[i]), value);
    }
}

// Sixteen a row; the first bit of a byte is its lowest, the first byte a register's high half.
void PrintBits(uint32_t start, const uint16_t *packed, size_t count)
{
    for (size_t row = 0; row < count; row += BITS_A_ROW) {
        const auto address = static_cast<unsigned>(start + row);
        std::string text = TXT_Format("%5u  %04Xh  ", address, address);
        for (size_t i = row; i < std::min<size_t>(row + BITS_A_ROW, count); ++i) {
            const unsigned byte = i / 8 % 2 == 0 ? packed[i / 16] >> 8 : packed[i / 16] & 0xFFu;
            text += (byte >> i % 8 & 1u) != 0 ? " 1" : " 0";
        }
        PrintMonStr(text);
    }
}

int ReadBits(int slave, int function, uint32_t start, uint32_t quantity)
{
    while (quantity > 0) {
        uint16_t packed[(BITS_AT_ONCE + 15) / 16];
        const uint32_t count = std::min(quantity, BITS_AT_ONCE);
        const MBM_Part from = {static_cast<uint16_t>(start), static_cast<uint16_t>(count), packed};
        if (UCM_ExchangeMBM(function, slave, &from, nullptr) < 0)
            return FailExchange("mbread");
        PrintBits(start, packed, count);
        start += count;
        quantity -= count;
    }
    return 0;
}

int ReadRegisters(int slave, int function, uint32_t start, uint32_t quantity)
{
    uint16_t registers[MBM_READ_MAX];
    const MBM_Part from = {static_cast<uint16_t>(start), static_cast<uint16_t>(quantity),
                           registers};
    if (UCM_ExchangeMBM(function, slave, &from, nullptr) < 0)
        return FailExchange("mbread");
    PrintRegisters(start, registers, quantity);
    return 0;
}

// The confirmation of function 6 repeats its request, so on an echoing line it proves
// nothing. A read of the register, or its refusal, cannot be an echo.
bool IsSomebodyThere(int slave, uint16_t start)
{
    uint16_t value;
    const MBM_Part from = {start, 1, &value};
    return UCM_ExchangeMBM(MBM_FN_HOLDING, slave, &from, nullptr) >= 0 ||
           MBM_nFault >= MBM_FAULT_EXCEPTION;
}

// One value by function 6, more by function 16, which some slaves want for one as well. Tried
// once: who writes to start something must not start it twice.
int WriteRegisters(int slave, const MBM_Part &to)
{
    if (to.quantity > 1)
        return UCM_CountErr(MBM_MasterFN(MBM_FN_WRITE, slave, nullptr, &to));
    // "Illegal function": any other refusal concerns the value or the place, and stands.
    constexpr int NOT_SUPPORTED = MBM_FAULT_EXCEPTION + 1;
    const int result = UCM_CountErr(MBM_MasterFN(MBM_FN_WRITE_ONE, slave, nullptr, &to));
    return result < 0 && MBM_nFault == NOT_SUPPORTED
               ? UCM_CountErr(MBM_MasterFN(MBM_FN_WRITE, slave, nullptr, &to))
               : result;
}

// What the slave holds now; registers that cannot be read back are not shown.
void PrintReadBack(int slave, const MBM_Part &written)
{
    uint16_t registers[MBM_READ_MAX];
    const MBM_Part from = {written.start, written.quantity, registers};
    if (UCM_ExchangeMBM(MBM_FN_HOLDING, slave, &from, nullptr) < 0)
        return;
    PrintRegisters(written.start, registers, written.quantity);
    if (!std::equal(registers, registers + written.quantity, written.registers))
        PrintMonStr("DIFFERENT: the slave holds something else than what was written.");
}

// 0, or -1: another protocol is in use, or there can be no such slave.
int CheckSlave(const char *command, int slave)
{
    // Over mr166 a register number would be sent to nobody who knows one.
    if (VR_nProtocol != PROTOCOL_MODBUS)
        return SCR_Fail(TXT_Format("%s: the protocol is not Modbus.", command));
    if (slave < MODBUS_STATION_MIN || slave > MODBUS_STATION_MAX)
        return SCR_Fail(TXT_Format("%s: slave %d is not from %d to %d.", command, slave,
                                   MODBUS_STATION_MIN, MODBUS_STATION_MAX));
    return 0;
}

} // namespace

int SCR_MbRead(ScrPar *par)
{
    Request request;
    if (!ParseRequest(par[0].text, 3, 3, 3, &request) || request.numbers[0] < MBM_FN_COILS ||
        request.numbers[0] > MBM_FN_INPUT_REGISTERS)
        return SCR_Fail(READ_USE);
    const int function = static_cast<int>(request.numbers[0]);
    const uint32_t start = request.numbers[1], quantity = request.numbers[2];
    const bool isBits = function <= MBM_FN_INPUTS;
    const int most = isBits ? MBM_BITS_MAX : MBM_READ_MAX;
    if (CheckSlave("mbread", request.slave) < 0)
        return -1;
    if (quantity < 1 || quantity > static_cast<uint32_t>(most) || start + quantity > ADDRESSES)
        return SCR_Fail(TXT_Format("mbread: 1 to %d from addresses up to 65535.", most));
    return isBits ? ReadBits(request.slave, function, start, quantity)
                  : ReadRegisters(request.slave, function, start, quantity);
}

int SCR_MbWrite(ScrPar *par)
{
    Request request;
    if (!ParseRequest(par[0].text, 1, 2, MBM_WRITE_MAX + 1, &request))
        return SCR_Fail(WRITE_USE);
    if (CheckSlave("mbwrite", request.slave) < 0)
        return -1;
    const uint32_t start = request.numbers[0];
    uint16_t values[MBM_WRITE_MAX];
    const size_t count = request.numbers.size() - 1;
    for (size_t i = 0; i < count; ++i)
        values[i] = static_cast<uint16_t>(request.numbers[i + 1]);
    if (start + count > ADDRESSES)
        return SCR_Fail("mbwrite: there is no register above 65535.");
    const MBM_Part to = {static_cast<uint16_t>(start), static_cast<uint16_t>(count), values};
    // Asked first, so that a write to nobody is not reported as done.
    if (!IsSomebodyThere(request.slave, to.start) || WriteRegisters(request.slave, to) < 0)
        return FailExchange("mbwrite");
    PrintReadBack(request.slave, to);
    return 0;
}
