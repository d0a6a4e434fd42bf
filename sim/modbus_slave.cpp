#include "modbus_slave.h"

#include "access.h"

#include <vector>

namespace {

enum { BAD_FUNCTION = 1, BAD_ADDRESS = 2, BAD_VALUE = 3 };

constexpr unsigned TUNNEL_ODD = 0xFFFB, TUNNEL_EVEN = 0xFFFD, TUNNEL_DATA = 0xFF00;
constexpr unsigned REGISTERS = 0xFF00; // plain ones
constexpr unsigned BITS = 0x10000;
// The most that one request may ask for: what fits into a frame of 256 bytes.
constexpr unsigned READ_BITS_MAX = 2000, READ_WORDS_MAX = 125;
constexpr unsigned WRITE_WORDS_MAX = 123, READ_WRITE_WORDS_MAX = 121;
constexpr uint32_t HOLDING_BASE = 0, INPUT_BASE = 0x20000;
constexpr uint32_t COIL_BASE = 0x40000, DISCRETE_BASE = 0x42000;

// A request being served: fields are read from it, the answer grows behind slave and function.
struct Service {
    SIM_Target *target;
    const uint8_t *frame;
    size_t count;
    uint8_t *answer;
    size_t length;
};

unsigned WordAt(const Service &service, size_t at)
{
    return static_cast<unsigned>(service.frame[at]) << 8 | service.frame[at + 1];
}

int StationOf(const Service &service)
{
    return service.frame[0];
}

void PutByte(Service *service, unsigned value)
{
    service->answer[service->length++] = static_cast<uint8_t>(value & 0xFF);
}

// Memory that an address in two registers names; false when it is not all there.
bool TunnelAddress(const Service &service, size_t at, size_t count, uint32_t *address)
{
    *address = WordAt(service, at) << 16 | WordAt(service, at + 2);
    return *address < SIM_MEMORY_SIZE && count <= SIM_MEMORY_SIZE - *address;
}

bool IsTunnel(unsigned start)
{
    return start == TUNNEL_ODD || start == TUNNEL_EVEN;
}

// The lowest bit is the first; the last byte is filled up with zeros.
int ReadBits(Service *service, uint32_t base)
{
    const unsigned start = WordAt(*service, 2), quantity = WordAt(*service, 4);
    if (quantity < 1 || quantity > READ_BITS_MAX)
        return BAD_VALUE;
    if (start + quantity > BITS)
        return BAD_ADDRESS;
    const unsigned count = (quantity + 7) / 8;
    PutByte(service, count);
    for (unsigned i = 0; i < count; i++) {
        unsigned packed = 0;
        for (unsigned bit = 0; bit < 8 && 8 * i + bit < quantity; bit++) {
            const unsigned number = start + 8 * i + bit;
            uint8_t byte = 0;
            SIM_ReadTarget(service->target, StationOf(*service), base + number / 8, &byte, 1);
            packed |= (byte >> number % 8 & 1U) << bit;
        }
        PutByte(service, packed);
    }
    return 0;
}

// Words of memory travel high byte first; each byte of the target's order is the other one.
int ReadWords(Service *service, uint32_t base, unsigned start, unsigned quantity)
{
    if (quantity < 1 || quantity > READ_WORDS_MAX)
        return BAD_VALUE;
    if (start + quantity > REGISTERS)
        return BAD_ADDRESS;
    std::vector<uint8_t> bytes(2 * quantity);
    SIM_ReadTarget(service->target, StationOf(*service), base + 2 * start, bytes.data(),
                   bytes.size());
    PutByte(service, 2 * quantity);
    for (unsigned i = 0; i < quantity; i++) {
        PutByte(service, bytes[2 * i + 1]);
        PutByte(service, bytes[2 * i]);
    }
    return 0;
}

int WriteWords(Service *service, unsigned start, unsigned quantity, size_t at)
{
    if (start + quantity > REGISTERS)
        return BAD_ADDRESS;
    std::vector<uint8_t> bytes;
    for (unsigned i = 0; i < quantity; i++) {
        bytes.push_back(service->frame[at + 2 * i + 1]);
        bytes.push_back(service->frame[at + 2 * i]);
    }
    SIM_WriteTarget(service->target, StationOf(*service), HOLDING_BASE + 2 * start, bytes.data(),
                    bytes.size());
    return 0;
}

// Function 16 through the tunnel: two registers of address, then the data.
int WriteMemory(Service *service, unsigned start, unsigned quantity)
{
    constexpr size_t ADDRESS = 7, DATA = 11;
    if (quantity < 3) // the address fills two, and something is to be written
        return BAD_VALUE;
    const size_t count = 2 * (quantity - 2) - (start == TUNNEL_ODD ? 1 : 0);
    uint32_t address;
    if (!TunnelAddress(*service, ADDRESS, count, &address))
        return BAD_ADDRESS;
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i < count; i++)
        bytes.push_back(service->frame[DATA + (i ^ 1)]); // a register has its high byte first
    SIM_WriteTarget(service->target, StationOf(*service), address, bytes.data(), count);
    return 0;
}

int WriteRegisters(Service *service)
{
    constexpr size_t DATA = 7;
    const unsigned start = WordAt(*service, 2), quantity = WordAt(*service, 4);
    if (quantity < 1 || quantity > WRITE_WORDS_MAX || service->frame[6] != 2 * quantity)
        return BAD_VALUE;
    const int exception = IsTunnel(start) ? WriteMemory(service, start, quantity)
                                          : WriteWords(service, start, quantity, DATA);
    for (size_t i = 2; exception == 0 && i < 6; i++)
        PutByte(service, service->frame[i]);
    return exception;
}

// Function 6 answers what it was asked: place and value.
int WriteOne(Service *service)
{
    const int exception = WriteWords(service, WordAt(*service, 2), 1, 4);
    for (size_t i = 2; exception == 0 && i < 6; i++)
        PutByte(service, service->frame[i]);
    return exception;
}

// Function 23 through the tunnel: the address is written, the data read back.
int ReadMemory(Service *service, unsigned tunnel, unsigned quantity)
{
    constexpr size_t ADDRESS = 11;
    const size_t count = 2 * quantity - (tunnel == TUNNEL_ODD ? 1 : 0);
    uint32_t address;
    if (!TunnelAddress(*service, ADDRESS, count, &address))
        return BAD_ADDRESS;
    std::vector<uint8_t> bytes(2 * quantity, 0);
    SIM_ReadTarget(service->target, StationOf(*service), address, bytes.data(), count);
    PutByte(service, 2 * quantity);
    for (size_t i = 0; i < bytes.size(); i++)
        PutByte(service, bytes[i ^ 1]);
    return 0;
}

int ReadWrite(Service *service)
{
    constexpr size_t DATA = 11;
    const unsigned from = WordAt(*service, 2), quantity = WordAt(*service, 4);
    const unsigned to = WordAt(*service, 6), written = WordAt(*service, 8);
    if (quantity < 1 || quantity > READ_WORDS_MAX || written < 1 ||
        written > READ_WRITE_WORDS_MAX || service->frame[10] != 2 * written)
        return BAD_VALUE;
    if (IsTunnel(to))
        return written != 2          ? BAD_VALUE
               : from != TUNNEL_DATA ? BAD_ADDRESS
                                     : ReadMemory(service, to, quantity);
    // Nothing is written unless both can be done; the write comes first.
    if (from + quantity > REGISTERS)
        return BAD_ADDRESS;
    const int exception = WriteWords(service, to, written, DATA);
    return exception != 0 ? exception : ReadWords(service, HOLDING_BASE, from, quantity);
}

int ServeFunction(Service *service)
{
    // Coils can be read but not written (functions 5 and 15): the program never writes one.
    switch (service->frame[1]) {
    case 1:
        return ReadBits(service, COIL_BASE);
    case 2:
        return ReadBits(service, DISCRETE_BASE);
    case 3:
        return ReadWords(service, HOLDING_BASE, WordAt(*service, 2), WordAt(*service, 4));
    case 4:
        return ReadWords(service, INPUT_BASE, WordAt(*service, 2), WordAt(*service, 4));
    case 6:
        return WriteOne(service);
    case 16:
        return WriteRegisters(service);
    case 23:
        return ReadWrite(service);
    default:
        return BAD_FUNCTION;
    }
}

} // namespace

size_t SIM_RefuseRtu(const uint8_t *frame, int exception, uint8_t *answer)
{
    answer[0] = frame[0];
    answer[1] = frame[1] | 0x80;
    answer[2] = static_cast<uint8_t>(exception);
    return 3;
}

size_t SIM_ServeRtu(SIM_Target *target, const uint8_t *frame, size_t count, uint8_t *answer,
                    int *exception)
{
    Service service = {target, frame, count, answer, 2};
    answer[0] = frame[0];
    answer[1] = frame[1];
    *exception = ServeFunction(&service);
    return *exception == 0 ? service.length : SIM_RefuseRtu(frame, *exception, answer);
}
