// What to do when a condition on a sampled item holds, as one line of text:
//
//     mark when nSine > 900        start, stop, beep or mark
//     stop when nSine fails        > >= < <= = <> NUMBER, rises NUMBER, falls NUMBER,
//     mark when byMode changes     changes, fails
//
// A comparison fires when it begins to hold, not again while it goes on to; "rises 900" asks for
// a sample below and then one that is not. Failed samples are no values: nothing fires by them
// but "fails". Pure state, fed with rows; only the question at the end uses the view.
#ifndef SAMPLER_TRIGGER_H
#define SAMPLER_TRIGGER_H

#include "sampler/sample_store.h"

#include <string>
#include <vector>

enum SMP_TriggerAction { SMP_TRIGGER_START, SMP_TRIGGER_STOP, SMP_TRIGGER_BEEP, SMP_TRIGGER_MARK };

struct SMP_Trigger {
    SMP_TriggerAction action = SMP_TRIGGER_MARK;
    std::string item;  // by name: it is looked up in each row's items
    int condition = 0; // row of the table in trigger.cpp
    double level = 0;
    std::string text; // as it was written

    bool hasBefore = false; // of the last sample
    bool heldBefore = false;
    double before = 0;
};
constexpr size_t SMP_TRIGGER_LINES_MAX = 16;

// 0, or -1 with what is wrong in *problem.
int SMP_ParseTrigger(const std::string &line, SMP_Trigger *trigger, std::string *problem);
// Several, parted by ';'. 0, or -1 with what is wrong in *problem, for a person.
int SMP_ParseTriggers(const std::string &text, std::vector<SMP_Trigger> *triggers,
                      std::string *problem);
// True when it fires by this row. An item that is not among `items` never does.
bool SMP_FeedTrigger(SMP_Trigger *trigger, const std::vector<SMP_Item> &items,
                     const SMP_Sample *samples);

// The question in which a user enters triggers, for every window that has some (trigger_entry.cpp).
// `whose` says in a word or two what they are for: "of the next recording". The text as it was
// entered, and parsed. False when the user gave up: both are as they were.
bool SMP_AskForTrigger(const std::string &whose, std::string *text,
                       std::vector<SMP_Trigger> *triggers);

#endif
