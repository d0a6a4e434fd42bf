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
    TBK_Service block;
    std::string bytes; // from the session's read index on
};

int ReadHead(const TSV_Session &session, int *result, TBK_Service *block)
{
    uint8_t head[TBK_SERVICE_HEAD];
    const TBK_Place &place = session.place;
    if (UCM_Read(place.station, place.address, sizeof head, head) < 0)
        return UCM_ERR_FAILED;
    *result = TBK_ParseService(place.address, head, block);
    return 0;
}

bool IsSameRun(const TSV_Session &session, const TBK_Service &block)
{
    return session.wasOpen && block.session == session.block.session &&
           block.output.size == session.block.output.size &&
           block.input.size == session.block.input.size;
}

// Where reading goes on: what the target says is older where its index was not answered.
bool IsOwnReadIndex(const TSV_Session &session, uint32_t read)
{
    return read == session.readIndex || (session.isReadInDoubt && read == session.readBefore);
}

// In two parts where it passes the end.
int ReadRing(int station, const TBK_Ring &ring, uint32_t from, uint32_t count, std::string *bytes)
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
int LookOnce(const TSV_Session &session, Look *look)
{
    *look = Look();
    TBK_Service before;
    if (ReadHead(session, &look->result, &before) < 0)
        return UCM_ERR_FAILED;
    look->block = before;
    if (look->result != 0)
        return 0;
    const bool isOwn = IsSameRun(session, before) && IsOwnReadIndex(session, before.output.read);
    // After a restart, or where somebody else has read on, from where the target's index says.
    const uint32_t from = isOwn ? session.readIndex : before.output.read;
    TBK_Ring ring = before.output;
    ring.read = from;
    const uint32_t count = std::min(TBK_Count(ring), TSV_STEP_BYTES);
    if (ReadRing(session.place.station, ring, from, count, &look->bytes) < 0 ||
        ReadHead(session, &look->result, &look->block) < 0)
        return UCM_ERR_FAILED;
    TBK_Ring later = look->block.output;
    later.read = from;
    look->isSteady = look->result == 0 && look->block.session == before.session &&
                     later.size == ring.size && look->block.input.size == before.input.size &&
                     look->block.output.read == before.output.read &&
                     TBK_Count(later) >= TBK_Count(ring);
    return 0;
}

void AddMessage(TSV_News *news, const std::string &text)
{
    news->message += (news->message.empty() ? "" : " ") + text;
}

// The block of this look is what goes on from here.
void Adopt(TSV_Session *session, const TBK_Service &block, TSV_News *news)
{
    if (!IsSameRun(*session, block)) {
        if (session->wasOpen)
            AddMessage(news, TSV_RestartText(session->sender.waiting.size()));
        TSN_Begin(&session->sender, block.input);
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
        TSN_Begin(&session->sender, block.input);
    session->isInterrupted = false;
    session->block = block;
    session->isOpen = session->wasOpen = true;
}

// The target may use the places again. Whether the index arrived, the next look tells.
void FreePlaces(TSV_Session *session, uint32_t before, TSV_News *news)
{
    uint8_t bytes[TBK_INDEX_BYTES];
    TBK_PutIndex(bytes, session->readIndex, session->block.session);
    session->isReadInDoubt = true;
    session->readBefore = before;
    if (UCM_WriteProven(session->place.station, session->block.output.indexAddress, TBK_INDEX_BYTES,
                        bytes) >= 0)
        session->isReadInDoubt = false;
    else
        news->isLineBad = true;
}

void Send(TSV_Session *session, TSV_News *news)
{
    const size_t waiting = session->sender.waiting.size();
    const int result = TSN_Send(&session->sender, session->place.station, session->block.session,
                                session->block.input, &news->taken);
    session->sent += news->taken.size();
    if (result == TSN_ERR_FOREIGN)
        AddMessage(news, TSV_ForeignText(waiting));
    if (result == TSN_ERR_LINE)
        news->isLineBad = true;
}

// Nothing to receive and nothing to send: not worth a proof.
bool IsQuiet(const TSV_Session &session, int result, const TBK_Service &block)
{
    return session.isOpen && result == 0 && IsSameRun(session, block) && !TSV_IsBusy(session) &&
           block.output.read == session.readIndex && block.output.write == session.readIndex &&
           block.input.write == session.sender.index && block.lost == session.block.lost;
}

void FailLine(TSV_News *news)
{
    news->isLineBad = true;
    AddMessage(news, TSV_LineText());
}

} // namespace

void TSV_Begin(TSV_Session *session, const TBK_Place &place)
{
    *session = TSV_Session();
    session->place = place;
}

size_t TSV_Interrupt(TSV_Session *session)
{
    const size_t forgotten = session->sender.waiting.size();
    // The index that counts is read again: until then the sender has none.
    session->sender = TSN_Sender();
    session->isInterrupted = session->wasOpen;
    session->isOpen = false;
    session->unsteady = 0;
    return forgotten;
}

bool TSV_IsBusy(const TSV_Session &session)
{
    return !session.sender.waiting.empty() || session.isReadInDoubt || session.unsteady > 0;
}

void TSV_Step(TSV_Session *session, TSV_News *news)
{
    *news = TSV_News();
    Look look;
    if (ReadHead(*session, &look.result, &look.block) < 0)
        return FailLine(news);
    if (IsQuiet(*session, look.result, look.block))
        return;
    if (UCM_MakeProven([&] { return LookOnce(*session, &look); }) < 0)
        return FailLine(news);
    if (look.result != 0) {
        if (session->isOpen || !session->wasOpen)
            AddMessage(news, TSV_NoBlockText(session->place, look.result));
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
        AddMessage(news, TSV_LineText());
}

std::string TSV_NoBlockText(const TBK_Place &place, int result)
{
    return WRD_Format("There is no terminal at 0x%06X of station %d: ", place.address,
                      place.station) +
           TBK_ErrorText(result) + ".";
}

std::string TSV_RestartText(size_t forgotten)
{
    std::string text = "The target's program has started anew.";
    if (forgotten > 0)
        text += " Not sent any more: " + std::to_string(forgotten) + " characters.";
    return text;
}

std::string TSV_ForeignText(size_t forgotten)
{
    return "Somebody else writes to this terminal too. Not sent any more: " +
           std::to_string(forgotten) + " characters.";
}

std::string TSV_LineText()
{
    const std::string cause = UCM_LastErrorText();
    return "No connection to the terminal: " +
           (cause.empty() ? std::string(UCM_REPEATED_TEXT) : cause) + ".";
}
