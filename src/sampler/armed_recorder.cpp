// Rows go through the triggers first, then to the file. Between two files of one recording rows go
// by and are not kept, but triggers see them all.
#include "sampler/armed_recorder.h"

#include <algorithm>

namespace {

bool IsStartedByTrigger(const REC_ArmedRecorder &recorder)
{
    return std::any_of(
        recorder.triggers.begin(), recorder.triggers.end(),
        [](const SMP_Trigger &trigger) { return trigger.action == SMP_TRIGGER_START; });
}

void Tell(const REC_ArmedRecorder &recorder, const std::string &text)
{
    if (recorder.listener.message != nullptr)
        recorder.listener.message(recorder.listener.context, text);
}

// A recording that cannot go on has ended.
void NoticeFault(REC_ArmedRecorder *recorder)
{
    if (!recorder->isOn || recorder->file.isOpen || recorder->file.problem.empty())
        return;
    recorder->isOn = false;
    Tell(*recorder, recorder->file.problem);
}

void StartByTrigger(REC_ArmedRecorder *recorder, const SMP_Trigger &trigger,
                    const std::vector<SMP_Item> &items, int64_t timeUs)
{
    if (!recorder->isOn || recorder->file.isOpen)
        return;
    // A second file must not overwrite the first.
    recorder->options.isStamped = recorder->options.isStamped || recorder->hasBegun;
    recorder->hasBegun = true;
    (void)REC_Open(&recorder->file, recorder->options, items, timeUs);
    NoticeFault(recorder);
    if (recorder->file.isOpen)
        Tell(*recorder, "Recording " + recorder->file.path + " (" + trigger.text + ").");
    REC_PutNote(&recorder->file, timeUs, "trigger", trigger.text);
}

void StopByTrigger(REC_ArmedRecorder *recorder, const SMP_Trigger &trigger, int64_t timeUs)
{
    if (!recorder->file.isOpen)
        return;
    // Before the file is closed: a closed one takes no note.
    REC_PutNote(&recorder->file, timeUs, "trigger", trigger.text);
    Tell(*recorder, "Recorded " + recorder->file.path + " (" + trigger.text + ").");
    // Where no trigger starts a recording, nothing would ever go on.
    if (REC_Close(&recorder->file) != 0)
        NoticeFault(recorder);
    else if (!IsStartedByTrigger(*recorder))
        recorder->isOn = false;
}

void Fire(REC_ArmedRecorder *recorder, const SMP_Trigger &trigger,
          const std::vector<SMP_Item> &items, int64_t timeUs)
{
    const REC_ArmedListener &listener = recorder->listener;
    if (trigger.action == SMP_TRIGGER_START)
        StartByTrigger(recorder, trigger, items, timeUs);
    if (trigger.action == SMP_TRIGGER_STOP)
        StopByTrigger(recorder, trigger, timeUs);
    if (trigger.action == SMP_TRIGGER_BEEP && listener.beep != nullptr)
        listener.beep(listener.context);
    if (trigger.action != SMP_TRIGGER_MARK)
        return;
    ++recorder->markers;
    REC_PutNote(&recorder->file, timeUs, "marker", trigger.text);
    if (listener.marker != nullptr)
        listener.marker(listener.context, timeUs, trigger.text);
}

} // namespace

int REC_BeginArmed(REC_ArmedRecorder *recorder, const REC_Options &options,
                   const std::vector<SMP_Item> &items, int64_t nowUs)
{
    recorder->options = options;
    recorder->rows = recorder->markers = 0;
    recorder->file = REC_Recorder();
    // One that waits has no file yet; it is made when there is something to write.
    recorder->hasBegun = !IsStartedByTrigger(*recorder);
    const int result = recorder->hasBegun ? REC_Open(&recorder->file, options, items, nowUs) : 0;
    recorder->isOn = result == 0;
    return result;
}

void REC_PutArmedRow(REC_ArmedRecorder *recorder, const SMP_Store &store, const SMP_Row &row)
{
    // What starts a recording comes before its row, what stops it behind.
    std::vector<size_t> behind;
    for (size_t i = 0; i < recorder->triggers.size(); ++i) {
        SMP_Trigger &trigger = recorder->triggers[i];
        if (!SMP_FeedTrigger(&trigger, store.items, row.samples))
            continue;
        if (trigger.action == SMP_TRIGGER_STOP)
            behind.push_back(i);
        else
            Fire(recorder, trigger, store.items, row.timeUs);
    }
    recorder->rows += recorder->file.isOpen;
    REC_PutRow(&recorder->file, row.timeUs, row.samples, store);
    NoticeFault(recorder);
    for (const size_t i : behind)
        Fire(recorder, recorder->triggers[i], store.items, row.timeUs);
}

int REC_EndArmed(REC_ArmedRecorder *recorder)
{
    recorder->isOn = false;
    return REC_Close(&recorder->file);
}
