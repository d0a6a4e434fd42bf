// A trigger is a row of the table of conditions and what it remembers of the sample before.
#include "sampler/trigger.h"

#include "text/numbers.h"
#include "text/words.h"

#include <cmath>
#include <sstream>

namespace {

// Whether the condition holds at this sample; `before` is the last good one, if hasBefore.
typedef bool (*Holds)(double value, double level, bool hasBefore, double before);

struct ConditionRow {
    const char *word;
    bool hasLevel;
    bool isOnFailure; // about samples that failed; else about good ones
    Holds holds;
};
const ConditionRow CONDITIONS[] = {
    {">", true, false, [](double v, double l, bool, double) { return v > l; }},
    {">=", true, false, [](double v, double l, bool, double) { return v >= l; }},
    {"<", true, false, [](double v, double l, bool, double) { return v < l; }},
    {"<=", true, false, [](double v, double l, bool, double) { return v <= l; }},
    {"=", true, false, [](double v, double l, bool, double) { return v == l; }},
    {"==", true, false, [](double v, double l, bool, double) { return v == l; }},
    {"<>", true, false, [](double v, double l, bool, double) { return v != l; }},
    {"!=", true, false, [](double v, double l, bool, double) { return v != l; }},
    {"rises", true, false,
     [](double v, double l, bool has, double b) { return has && b < l && v >= l; }},
    {"falls", true, false,
     [](double v, double l, bool has, double b) { return has && b > l && v <= l; }},
    {"changes", false, false, [](double v, double, bool has, double b) { return has && v != b; }},
    {"fails", false, true, nullptr},
};
constexpr int CONDITION_COUNT = sizeof CONDITIONS / sizeof CONDITIONS[0];

struct ActionRow {
    const char *word;
    SMP_TriggerAction action;
};
const ActionRow ACTIONS[] = {{"start", SMP_TRIGGER_START},
                             {"stop", SMP_TRIGGER_STOP},
                             {"beep", SMP_TRIGGER_BEEP},
                             {"mark", SMP_TRIGGER_MARK}};

// Words parted by blanks; a comparison may stand without blanks around it.
std::vector<std::string> SplitWords(const std::string &line)
{
    const std::string signs = "<>=!";
    std::string spaced;
    for (size_t i = 0; i < line.size(); ++i) {
        const bool isSign = signs.find(line[i]) != std::string::npos;
        const bool wasSign = i > 0 && signs.find(line[i - 1]) != std::string::npos;
        spaced += isSign != wasSign ? " " : "";
        spaced += line[i];
    }
    std::vector<std::string> words;
    std::istringstream stream(spaced);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

} // namespace

int SMP_ParseTrigger(const std::string &line, SMP_Trigger *trigger, std::string *problem)
{
    const std::vector<std::string> words = SplitWords(line);
    SMP_Trigger parsed;
    parsed.text = TXT_Trim(line);
    const ActionRow *action = nullptr;
    for (const ActionRow &row : ACTIONS)
        if (!words.empty() && words[0] == row.word)
            action = &row;
    if (action == nullptr || words.size() < 4 || words[1] != "when") {
        *problem = "begins with start, stop, beep or mark, then \"when NAME CONDITION\"";
        return -1;
    }
    parsed.action = action->action;
    parsed.item = words[2];
    parsed.condition = 0;
    while (parsed.condition < CONDITION_COUNT && words[3] != CONDITIONS[parsed.condition].word)
        ++parsed.condition;
    if (parsed.condition == CONDITION_COUNT) {
        *problem = "no condition '" + words[3] +
                   "': > >= < <= = <> NUMBER, rises NUMBER, falls NUMBER, changes or fails";
        return -1;
    }
    const bool hasLevel = CONDITIONS[parsed.condition].hasLevel;
    if (words.size() != (hasLevel ? 5u : 4u) ||
        (hasLevel && !TXT_ParseNumber(words[4], &parsed.level))) {
        *problem = hasLevel ? "a number is to follow '" + words[3] + "'"
                            : "nothing is to follow '" + words[3] + "'";
        return -1;
    }
    *trigger = parsed;
    return 0;
}

int SMP_ParseTriggers(const std::string &text, std::vector<SMP_Trigger> *triggers,
                      std::string *problem)
{
    std::vector<SMP_Trigger> parsed;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line, ';');) {
        SMP_Trigger trigger;
        if (TXT_Trim(line).empty())
            continue;
        if (SMP_ParseTrigger(line, &trigger, problem) != 0) {
            *problem = "'" + TXT_Trim(line) + "': " + *problem + ".";
            return -1;
        }
        parsed.push_back(trigger);
    }
    if (parsed.size() > SMP_TRIGGER_LINES_MAX) {
        *problem = "There are too many actions.";
        return -1;
    }
    *triggers = parsed;
    return 0;
}

bool SMP_FeedTrigger(SMP_Trigger *trigger, const std::vector<SMP_Item> &items,
                     const SMP_Sample *samples)
{
    // Looked up each time: items may change while it goes on.
    size_t i = 0;
    while (i < items.size() && items[i].name != trigger->item)
        ++i;
    if (i == items.size())
        return false;
    const ConditionRow &row = CONDITIONS[trigger->condition];
    const bool isGood = samples[i].state == SMP_GOOD;
    if (row.isOnFailure) {
        const bool fires = !isGood && !trigger->heldBefore;
        trigger->heldBefore = !isGood;
        return fires;
    }
    const double value = isGood ? SMP_Number(items[i], samples[i].bits) : 0;
    if (!isGood || std::isnan(value))
        return false;
    const bool holds = row.holds(value, trigger->level, trigger->hasBefore, trigger->before);
    // An edge is over with its sample; anything else has to cease before it begins again.
    const bool isEdge = !row.hasLevel || row.word[0] == 'r' || row.word[0] == 'f';
    const bool fires = holds && (isEdge || !trigger->heldBefore);
    trigger->heldBefore = holds;
    trigger->hasBefore = true;
    trigger->before = value;
    return fires;
}
