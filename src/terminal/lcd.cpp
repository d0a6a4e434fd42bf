// A glance at the head first: as long as nothing has changed it is all that is read. A picture is
// read between two heads and proven.
#include "terminal/lcd.h"

#include "comm/ucm.h"
#include "terminal/service.h"

namespace {

constexpr int TRIES = 3;        // to read a picture that stands still
constexpr int UNSTEADY_MAX = 5; // looks in a row without one, before it is said
constexpr size_t KEYS_WAITING_MAX = 64;
constexpr int RELEASED = 0x80; // added to the key's number

int ReadHead(const TRM_BlockPlace &place, int *result, TRM_LcdBlock *block)
{
    uint8_t head[TRM_LCD_HEAD];
    if (UCM_Read(place.station, place.address, sizeof head, head) < 0)
        return UCM_ERR_FAILED;
    *result = TRM_ParseLcdBlock(place.address, head, block);
    return 0;
}

bool IsSamePicture(const TRM_LcdBlock &one, const TRM_LcdBlock &other)
{
    return one.session == other.session && one.changes == other.changes && one.rows == other.rows &&
           one.columns == other.columns && one.screen == other.screen;
}

struct Look {
    int result = 0;
    bool isSteady = false;
    TRM_MakeLcdPicture picture;
};

// Head, picture, head again; an odd or another counter says that the target was changing it.
int LookOnce(const TRM_BlockPlace &place, Look *look)
{
    *look = Look();
    TRM_MakeLcdPicture &picture = look->picture;
    if (ReadHead(place, &look->result, &picture.block) < 0)
        return UCM_ERR_FAILED;
    const TRM_LcdBlock before = picture.block;
    if (look->result != 0 || before.changes % 2 != 0)
        return 0;
    picture.characters.resize(before.rows * before.columns);
    if (UCM_Read(place.station, place.address + TRM_LCD_FLAG_GLYPHS,
                 static_cast<uint32_t>(picture.glyphs.size()), picture.glyphs.data()) < 0 ||
        UCM_Read(place.station, before.screen, before.rows * before.columns,
                 picture.characters.data()) < 0 ||
        ReadHead(place, &look->result, &picture.block) < 0)
        return UCM_ERR_FAILED;
    look->isSteady = look->result == 0 && IsSamePicture(before, picture.block);
    return 0;
}

// Several times: a target that shows a clock or counts changes it now and then.
int LookForPicture(const TRM_BlockPlace &place, Look *look)
{
    int result = 0;
    for (int i = 0; i < TRIES && result == 0; ++i) {
        result = LookOnce(place, look);
        if (look->result != 0 || look->isSteady)
            break;
    }
    return result;
}

// Nothing new and no key to be sent: not worth a proof.
bool IsQuiet(const TRM_LcdSession &session, int result, const TRM_LcdBlock &block)
{
    return session.isOpen && result == 0 && session.unsteady == 0 && session.keys.waiting.empty() &&
           IsSamePicture(session.picture.block, block) && block.keys.write == session.keys.index;
}

// Not a target that has started anew: keys that wait are meant for this one.
bool IsSameRun(const TRM_LcdSession &session, const TRM_LcdBlock &block)
{
    const TRM_LcdBlock &known = session.picture.block;
    return session.wasOpen && known.session == block.session && known.keys.size == block.keys.size;
}

void Adopt(TRM_LcdSession *session, const TRM_MakeLcdPicture &picture, TRM_LcdNews *news)
{
    if (!IsSameRun(*session, picture.block)) {
        if (session->wasOpen)
            news->message = TRM_RestartText(session->keys.waiting.size());
        TRM_BeginSender(&session->keys, picture.block.keys);
    }
    session->picture = picture;
    session->isOpen = session->wasOpen = true;
    news->isNew = true;
}

void SendKeys(TRM_LcdSession *session, const TRM_LcdBlock &block, TRM_LcdNews *news)
{
    std::string taken;
    const size_t waiting = session->keys.waiting.size();
    const int result = TRM_SendCharacters(&session->keys, session->place.station, block.session,
                                          block.keys, &taken);
    if (result == TRM_SEND_ERR_FOREIGN)
        news->message = TRM_ForeignText(waiting);
    if (result == TRM_SEND_ERR_LINE) {
        news->isLineBad = true;
        news->message = TRM_LineText();
    }
}

} // namespace

void TRM_BeginLcd(TRM_LcdSession *session, const TRM_BlockPlace &place)
{
    *session = TRM_LcdSession();
    session->place = place;
}

void TRM_StepLcd(TRM_LcdSession *session, TRM_LcdNews *news)
{
    *news = TRM_LcdNews();
    Look look;
    TRM_LcdBlock glance;
    news->isLineBad = ReadHead(session->place, &look.result, &glance) < 0;
    if (!news->isLineBad && IsQuiet(*session, look.result, glance))
        return;
    news->isLineBad = news->isLineBad ||
                      UCM_MakeProven([&] { return LookForPicture(session->place, &look); }) < 0;
    if (news->isLineBad) {
        news->message = TRM_LineText();
        return;
    }
    // Said once: when it is gone, or at the first look that finds none.
    if (look.result != 0) {
        if (session->isOpen || !session->wasOpen)
            news->message = TRM_NoBlockText(session->place, look.result);
        session->isOpen = false;
        return;
    }
    const TRM_LcdBlock &block = look.picture.block;
    if (look.isSteady) {
        session->unsteady = 0;
        Adopt(session, look.picture, news);
    } else if (++session->unsteady == UNSTEADY_MAX) {
        news->message = "The target changes its display faster than it can be read.";
    }
    // Keys need no picture that stands still.
    if (look.isSteady || (session->isOpen && IsSameRun(*session, block)))
        SendKeys(session, block, news);
}

bool TRM_AddLcdKey(TRM_LcdSession *session, int key, bool isRelease)
{
    const bool isKey = key >= 0 && key < static_cast<int>(TRM_LCD_KEY_COUNT) &&
                       (session->picture.block.keyMask >> static_cast<unsigned>(key) & 1) != 0;
    if (!session->isOpen || !isKey)
        return false;
    // A release has its place kept, so that no key stays pressed for want of one.
    if (session->keys.waiting.size() >= KEYS_WAITING_MAX && !isRelease)
        return false;
    return TRM_AddToSender(&session->keys,
                           std::string(1, static_cast<char>(key | (isRelease ? RELEASED : 0))));
}
