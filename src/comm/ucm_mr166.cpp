// The mr166 link as a protocol of the unified layer. A row's results are 16-bit numbers and are
// counted here: the link below knows neither.
#include "comm/mr166_driver.h"
#include "comm/mr166_link.h"
#include "comm/ucm.h"
#include "comm/ucm_protocol.h"
#include "settings/limits.h"
#include "settings/settings.h"

namespace {

// The unified layer's number of tries may be changed at any time by a user of it; the link keeps
// its own copy, because it is used without this layer as well.
void ApplyTries()
{
    Mr166_CnBlkRpt = UCM_recS.tries;
}

// Of bare requests, whose station nobody above has looked at.
bool IsStation(int station)
{
    return station >= 0 && station <= STATION_MAX;
}

int Read(int station, uint32_t address, uint32_t count, void *buffer)
{
    ApplyTries();
    return UCM_CountErr(Mr166_Read(station, address, count, buffer));
}

int Write(int station, uint32_t address, uint32_t count, const void *data)
{
    ApplyTries();
    return UCM_CountErr(Mr166_Write(station, address, count, data));
}

int ReadBg(int station, uint32_t *address, uint32_t *count, uint8_t **buffer)
{
    ApplyTries();
    return UCM_CountErr(Mr166_ReadBg(station, address, count, buffer));
}

int WriteBg(int station, uint32_t *address, uint32_t *count, const uint8_t **data)
{
    ApplyTries();
    return UCM_CountErr(Mr166_WriteBg(station, address, count, data));
}

int Message(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    // One try only: whoever sends a bare command says himself what a failure means.
    if (!IsStation(station))
        return UCM_CountErr(UCM_ERR_ARGUMENT);
    return mr166Message(station, command, address, word, data);
}

int MessageNoAnswer(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    if (!IsStation(station))
        return UCM_CountErr(UCM_ERR_ARGUMENT);
    ApplyTries();
    return UCM_CountErr(Mr166MessageW32NA(station, command, address, word, data));
}

} // namespace

const UCM_Protocol UCM_PROTOCOL_MR166 = {
    PROTOCOL_MR166,
    0,
    STATION_MAX,
    MR166_WRITE_MAX,
    // open
    [](int port, int baud) {
        ApplyTries();
        return UCM_CountErr(MrASC_Open(port, baud));
    },
    MrASC_Close,
    MrASC_IsOpened,
    // useWin32
    [](int flag) { return UCM_CountErr(MrASC_UseWin32(flag)); },
    Read,
    // pickProving: a word-addressing target has no odd number of bytes to give
    [](int station, uint32_t least, uint32_t most) {
        return Mr166_PickProving(station, IsWordAddressing(Procesor) ? 2 : 1, least, most);
    },
    // readProving: not counted, because a block that fails here is read again with all its tries
    [](int station, uint32_t address, uint32_t count, void *buffer) {
        return Mr166_ReadProving(station, address, static_cast<uint16_t>(count), buffer) == 1 ? 0
                                                                                              : -1;
    },
    Write,
    ReadBg,
    WriteBg,
    Message,
    MessageNoAnswer,
    // prove
    [] {
        ApplyTries();
        return Mr166_Prove();
    },
    // isEchoing
    [] { return Mr166_isEchoing; },
    // lastErrorText
    [] { return Mr166_nFault == 0 ? std::string() : MrASC_ErrorText(Mr166_nFault); },
    // addCounts: the link's counters go on for ever, the layer above subtracts its last reset
    [](UCM_Statistics *statistics) {
        statistics->answered += EC_dwMsgOk;
        statistics->timeouts += EC_wTimeErr;
        statistics->damaged += EC_wFrameErr;
        statistics->repeated += EC_dwBlkRpt;
    },
    MrASC_IsGone,
};
