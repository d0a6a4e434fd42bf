// Code pages of one byte a character, as the system knows them.
#ifndef PLATFORM_CODE_PAGE_H
#define PLATFORM_CODE_PAGE_H

// The code points of all bytes of a page by its registered number (852, 1250, 20866, 28591);
// 0xFFFD where the page has no character. 0, or -1: the system does not know the page.
int PLT_GetCodePage(unsigned number, char32_t table[256]);

#endif
