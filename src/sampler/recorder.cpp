// Rows are collected in a buffer and handed to the system with every batch. The first fault ends
// the recording: what is on the disk stays, and what came behind it is not pretended to be there.
#include "sampler/recorder.h"

#include "platform/plain_file.h"
#include "platform/system.h"
#include "text/words.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int64_t SECOND_US = 1000000;
constexpr int64_t CLOCK_SET_MS = 2000; // the system's clock was set when it is off by more
constexpr size_t BUFFER_BYTES = 65536;
constexpr size_t NAMES_SHOWN = 3; // of items that failed together

// --- the file ------------------------------------------------------------------------------
// Behind a call that failed: errno says why.
int StopByFault(REC_Recorder *recorder)
{
    const std::string cause = std::strerror(errno);
    std::fclose(recorder->file);
    recorder->file = nullptr;
    recorder->isOpen = false;
    recorder->buffer.clear();
    recorder->problem =
        "Recording stopped: " + recorder->path + ": " + cause + ". What was recorded is kept.";
    return REC_ERR_WRITE;
}

int WriteBuffer(REC_Recorder *recorder)
{
    const size_t size = recorder->buffer.size();
    errno = 0;
    if (std::fwrite(recorder->buffer.data(), 1, size, recorder->file) != size)
        return StopByFault(recorder);
    recorder->buffer.clear();
    return 0;
}

// Counts what came into the buffer; a batch may be longer than the buffer is meant to be.
int AddText(REC_Recorder *recorder, size_t sizeBefore)
{
    recorder->bytes += recorder->buffer.size() - sizeBefore;
    return recorder->buffer.size() >= BUFFER_BYTES ? WriteBuffer(recorder) : 0;
}

int OpenForWriting(REC_Recorder *recorder, bool mayReplace)
{
    // Not through safe saving: what is written has to be there when the program is killed.
    std::string real;
    const std::string &path = recorder->path;
    if (PLT_ResolveFile(path, &real) != 0) {
        recorder->problem = path + " is a folder, device or pipe.";
        return REC_ERR_OPEN;
    }
    if (!mayReplace && PLT_FileExists(path)) {
        recorder->problem = path + " exists.";
        return REC_ERR_EXISTS;
    }
    errno = 0;
    recorder->file = PLT_OpenFile(path, "wb");
    if (recorder->file != nullptr)
        return 0;
    recorder->problem = path + ": " + std::strerror(errno) + ".";
    return REC_ERR_OPEN;
}

int CreateFile(REC_Recorder *recorder, const std::string &path, bool mayReplace, int64_t nowUs)
{
    recorder->path = path;
    recorder->file = recorder->options.file;
    recorder->options.file = nullptr; // another file is the recorder's own
    const int opened = recorder->file == nullptr ? OpenForWriting(recorder, mayReplace) : 0;
    if (opened != 0)
        return opened;
    recorder->isOpen = true;
    recorder->fileUs = nowUs;
    recorder->bytes = 0;
    recorder->isAllFailed = false;
    // In a new file all items are as if they had been good: each reason stands in it once.
    recorder->states.assign(recorder->items.size(), SMP_GOOD);
    recorder->buffer = REC_Head(*recorder);
    ++recorder->files;
    if (AddText(recorder, 0) != 0)
        return REC_ERR_WRITE;
    return REC_Flush(recorder, nowUs);
}

int EndFile(REC_Recorder *recorder)
{
    if (WriteBuffer(recorder) != 0)
        return REC_ERR_WRITE;
    if (std::fflush(recorder->file) != 0)
        return StopByFault(recorder);
    // Some file systems tell of a full disk only at the end.
    recorder->isOpen = false;
    errno = 0;
    std::FILE *file = recorder->file;
    recorder->file = nullptr;
    if (std::fclose(file) == 0)
        return 0;
    recorder->problem = recorder->path + ": " + std::strerror(errno) + ".";
    return REC_ERR_WRITE;
}

// The next file always has a time stamp, so that it replaces none.
int NextFile(REC_Recorder *recorder, int64_t nowUs)
{
    const int result = EndFile(recorder);
    return result != 0 ? result
                       : CreateFile(recorder, REC_StampedPath(*recorder, nowUs), false, nowUs);
}

// --- rows ----------------------------------------------------------------------------------
// Items that have begun to fail, those with the same reason in one line.
int NoteFailures(REC_Recorder *recorder, int64_t timeUs, const SMP_Sample *samples,
                 const SMP_Store &store)
{
    std::vector<uint8_t> isTold(recorder->items.size(), 0);
    for (size_t i = 0; i < recorder->items.size(); ++i) {
        const uint8_t state = samples[i].state;
        if (state == SMP_GOOD || state == recorder->states[i] || isTold[i])
            continue;
        std::string names;
        size_t count = 0;
        for (size_t k = i; k < recorder->items.size(); ++k) {
            if (samples[k].state != state || recorder->states[k] == state)
                continue;
            isTold[k] = 1;
            if (++count <= NAMES_SHOWN)
                names += (count > 1 ? ", " : "") + recorder->items[k].name;
        }
        if (count > NAMES_SHOWN)
            names += " and " + std::to_string(count - NAMES_SHOWN) + " more";
        if (REC_PutNote(recorder, timeUs, "failed", names + ": " + SMP_ReasonText(store, state)) !=
            0)
            return REC_ERR_WRITE;
    }
    for (size_t i = 0; i < recorder->items.size(); ++i)
        recorder->states[i] = samples[i].state;
    return 0;
}

// The system's clock may be set while a recording runs. Times go on by the steady clock; dates
// follow, and a line says so.
int FollowClock(REC_Recorder *recorder, int64_t nowUs)
{
    if (!recorder->options.hasDates)
        return 0;
    const int64_t isMs = recorder->options.utcMs();
    const int64_t offMs = isMs - REC_UtcMsAt(*recorder, nowUs);
    if (std::llabs(offMs) <= CLOCK_SET_MS)
        return 0;
    recorder->originUtcMs += offMs;
    recorder->secondUtc = -1; // the text of a second that is kept is of the old time
    char text[80];
    std::snprintf(text, sizeof text, "the system's clock is %+.1f s off: dates follow it",
                  static_cast<double>(offMs) / 1000);
    return REC_PutNote(recorder, nowUs, "clock", text);
}

} // namespace

int REC_Open(REC_Recorder *recorder, const REC_Options &options, const std::vector<SMP_Item> &items,
             int64_t nowUs)
{
    *recorder = REC_Recorder();
    recorder->options = options;
    recorder->items = items;
    recorder->originUs = nowUs;
    recorder->originUtcMs = recorder->startUtcMs = options.utcMs();
    REC_SetZone(recorder);
    const bool isRotating = options.rotateBytes != 0 || options.rotateMinutes != 0;
    const std::string path =
        isRotating || options.isStamped ? REC_StampedPath(*recorder, nowUs) : options.path;
    return CreateFile(recorder, path, options.mayReplace, nowUs);
}

int REC_PutRow(REC_Recorder *recorder, int64_t timeUs, const SMP_Sample *samples,
               const SMP_Store &store)
{
    if (!recorder->isOpen)
        return 0;
    // By size or age, before the row: no file grows beyond what was asked for by more than one.
    const REC_Options &options = recorder->options;
    const int64_t ageUs = timeUs - recorder->fileUs;
    const int64_t ageMaxUs = int64_t{options.rotateMinutes} * 60 * SECOND_US;
    int result = 0;
    if ((options.rotateBytes != 0 && recorder->bytes >= options.rotateBytes) ||
        (options.rotateMinutes != 0 && ageUs >= ageMaxUs))
        result = NextFile(recorder, timeUs);
    if (result == 0)
        result = NoteFailures(recorder, timeUs, samples, store);
    if (result != 0)
        return result;
    const bool wasAllFailed = recorder->isAllFailed;
    recorder->isAllFailed =
        std::all_of(samples, samples + recorder->items.size(),
                    [](const SMP_Sample &sample) { return sample.state != SMP_GOOD; });
    // Nights without a target leave one empty row, not a million.
    if (recorder->isAllFailed && wasAllFailed)
        return 0;
    std::string &buffer = recorder->buffer;
    const size_t before = buffer.size();
    REC_AppendSeconds(&buffer, timeUs - recorder->originUs);
    if (recorder->options.hasDates) {
        buffer += ',';
        REC_AppendLocalDate(recorder, REC_UtcMsAt(*recorder, timeUs));
    }
    for (size_t i = 0; i < recorder->items.size(); ++i) {
        buffer += ',';
        if (samples[i].state == SMP_GOOD)
            buffer += SMP_NumberText(recorder->items[i], samples[i].bits);
    }
    buffer += "\r\n";
    ++recorder->rows;
    return AddText(recorder, before);
}

int REC_PutNote(REC_Recorder *recorder, int64_t timeUs, const std::string &kind,
                const std::string &text)
{
    if (!recorder->isOpen)
        return 0;
    const size_t before = recorder->buffer.size();
    recorder->buffer += "; ";
    REC_AppendSeconds(&recorder->buffer, timeUs - recorder->originUs);
    recorder->buffer += ", " + kind + ", " + TXT_Visible(text) + "\r\n";
    return AddText(recorder, before);
}

int REC_ChangeItems(REC_Recorder *recorder, const std::vector<SMP_Item> &items, int64_t nowUs)
{
    if (!recorder->isOpen)
        return 0;
    // A file has one head: other columns are another file's.
    const int result = REC_PutNote(recorder, nowUs, "items", "changed: another file goes on");
    recorder->items = items;
    return result != 0 ? result : NextFile(recorder, nowUs);
}

int REC_Flush(REC_Recorder *recorder, int64_t nowUs)
{
    if (!recorder->isOpen)
        return 0;
    if (FollowClock(recorder, nowUs) != 0 || WriteBuffer(recorder) != 0)
        return REC_ERR_WRITE;
    errno = 0;
    return std::fflush(recorder->file) == 0 ? 0 : StopByFault(recorder);
}

int REC_Close(REC_Recorder *recorder)
{
    return recorder->isOpen ? EndFile(recorder) : 0;
}
