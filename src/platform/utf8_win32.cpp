// The calls refuse an empty text, which is no fault here.
#include "platform/utf8_win32.h"

#include <windows.h>

std::wstring PLT_Wide(const std::string &text)
{
    const int bytes = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0'); // never more units than bytes
    const int units = bytes == 0 ? 0
                                 : MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(),
                                                       static_cast<int>(wide.size()));
    wide.resize(static_cast<size_t>(units));
    return wide;
}

std::string PLT_Utf8(const std::wstring &text)
{
    const int units = static_cast<int>(text.size());
    std::string utf8(3 * text.size(), '\0'); // never more bytes than three a unit
    const int bytes = units == 0
                          ? 0
                          : WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(),
                                                static_cast<int>(utf8.size()), nullptr, nullptr);
    utf8.resize(static_cast<size_t>(bytes));
    return utf8;
}
