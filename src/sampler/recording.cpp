// Once through the file, line by line: comments and head say what the columns are, rows go into the
// picture. Nothing of a row is kept but where its stretch begins.
#include "sampler/recording.h"

#include "platform/plain_file.h"
#include "platform/system.h"
#include "sampler/recording_rows.h"
#include "text/words.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr const char *OUR_FIRST_LINES[] = {"; Vireo2 recording", "; Vireo2 scope"};
constexpr int64_t PROGRESS_BYTES = 4 << 20; // between two looks whether somebody cancels

void AddLine(const REC_FileLine &line, REC_RowPass *pass, REC_Recording *recording)
{
    double time = 0;
    const bool isCut = REC_IsCutRow(line, *recording);
    recording->isCut = recording->isCut || isCut;
    if (!pass->hasForm && !line.isTooLong)
        pass->hasForm = REC_ReadTableForm(REC_TextOf(line), &recording->table);
    if (isCut || line.isTooLong || !pass->hasForm || !REC_ReadRow(line, *recording, pass, &time)) {
        recording->badLines += !isCut;
        return;
    }
    // Dates and clocks are shown from the first row on: a picture of seconds since 1970 helps
    // nobody.
    if (recording->rows == 0 && recording->table.form != REC_TIME_NUMBER) {
        const REC_CellPiece cell = pass->cells[recording->table.timeCell];
        recording->origin = time;
        if (recording->start.empty())
            recording->start = TXT_Visible(std::string(cell.begin, cell.end));
    }
    const REC_RowClock before = pass->clock;
    REC_AddRowToPicture(recording, line.offset, REC_ShownTime(*recording, time, &pass->clock),
                        pass->values, before);
}

// The first line may carry the mark of UTF-8 and says whether the recording is one of ours.
void ReadFirstLine(REC_FileLine *line, REC_Recording *recording)
{
    constexpr char UTF8_MARK[] = "\xEF\xBB\xBF";
    constexpr int MARK_BYTES = 3;
    if (line->end - line->begin >= MARK_BYTES &&
        std::memcmp(line->begin, UTF8_MARK, MARK_BYTES) == 0) {
        line->begin += MARK_BYTES;
        line->offset += MARK_BYTES; // a row is read again from here, where nobody looks for a mark
    }
    for (const char *ours : OUR_FIRST_LINES)
        if (REC_TextOf(*line).compare(0, std::strlen(ours), ours) == 0)
            recording->isOurs = true;
}

// From recording->end to the end of the file, which has `size` bytes.
int GoThrough(std::FILE *file, int64_t size, REC_Recording *recording, std::string *problem,
              REC_ReadProgress progress, void *context)
{
    REC_LineReader reader;
    REC_FileLine line;
    REC_RowPass pass;
    pass.hasTable = !recording->columns.empty();
    pass.hasForm = recording->rows > 0;
    bool isFirst = recording->end == 0;
    int64_t told = recording->end;
    if (!REC_StartLines(&reader, file, recording->end)) {
        *problem = "it cannot be read";
        return REC_READ_ERR_OPEN;
    }
    while (REC_NextLine(&reader, REC_LINE_MAX, &line)) {
        if (isFirst)
            ReadFirstLine(&line, recording);
        isFirst = false;
        // A row of ours that is still being written is read when it is whole.
        recording->end = REC_IsCutRow(line, *recording)
                             ? line.offset
                             : line.offset + static_cast<int64_t>(line.end - line.begin);
        if (progress != nullptr && recording->end - told >= PROGRESS_BYTES) {
            told = recording->end;
            if (!progress(context, static_cast<int>(std::min<int64_t>(100 * told / size, 100)))) {
                *problem = "cancelled";
                return REC_READ_ERR_CANCELLED;
            }
        }
        if (line.begin == line.end)
            continue;
        if (REC_IsComment(line)) {
            REC_ReadComment(line, recording, &pass);
            continue;
        }
        if (!pass.hasTable) {
            pass.hasTable = true;
            const int result = REC_ReadHead(line, pass, recording, problem);
            if (result != 0)
                return result;
            if (recording->table.hasNames) // else this line is a row already
                continue;
        }
        AddLine(line, &pass, recording);
    }
    // One of ours may have been ended before its first row.
    if (recording->rows > 0 || (recording->isOurs && pass.hasTable))
        return 0;
    *problem = pass.hasTable ? "it has no rows" : "it is no table";
    return REC_READ_ERR_NO_TABLE;
}

} // namespace

int REC_OpenRecording(const std::string &path, REC_Recording *recording, std::string *problem,
                      REC_ReadProgress progress, void *context)
{
    std::FILE *file = nullptr;
    int64_t size = 0;
    const int result = PLT_OpenPlainFile(path, &file, &size);
    if (result != 0) {
        *problem = path + ": " + PLT_FileErrorText(result) + ".";
        return REC_READ_ERR_OPEN;
    }
    // Into one of its own: a file that is refused leaves what is shown.
    REC_Recording opened;
    opened.path = path;
    const int read =
        GoThrough(file, std::max<int64_t>(size, 1), &opened, problem, progress, context);
    std::fclose(file);
    if (read != 0) {
        *problem = path + ": " + *problem + ".";
        return read;
    }
    *recording = std::move(opened);
    return 0;
}

int REC_FollowRecording(REC_Recording *recording)
{
    if (!recording->isOurs || recording->table.form != REC_TIME_NUMBER)
        return REC_READ_ERR_NO_TABLE;
    std::FILE *file = nullptr;
    int64_t size = 0;
    std::string problem;
    if (PLT_OpenPlainFile(recording->path, &file, &size) != 0)
        return REC_READ_ERR_OPEN;
    recording->isCut = false; // what was cut then may be whole now
    const int result =
        GoThrough(file, std::max<int64_t>(size, 1), recording, &problem, nullptr, nullptr);
    std::fclose(file);
    return result;
}
