#include "demo.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double STATION_PHASE_S = 1.25; // so that no two stations show the same values
constexpr double SINE_PERIOD_S = 10;
constexpr uint64_t PAST_32_BITS = 0x100000000;
constexpr double TEMPERATURE_LAG_S = 2;

constexpr uint32_t LIVE_BEGIN = 0x8000;
constexpr uint32_t LIVE_END = 0x8060;
constexpr uint32_t FLAGS = 0x8001;
constexpr uint32_t TEMPERATURE = 0x801C;
constexpr uint32_t OUTPUT = 0x8034;
constexpr uint32_t WAVE = 0x8040;
constexpr uint32_t WAVE_POINTS = 16;

constexpr uint32_t GAIN = 0x8100;
constexpr uint32_t LIMIT = 0x8104;
constexpr uint32_t TEMPERATURE_SET = 0x8108;
constexpr uint32_t OFFSET = 0x810C;
constexpr uint32_t NAME = 0x8120;
constexpr uint32_t TABLE = 0x8140;
constexpr uint32_t TABLE_POINTS = 32;
constexpr uint32_t CURVE = 0x8180;
constexpr uint32_t CURVE_POINTS = 16;
constexpr uint32_t TABLE_POINTER = 0x81C4;
constexpr uint32_t FAR_LOG = 0x20000;
constexpr uint32_t FAR_LOG_BYTES = 256;
constexpr uint32_t DPP = 0xFE00;

enum TmsWord : uint32_t {
    TMS_SPEED = 0x400,
    TMS_CURRENT,
    TMS_CYCLES,
    TMS_ANGLE,
    TMS_GAIN,
    TMS_SCALED
};

double sine(double t)
{
    return std::sin(2 * PI * t / SINE_PERIOD_S);
}

// Between -1 and 1, back and forth once a period.
double triangle(double t, double period)
{
    const double x = std::fmod(t, period) / period;
    return x < 0.5 ? 4 * x - 1 : 3 - 4 * x;
}

uint64_t whole(double value)
{
    return static_cast<uint64_t>(std::llround(value));
}

uint64_t count(double t, double perSecond)
{
    return static_cast<uint64_t>(t * perSecond);
}

// Live integers: where they stand and what they show at time t.
struct LiveInteger {
    uint32_t address;
    size_t size;
    uint64_t (*value)(double t);
};

const LiveInteger liveIntegers[] = {
    {0x8000, 1, [](double t) { return count(t, 100); }},                   // byTick
    {0x8002, 2, [](double t) { return count(t, 1000); }},                  // wCount
    {0x8004, 4, [](double t) { return count(t, 1000); }},                  // dwCount
    {0x8008, 8, [](double t) { return PAST_32_BITS + count(t, 1e6); }},    // qwCount
    {0x8010, 2, [](double t) { return whole(1000 * sine(t)); }},           // nSine
    {0x8012, 2, [](double t) { return count(t, 500) % 10000; }},           // wRamp
    {0x8014, 4, [](double t) { return whole(100000 + 50000 * sine(t)); }}, // dwSine
    {0x8020, 4, [](double t) { return 1501 + count(t, 1); }},              // dwRunTime
    {0x8024, 4, [](double t) { return whole(100000 * triangle(t, 20)); }}, // nnPosition
    {0x8028, 8, [](double t) { return whole(-5e12 * sine(t)); }},          // qnEnergy
    {0x8030, 1, [](double t) { return whole(50 * triangle(t, 8)); }},      // cTrim
    {0x8032, 2, [](double t) { return count(t, 137); }},                   // wPulses
};

void setIntegers(SIM_Station *station, double t)
{
    for (const LiveInteger &live : liveIntegers)
        SIM_SetValue(station, live.address, live.size, live.value(t));
    for (uint32_t i = 0; i < WAVE_POINTS; i++) {
        const double shifted = t + i * SINE_PERIOD_S / WAVE_POINTS;
        SIM_SetValue(station, WAVE + 2 * i, 2, whole(500 + 500 * sine(shifted)));
    }
}

// nOutput: the sine times the gain in percent plus the offset, held within the limit.
// Returns whether the limit holds it.
bool setOutput(SIM_Station *station, double t)
{
    const double gain = static_cast<double>(SIM_GetValue(*station, GAIN, 2)) / 100;
    const auto offset = static_cast<int16_t>(SIM_GetValue(*station, OFFSET, 2));
    double limit = std::fabs(static_cast<double>(SIM_GetFloat(*station, LIMIT)));
    if (!(limit < INT16_MAX)) // also when somebody wrote bits that are no number
        limit = INT16_MAX;
    const double wanted = 1000 * sine(t) * gain + offset;
    SIM_SetValue(station, OUTPUT, 2, whole(std::clamp(wanted, -limit, limit)));
    return std::fabs(wanted) > limit;
}

void setFlags(SIM_Station *station, double t, bool limited)
{
    uint64_t flags = 1ULL << (4 + count(t, 4) % 3); // a light runs over bits 4..6
    flags |= count(t, 2) & 1;                       // blinks once a second
    flags |= (count(t, 0.5) & 1) << 1;              // and once in four seconds
    flags |= (sine(t) > 0 ? 1ULL : 0ULL) << 2;
    flags |= (limited ? 1ULL : 0ULL) << 7;
    SIM_SetValue(station, FLAGS, 1, flags);
}

// The temperature creeps towards its set-point, so a change stays visible for a while.
void setTemperature(SIM_Station *station, double seconds)
{
    const double target = static_cast<double>(SIM_GetFloat(*station, TEMPERATURE_SET));
    if (std::isfinite(target)) {
        const double share = 1 - std::exp((station->updated - seconds) / TEMPERATURE_LAG_S);
        station->temperature += (target - station->temperature) * share;
    }
    station->updated = seconds;
    SIM_SetFloat(station, TEMPERATURE, static_cast<float>(station->temperature));
}

void initArrays(SIM_Station *station, int number)
{
    char name[17];
    snprintf(name, sizeof name, "VIREO2 DEMO %02d", number);
    SIM_WriteMemory(station, NAME, name, strlen(name) + 1);
    for (uint32_t i = 0; i < TABLE_POINTS; i++)
        SIM_SetValue(station, TABLE + 2 * i, 2, i * i);
    for (uint32_t i = 0; i < CURVE_POINTS; i++)
        SIM_SetFloat(station, CURVE + 4 * i, 0.25F * static_cast<float>(i));
    for (uint32_t i = 0; i < FAR_LOG_BYTES; i++)
        SIM_SetValue(station, FAR_LOG + i, 1, i);
}

} // namespace

void SIM_InitDemo(SIM_Station *station, int number)
{
    SIM_SetValue(station, GAIN, 2, 100);
    SIM_SetValue(station, 0x8102, 1, 1); // byMode
    SIM_SetFloat(station, LIMIT, 800);
    SIM_SetFloat(station, TEMPERATURE_SET, 60);
    SIM_SetValue(station, 0x8110, 4, 123456);                                        // dwPreset
    SIM_SetValue(station, 0x8118, 8, 2024000100ULL + static_cast<uint64_t>(number)); // qwSerial
    SIM_SetValue(station, 0x81C0, 2, static_cast<uint64_t>(number));                 // wStation
    SIM_SetValue(station, TABLE_POINTER, 2, TABLE);
    initArrays(station, number);
    for (uint32_t i = 0; i < 4; i++)
        SIM_SetValue(station, DPP + 2 * i, 2, i); // as after a reset: pages in order
    station->temperature = 20;
    station->tms[TMS_GAIN] = SIM_TmsFloat(1.5);
}

void SIM_UpdateDemo(SIM_Station *station, int number, double seconds, uint32_t address,
                    size_t count)
{
    if (address >= LIVE_END || address + count <= LIVE_BEGIN)
        return;
    const double t = seconds + STATION_PHASE_S * number;
    setIntegers(station, t);
    SIM_SetFloat(station, 0x8018, static_cast<float>(sine(t))); // fSine
    setFlags(station, t, setOutput(station, t));
    setTemperature(station, seconds);
}

void SIM_UpdateDemoTms(SIM_Station *station, int number, double seconds)
{
    const double t = seconds + STATION_PHASE_S * number;
    const double gain = SIM_FromTmsFloat(station->tms[TMS_GAIN]);
    station->tms[TMS_SPEED] = SIM_TmsFloat(1500 * sine(t));
    station->tms[TMS_CURRENT] = SIM_TmsFloat(12.5 + 2 * sine(4 * t));
    station->tms[TMS_CYCLES] = static_cast<uint32_t>(count(t, 10000));
    station->tms[TMS_ANGLE] = static_cast<uint32_t>(count(t, 90) % 360);
    station->tms[TMS_SCALED] = SIM_TmsFloat(gain * sine(t));
}
