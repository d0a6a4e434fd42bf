#include <gtest/gtest.h>
#include <zlib.h>

#include <set>
#include <string>

#include "settings/settings.h"
#include "symbols/varexpr.h"
#include "symbols/varnode.h"

namespace {

uint32_t Register(const char *name)
{
    return inStruct(name, aVarNode166, nNodes166);
}

// Addresses from the processors' manuals; the TMS320's are word addresses times two.
TEST(Registers, StandWhereTheManualsSay)
{
    constexpr uint32_t NONE = 0xFFFFFFFFu;
    const struct {
        int processor;
        const char *name;
        uint32_t address;
    } cases[] = {{CPU_C166, "DPP0", 0xFE00},
                 {CPU_C166, "SYSCON", 0xFF0C},
                 {CPU_C166, "S1CON", 0xFFB8},
                 {CPU_C167, "DPP0", 0xFE00},
                 {CPU_C167, "SYSCON", 0xFF12},
                 {CPU_C167, "CC31", 0xFE7E},
                 {CPU_C167, "CC28IC", 0xF178},
                 {CPU_C167, "SSCTB", 0xF0B0},
                 {CPU_C167, "PP3", 0xF03E},
                 {CPU_F283XX, "TIMER0TCR", 0x1808},
                 {CPU_F283XX, "ePWM6_CMPA", 0xD292},
                 {CPU_F283XX, "GPCDIR", 0xDF54},
                 {CPU_F283XX, "SCIB_SCITXBUF", 0xEEB2},
                 {CPU_F283XX, "WDCR", 0xE052},
                 {CPU_F283XX, "eQEP2_QCPRDLAT", 0xD6C0},
                 {CPU_F283XX, "eCAP6_ECFRC", 0xD572},
                 {CPU_F283XX, "ePWM4_DCFOFFSET", NONE},
                 {CPU_F2803X, "ePWM4_DCFOFFSET", 0xD1EA},
                 {CPU_F2803X, "GPBMUX1", 0xDF2C},
                 {CPU_F2803X, "AIODAT", 0xDFB0},
                 {CPU_F2803X, "ADCSOC15CTL", 0xE25E},
                 {CPU_F2803X, "SCIB_SCICCR", NONE}};
    for (const auto &row : cases) {
        initRgMap(row.processor);
        EXPECT_EQ(1, openStruct166);
        EXPECT_EQ(row.address, Register(row.name)) << row.processor << " " << row.name;
    }
}

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

TEST(Registers, HaveUniqueNamesAndOwnAddresses)
{
    for (int processor : {CPU_C166, CPU_C167, CPU_F283XX, CPU_F2803X}) {
        initRgMap(processor);
        EXPECT_GT(nNodes166, 100);
        std::set<std::string> names;
        std::set<uint32_t> addresses;
        for (int i = 0; i < nNodes166; ++i) {
            EXPECT_TRUE(names.insert(aVarNode166[i].name).second) << aVarNode166[i].name;
            EXPECT_TRUE(addresses.insert(aVarNode166[i].addr).second) << aVarNode166[i].name;
        }
    }
    initRgMap(99);
    EXPECT_EQ(0, openStruct166);
    EXPECT_EQ(0, nNodes166);
}

} // namespace
