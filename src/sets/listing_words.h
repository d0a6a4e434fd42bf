// The fixed words of listings, in the languages that the command `language` chooses from.
#ifndef SETS_LISTING_WORDS_H
#define SETS_LISTING_WORDS_H

#include <string>

// The word behind "t." in a template: "t.value". Null when there is none.
const char *PST_FindWord(const std::string &key, int language);
const char *PST_LanguageCode(int language); // "cs", as HTML has it

#endif
