// Characters first, the index last: until it is written the target sees none of them.
#include "terminal/sender.h"

#include "comm/ucm.h"

#include <algorithm>

namespace {

constexpr uint32_t STEP_MAX = 32;    // bytes a call, so that nothing else waits long
constexpr uint32_t MESSAGE_MAX = 16; // bytes, see UCM_WriteProven

void Arrive(TRM_Sender *sender, uint32_t count, uint32_t index, std::string *taken)
{
    *taken += sender->waiting.substr(0, count);
    sender->waiting.erase(0, count);
    sender->index = index;
    sender->onTheWay = 0;
}

// What the index says about the last write of it, which nobody answered.
int Settle(TRM_Sender *sender, const TRM_Ring &ring, std::string *taken)
{
    if (sender->onTheWay != 0 && ring.write == (sender->index + sender->onTheWay) % ring.size)
        Arrive(sender, sender->onTheWay, ring.write, taken);
    if (ring.write != sender->index)
        return TRM_SEND_ERR_FOREIGN;
    sender->onTheWay = 0;
    return 0;
}

// Behind the index, where the target does not look yet: may be written again and again.
int WriteCharacters(const TRM_Sender &sender, int station, const TRM_Ring &ring, uint32_t count)
{
    uint32_t done = 0;
    while (done < count) {
        const uint32_t at = (sender.index + done) % ring.size;
        const uint32_t run = std::min({count - done, ring.size - at, MESSAGE_MAX});
        if (UCM_WriteProven(station, ring.address + at, static_cast<uint16_t>(run),
                            sender.waiting.data() + done) < 0)
            return TRM_SEND_ERR_LINE;
        done += run;
    }
    return 0;
}

} // namespace

void TRM_BeginSender(TRM_Sender *sender, const TRM_Ring &ring)
{
    *sender = TRM_Sender();
    sender->index = ring.write;
}

bool TRM_AddToSender(TRM_Sender *sender, const std::string &bytes)
{
    if (bytes.size() > TRM_WAITING_MAX - sender->waiting.size())
        return false;
    sender->waiting += bytes;
    return true;
}

size_t TRM_CancelSender(TRM_Sender *sender)
{
    // What is on the way stays: should it have arrived, it is not to go once more.
    const size_t forgotten = sender->waiting.size() - sender->onTheWay;
    sender->waiting.resize(sender->onTheWay);
    return forgotten;
}

int TRM_SendCharacters(TRM_Sender *sender, int station, uint16_t session, const TRM_Ring &ring,
                       std::string *taken)
{
    taken->clear();
    if (Settle(sender, ring, taken) != 0) {
        TRM_BeginSender(sender, ring);
        return TRM_SEND_ERR_FOREIGN;
    }
    const auto waiting = static_cast<uint32_t>(sender->waiting.size());
    const uint32_t count = std::min({waiting, TRM_CountRoom(ring), STEP_MAX});
    if (count == 0)
        return 0;
    if (WriteCharacters(*sender, station, ring, count) != 0)
        return TRM_SEND_ERR_LINE;
    const uint32_t index = (sender->index + count) % ring.size;
    uint8_t bytes[TRM_INDEX_BYTES];
    TRM_PutIndex(bytes, index, session);
    sender->onTheWay = count;
    if (UCM_WriteProven(station, ring.indexAddress, TRM_INDEX_BYTES, bytes) < 0)
        return TRM_SEND_ERR_LINE;
    Arrive(sender, count, index, taken);
    return 0;
}
