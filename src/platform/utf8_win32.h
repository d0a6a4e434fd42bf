// Texts of the program are UTF-8; those of Windows' calls are UTF-16. Only the _win32 files of
// this folder include it. The calls that end in "A" would speak the code page of the machine,
// in which a Czech name of a file does not exist on an English one.
#ifndef PLATFORM_UTF8_WIN32_H
#define PLATFORM_UTF8_WIN32_H

#include <string>

std::wstring PLT_Wide(const std::string &text); // what is no UTF-8 becomes U+FFFD
std::string PLT_Utf8(const std::wstring &text);

#endif
