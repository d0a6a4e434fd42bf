// A step is a glance at the head; only when something is to be done the block is read between two
// heads and proven, what came is taken over, the places are freed and characters are sent.
#include "terminal/service.h"

#include "comm/ucm.h"
#include "text/words.h"

#include <algorithm>
#include <vector>

namespace {

constexpr int UNSTEADY_MAX = 3; // readings that do not fit together, before it is said

struct Look {
    int result = 0;       // of the block's head
    bool isSteady = true; // nothing moved in a way it must not while it was read
    TRM_ServiceBlock block;
    std::string bytes; // from the session's read index on
};

int ReadHead(const TRM_ServiceSession &session, int *result, TRM_ServiceBlock *block)
{
    uint8_t head[TRM_SERVICE_HEAD];
    const TRM_BlockPlace &place = session.place;
    if (UCM_Read(place.station, place.address, sizeof head, head) < 0)
        return UCM_ERR_FAILED;
    *result = TRM_ParseServiceBlock(place.address, head, block);
    return 0;
}

bool IsSameRun(const TRM_ServiceSession &session, const TRM_ServiceBlock &block)
{
    return session.wasOpen && block.session == session.block.session &&
           block.output.size == session.block.output.size &&
           block.input.size == session.block.input.size;
}

// Where reading goes on: what the target says is older where its index was not answered.
bool IsOwnReadIndex(const TRM_ServiceSession &session, uint32_t read)
{
    return read == session.readIndex || (session.isReadInDoubt && read == session.readBefore);
}

// In two parts where it passes the end.
int ReadRing(int station, const TRM_Ring &ring, uint32_t from, uint32_t count, std::string *bytes)
{
    std::vector<char> buffer(count);
    uint32_t done = 0;
    while (done < count) {
        const uint32_t at = (from + done) % ring.size;
        const uint32_t run = std::min(count - done, ring.size - at);
        if (UCM_Read(station, ring.address + at, run, buffer.data() + done) < 0)
            return UCM_ERR_FAILED;
        done += run;
    }
    bytes->assign(buffer.data(), count);
    return 0;
}

// Head, characters, head again: what lies between the indices stands still unless the target
// starts anew meanwhile, which the second head tells.
int LookOnce(const TRM_ServiceSession &session, Look *look)
{
    *look = Look();
    TRM_ServiceBlock before;
    if (ReadHead(session, &look->result, &before) < 0)
        return UCM_ERR_FAILED;
    look->block = before;
    if (look->result != 0)
        return 0;
    const bool isOwn = IsSameRun(session, before) && IsOwnReadIndex(session, before.output.read);
    // After a restart, or where somebody else has read on, from where the target's index says.
    const uint32_t from = isOwn ? session.readIndex : before.output.read;
    TRM_Ring ring = before.output;
    ring.read = from;
    const uint32_t count = std::min(TRM_CountPending(ring), TRM_STEP_BYTES);
    if (ReadRing(session.place.station, ring, from, count, &look->bytes) < 0 ||
        ReadHead(session, &look->result, &look->block) < 0)
        return UCM_ERR_FAILED;
    TRM_Ring later = look->block.output;
    later.read = from;
    look->isSteady = look->result == 0 && look->block.session == before.session &&
                     later.size == ring.size && look->block.input.size == before.input.size &&
                     look->block.output.read == before.output.read &&
                     TRM_CountPending(later) >= TRM_CountPending(ring);
    return 0;
}

void AddMessage(TRM_ServiceNews *news, const std::string &text)
{
    news->message += (news->message.empty() ? "" : " ") + text;
}

// The block of this look is what goes on from here.
void Adopt(TRM_ServiceSession *session, const TRM_ServiceBlock &block, TRM_ServiceNews *news)
{
    if (!IsSameRun(*session, block)) {
        if (session->wasOpen)
            AddMessage(news, TRM_RestartText(session->sender.waiting.size()));
        TRM_BeginSender(&session->sender, block.input);
        session->readIndex = block.output.read;
        session->isReadInDoubt = false;
    } else if (!IsOwnReadIndex(*session, block.output.read)) {
        AddMessage(news, "Somebody else reads this terminal too: characters are missing.");
        session->readIndex = block.output.read;
        session->isReadInDoubt = false;
    } else if (block.lost != session->block.lost) {
        // Counted in 16 bits, so that the count may wrap.
        const auto lost = static_cast<uint16_t>(block.lost - session->block.lost);
        AddMessage(news,
                   "The target's ring was full: " + std::to_string(lost) + " characters are lost.");
    }
    if (session->isInterrupted)
        TRM_BeginSender(&session->sender, block.input);
    session->isInterrupted = false;
    session->block = block;
    session->isOpen = session->wasOpen = true;
}

// The target may use the places again. Whether the index arrived, the next look tells.
void FreePlaces(TRM_ServiceSession *session, uint32_t before, TRM_ServiceNews *news)
{
    uint8_t bytes[TRM_INDEX_BYTES];
    TRM_PutIndex(bytes, session->readIndex, session->block.session);
    session->isReadInDoubt = true;
    session->readBefore = before;
    if (UCM_WriteProven(session->place.station, session->block.output.indexAddress, TRM_INDEX_BYTES,
                        bytes) >= 0)
        session->isReadInDoubt = false;
    else
        news->isLineBad = true;
}

void Send(TRM_ServiceSession *session, TRM_ServiceNews *news)
{
    const size_t waiting = session->sender.waiting.size();
    const int result =
        TRM_SendCharacters(&session->sender, session->place.station, session->block.session,
                           session->block.input, &news->taken);
    session->sent += news->taken.size();
    if (result == TRM_SEND_ERR_FOREIGN)
        AddMessage(news, TRM_ForeignText(waiting));
    if (result == TRM_SEND_ERR_LINE)
        news->isLineBad = true;
}

// Nothing to receive and nothing to send: not worth a proof.
bool IsQuiet(const TRM_ServiceSession &session, int result, const TRM_ServiceBlock &block)
{
    return session.isOpen && result == 0 && IsSameRun(session, block) &&
           !TRM_IsServiceBusy(session) && block.output.read == session.readIndex &&
           block.output.write == session.readIndex && block.input.write == session.sender.index &&
           block.lost == session.block.lost;
}

void FailLine(TRM_ServiceNews *news)
{
    news->isLineBad = true;
    AddMessage(news, TRM_LineText());
}

} // namespace

void TRM_BeginService(TRM_ServiceSession *session, const TRM_BlockPlace &place)
{
    *session = TRM_ServiceSession();
    session->place = place;
}

size_t TRM_InterruptService(TRM_ServiceSession *session)
{
    const size_t forgotten = session->sender.waiting.size();
    // The index that counts is read again: until then the sender has none.
    session->sender = TRM_Sender();
    session->isInterrupted = session->wasOpen;
    session->isOpen = false;
    session->unsteady = 0;
    return forgotten;
}

bool TRM_IsServiceBusy(const TRM_ServiceSession &session)
{
    return !session.sender.waiting.empty() || session.isReadInDoubt || session.unsteady > 0;
}

void TRM_StepService(TRM_ServiceSession *session, TRM_ServiceNews *news)
{
    *news = TRM_ServiceNews();
    Look look;
    if (ReadHead(*session, &look.result, &look.block) < 0)
        return FailLine(news);
    if (IsQuiet(*session, look.result, look.block))
        return;
    if (UCM_MakeProven([&] { return LookOnce(*session, &look); }) < 0)
        return FailLine(news);
    if (look.result != 0) {
        if (session->isOpen || !session->wasOpen)
            AddMessage(news, TRM_NoBlockText(session->place, look.result));
        session->isOpen = false;
        return;
    }
    if (!look.isSteady) {
        if (++session->unsteady == UNSTEADY_MAX)
            AddMessage(news, "The terminal's block changes while it is read: nothing is shown.");
        return;
    }
    session->unsteady = 0;
    Adopt(session, look.block, news);
    news->received = look.bytes;
    session->received += look.bytes.size();
    const uint32_t before = look.block.output.read;
    session->readIndex = (session->readIndex + static_cast<uint32_t>(look.bytes.size())) %
                         session->block.output.size;
    if (session->readIndex != before)
        FreePlaces(session, before, news);
    else
        session->isReadInDoubt = false;
    if (!news->isLineBad)
        Send(session, news);
    if (news->isLineBad)
        AddMessage(news, TRM_LineText());
}

std::string TRM_NoBlockText(const TRM_BlockPlace &place, int result)
{
    return TXT_Format("There is no terminal at 0x%06X of station %d: ", place.address,
                      place.station) +
           TRM_BlockErrorText(result) + ".";
}

std::string TRM_RestartText(size_t forgotten)
{
    std::string text = "The target's program has started anew.";
    if (forgotten > 0)
        text += " Not sent any more: " + std::to_string(forgotten) + " characters.";
    return text;
}

std::string TRM_ForeignText(size_t forgotten)
{
    return "Somebody else writes to this terminal too. Not sent any more: " +
           std::to_string(forgotten) + " characters.";
}

std::string TRM_LineText()
{
    const std::string cause = UCM_LastErrorText();
    return "No connection to the terminal: " +
           (cause.empty() ? std::string(UCM_REPEATED_TEXT) : cause) + ".";
}
