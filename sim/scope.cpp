#include "scope.h"

#include "demo.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr double RATE_HZ = 5000;
constexpr double CATCH_UP_S = 2; // a target nobody looks at for longer skips the rest

// Where the fields of a scope stand, whatever its generation. 0 = it has no such field.
struct Layout {
    unsigned mask;
    uint32_t begin, end;       // its variables
    uint32_t ring;             // byte address of the samples
    uint16_t channels, values; // per channel
    uint32_t control, post, level, mode, subPeriod, subCounter, index;
};

constexpr uint32_t V2 = 0x9000, V3 = 0x9100, VT = 0x19000;
constexpr uint32_t V2_SOURCES = V2 + 0x20, V2_PAGES = V2 + 0x30, V2_LOADS = V2 + 0x40;
constexpr uint32_t V3_SOURCES = 0x2C; // in a block

const Layout layouts[SIM_SCOPES] = {
    {SIM_SCOPE_2, V2, V2 + 0x60, 0x9200, 4, 200, V2 + 2, V2 + 8, V2 + 4, V2 + 0x0E, V2 + 0x14,
     V2 + 0x16, V2},
    {SIM_SCOPE_3C166, V3, V3 + 0x54, 0xA000, 4, 500, V3 + 2, V3 + 4, V3 + 8, V3 + 0x16, V3 + 6,
     V3 + 0x20, V3 + 0x22},
    {SIM_SCOPE_3, VT, VT + 0x54, 0x28000, 8, 1000, VT + 2, VT + 4, VT + 8, VT + 0x16, VT + 6,
     VT + 0x20, VT + 0x22},
};

// The page format of a C166 keeps a 14-bit offset and, from bit 16 on, the page.
uint32_t ToPages(uint32_t address)
{
    return (address & 0x3FFF) | (address & ~uint32_t{0x3FFF}) << 2;
}

uint32_t SourceOf(const SIM_Station &station, const Layout &scope, uint32_t channel)
{
    if (scope.mask == SIM_SCOPE_2)
        return static_cast<uint32_t>(SIM_GetWord(station, V2_PAGES + 2 * channel)) << 14 |
               (SIM_GetWord(station, V2_SOURCES + 2 * channel) & 0x3FFF);
    const auto stored =
        static_cast<uint32_t>(SIM_GetValue(station, scope.begin + V3_SOURCES + 4 * channel, 4));
    return scope.mask == SIM_SCOPE_3 ? 2 * stored : (stored & 0x3FFF) | (stored >> 16) << 14;
}

// What the sampling routine of the channel loads at time t.
uint16_t SampleOf(SIM_Station *station, int number, const Layout &scope, uint32_t channel, double t)
{
    const uint32_t source = SourceOf(*station, scope, channel) % SIM_MEMORY_SIZE;
    SIM_UpdateDemo(station, number, t, source, 2);
    if (scope.mask == SIM_SCOPE_2) {
        const uint16_t load = SIM_GetWord(*station, V2_LOADS + 2 * channel);
        const auto byte = static_cast<uint8_t>(SIM_GetValue(*station, source, 1));
        if (load == 0xF2D2)
            return static_cast<uint16_t>(static_cast<int16_t>(static_cast<int8_t>(byte)));
        if (load == 0xF2C2)
            return byte;
    }
    return SIM_GetWord(*station, source);
}

// --- the trigger ------------------------------------------------------------------------

enum class Compare { WORD, UNSIGNED_WORD, LONG, UNSIGNED_LONG, FLOAT, PACKED, NONE };

struct Trigger {
    bool isFree = false, isFalling = false;
    Compare compare = Compare::NONE;
};

Trigger TriggerOf(const SIM_Station &station, const Layout &scope)
{
    Trigger trigger;
    if (scope.mask == SIM_SCOPE_2) {
        const auto first = static_cast<uint8_t>(SIM_GetValue(station, scope.mode, 1));
        trigger.isFalling = first == 0xAD || first == 0xED;
        trigger.compare = first == 0xCD || first == 0xAD ? Compare::WORD : Compare::UNSIGNED_WORD;
        return trigger;
    }
    const uint16_t code = SIM_GetWord(station, scope.mode);
    trigger.isFree = code == 0x10;
    struct {
        uint16_t base;
        Compare compare;
    } const bases[] = {{2, Compare::WORD},   {5, Compare::UNSIGNED_WORD},
                       {7, Compare::LONG},   {10, Compare::UNSIGNED_LONG},
                       {12, Compare::FLOAT}, {14, Compare::PACKED}};
    for (const auto &row : bases) {
        if (code != row.base && code != row.base + 1)
            continue;
        trigger.compare = row.compare;
        trigger.isFalling = code != row.base;
    }
    return trigger;
}

double AsFloat(uint32_t bits)
{
    float value;
    memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
}

double AsNumber(Compare compare, uint32_t bits)
{
    switch (compare) {
    case Compare::WORD:
        return static_cast<int16_t>(bits);
    case Compare::UNSIGNED_WORD:
        return bits & 0xFFFF;
    case Compare::LONG:
        return static_cast<int32_t>(bits);
    case Compare::UNSIGNED_LONG:
        return bits;
    case Compare::FLOAT:
        return AsFloat(bits);
    case Compare::PACKED:
        return AsFloat(bits << 16);
    default:
        return 0;
    }
}

// Whether channel 1 has passed the level since the sample before.
bool IsTriggered(const SIM_Station &station, const Layout &scope, double *previous, uint16_t word,
                 uint16_t next)
{
    const Trigger trigger = TriggerOf(station, scope);
    if (trigger.isFree)
        return true;
    const uint32_t bits = static_cast<uint32_t>(next) << 16 | word;
    const double value = AsNumber(trigger.compare, bits);
    // The level is a word in generation 2; in generation 3 it holds what the type needs, and a
    // packed sample is compared with a whole float.
    const auto raw = static_cast<uint32_t>(
        SIM_GetValue(station, scope.level, scope.mask == SIM_SCOPE_2 ? 2 : 4));
    const Compare levelType = trigger.compare == Compare::PACKED ? Compare::FLOAT : trigger.compare;
    const double level = AsNumber(levelType, raw);
    const double before = *previous;
    *previous = value;
    return trigger.isFalling ? before > level && value <= level : before < level && value >= level;
}

// --- sampling -----------------------------------------------------------------------------

// Generation 3 fills its ring upwards and keeps the place of the oldest word; generation 2
// fills downwards and keeps the place of the newest one, in bytes.
void StoreSample(SIM_Station *station, const Layout &scope, const uint16_t *words)
{
    const uint32_t total = uint32_t{scope.channels} * scope.values;
    const bool isDown = scope.mask == SIM_SCOPE_2;
    uint32_t at = SIM_GetWord(*station, scope.index) / (isDown ? 2U : 1U) % total;
    for (uint32_t channel = 0; channel < scope.channels; channel++) {
        if (isDown)
            at = (at + total - 1) % total;
        SIM_SetValue(station, scope.ring + 2 * at, 2, words[channel]);
        if (!isDown)
            at = (at + 1) % total;
    }
    SIM_SetWord(station, scope.index, isDown ? 2 * at : at);
}

void TakeSample(SIM_Station *station, int number, const Layout &scope, double *previous, double t)
{
    uint16_t words[SIM_SCOPE_CHANNELS] = {0};
    for (uint32_t channel = 0; channel < scope.channels; channel++)
        words[channel] = SampleOf(station, number, scope, channel, t);
    StoreSample(station, scope, words);
    auto control = static_cast<int16_t>(SIM_GetWord(*station, scope.control));
    if (control > 0) {
        control--;
    } else if (control < -1) {
        control++; // the record in front of the trigger is still filling
        *previous = NAN;
    } else if (IsTriggered(*station, scope, previous, words[0], words[1])) {
        control = static_cast<int16_t>(SIM_GetWord(*station, scope.post));
    }
    SIM_SetWord(station, scope.control, static_cast<unsigned>(control));
}

void SampleUntil(SIM_Station *station, int number, const Layout &scope, SIM_ScopeState *state,
                 double seconds)
{
    double t = state->sampled;
    if (seconds - t > CATCH_UP_S)
        t = seconds - CATCH_UP_S;
    for (; t + 1 / RATE_HZ <= seconds; t += 1 / RATE_HZ) {
        // Complete: nothing moves until the next run.
        if (SIM_GetWord(*station, scope.control) == 0) {
            t = seconds;
            break;
        }
        uint16_t left = SIM_GetWord(*station, scope.subCounter);
        if (left > 1) {
            SIM_SetWord(station, scope.subCounter, --left);
            continue;
        }
        // Every how manieth tick is a sample: generation 3 keeps one less.
        const unsigned stored = SIM_GetWord(*station, scope.subPeriod);
        SIM_SetWord(station, scope.subCounter,
                    scope.mask == SIM_SCOPE_2 ? std::max(stored, 1U) : stored + 1);
        TakeSample(station, number, scope, &state->previous, t);
    }
    state->sampled = t;
}

void InitV2(SIM_Station *station, const Layout &scope)
{
    SIM_SetWord(station, V2 + 0x0A, scope.values);
    SIM_SetWord(station, V2 + 0x0C, scope.channels);
    SIM_SetValue(station, V2 + 0x0E, 2, 0xBDCD); // rising, signed
    SIM_SetFloat(station, V2 + 0x10, static_cast<float>(RATE_HZ));
    SIM_SetWord(station, V2 + 0x14, 1);
    for (uint32_t channel = 0; channel < scope.channels; channel++)
        SIM_SetWord(station, V2_LOADS + 2 * channel, 0xF2F2);
}

void InitV3(SIM_Station *station, const Layout &scope)
{
    const bool isTms = scope.mask == SIM_SCOPE_3;
    SIM_SetWord(station, scope.begin, isTms ? 0x20D3 : 0x20D2);
    SIM_SetWord(station, scope.begin + 0x10, scope.values);
    SIM_SetWord(station, scope.begin + 0x12, scope.channels);
    SIM_SetWord(station, scope.mode, 2);
    SIM_SetValue(station, scope.begin + 0x18, 4, static_cast<uint64_t>(RATE_HZ * 1000));
    SIM_SetValue(station, scope.begin + 0x28, 4, isTms ? scope.ring / 2 : ToPages(scope.ring));
}

} // namespace

void SIM_InitScopes(SIM_Station *station, unsigned mask)
{
    for (size_t i = 0; i < SIM_SCOPES; i++) {
        const Layout &scope = layouts[i];
        station->scopes[i].isPresent = (mask & scope.mask) != 0;
        if (!station->scopes[i].isPresent)
            continue;
        (scope.mask == SIM_SCOPE_2 ? InitV2 : InitV3)(station, scope);
        SIM_SetWord(station, scope.post, scope.values / 2U);
    }
}

void SIM_UpdateScopes(SIM_Station *station, int number, double seconds, uint32_t address,
                      size_t count)
{
    for (size_t i = 0; i < SIM_SCOPES; i++) {
        const Layout &scope = layouts[i];
        const uint32_t ringEnd = scope.ring + 2U * scope.channels * scope.values;
        if (station->scopes[i].isPresent && (SIM_Touches(address, count, scope.begin, scope.end) ||
                                             SIM_Touches(address, count, scope.ring, ringEnd)))
            SampleUntil(station, number, scope, &station->scopes[i], seconds);
    }
}
