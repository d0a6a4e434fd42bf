// The exchange of a request and its answer on a line that knows whether it is in step: when
// the line must be proven first or behind, with which probes, and what repetitions may take
// for their answer.
#include "comm/failures.h"
#include "comm/mr166_link.h"
#include "comm/mr166_try.h"
#include "comm/trace.h"
#include "platform/system.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

constexpr size_t UNCHECKED_ANSWER_ROOM = 64, CHUNK = 256;

// Whether the request itself went out, or its tries were spent on probes.
bool wasSent = false;
uint32_t failedProbes = 0;
// Probes read address 0, or, at a station that refuses that, where it answered last.
bool isZeroRefused[MRTRY_STATIONS];

// Reads nobody else makes are the best probes, and short ones are cheap. The sizes of
// numbers and of blocks are left out.
constexpr STEP_Shape PROBES[] = {3,  5,  6,  7,  9,  10, 11, 12, 13, 14, 15, 17,
                                 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29,
                                 30, 31, 33, 34, 35, 36, 37, 38, 39, 41, 42, 43};

// A target that refuses every probe is left to the other proof: one whole time-out of
// silence. 1; 0 when the line does not fall silent.
int WaitForSilence(const Mr166_Driver &driver, int station)
{
    // A line on which somebody talks without pause is not waited for longer.
    constexpr int WAITS_MAX = 4;
    char bytes[CHUNK];
    for (int waits = 0; waits < WAITS_MAX; ++waits) {
        const int got = driver.readSome(bytes, sizeof bytes, Mr166_nTimeoutMs);
        if (got < 0)
            return 0;
        if (got == 0) {
            Mr166_ResetAnswers();
            STEP_WasSilent(&Mr166_line, station, PLT_TickMs());
            return 1;
        }
        Mr166_SortLeftOver(bytes, static_cast<size_t>(got), station);
    }
    return 0;
}

// One probe on its way and back. The target's error code answers it too, but has no length
// to know it by.
int SendProbe(int station, STEP_Shape shape)
{
    if (STEP_IsBreak()) {
        Mr166_CancelTry();
        return -1;
    }
    const Mr166_Driver &driver = MrASC_Driver();
    uint32_t address = 0;
    const bool hasGood = Mr166_GoodAddress(station, &address);
    if (!isZeroRefused[station] || !hasGood)
        address = 0;
    const Mr166_Request probe = {station, MR166_CMD_READ, address, static_cast<uint16_t>(shape),
                                 nullptr};
    if (!Mr166_SendTry(driver, probe, true)) {
        // A port that is gone answers no further probe; any other failure may pass.
        ++failedProbes;
        return Mr166_nFault == MR166_FAULT_GONE ? -1 : 0;
    }
    const Mr166_Reading reading = Mr166_ReadSorted(driver, probe, Mr166_ReadingKind::PROBE);
    const bool isProof =
        reading.kind == Mr166_Judgement::ACCEPTED || reading.kind == Mr166_Judgement::PROOF;
    if (!isProof && reading.kind != Mr166_Judgement::REFUSED) {
        ++failedProbes;
        // For its counters and its reason only: the probe has failed either way.
        (void)Mr166_FinishSorted(probe, reading);
        return reading.isGone ? -1 : 0;
    }
    Mr166_nFault = isProof ? 0 : reading.code;
    if (TRC_isOn)
        Mr166_EndTrace(true, reading.isEchoSeen);
    Mr166_nFault = 0;
    if (isProof) {
        Mr166_isEchoing = Mr166_isEchoing && reading.kind == Mr166_Judgement::PROOF;
        return 1;
    }
    // The refusal may have been an older request's, and this probe's answer still to come: the
    // next one has another length, by which the two are told apart.
    const bool isSecondRefusal = isZeroRefused[station];
    isZeroRefused[station] = true;
    if (!isSecondRefusal && hasGood)
        return 1;
    // Refused at both places, or nowhere else to ask: silence is all that is left.
    return WaitForSilence(driver, station);
}

constexpr STEP_Prober PROBER = {PROBES, sizeof PROBES / sizeof PROBES[0], SendProbe};

// What the first try and the repetitions have in common. `probes` is negative for the latter:
// they went out in step once, and an answer to any of the sendings is right.
int Try(const Mr166_Driver &driver, const Mr166_Request &request, int probes)
{
    if (STEP_IsBreak())
        return Mr166_CancelTry();
    const Mr166_Examined examined = Mr166_ExamineAnswer(driver, request, MR166_STATE_FAILED);
    if (examined != Mr166_Examined::GOOD) {
        FAIL_Note(MrASC_ErrorText(Mr166_nFault));
        return examined == Mr166_Examined::BAD_ARGUMENT ? driver.badArgument : 0;
    }
    // What waits now was there before this try: the sorter says whose it is.
    Mr166_ClearInput(driver, request.station);
    const bool isFirst = probes >= 0;
    if (isFirst && STEP_MakeSafe(&Mr166_line, request.station, Mr166_ShapeOfAnswerTo(request),
                                 probes, PROBER) != STEP_PROVEN)
        return 0;
    if (!Mr166_SendTry(driver, request, false))
        return 0;
    wasSent = true;
    wMr166State = MR166_STATE_WAITING;
    // What failed once is sorted: a stray character before each answer costs one try, not all.
    if (isFirst && STEP_IsCalm(Mr166_line, request.station, 1) && Mr166_CountBegunAnswer() == 0)
        return Mr166_ReadInStep(driver, request);
    const Mr166_ReadingKind sending =
        isFirst ? Mr166_ReadingKind::REQUEST : Mr166_ReadingKind::REPETITION;
    return Mr166_FinishSorted(request, Mr166_ReadSorted(driver, request, sending));
}

} // namespace

void Mr166_NoteOpened()
{
    // Two programs started one after the other must not draw the same probes: the answers that
    // the first has left would prove the second.
    STEP_Reset(&Mr166_line,
               static_cast<uint32_t>(PLT_TickUs()) ^ static_cast<uint32_t>(PLT_ProcessId()) << 16);
    std::fill(std::begin(isZeroRefused), std::end(isZeroRefused), false);
    Mr166_NoteOpenedDriver();
}

int Mr166_TryFirst(const Mr166_Driver &driver, const Mr166_Request &request, int probes)
{
    wasSent = false;
    return Try(driver, request, probes);
}

int Mr166_TryAgain(const Mr166_Driver &driver, const Mr166_Request &request)
{
    return Try(driver, request, -1);
}

bool Mr166_WasSent()
{
    return wasSent;
}

uint32_t Mr166_FailedProbes()
{
    return failedProbes;
}

uint32_t Mr166_CountSurplus()
{
    return Mr166_line.surplus;
}

bool Mr166_IsProofDue(int station)
{
    return station >= 0 && station < MRTRY_STATIONS && !Mr166_line.partners.empty() &&
           Mr166_line.partners[static_cast<size_t>(station)].isProofDue;
}

bool Mr166_IsSuspicious(int station)
{
    return STEP_IsSuspicious(&Mr166_line, station, PLT_TickMs());
}

int Mr166_ProveBehind(int station, int probes)
{
    if (!wMrOpenFlag)
        return Mr166_RefuseTry(MR166_ERR_CLOSED);
    // The probe goes through the same variables as the read that it proves.
    const int32_t error = nMr166Err, fault = Mr166_nFault;
    const uint16_t state = wMr166State;
    Mr166_ClearInput(MrASC_Driver(), station);
    const int result = STEP_ProveBehind(&Mr166_line, station, probes, PROBER);
    if (result == STEP_PROVEN) { // what the caller read was good: so are its codes
        nMr166Err = error;
        Mr166_nFault = fault;
        wMr166State = state;
    }
    return result;
}

uint32_t Mr166_PickProving(int station, uint32_t unit, uint32_t least, uint32_t most)
{
    // Only where nothing else can come: a line in doubt gets probes that read nothing of value.
    if (Mr166_line.partners.empty() || !STEP_IsCalm(Mr166_line, station, 0))
        return 0;
    const std::vector<STEP_Shape> lengths =
        STEP_ListProbeLengths(unit, least, std::min<uint32_t>(most, MR166_READ_MAX));
    STEP_Shape length = 0; // a read's shape is its length
    return STEP_PickUnusedProbe(&Mr166_line, station, lengths, &length) ? length : 0;
}

int Mr166_ReadProving(int station, uint32_t address, uint16_t count, void *buffer)
{
    const Mr166_Driver &driver = MrASC_Driver();
    const Mr166_Request request = {station, MR166_CMD_READ, address, count, nullptr};
    if (STEP_IsBreak())
        return Mr166_CancelTry();
    if (Mr166_ExamineAnswer(driver, request, MR166_STATE_FAILED) != Mr166_Examined::GOOD)
        return 0;
    Mr166_ClearInput(driver, station);
    // What came just now may have brought the line out of step.
    if (!STEP_IsCalm(Mr166_line, station, 0) || !Mr166_SendTry(driver, request, true))
        return 0;
    const Mr166_Reading reading = Mr166_ReadSorted(driver, request, Mr166_ReadingKind::PROBE);
    if (Mr166_FinishSorted(request, reading) != 1)
        return 0;
    std::memcpy(buffer, Mr166_abyRcvData, count);
    return 1;
}

void Mr166_GiveUpProof(int station)
{
    Mr166_line.partners[static_cast<size_t>(station)].isProofDue = false;
}

int mr166Message(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return Mr166_TryFirst(MrASC_Driver(), {station, command, address, word, data}, 1);
}

int mr166MessageWin32(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return Mr166_TryFirst(MR166_DRIVER_WIN32, {station, command, address, word, data}, 1);
}

int mr166MessageNI(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    return Mr166_TryFirst(MR166_DRIVER_RUNTIME, {station, command, address, word, data}, 1);
}

int Mr166MessageW32NA(int station, int command, uint32_t address, uint16_t word, const void *data)
{
    const Mr166_Driver &driver = MrASC_Driver();
    const Mr166_Request request = {station, command, address, word, data};
    const Mr166_Examined examined = Mr166_ExamineAnswer(driver, request, MR166_STATE_CLOSED);
    if (examined != Mr166_Examined::GOOD)
        return examined == Mr166_Examined::BAD_ARGUMENT ? MR166_ERR_ARGUMENT : 0;
    Mr166_ClearInput(driver, station);
    if (!Mr166_SendTry(driver, request, false))
        return 0;
    // The answer is read off the line, so that it does not meet the next request, but not checked.
    char ignored[UNCHECKED_ANSWER_ROOM];
    const int got = SER_Read(MR166_hCom, ignored, sizeof ignored);
    const size_t count = got > 0 ? static_cast<size_t>(got) : 0;
    Mr166_SortLeftOver(ignored, count, station);
    if (TRC_isOn) {
        Mr166_TraceReceived(ignored, count);
        Mr166_EndTrace(false, false);
    }
    return 1;
}
