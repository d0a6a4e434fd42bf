// The library's face: starts and stops the target and reaches into it from other threads.
#include "sim.h"

#include "demo.h"
#include "scope.h"
#include "target.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

namespace {

bool OpenLog(SIM_Target *target, std::string *error)
{
    if (target->options.log.empty())
        return true;
    target->log = target->options.log == "-" ? stdout : fopen(target->options.log.c_str(), "w");
    if (!target->log)
        *error = "Cannot write the log " + target->options.log + ": " + strerror(errno);
    return target->log != nullptr;
}

// Standard output is not the target's to close.
void CloseLog(SIM_Target *target)
{
    if (target->log && target->log != stdout)
        fclose(target->log);
}

bool LoadFlash(SIM_Target *target, std::string *error)
{
    const SIM_Options &options = target->options;
    if (options.flash.empty())
        return true;
    std::ifstream file(options.flash, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad() || bytes.empty())
        *error = "Cannot read " + options.flash;
    else if (options.flashAddress + bytes.size() > SIM_MEMORY_SIZE)
        *error = options.flash + " reaches beyond the memory";
    else // whichever station is asked has it
        for (SIM_Station &station : target->stations)
            SIM_WriteMemory(&station, options.flashAddress, bytes.data(), bytes.size());
    return error->empty();
}

void SetLoaderFaults(SIM_Target *target, const SIM_Options &options)
{
    target->loader.faults.drop = options.drop;
    target->loader.faults.corrupt = options.corrupt;
    target->loader.faults.silentAfter = options.silentAfter;
}

SIM_Station *FindStation(SIM_Target *target, int station)
{
    return station >= 0 && station < SIM_STATIONS ? &target->stations[station] : nullptr;
}

} // namespace

SIM_Target *SIM_Start(const SIM_Options &options, std::string *error)
{
    std::string ignored;
    auto *target = new SIM_Target;
    target->options = options;
    target->answersLeft = options.silentAfter;
    target->random.seed(options.seed);
    target->startNs = SIM_NowNs();
    // The demo first: a file for the flash lies over it.
    for (int i = 0; options.demo && i < SIM_STATIONS; i++) {
        SIM_InitDemo(&target->stations[i], i);
        SIM_InitScopes(&target->stations[i], options.scopes);
    }
    if (options.loader) {
        SIM_InitLoader(&target->loader, options.seed);
        target->loader.faults.eraseZeros = options.eraseSeconds; // a sign of life each second
        SetLoaderFaults(target, options);
    }
    error = error ? error : &ignored; // every step below has a place for its message
    error->clear();
    if (!LoadFlash(target, error) || !OpenLog(target, error) ||
        !SIM_OpenLine(&target->line, options.baud, options.tcp, options.link, error)) {
        CloseLog(target);
        delete target;
        return nullptr;
    }
    // Last: from here on the line is the thread's alone, and the rest stands behind the lock.
    target->thread = std::thread(options.loader   ? SIM_ServeLoader
                                 : options.modbus ? SIM_ServeModbus
                                                  : SIM_Serve,
                                 target);
    return target;
}

bool SIM_Stop(SIM_Target *target, std::string *error)
{
    if (!target)
        return true;
    // The image is written when no thread can change it any more.
    SIM_WakeLine(&target->line);
    target->thread.join();
    SIM_CloseLine(&target->line);
    CloseLog(target);
    std::string ignored;
    const bool saved = !target->options.loader || target->options.flashImage.empty() ||
                       SIM_SaveFlash(target, error ? error : &ignored);
    delete target;
    return saved;
}

const char *SIM_DevicePath(const SIM_Target *target)
{
    return target->line.device.c_str();
}

void SIM_Poke(SIM_Target *target, int station, uint32_t address, const void *bytes, size_t count)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    if (SIM_Station *found = FindStation(target, station))
        SIM_WriteMemory(found, address, bytes, count);
}

void SIM_Peek(SIM_Target *target, int station, uint32_t address, void *bytes, size_t count)
{
    memset(bytes, 0, count);
    const std::lock_guard<std::mutex> guard(target->lock);
    SIM_Station *found = FindStation(target, station);
    // As a request would find it: live values are of this moment.
    if (found && target->options.demo)
        SIM_UpdateDemo(found, station, SIM_Elapsed(target), address, count);
    if (found)
        SIM_ReadMemory(*found, address, bytes, count);
}

void SIM_PokeTMS(SIM_Target *target, int station, uint32_t wordAddress, uint32_t value)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    if (SIM_Station *found = FindStation(target, station))
        found->tms[wordAddress] = value;
}

uint32_t SIM_PeekTMS(SIM_Target *target, int station, uint32_t wordAddress)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    SIM_Station *found = FindStation(target, station);
    if (!found)
        return 0;
    if (target->options.demo)
        SIM_UpdateDemoTms(found, station, SIM_Elapsed(target));
    // Looking makes no word: those that nobody wrote stay absent.
    const auto word = found->tms.find(wordAddress);
    return word == found->tms.end() ? 0 : word->second;
}

void SIM_SetFaults(SIM_Target *target, const SIM_Options &options)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    // Not what the line was opened with: that is the thread's since then.
    target->options.refuse = options.refuse;
    target->options.drop = options.drop;
    target->options.corrupt = options.corrupt;
    target->options.repeat = options.repeat;
    target->options.delayMs = options.delayMs;
    target->options.echo = options.echo;
    target->options.mailbox = options.mailbox;
    target->options.stations = options.stations;
    target->answersLeft = options.silentAfter;
    if (target->options.loader)
        SetLoaderFaults(target, options);
}

void SIM_SetErrorCode(SIM_Target *target, int command, int code)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    if (command >= 0 && command < SIM_COMMANDS)
        target->errorCodes[command] = code;
}

void SIM_WithLoader(SIM_Target *target, const std::function<void(SIM_Loader *)> &change)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    change(&target->loader);
}

SIM_Counters SIM_GetCounters(const SIM_Target *target)
{
    const std::lock_guard<std::mutex> guard(target->lock);
    return target->counters;
}
