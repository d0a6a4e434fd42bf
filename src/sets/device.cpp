// Values of a set in the target: read and written in the cheapest blocks, and believed only when
// the line has proven them. Nothing here knows names of files or windows.
#include "sets/device.h"

#include "comm/grouping.h"
#include "comm/ucm.h"
#include "settings/settings.h"

#include <algorithm>
#include <cstring>

namespace {

// A proof costs an exchange: few enough blocks behind it that reading them again is no loss.
constexpr size_t BLOCKS_PER_PROOF = 32;
// So many blocks at most are in doubt when the line dies.
constexpr size_t WRITES_PER_CHECK = 8;
constexpr int ROUNDS_MAX = 3; // reads of the same blocks before giving up

// The places in the cheapest blocks, whose items are indices into `places`.
std::vector<UCM_Block> MakeBlocks(const PST_Set &set, const std::vector<uint32_t> &places,
                                  const UCM_WireCosts &wire, bool areGapsAllowed)
{
    std::vector<UCM_BlockItem> items;
    for (const uint32_t index : places) {
        const PST_Place &place = set.places[index];
        items.push_back({STATION, place.address, set.entries[place.entry].size});
    }
    UCM_BlockRules rules;
    // Reading may take along what lies between; writing must never touch it.
    rules.areGapsAllowed = areGapsAllowed;
    return UCM_PlanBlocks(items, wire, rules);
}

std::string LinkText(const std::string &what)
{
    const std::string cause = UCM_LastErrorText();
    return what + " (" + (cause.empty() ? "answers came more than once" : cause) + ").";
}

// Asked between two exchanges: none is broken off in the middle.
bool IsCancelled(const PST_Progress &progress, size_t done, size_t total, const char *what)
{
    return progress.step != nullptr && progress.step(progress.context, done, total, what);
}

// Reads blocks [first, end) and proves them; what the line may have mixed up is read again.
int ReadProven(const PST_Set &set, const std::vector<uint32_t> &places,
               const std::vector<UCM_Block> &blocks, size_t first, size_t end, PST_Image *image,
               std::string *why)
{
    for (int round = 0; round < ROUNDS_MAX; ++round) {
        const uint32_t doubts = UCM_CountDoubts();
        for (size_t i = first; i < end; ++i) {
            std::vector<uint8_t> bytes(blocks[i].size);
            if (UCM_Read(STATION, blocks[i].address, blocks[i].size, bytes.data()) < 0) {
                *why = LinkText("The target could not be read at '" +
                                PST_PlaceName(set, places[blocks[i].items[0]]) + "'");
                return PST_ERR_LINK;
            }
            for (const size_t item : blocks[i].items) {
                const PST_Place &place = set.places[places[item]];
                PST_Held &held = (*image)[places[item]];
                // Nothing of an older and longer value may be left behind it.
                held.bytes = {};
                std::memcpy(held.bytes.data(), bytes.data() + (place.address - blocks[i].address),
                            set.entries[place.entry].size);
                held.isThere = true;
            }
        }
        const int proof = UCM_Prove();
        // A refusal that somebody else was told meanwhile concerns these blocks, too.
        if (proof == UCM_PROVEN && UCM_CountDoubts() == doubts)
            return PST_OK;
        if (proof == UCM_NOT_PROVEN)
            break;
    }
    *why = LinkText("What was read could not be proven");
    return PST_ERR_LINK;
}

// What the steps of one writing share.
struct Writer {
    const PST_Set *set;
    const PST_Image *wanted;
    PST_Image *held;
    std::vector<PST_State> *states;
    std::vector<uint32_t> places;
    std::vector<UCM_Block> blocks;
};

int WriteBlock(Writer *writer, const UCM_Block &block, std::string *why)
{
    std::vector<uint8_t> bytes(block.size);
    for (const size_t i : block.items) {
        const PST_Place &place = writer->set->places[writer->places[i]];
        std::memcpy(bytes.data() + (place.address - block.address),
                    (*writer->wanted)[writer->places[i]].bytes.data(),
                    writer->set->entries[place.entry].size);
    }
    const int result = UCM_Write(STATION, block.address, block.size, bytes.data());
    // A write without an answer may have arrived all the same.
    for (const size_t i : block.items)
        (*writer->states)[writer->places[i]] = result < 0 ? PST_IN_DOUBT : PST_UNREAD;
    if (result < 0)
        *why = LinkText("The target did not take '" +
                        PST_PlaceName(*writer->set, writer->places[block.items[0]]) + "'");
    return result < 0 ? PST_ERR_LINK : PST_OK;
}

// Reads blocks [first, end) back and compares them.
int CheckBlocks(Writer *writer, size_t first, size_t end, std::string *why)
{
    if (ReadProven(*writer->set, writer->places, writer->blocks, first, end, writer->held, why) !=
        PST_OK)
        return PST_ERR_LINK;
    for (size_t block = first; block < end; ++block) {
        for (const size_t i : writer->blocks[block].items) {
            const uint32_t at = writer->places[i];
            const PST_Entry &entry = writer->set->entries[writer->set->places[at].entry];
            const bool isSame = PST_IsSame(entry, (*writer->held)[at], (*writer->wanted)[at]);
            (*writer->states)[at] = isSame ? PST_WRITTEN : PST_DIFFERENT;
        }
    }
    return PST_OK;
}

} // namespace

int PST_ReadPlaces(const PST_Set &set, const std::vector<uint32_t> &places, PST_Image *image,
                   const PST_Progress &progress, std::string *why)
{
    const std::vector<UCM_Block> blocks = MakeBlocks(set, places, UCM_ReadWire(VR_nProtocol), true);
    // The caller's image stays as it was unless all could be read.
    PST_Image fresh = *image;
    fresh.resize(set.places.size());
    for (size_t i = 0; i < blocks.size(); i += BLOCKS_PER_PROOF) {
        if (IsCancelled(progress, i, blocks.size(), "reading")) {
            *why = "Cancelled.";
            return PST_ERR_CANCELLED;
        }
        const size_t end = std::min(blocks.size(), i + BLOCKS_PER_PROOF);
        const int result = ReadProven(set, places, blocks, i, end, &fresh, why);
        if (result != PST_OK)
            return result;
    }
    *image = std::move(fresh);
    return PST_OK;
}

int PST_ReadDevice(const PST_Set &set, PST_Image *image, const PST_Progress &progress,
                   std::string *why)
{
    std::vector<uint32_t> all(set.places.size());
    for (uint32_t i = 0; i < all.size(); ++i)
        all[i] = i;
    return PST_ReadPlaces(set, all, image, progress, why);
}

int PST_WritePlaces(const PST_Set &set, const std::vector<uint32_t> &places,
                    const PST_Image &wanted, PST_Image *held, std::vector<PST_State> *states,
                    const PST_Progress &progress, std::string *why)
{
    states->assign(set.places.size(), PST_UNTOUCHED);
    held->resize(set.places.size());
    Writer writer = {&set, &wanted, held, states, places, {}};
    writer.blocks = MakeBlocks(set, places, UCM_WriteWire(VR_nProtocol), false);
    const size_t total = writer.blocks.size();
    int result = PST_OK;
    for (size_t i = 0; i < total && result == PST_OK; i += WRITES_PER_CHECK) {
        const size_t end = std::min(total, i + WRITES_PER_CHECK);
        size_t written = i;
        while (written < end && result == PST_OK) {
            if (IsCancelled(progress, written, total, "writing")) {
                *why = "Cancelled.";
                result = PST_ERR_CANCELLED;
            } else {
                result = WriteBlock(&writer, writer.blocks[written], why);
                written += result == PST_OK ? 1 : 0;
            }
        }
        // Also what stands in front of an interruption is read back: it says what is good.
        std::string ignored;
        if (written > i) {
            const int check = CheckBlocks(&writer, i, written, result == PST_OK ? why : &ignored);
            result = result == PST_OK ? check : result;
        }
    }
    return result;
}
