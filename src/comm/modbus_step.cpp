// The rules by which the Modbus line is kept in step: when a request may go out, by which probes
// the line is proven, and what an answer says about those before it.
#include "comm/modbus_step.h"

#include "comm/in_step.h"
#include "comm/modbus.h"
#include "comm/modbus_frames.h"
#include "comm/modbus_line.h"
#include "comm/modbus_listen.h"
#include "comm/trace.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

typedef std::vector<uint8_t> Bytes;

constexpr int SLOW_ATTEMPTS = 4; // time-outs that the proof of a slow slave may take
constexpr int PROBES_MAX = 16;   // on a line that adds a byte to every answer there is no end
constexpr size_t DATA_AT = 3;    // of a read's answer, behind its count of bytes

struct Slave {
    Bytes lastFrame;            // the last request to it
    bool isSlow = false;        // it answered after its time-out
    bool isZeroRefused = false; // it refuses the probe of address 0
    bool hasGood = false;       // it has answered a read of memory,
    uint32_t goodAddress = 0;   // this one last
};

Slave slaves[STEP_PARTNERS];
int probesLeft = 0; // of one proof
int probeFault = 0; // why the prober gave up

STEP_Partner &PartnerOf(int slave)
{
    return MBM_book.partners[static_cast<size_t>(slave)];
}

bool IsOpen(int slave, STEP_Shape shape, bool isProbe)
{
    const auto &open = PartnerOf(slave).open;
    return std::any_of(open.begin(), open.end(), [shape, isProbe](const STEP_Open &item) {
        return item.shape == shape && item.isProbe == isProbe;
    });
}

// A probe on its way, and back when `isWanted` takes its answer. 0; MBM_FAULT_EXCEPTION and
// the code of an exception that was taken; or why nothing came.
int Exchange(const Bytes &frame, STEP_Shape shape,
             const std::function<bool(const uint8_t *answer)> &isWanted)
{
    if (TRC_isOn)
        MBM_BeginTrace(frame.data(), frame.size(), true);
    STEP_Sent(&MBM_book, frame[0], shape, true);
    int fault = MBM_FAULT_GONE;
    Bytes answer;
    if (MBM_line->write(frame.data(), frame.size()) == static_cast<int>(frame.size()))
        fault = MBM_Listen(frame.data(), frame.size(), isWanted, &answer);
    if (fault == 0 && (answer[1] & MBM_EXCEPTION_BIT) != 0)
        fault = MBM_FAULT_EXCEPTION + answer[2];
    if (TRC_isOn)
        MBM_EndTrace(MBM_isEcho != 0, fault);
    return fault;
}

// One probe, as the book asks for it. A slave that refuses address 0 is asked where it answered
// before; one that refuses that as well is left to silence, which proves as much and costs a
// time-out.
int Probe(int slave, STEP_Shape shape)
{
    const bool isBreak = STEP_IsBreak();
    if (isBreak || probesLeft-- <= 0) {
        probeFault = isBreak ? MBM_FAULT_CANCELLED : MBM_FAULT_STEP;
        return -1;
    }
    Slave &known = slaves[slave];
    const bool isElsewhere = known.isZeroRefused && known.hasGood;
    const Bytes frame = MBM_BuildProbe(slave, shape, isElsewhere ? known.goodAddress : 0);
    // Any probe's answer will do: an earlier one may be proof enough. An exception that crossed
    // this probe out is no proof, but no other answer is to be waited for.
    probeFault = Exchange(frame, shape, [slave, shape](const uint8_t *answer) {
        const bool isProof = MBM_BookOther(answer);
        return answer[0] == slave && (isProof || !IsOpen(slave, shape, true));
    });
    if (probeFault == 0)
        return 1;
    if (probeFault < MBM_FAULT_EXCEPTION)
        return probeFault == MBM_FAULT_GONE || probeFault == MBM_FAULT_ECHO ? -1 : 0;
    // The exception may have been an older request's, and this probe's answer still to come: the
    // next one has another length, by which the two are told apart.
    known.isZeroRefused = true;
    if (!isElsewhere && known.hasGood)
        return 1;
    probeFault = MBM_ProveBySilence(slave);
    return probeFault == 0 ? 1 : -1;
}

const STEP_Prober PROBER = {MBM_aProbeShapes, MBM_cnProbeShapes, Probe};

int FaultOfProof(int slave, int result)
{
    if (result == STEP_PROVEN)
        return 0;
    slaves[slave].isSlow = false; // worse than that now: the next try waits no longer
    return result == STEP_ERR_SILENT ? static_cast<int>(MBM_EX_SILENT) : probeFault;
}

} // namespace

void MBM_NoteOpened()
{
    STEP_Reset(&MBM_book, MBM_line->nowMs());
    std::fill(std::begin(slaves), std::end(slaves), Slave());
    MBM_ForgetHeard();
}

int MBM_MakeReady()
{
    const int slave = MBM_abySnd[0];
    const int gone = MBM_BookWaiting(slave);
    if (gone != 0)
        return gone;
    const STEP_Shape shape = MBM_ShapeOfRequest(MBM_abySnd);
    if (STEP_IsSafe(MBM_book, slave, shape))
        return 0;
    // A repetition: an answer to either sending answers the request, and the line was in step
    // when it went out first. While it is open no probe gets its shape; once it is not, an open
    // probe may have that, and the answer could be either's.
    const Bytes &last = slaves[slave].lastFrame;
    const bool isLast = last.size() == static_cast<size_t>(MBM_cnLastSend) &&
                        std::equal(last.begin(), last.end(), MBM_abySnd);
    if (isLast && PartnerOf(slave).unknown == 0 && IsOpen(slave, shape, false))
        return 0;
    // A device that is no target of ours has no memory that could be probed.
    if (!MBM_IsTunnel(MBM_abySnd))
        return MBM_ProveBySilence(slave);
    const int attempts = slaves[slave].isSlow ? SLOW_ATTEMPTS : 1;
    probesLeft = PROBES_MAX;
    return FaultOfProof(slave, STEP_MakeSafe(&MBM_book, slave, shape, attempts, PROBER));
}

void MBM_NoteSent()
{
    STEP_Sent(&MBM_book, MBM_abySnd[0], MBM_ShapeOfRequest(MBM_abySnd), false);
    slaves[MBM_abySnd[0]].lastFrame.assign(MBM_abySnd, MBM_abySnd + MBM_cnLastSend);
}

bool MBM_IsCalm()
{
    return STEP_IsCalm(MBM_book, MBM_abySnd[0], 1);
}

int MBM_FindAnswer(uint8_t *frame, size_t room, int *fault)
{
    const STEP_Shape shape = MBM_ShapeOfRequest(MBM_abySnd);
    Bytes found;
    const auto isWanted = [shape](const uint8_t *answer) {
        const bool isAnswer = answer[0] == MBM_abySnd[0] && MBM_ShapeOf(answer) == shape;
        if (!isAnswer)
            MBM_BookOther(answer);
        return isAnswer;
    };
    *fault = MBM_Listen(MBM_abySnd, static_cast<size_t>(MBM_cnLastSend), isWanted, &found);
    if (*fault != 0)
        return 0;
    const size_t length = std::min(found.size(), room);
    std::memcpy(frame, found.data(), length);
    return static_cast<int>(length);
}

void MBM_NoteAnswered()
{
    const int slave = MBM_abySnd[0];
    const bool isTunnel = MBM_IsTunnel(MBM_abySnd);
    // An older request was still open when this answer came: its own had been late.
    slaves[slave].isSlow = PartnerOf(slave).open.size() > 1;
    const bool wasDue = PartnerOf(slave).isProofDue;
    STEP_Accepted(&MBM_book, slave, MBM_ShapeOfRequest(MBM_abySnd), MBM_line->nowMs());
    // A device without memory to probe has no proof but its being in step.
    if (!isTunnel)
        PartnerOf(slave).isProofDue = wasDue;
    if (isTunnel && MBM_abySnd[1] == MBM_FN_READ_WRITE) {
        slaves[slave].hasGood = true;
        slaves[slave].goodAddress = MBM_TunnelAddress(MBM_abySnd);
    }
}

void MBM_NoteRefused()
{
    STEP_Refused(&MBM_book, MBM_abySnd[0], MBM_ShapeOfRequest(MBM_abySnd));
}

void MBM_NoteOddBytes(const uint8_t *bytes, size_t count)
{
    MBM_BookBytes(MBM_abySnd[0], bytes, count);
}

bool MBM_IsProofDue(int slave)
{
    return slave >= 0 && slave < STEP_PARTNERS && !MBM_book.partners.empty() &&
           PartnerOf(slave).isProofDue;
}

bool MBM_IsSuspicious(int slave)
{
    return STEP_IsSuspicious(&MBM_book, slave, MBM_line->nowMs());
}

int MBM_ProveBehind(int slave, int attempts)
{
    if (!MBM_isOpen)
        return MBM_FAULT_CLOSED;
    const int fault = MBM_BookWaiting(slave);
    if (fault != 0)
        return fault;
    // Each proof has its own bound: a line that never comes to rest ends with a fault.
    probesLeft = PROBES_MAX;
    return FaultOfProof(slave, STEP_ProveBehind(&MBM_book, slave, attempts, PROBER));
}

void MBM_GiveUpProof(int slave)
{
    PartnerOf(slave).isProofDue = false;
}

uint32_t MBM_PickProving(int slave, uint32_t least, uint32_t most)
{
    // Only where nothing else can come: a line in doubt gets probes that read nothing of value.
    if (MBM_book.partners.empty() || !STEP_IsCalm(MBM_book, slave, 0))
        return 0;
    std::vector<STEP_Shape> shapes;
    for (const uint32_t bytes : STEP_ListProbeLengths(2, least, most))
        shapes.push_back(MBM_ProbeShape(bytes));
    STEP_Shape shape = 0;
    const bool isPicked = STEP_PickUnusedProbe(&MBM_book, slave, shapes, &shape);
    return isPicked ? MBM_DataBytes(shape) : 0;
}

int MBM_ReadProving(int slave, uint32_t address, uint32_t count, uint8_t *bytes)
{
    if (!MBM_isOpen)
        return MBM_FAULT_CLOSED;
    const int gone = MBM_BookWaiting(slave);
    if (gone != 0)
        return gone;
    // What came just now leaves the line in doubt.
    if (!STEP_IsCalm(MBM_book, slave, 0))
        return MBM_FAULT_STEP;
    const STEP_Shape shape = MBM_ProbeShape(count);
    const Bytes frame = MBM_BuildProbe(slave, shape, address);
    const int fault = Exchange(frame, shape, [&](const uint8_t *answer) {
        const bool isOurs = answer[0] == slave && MBM_ShapeOf(answer) == shape;
        const bool isProof = MBM_BookOther(answer);
        if (!isOurs || (answer[1] & MBM_EXCEPTION_BIT) != 0)
            return isOurs; // refused, or somebody else's
        // Registers come high byte first; the target's low byte stands in front.
        for (uint32_t i = 0; i < count; ++i)
            bytes[i] = answer[DATA_AT + (i ^ 1u)];
        return isProof;
    });
    if (fault == 0 && MBM_cnOk != UINT32_MAX)
        ++MBM_cnOk;
    return fault;
}

uint32_t MBM_CountSurplus()
{
    return MBM_book.surplus;
}
