// What a user is told about a job: the one home of these sentences for window, console and
// console program. Each says what is so, and what can be done about it.
#include "loader/program.h"
#include "text/words.h"

#include <cstdio>

namespace {

constexpr const char *STEP_TEXTS[LDR_STEPS] = {"File", "Target", "Erase", "Program", "Verify"};

std::string FormatDifference(const LDR_Difference &difference)
{
    return TXT_Format("0x%06X should hold %02X and holds %02X", difference.address,
                      static_cast<unsigned>(difference.wanted),
                      static_cast<unsigned>(difference.found));
}

// How much of the file an interrupted run has left in the flash, and what can be done now.
std::string FormatPart(const LDR_Job &job)
{
    if (job.isStrayPossible)
        return "The flash holds a part of the file, and a block damaged on its way may stand at a"
               " wrong address. Going on looks for it; unless it is found where it belongs, the"
               " flash must be erased.";
    // What was read back counts; what was only acknowledged stands in for it where nobody reads.
    const size_t count = job.verified > 0 ? job.verified : job.written;
    if (count == 0)
        return "Nothing of the file is complete in the flash yet. Programming can go on.";
    const HEX_Record &block = job.plan[count - 1];
    return TXT_Format(
        "The flash holds the file up to 0x%06X, %s. What lies behind may be there in part."
        " Programming can go on from there.",
        block.address + block.length - 1u, job.verified > 0 ? LDR_EQUAL : "not read back");
}

} // namespace

std::string LDR_GetResultText(const LDR_Job &job)
{
    const auto at = static_cast<unsigned>(job.causeAddress);
    switch (job.result) {
    case LDR_OK:
        // Who did without reading back is told so each time: written is not yet programmed.
        return TXT_Format(job.isReadBack
                              ? "Done: %u bytes in the flash, read back and equal to the file."
                              : "Done: %u bytes written, not read back.",
                          static_cast<unsigned>(job.file.data.size()));
    case LDR_ERR_OPEN:
        return "The file cannot be read.";
    case LDR_ERR_PROBLEMS:
        return TXT_Format("The file cannot be programmed: problems found: %u.",
                          static_cast<unsigned>(job.file.fatal));
    case LDR_ERR_PORT:
        return "The port cannot be used: " + job.cause + ".";
    case LDR_ERR_TARGET:
        return "No boot-strap loader answers: " + job.cause + ".";
    case LDR_ERR_ERASE:
        return "Erasing failed: " + job.cause + ".";
    case LDR_ERR_WRITE:
        return TXT_Format("The block at 0x%06X was not written: ", at) + job.cause + ".";
    case LDR_ERR_READ:
        return TXT_Format("The flash could not be read at 0x%06X: ", at) + job.cause + ".";
    case LDR_ERR_DIFFERENT:
        return "The flash differs from the file: " + FormatDifference(job.difference) + ".";
    case LDR_ERR_NEEDS_ERASE:
        return "The flash must be erased first: " + FormatDifference(job.difference) + ".";
    case LDR_ERR_CANCELLED:
        return "Cancelled.";
    case LDR_ERR_CHANGED:
        return "The file has changed, or is gone, since it was checked.";
    default:
        return TXT_Format("Error %d.", job.result);
    }
}

std::string LDR_GetFlashText(const LDR_Job &job)
{
    switch (job.flash) {
    case LDR_FLASH_UNTOUCHED:
        return "The flash was not changed.";
    case LDR_FLASH_ERASING:
        // Nobody knows: the target may have gone on after the line broke.
        return "The flash may be erased in part: erase it again.";
    case LDR_FLASH_ERASED:
        return "The flash is erased and empty. Programming can go on.";
    case LDR_FLASH_PARTLY:
        return FormatPart(job);
    case LDR_FLASH_WHOLE:
        // Somebody has saved another file over it meanwhile: the flash is whole, but of the old
        // one.
        return job.result == LDR_ERR_CHANGED
                   ? "The flash holds the file as it was when it was checked."
                   : "The flash holds the whole file.";
    default:
        return "The flash holds something else and must be erased.";
    }
}

std::string LDR_GetQuestion(const LDR_Job &job, int port)
{
    // The loader erases everything there is, whatever little of it the file fills.
    std::string text =
        TXT_Format("Erase the whole flash of the target on COM%d and program\n", port);
    text += job.file.path + "\n";
    if (!job.file.ranges.empty()) {
        const HEX_Range all = {job.file.ranges.front().first, job.file.ranges.back().last};
        text += TXT_Format("to 0x%06X-0x%06X (%u bytes)?", all.first, all.last,
                           static_cast<unsigned>(job.file.data.size()));
    }
    return text;
}

const char *LDR_GetStepText(int step)
{
    return step >= 0 && step < LDR_STEPS ? STEP_TEXTS[step] : "";
}
