#include "sampler/trigger.h"

#include "runtime/userint.h"

namespace {

constexpr size_t TEXT_MAX = 800;
constexpr int QUESTIONS_MAX = 10; // about the same thing
const char HELP[] = ", parted by ';', such as\n"
                    "\"start when wRamp > 900; stop when nSine fails; mark when byMode changes\".\n"
                    "Actions: start, stop, beep, mark. Empty: none.";

} // namespace

bool SMP_AskForTrigger(const std::string &whose, std::string *text,
                       std::vector<SMP_Trigger> *triggers)
{
    // What was refused is asked again as it was typed, with what is wrong above it.
    std::string entered = *text, problem;
    for (int round = 0; round < QUESTIONS_MAX; ++round) {
        const std::string question =
            (problem.empty() ? "" : problem + "\n\n") + "Actions " + whose + HELP;
        if (PromptPopup("Record when", question, &entered, TEXT_MAX) < 0)
            return false;
        if (SMP_ParseTriggers(entered, triggers, &problem) != 0)
            continue;
        *text = entered;
        return true;
    }
    return false;
}
