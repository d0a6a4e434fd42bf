// The question in which a user enters triggers, for every window that has some.
#ifndef SAMPLER_TRIGGER_ENTRY_H
#define SAMPLER_TRIGGER_ENTRY_H

#include "sampler/trigger.h"

#include <string>
#include <vector>

// `whose` says in a word or two what they are for: "of the next recording". The text as it was
// entered, and parsed. False when the user gave up: both are as they were.
bool TRG_Ask(const std::string &whose, std::string *text, std::vector<TRG_Trigger> *triggers);

#endif
