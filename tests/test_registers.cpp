#include <gtest/gtest.h>
#include <zlib.h>

#include <string>

#include "settings/settings.h"
#include "symbols/varnode.h"

namespace {

// A digit changed by mistake would show a wrong register's value under a right name. Who
// means to change a table looks the register up in the manual and takes the new sum over.
TEST(Registers, TablesChangeOnPurposeOnly)
{
    const struct {
        int processor, count;
        uint32_t sum;
    } cases[] = {{CPU_C166, 117, 3461851707u},
                 {CPU_C167, 218, 1771372385u},
                 {CPU_F283XX, 489, 2626120927u},
                 {CPU_F2803X, 562, 2193568043u}};
    for (const auto &row : cases) {
        initRgMap(row.processor);
        std::string text;
        for (int i = 0; i < nNodes166; ++i)
            text +=
                std::string(aVarNode166[i].name) + ' ' + std::to_string(aVarNode166[i].addr) + '\n';
        const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
        EXPECT_EQ(row.count, nNodes166) << row.processor;
        EXPECT_EQ(row.sum, crc32(0, bytes, static_cast<uInt>(text.size()))) << row.processor;
    }
}

TEST(Registers, AnUnknownProcessorHasNone)
{
    initRgMap(99);
    EXPECT_EQ(0, openStruct166);
    EXPECT_EQ(0, nNodes166);
}

} // namespace
