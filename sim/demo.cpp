#include "demo.h"

#include "datalog.h"
#include "terminal.h"

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
constexpr uint32_t DRIVE_BEGIN = 0x8200;
constexpr uint32_t DRIVE_END = 0x8248;
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
constexpr uint32_t GAMMA = 0x30000;
constexpr uint32_t GAMMA_POINTS = 16;
constexpr uint32_t CORE_BEGIN = 0xFC00, CORE_END = 0x10000; // registers

// Set-points and the copies of them that a restart would take; SAV_wDiffers counts those
// that are no copies any more.
struct Saved {
    uint32_t source, copy;
    size_t size;
};
const Saved savedValues[] = {{GAIN, 0x8300, 2}, {LIMIT, 0x8304, 4}, {OFFSET, 0x8308, 2}};
constexpr uint32_t SAVED_DIFFER = 0x830A;

// DRV_stParams and its members, see the type map of the examples.
constexpr uint32_t PARAMS = 0x8222;
constexpr uint32_t PARAMS_MODE = PARAMS + 4;
constexpr uint32_t PARAMS_RAMP = PARAMS + 6; // two points of x and y
constexpr uint32_t PARAMS_SCALE = PARAMS + 14;
constexpr uint32_t PARAMS_LIMITS = PARAMS + 18; // low x, y, high x, y
constexpr uint32_t PARAMS_PEAK = PARAMS + 26;

// What the project information of an F283xx names: bytes, two for each of its words.
constexpr uint32_t F28_BEGIN = 0x18200;
constexpr uint32_t F28_SPEED_REF = F28_BEGIN + 2;
constexpr uint32_t F28_TORQUE = F28_BEGIN + 8;
constexpr uint32_t F28_MOTORS = F28_BEGIN + 0x10; // two, MOTOR_SIZE apart
constexpr uint32_t F28_TRACE = F28_BEGIN + 0x30;
constexpr uint32_t F28_TRACE_POINTS = 64;
constexpr uint32_t F28_PHASES = F28_TRACE + 2 * F28_TRACE_POINTS; // three words
constexpr uint32_t F28_BUS = F28_PHASES + 8;                      // float
constexpr uint32_t F28_END = F28_BUS + 4;
constexpr uint32_t MOTOR_SIZE = 16;

enum TmsWord : uint32_t {
    TMS_SPEED = 0x400,
    TMS_CURRENT,
    TMS_CYCLES,
    TMS_ANGLE,
    TMS_GAIN,
    TMS_SCALED
};

double Sine(double t)
{
    return std::sin(2 * PI * t / SINE_PERIOD_S);
}

// Between -1 and 1, back and forth once a period.
double Triangle(double t, double period)
{
    const double x = std::fmod(t, period) / period;
    return x < 0.5 ? 4 * x - 1 : 3 - 4 * x;
}

uint64_t Whole(double value)
{
    return static_cast<uint64_t>(std::llround(value));
}

uint64_t Count(double t, double perSecond)
{
    return static_cast<uint64_t>(t * perSecond);
}

// A distorted 50 Hz, of 1000: what only a scope in the target can see.
double Mains(double t, int phase)
{
    const double angle = 2 * PI * (50 * t - phase / 3.0);
    return 900 * std::sin(angle) + 100 * std::sin(3 * angle);
}

// Live integers: where they stand and what they show at time t.
struct LiveInteger {
    uint32_t address;
    size_t size;
    uint64_t (*value)(double t);
};

const LiveInteger liveIntegers[] = {
    {0x8000, 1, [](double t) { return Count(t, 100); }},                               // byTick
    {0x8002, 2, [](double t) { return Count(t, 1000); }},                              // wCount
    {0x8004, 4, [](double t) { return Count(t, 1000); }},                              // dwCount
    {0x8008, 8, [](double t) { return PAST_32_BITS + Count(t, 1e6); }},                // qwCount
    {0x8010, 2, [](double t) { return Whole(1000 * Sine(t)); }},                       // nSine
    {0x8012, 2, [](double t) { return Count(t, 500) % 10000; }},                       // wRamp
    {0x8014, 4, [](double t) { return Whole(100000 + 50000 * Sine(t)); }},             // dwSine
    {0x8020, 4, [](double t) { return 1501 + Count(t, 1); }},                          // dwRunTime
    {0x8024, 4, [](double t) { return Whole(100000 * Triangle(t, 20)); }},             // nnPosition
    {0x8028, 8, [](double t) { return Whole(-5e12 * Sine(t)); }},                      // qnEnergy
    {0x8030, 1, [](double t) { return Whole(50 * Triangle(t, 8)); }},                  // cTrim
    {0x8032, 2, [](double t) { return Count(t, 137); }},                               // wPulses
    {0x8036, 2, [](double t) { return Whole(Mains(t, 0)); }},                          // nFast
    {0x8038, 2, [](double t) { return Count(t, 200) % 4 == 0 ? uint64_t{3000} : 0; }}, // wPwm
};

const LiveInteger driveIntegers[] = {
    {0x8200, 2, [](double t) { return Count(t, 0.5) % 4; }},             // DRV_wState
    {0x8204, 2, [](double t) { return Whole(1500 * Triangle(t, 20)); }}, // DRV_nSpeedRef
    {0x8210, 2, [](double t) { return Count(t, 25); }},                  // DRV_nStepCount
    {0x821C, 4, [](double t) { return Count(t, 1); }},                   // DRV_dwOnTime
    {0x8220, 1, [](double t) { return Count(t, 4) % 6; }},               // DRV_byPhase
    {0x8240, 2, [](double t) { return Count(t, 40); }},                  // COM_wFrames
    {0x8244, 4, [](double t) { return Count(t, 640); }},                 // COM_dwBytes
};

const LiveInteger f28Integers[] = {
    {F28_BEGIN, 2, [](double t) { return Count(t, 0.5) % 4; }},       // _wState
    {F28_BEGIN + 4, 4, [](double t) { return Count(t, 1000); }},      // _dwTime
    {F28_PHASES, 2, [](double t) { return Whole(Mains(t, 0)); }},     // _nPhaseA
    {F28_PHASES + 2, 2, [](double t) { return Whole(Mains(t, 1)); }}, // _nPhaseB
    {F28_PHASES + 4, 2, [](double t) { return Whole(Mains(t, 2)); }}, // _nPhaseC
};

template <size_t N>
void SetIntegers(SIM_Station *station, const LiveInteger (&integers)[N], double t)
{
    for (const LiveInteger &live : integers)
        SIM_SetValue(station, live.address, live.size, live.value(t));
}

// The integers, and in DRV_stParams two points of a ramp that run round a circle; the peak
// is the highest of each axis.
void SetDrive(SIM_Station *station, double t)
{
    SetIntegers(station, driveIntegers, t);
    int16_t peak[2] = {0, 0};
    for (uint32_t point = 0; point < 2; point++) {
        const double angle = t + point * SINE_PERIOD_S / 3;
        const double place[2] = {800 * Sine(angle), 800 * Sine(angle + SINE_PERIOD_S / 4)};
        for (uint32_t axis = 0; axis < 2; axis++) {
            const auto value = static_cast<int16_t>(std::lround(place[axis]));
            SIM_SetValue(station, PARAMS_RAMP + 4 * point + 2 * axis, 2,
                         static_cast<uint64_t>(static_cast<int64_t>(value)));
            peak[axis] = std::max(peak[axis], value);
        }
    }
    SIM_SetValue(station, PARAMS_PEAK, 2, static_cast<uint64_t>(peak[0]));
    SIM_SetValue(station, PARAMS_PEAK + 2, 2, static_cast<uint64_t>(peak[1]));
}

// Speed, flags and current of each motor; its controller's set-points stay as written.
void SetF28(SIM_Station *station, double t)
{
    SetIntegers(station, f28Integers, t);
    const auto wanted = static_cast<int16_t>(SIM_GetValue(*station, F28_SPEED_REF, 2));
    for (uint32_t i = 0; i < 2; i++) {
        const uint32_t motor = F28_MOTORS + i * MOTOR_SIZE;
        const double load = Sine(t + i * SINE_PERIOD_S / 2);
        SIM_SetValue(station, motor, 2, Whole(wanted * (1 + 0.02 * load)));
        SIM_SetValue(station, motor + 2, 2, load > 0 ? 3 : 1);
        SIM_SetFloat(station, motor + 4, static_cast<float>(8 + 2 * load));
    }
    SIM_SetFloat(station, F28_TORQUE, static_cast<float>(12 * Sine(t)));
    SIM_SetFloat(station, F28_BUS, static_cast<float>(560 + 0.01 * std::fabs(Mains(t, 0))));
    for (uint32_t i = 0; i < F28_TRACE_POINTS; i++)
        SIM_SetValue(station, F28_TRACE + 2 * i, 2,
                     Whole(500 + 500 * Sine(t + i * SINE_PERIOD_S / F28_TRACE_POINTS)));
}

// nOutput: the sine times the gain in percent plus the offset, held within the limit.
// Returns whether the limit holds it.
bool SetOutput(SIM_Station *station, double t)
{
    const double gain = static_cast<double>(SIM_GetValue(*station, GAIN, 2)) / 100;
    const auto offset = static_cast<int16_t>(SIM_GetValue(*station, OFFSET, 2));
    double limit = std::fabs(static_cast<double>(SIM_GetFloat(*station, LIMIT)));
    if (!(limit < INT16_MAX)) // also when somebody wrote bits that are no number
        limit = INT16_MAX;
    const double wanted = 1000 * Sine(t) * gain + offset;
    SIM_SetValue(station, OUTPUT, 2, Whole(std::clamp(wanted, -limit, limit)));
    return std::fabs(wanted) > limit;
}

void SetFlags(SIM_Station *station, double t, bool limited)
{
    uint64_t flags = 1ULL << (4 + Count(t, 4) % 3); // a light runs over bits 4..6
    flags |= Count(t, 2) & 1;                       // blinks once a second
    flags |= (Count(t, 0.5) & 1) << 1;              // and once in four seconds
    flags |= (Sine(t) > 0 ? 1ULL : 0ULL) << 2;
    flags |= (limited ? 1ULL : 0ULL) << 7;
    SIM_SetValue(station, FLAGS, 1, flags);
}

// The temperature creeps towards its set-point, so a change stays visible for a while.
void SetTemperature(SIM_Station *station, double seconds)
{
    const double target = static_cast<double>(SIM_GetFloat(*station, TEMPERATURE_SET));
    // A scope samples times that have passed already.
    if (std::isfinite(target) && seconds > station->updated) {
        const double share = 1 - std::exp((station->updated - seconds) / TEMPERATURE_LAG_S);
        station->temperature += (target - station->temperature) * share;
    }
    station->updated = std::max(station->updated, seconds);
    SIM_SetFloat(station, TEMPERATURE, static_cast<float>(station->temperature));
}

void InitArrays(SIM_Station *station, int number)
{
    char name[17];
    snprintf(name, sizeof name, "VIREO2 DEMO %02d", number);
    SIM_WriteMemory(station, NAME, name, strlen(name) + 1);
    for (uint32_t i = 0; i < TABLE_POINTS; i++)
        SIM_SetValue(station, TABLE + 2 * i, 2, i * i);
    for (uint32_t i = 0; i < CURVE_POINTS; i++)
        SIM_SetFloat(station, CURVE + 4 * i, 0.25F * static_cast<float>(i));
    for (uint32_t i = 0; i < GAMMA_POINTS; i++)
        SIM_SetFloat(station, GAMMA + 4 * i, std::pow(static_cast<float>(i) / 15, 2.2F));
    for (uint32_t i = 0; i < FAR_LOG_BYTES; i++)
        SIM_SetValue(station, FAR_LOG + i, 1, i);
}

void InitStructures(SIM_Station *station)
{
    SIM_SetValue(station, PARAMS, 2, 250);    // nKp
    SIM_SetValue(station, PARAMS + 2, 2, 30); // nKi
    SIM_SetValue(station, PARAMS_MODE, 2, 0x0102);
    SIM_SetFloat(station, PARAMS_SCALE, 0.5F);
    const int limits[] = {-1000, -1000, 1000, 1000};
    for (uint32_t i = 0; i < 4; i++)
        SIM_SetValue(station, PARAMS_LIMITS + 2 * i, 2,
                     static_cast<uint64_t>(static_cast<int64_t>(limits[i])));
    SIM_SetValue(station, F28_SPEED_REF, 2, 1500);
    for (uint32_t i = 0; i < 2; i++) {
        const uint32_t controller = F28_MOTORS + i * MOTOR_SIZE + 8;
        SIM_SetValue(station, controller, 2, 120 + i);    // nKp
        SIM_SetValue(station, controller + 2, 2, 15 + i); // nKi
        SIM_SetValue(station, controller + 4, 4, 100000); // unLimit
    }
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
    InitArrays(station, number);
    InitStructures(station);
    SIM_SetValue(station, 0x8206, 2, 1500); // DRV_nSpeedMax
    SIM_SetFloat(station, 0x820C, 12.5F);   // DRV_fCurrentMax
    for (const Saved &saved : savedValues)
        SIM_SetValue(station, saved.copy, saved.size,
                     SIM_GetValue(*station, saved.source, saved.size));
    SIM_InitDataLogs(station, number);
    SIM_InitDemoCore(station);
    SIM_InitTerminals(station, number);
    station->temperature = 20;
    station->tms[TMS_GAIN] = SIM_TmsFloat(1.5);
}

void SIM_UpdateDemo(SIM_Station *station, int number, double seconds, uint32_t address,
                    size_t count)
{
    const double t = seconds + STATION_PHASE_S * number;
    SIM_UpdateDataLogs(station, number, seconds, address, count);
    if (SIM_Touches(address, count, SAVED_DIFFER, SAVED_DIFFER + 2)) {
        uint64_t differ = 0;
        for (const Saved &saved : savedValues)
            differ += SIM_GetValue(*station, saved.source, saved.size) !=
                      SIM_GetValue(*station, saved.copy, saved.size);
        SIM_SetValue(station, SAVED_DIFFER, 2, differ);
    }
    if (SIM_Touches(address, count, F28_BEGIN, F28_END))
        SetF28(station, t);
    if (SIM_Touches(address, count, DRIVE_BEGIN, DRIVE_END))
        SetDrive(station, t);
    if (SIM_Touches(address, count, CORE_BEGIN, CORE_END))
        SIM_UpdateDemoCore(station, t);
    if (!SIM_Touches(address, count, LIVE_BEGIN, LIVE_END))
        return;
    SetIntegers(station, liveIntegers, t);
    // One period of the sine, which travels through the array.
    for (uint32_t i = 0; i < WAVE_POINTS; i++) {
        const double shifted = t + i * SINE_PERIOD_S / WAVE_POINTS;
        SIM_SetValue(station, WAVE + 2 * i, 2, Whole(500 + 500 * Sine(shifted)));
    }
    SIM_SetFloat(station, 0x8018, static_cast<float>(Sine(t)));            // fSine
    SIM_SetFloat(station, 0x803C, static_cast<float>(Mains(t, 0) / 1000)); // fFast
    SetFlags(station, t, SetOutput(station, t));
    SetTemperature(station, seconds);
}

void SIM_UpdateDemoTms(SIM_Station *station, int number, double seconds)
{
    const double t = seconds + STATION_PHASE_S * number;
    const double gain = SIM_FromTmsFloat(station->tms[TMS_GAIN]);
    station->tms[TMS_SPEED] = SIM_TmsFloat(1500 * Sine(t));
    station->tms[TMS_CURRENT] = SIM_TmsFloat(12.5 + 2 * Sine(4 * t));
    station->tms[TMS_CYCLES] = static_cast<uint32_t>(Count(t, 10000));
    station->tms[TMS_ANGLE] = static_cast<uint32_t>(Count(t, 90) % 360);
    station->tms[TMS_SCALED] = SIM_TmsFloat(gain * Sine(t));
}
