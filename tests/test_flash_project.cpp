// The example project of an F283xx: packed into a flash image, put into the simulated
// target and read back over the wire by the console's map commands.
#include <cstring>
#include <map>
#include <tuple>

#include "support/console_rig.h"
#include "support/flash_builder.h"
#include "symbols/mapfile.h"
#include "symbols/typemap.h"
#include "symbols/typemap_list.h"
#include "symbols/varexpr.h"

namespace {

const std::string EXAMPLES = EXAMPLES_DIR "/";
const std::string FLASH_PROJECT = EXAMPLES + "f283xx/";
constexpr uint32_t FLASH_IMAGE_AT = 0x67FB00; // so that it ends where the flash's files end

class FlashProject : public ConsoleRig {
protected:
    using Place = std::tuple<uint32_t, int, char, int>; // address, size, item type and size

    static void collect(const std::vector<TMF_ListRow> &rows, std::map<std::string, Place> *places)
    {
        for (const TMF_ListRow &row : rows) {
            (*places)[row.expression] = {row.address, row.size, row.itemType, row.itemSize};
            collect(TMF_ListParts(row.expression.c_str()), places);
        }
    }

    // Every variable, member and element the program knows.
    static std::map<std::string, Place> everything()
    {
        std::map<std::string, Place> places;
        collect(TMF_ListVariables(""), &places);
        return places;
    }

    static std::string packedImage()
    {
        FlashVars vars;
        for (int i = 0; i < nNodes; ++i)
            vars.emplace_back(aVarNode[i].addr / 2, aVarNode[i].name);
        const std::string files = FLB_Directory(vars, 2);
        return std::string(0x67FF00 - FLASH_IMAGE_AT - files.size(), '\xFF') + files;
    }
};

TEST_F(FlashProject, ComesBackFromTheTargetAsItWasPacked)
{
    Procesor = CPU_F283XX;
    ASSERT_EQ(TMSmap2node((FLASH_PROJECT + "f283xx.qar").c_str()), 0);
    const std::map<std::string, Place> packed = everything();
    EXPECT_EQ(packed.at("_astMotor[1].stPid.unLimit.awPart[1]"), Place(0x18200 + 0x2E, 2, 'u', 2));
    EXPECT_EQ(packed.size(), 130u);
    EXPECT_EQ(inStruct("PWM_rScope", aVarNode, nNodes), 0x19000u) << "the scope of the examples";
    const std::string image = packedImage();
    std::ofstream(testing::TempDir() + "f283xx.flash", std::ios::binary) << image;
    EXPECT_TRUE(image == ReadFileText(FLASH_PROJECT + "f283xx.flash"))
        << "packed anew: " << testing::TempDir() << "f283xx.flash";

    FreeNodes(aVarNode, &nNodes);
    TMF_CleanTables();
    openStruct = OPEN_NONE;
    EXPECT_TRUE(Has(Run("mf"), "Error during flash read."));
    EXPECT_TRUE(Has(Run("mfx"), "the syntax is"));
    EXPECT_FALSE(UiValue(PANEL_MAIN, MAIN_LED_MAPMEM));

    unplug(); // the next one has the flash
    options.demo = true;
    options.flash = FLASH_PROJECT + "f283xx.flash";
    options.flashAddress = FLASH_IMAGE_AT;
    plug();
    UCM_Close();
    EXPECT_TRUE(Has(Run("mfo"), "Reading FLASH from 1C000H, wait for a while please ...\n"
                                "Error during flash read."));
    for (const char *form : {"mf", "mfn", "mf over Modbus"}) {
        if (form[2] == ' ') { // the same flash by the other protocol
            ChangeProtocol();
        }
        FreeNodes(aVarNode, &nNodes);
        TMF_CleanTables();
        openStruct = OPEN_NONE;
        const std::string text = Run(std::string(form, std::strcspn(form, " ")));
        EXPECT_TRUE(Has(text, "Reading FLASH from end, wait for a while please ..."));
        EXPECT_FALSE(Has(text, "Error"));
        EXPECT_EQ(openStruct, OPEN_FROM_MEMORY);
        EXPECT_TRUE(UiValue(PANEL_MAIN, MAIN_LED_MAPMEM));
        EXPECT_EQ(everything(), packed);
        EXPECT_EQ(inStruct("PWM_rScope", aVarNode, nNodes), 0x19000u) << form;
    }
    const std::string state = UiText(PANEL_MAIN, MAIN_STATE);
    EXPECT_EQ(state.substr(state.find('\n') + 1),
              "Map loaded from memory.; types: 14 variables, 5 structures");
    options.flash = FLASH_PROJECT + "missing";
    std::string error;
    EXPECT_EQ(SIM_Start(options, &error), nullptr);
    EXPECT_EQ(error, "Cannot read " + options.flash);
}

TEST_F(FlashProject, MapOfATms320BehindAStation)
{
    EXPECT_TRUE(Has(Run("mt " + EXAMPLES + "demo28.m28xt"), "TMS MapFile: "));
    EXPECT_EQ(inStruct("&_fSpeed", aVarTMSNode, nTMSNodes), 0x400u);
    EXPECT_EQ(openStruct, OPEN_NONE);
    EXPECT_EQ(Run("mt missing"), " Error: the MAP file doesn't exist.\n\n");
    EXPECT_EQ(Run("m"), "The S166 map file is not opened. Try \"m filename\".\n\n");
}

} // namespace
