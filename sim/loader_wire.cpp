#include "loader_wire.h"

#include <algorithm>

namespace {

// Bytes of `count` that still pass the cable.
size_t PassBytes(SIM_LoaderWire *wire, size_t count)
{
    if (wire->bytesLeft < 0)
        return count;
    const size_t passed = std::min(count, static_cast<size_t>(wire->bytesLeft));
    wire->bytesLeft -= static_cast<long>(passed);
    return passed;
}

} // namespace

int SIM_WriteCable(SIM_LoaderWire *wire, const void *bytes, size_t count)
{
    const auto *byte = static_cast<const uint8_t *>(bytes);
    const size_t passed = PassBytes(wire, count);
    wire->sent.insert(wire->sent.end(), byte, byte + passed);
    for (size_t i = 0; i < passed && !wire->isScripted; i++)
        SIM_FeedLoader(&wire->loader, byte[i], &wire->incoming);
    return passed == 0 && count > 0 ? -1 : static_cast<int>(passed);
}

int SIM_ReadCable(SIM_LoaderWire *wire, void *buffer, size_t count)
{
    std::vector<uint8_t> &from = wire->incoming;
    const size_t passed = PassBytes(wire, std::min(count, from.size()));
    std::copy_n(from.begin(), passed, static_cast<uint8_t *>(buffer));
    from.erase(from.begin(), from.begin() + static_cast<long>(passed));
    // The reader would wait for a time-out now, longer than a loader keeps half a command.
    if (passed < count)
        SIM_LoaderQuiet(&wire->loader);
    return wire->bytesLeft == 0 && passed == 0 ? -1 : static_cast<int>(passed);
}

void SIM_DropCable(SIM_LoaderWire *wire)
{
    if (!wire->isScripted)
        wire->incoming.clear();
}

void SIM_ReplugCable(SIM_LoaderWire *wire)
{
    wire->bytesLeft = -1;
    wire->incoming.clear();
    SIM_LoaderQuiet(&wire->loader);
}

void SIM_ScriptCable(SIM_LoaderWire *wire, const std::vector<uint8_t> &answers)
{
    wire->isScripted = true;
    wire->incoming = answers;
    wire->sent.clear();
}
