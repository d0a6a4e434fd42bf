// Characters first, the index last: until it is written the target sees none of them.
#include "terminal/sender.h"

#include "comm/ucm.h"

#include <algorithm>

namespace {

constexpr uint32_t STEP_MAX = 32;    // bytes a call, so that nothing else waits long
constexpr uint32_t MESSAGE_MAX = 16; // bytes, see UCM_WriteProven

void Arrive(TSN_Sender *sender, uint32_t count, uint32_t index, std::string *taken)
{
    *taken += sender->waiting.substr(0, count);
    sender->waiting.erase(0, count);
    sender->index = index;
    sender->onTheWay = 0;
}

// What the index says about the last write of it, which nobody answered.
int Settle(TSN_Sender *sender, const TBK_Ring &ring, std::string *taken)
{
    if (sender->onTheWay != 0 && ring.write == (sender->index + sender->onTheWay) % ring.size)
        Arrive(sender, sender->onTheWay, ring.write, taken);
    if (ring.write != sender->index)
        return TSN_ERR_FOREIGN;
    sender->onTheWay = 0;
    return 0;
}

// Behind the index, where the target does not look yet: may be written again and again.
int WriteCharacters(const TSN_Sender &sender, int station, const TBK_Ring &ring, uint32_t count)
{
    uint32_t done = 0;
    while (done < count) {
        const uint32_t at = (sender.index + done) % ring.size;
        const uint32_t run = std::min({count - done, ring.size - at, MESSAGE_MAX});
        if (UCM_WriteProven(station, ring.address + at, static_cast<uint16_t>(run),
                            sender.waiting.data() + done) < 0)
            return TSN_ERR_LINE;
        done += run;
    }
    return 0;
}

} // namespace

void TSN_Begin(TSN_Sender *sender, const TBK_Ring &ring)
{
    *sender = TSN_Sender();
    sender->index = ring.write;
}

bool TSN_Add(TSN_Sender *sender, const std::string &bytes)
{
    if (bytes.size() > TSN_WAITING_MAX - sender->waiting.size())
        return false;
    sender->waiting += bytes;
    return true;
}

size_t TSN_Cancel(TSN_Sender *sender)
{
    // What is on the way stays: should it have arrived, it is not to go once more.
    const size_t forgotten = sender->waiting.size() - sender->onTheWay;
    sender->waiting.resize(sender->onTheWay);
    return forgotten;
}

int TSN_Send(TSN_Sender *sender, int station, uint16_t session, const TBK_Ring &ring,
             std::string *taken)
{
    taken->clear();
    if (Settle(sender, ring, taken) != 0) {
        TSN_Begin(sender, ring);
        return TSN_ERR_FOREIGN;
    }
    const auto waiting = static_cast<uint32_t>(sender->waiting.size());
    const uint32_t count = std::min({waiting, TBK_Room(ring), STEP_MAX});
    if (count == 0)
        return 0;
    if (WriteCharacters(*sender, station, ring, count) != 0)
        return TSN_ERR_LINE;
    const uint32_t index = (sender->index + count) % ring.size;
    uint8_t bytes[TBK_INDEX_BYTES];
    TBK_PutIndex(bytes, index, session);
    sender->onTheWay = count;
    if (UCM_WriteProven(station, ring.indexAddress, TBK_INDEX_BYTES, bytes) < 0)
        return TSN_ERR_LINE;
    Arrive(sender, count, index, taken);
    return 0;
}
