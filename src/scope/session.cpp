// The steps go through a table of the two drivers, and keep a copy of what the target was told:
// the fields of a window change while a recording made with older ones is still in the target.
#include "scope/session.h"

#include "comm/sysaddr.h"
#include "scope/scope_v2.h"
#include "scope/scope_v3.h"
#include "settings/settings.h"

#include <cmath>
#include <cstdio>

namespace {

// What differs between the generations, a row each.
struct Driver {
    int (*readControl)(int16_t *value);
    int (*run)();
    int (*force)();
    int (*setPosition)(double percent);
    int (*setSubPeriod)(uint16_t period);
    int (*setMode)(int mode, int slope);
    int (*getCondition)();
    int (*setLevel)(double level, const SCP_Setup &setup);
    int (*setAddress)(int channel, uint32_t address);
    int (*readData)(SX_Progress progress);
};

int SetLevelV2(double level, const SCP_Setup &setup)
{
    // 16 bits: signed or unsigned as the comparison is, whatever channel 1 holds.
    const bool isSigned = setup.slope != 0;
    const double low = isSigned ? -32768 : 0, high = isSigned ? 32767 : 65535;
    if (!(level >= low && level <= high))
        return -3;
    return S2_SetTgrLevel(static_cast<uint16_t>(static_cast<int32_t>(std::floor(level))));
}

int SetLevelV3(double level, const SCP_Setup &setup)
{
    return S3_SetTgrLevel(level, setup.channels[0].type);
}

constexpr Driver DRIVERS[] = {
    {S2_RdCtl, S2_Run, S2_ManTgr, S2_SetTgrPos, S2_SetSubPd, S2_SetTriggerMode, S2_GetTgrCond,
     SetLevelV2, S2_SetChAddr, S2_ReadData},
    {S3_RdCtl, S3_Run, S3_ManTgr, S3_SetTgrPos, S3_SetSubPd, S3_SetTriggerMode, S3_GetTgrCond,
     SetLevelV3, S3_SetChAddr, S3_ReadData},
};

SCP_Setup told;          // to the target, part by part
SCP_Setup ran;           // what the recording there was, or is being, made with
bool hasRun = false;     // `ran` means something
bool isUnderWay = false; // what is told now changes the recording
int runStation = -1;     // -1: none

const Driver &Current()
{
    return DRIVERS[SX_nVer == 3 ? 1 : 0];
}

int ShowStatus(const SCP_View &view, const std::string &text, int result)
{
    if (view.status != nullptr)
        view.status(text);
    return result;
}

// While the target samples, what it is told reaches the recording; behind its end it does not.
void NoteTold()
{
    if (isUnderWay)
        ran = told;
}

void NoteRun()
{
    ran = told;
    hasRun = isUnderWay = true;
    runStation = STATION;
}

} // namespace

int SCP_SlopeOf(int type)
{
    const bool isUnsigned = type == SX_U1 || type == SX_U2 || type == SX_U4;
    return SX_nVer == 3 ? type : isUnsigned ? 0 : 1;
}

int SCP_Init(SCP_Setup *setup, const SCP_View &view)
{
    ShowStatus(view, "Init ...", 0);
    const std::string defaultId = SX_DefaultPrefix(Procesor);
    std::string id = setup->id.empty() ? defaultId : setup->id;
    if (id != defaultId && view.askId != nullptr && !view.askId(defaultId, &id))
        return ShowStatus(view, "Init error (1).", SX_CANCELLED);
    setup->id = id;
    SX_szPrefix = id;
    // The same scope still holds what it was run for; of another one nothing is known.
    hasRun = hasRun && ran.id == id && runStation == STATION;
    isUnderWay = false;
    told = *setup;
    ShowStatus(view, "Init in progress ...", 0);
    // Generation 3 only where nothing of 2 is there: the same text is its block's name then.
    SX_nVer = 2;
    int result = S2_Init();
    if (result == SX_NO_GENERATION) {
        result = S3_Init();
        SX_nVer = result == 0 ? 3 : 2;
    }
    if (result < 0)
        return ShowStatus(view, "Init error (1).", result);
    if (SCP_SetChannels(*setup, view) < 0)
        return -1;
    // Found all the same: the next trigger that is set writes a known condition. Free run has
    // none to read.
    if (Current().getCondition() < 0 && setup->mode != 2)
        ShowStatus(view, "Init error 4: Map of memory?", 0);
    char text[200];
    std::snprintf(text, sizeof text, "Scope '%.80s'. Type: %d channels * %d values",
                  SX_szPrefix.c_str(), SX_nCh, SX_nVz);
    return ShowStatus(view, text, 0);
}

int SCP_SetChannels(const SCP_Setup &setup, const SCP_View &view)
{
    // The drivers go by the types: which slots an X4 channel blocks, what a word is worth.
    char text[80];
    for (size_t i = 0; i < SX_CHANNELS_MAX; ++i) {
        const SCP_ChannelSetup &channel = setup.channels[i];
        SX_anChTyp[i] = channel.type;
        SX_aszChName[i] = channel.place;
    }
    for (int number = 1; number <= SX_nCh; ++number) {
        const SCP_ChannelSetup &channel = setup.channels[static_cast<size_t>(number - 1)];
        if (!channel.isOn || (SX_nVer == 3 && S3_IsChannelBlocked(number)))
            continue;
        const uint32_t address = SCP_ResolvePlace(channel.place);
        if (address == ADDR_NONE) {
            std::snprintf(text, sizeof text, "Error: Channel X%d address unknown.", number);
            return ShowStatus(view, text, -1);
        }
        const int result = Current().setAddress(number, address);
        // Without an instruction to patch, generation 2 samples words and nothing else: the
        // address of a word channel is good all the same.
        const bool isWord = channel.type != SX_I1 && channel.type != SX_U1;
        if (result < 0 && !(SX_nVer == 2 && result == -1 && isWord)) {
            std::snprintf(text, sizeof text, "Error: could not set channel X%d.", number);
            return ShowStatus(view, text, -1);
        }
    }
    told.channels = setup.channels;
    NoteTold();
    return ShowStatus(view, "Channel addresses set.", 0);
}

int SCP_SetTrigger(const SCP_Setup &setup, const SCP_View &view)
{
    if (!SX_isInitDone || Current().setMode(setup.mode, setup.slope) < 0)
        return ShowStatus(view, "Error (trigger level not set/1).", -1);
    // The numbers tell where it broke off: mode (1), level out of range (2), level (3).
    const int result = Current().setLevel(setup.level, setup);
    if (result == -3)
        return ShowStatus(view, "Error (trigger level not set/2).", -1);
    if (result < 0)
        return ShowStatus(view, "Error (trigger level not set/3).", -1);
    if (Current().setPosition(setup.position) < 0)
        return ShowStatus(view, "Error (trigger position not set).", -1);
    told.mode = setup.mode;
    told.slope = setup.slope;
    told.level = setup.level;
    told.position = setup.position;
    NoteTold();
    return ShowStatus(view, "Trigger level set.", 0);
}

int SCP_SetSubPeriod(const SCP_Setup &setup, const SCP_View &view)
{
    const auto period = static_cast<uint16_t>(setup.subPd);
    // A generation 2 scope without the extension keeps every sample: 1 is what it does.
    const bool isFixed = SX_nVer == 2 && !S2_IsXt && period == 1;
    if (!SX_isInitDone || (!isFixed && Current().setSubPeriod(period) < 0))
        return ShowStatus(view, "Error (Sub-sampling not set).", -1);
    SX_wSubPd = period;
    told.subPd = setup.subPd;
    NoteTold();
    return ShowStatus(view, "Sub-sampling set.", 0);
}

int SCP_SetAll(const SCP_Setup &setup, const SCP_View &view)
{
    if (SCP_SetChannels(setup, view) < 0 || SCP_SetTrigger(setup, view) < 0)
        return -1;
    return SCP_SetSubPeriod(setup, view);
}

int SCP_Run(const SCP_View &view)
{
    if (!SX_isInitDone || Current().run() < 0)
        return ShowStatus(view, "Error (run).", -1);
    SX_isSnapped = 0;
    NoteRun();
    return ShowStatus(view, "Run mode.", 0);
}

int SCP_Snap(const SCP_View &view)
{
    if (!SX_isInitDone || Current().force() < 0)
        return ShowStatus(view, "Snap error.", -1);
    SX_isSnapped = 1;
    // Without a run the target starts afresh with what it was told last.
    if (!isUnderWay)
        NoteRun();
    return ShowStatus(view, "Snapped.", 0);
}

int SCP_Upload(const SCP_View &view)
{
    ShowStatus(view, SCP_UPLOADING, 0);
    const int result = SX_isInitDone ? Current().readData(view.progress) : -1;
    switch (result) {
    case 0:
        return ShowStatus(view, "Upload successful.", result);
    case SX_NOT_TRIGGERED:
        return ShowStatus(view, SCP_NO_TRIGGER, result);
    case SX_SAMPLING:
        return ShowStatus(view, "Sampling (retry later).", result);
    case SX_CANCELLED:
        return ShowStatus(view, "Upload cancelled.", result);
    default:
        return ShowStatus(view, "Upload error.", result);
    }
}

SCP_State SCP_GetState()
{
    int16_t control = 0;
    if (!SX_isInitDone || Current().readControl(&control) < 0)
        return SCP_UNKNOWN;
    // The only place where the end of a recording is noticed: what is told from now on is for
    // the next one.
    isUnderWay = isUnderWay && control != 0;
    return control < 0 ? SCP_ARMED : control > 0 ? SCP_TRIGGERED : SCP_COMPLETE;
}

const SCP_Setup &SCP_GetRunSetup()
{
    return hasRun ? ran : told;
}
