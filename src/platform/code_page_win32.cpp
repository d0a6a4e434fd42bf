#include "platform/code_page.h"

#include <windows.h>

int PLT_GetCodePage(unsigned number, char32_t table[256])
{
    if (IsValidCodePage(number) == 0)
        return -1;
    for (int i = 0; i < 256; ++i) {
        const char character = static_cast<char>(i);
        wchar_t wide = 0;
        const int count =
            MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, &character, 1, &wide, 1);
        // Without the flag above a hole of the page would become some character.
        table[i] = count == 1 ? static_cast<char32_t>(wide) : 0xFFFD;
    }
    return 0;
}
