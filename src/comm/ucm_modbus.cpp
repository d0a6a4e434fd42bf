// The Modbus master's row in the unified layer. There is no master in this build yet: a
// port cannot be opened, and whoever goes on without one is told that it failed.
#include "comm/ucm.h"
#include "comm/ucm_protocol.h"

namespace {

constexpr int SLAVE_MIN = 1, SLAVE_MAX = 250;
constexpr int FAILED = -1;

int Open(int, int)
{
    return UCM_CountErr(UCM_ERR_MODBUS_OPEN);
}

void Close()
{
}

int IsOpened()
{
    return 0;
}

int Read(int, uint32_t, uint32_t, void *)
{
    return UCM_CountErr(FAILED);
}

int Write(int, uint32_t, uint32_t, const void *)
{
    return UCM_CountErr(FAILED);
}

int ReadBg(int, uint32_t *, uint32_t *, uint8_t **)
{
    return UCM_CountErr(FAILED);
}

int WriteBg(int, uint32_t *, uint32_t *, const uint8_t **)
{
    return UCM_CountErr(FAILED);
}

int Message(int, int, uint32_t, uint16_t, const void *)
{
    return 0;
}

int Prove()
{
    return 0;
}

bool IsEchoing()
{
    return false;
}

std::string LastErrorText()
{
    return "Modbus is not available";
}

bool IsGone()
{
    return false;
}

void AddCounts(UCM_Statistics *)
{
}

} // namespace

const UCM_Protocol UCM_PROTOCOL_MODBUS = {
    2,      SLAVE_MIN, SLAVE_MAX, Open,    Close, IsOpened,  nullptr,       Read,      Write,
    ReadBg, WriteBg,   Message,   nullptr, Prove, IsEchoing, LastErrorText, AddCounts, IsGone,
};
