// The scope's settings and recordings as files: what comes back, and what is refused.
#include "comm/sysaddr.h"
#include "scope/capture.h"
#include "scope/session.h"
#include "support/watch_fixture.h"

#include <cmath>

namespace {

struct ScopeFiles : WatchTest {};

TEST_F(ScopeFiles, SettingsComeBackWithCommentsAndForeignLines)
{
    const std::string text = "; the drive's currents\r\n"
                             "id, PWM_rScope ; of the inverter\r\n"
                             "sub, 4\r\n"
                             "trigger, 0, 1          ; mode, slope\r\n"
                             "level, 1500\r\n"
                             "position, 25\r\n"
                             "ch, 1, nSine, i2\r\n"
                             "colour, 1, red\r\n"
                             "ch, 2, [8012], u2\r\n"
                             "off, 2\r\n"
                             "scale, 2, 0.1, -3\r\n";
    const std::string file = write("scope.ini", text);
    SCP_Setup setup;
    std::vector<std::string> problems;
    ASSERT_EQ(SCP_LoadSetup(file, &setup, &problems), 0);
    EXPECT_TRUE(problems.empty()) << problems[0];
    EXPECT_EQ(setup.id, "PWM_rScope");
    EXPECT_EQ(setup.level, 1500);
    EXPECT_EQ(setup.channels[0].place, "nSine");
    EXPECT_TRUE(setup.channels[0].isOn);
    EXPECT_FALSE(setup.channels[1].isOn);
    EXPECT_EQ(setup.channels[1].type, SX_U2);
    EXPECT_EQ(setup.channels[1].factor, 0.1);
    EXPECT_EQ(SCP_ResolvePlace("[8012]"), 0x8012u);
    EXPECT_EQ(SCP_ResolvePlace("[1000000]"), ADDR_NONE);
    EXPECT_EQ(SCP_ResolvePlace("[80"), ADDR_NONE);
    setup.level = -0.25;
    setup.channels[2] = {true, "fTemp", SX_F4, "degC", 1, 0};
    setup.channels[1].isOn = true;
    ASSERT_EQ(SCP_SaveSetup(file, setup), 0);
    std::string wanted = text;
    wanted.replace(wanted.find("1500"), 4, "-0.25");
    wanted.erase(wanted.find("off, 2\r\n"), 8);
    wanted += "ch, 3, fTemp, f4\r\nunit, 3, degC\r\n";
    EXPECT_EQ(ReadFileText(file), wanted);
    for (const char *bad : {"sub, 0", "sub, 65536", "sub, 4x", "trigger, 3, 0", "trigger, 0",
                            "level, ", "position, 100.5", "ch, 17, x, i2", "ch, 0, x, i2",
                            "ch, 1, x, i3", "ch, 1, , i2", "scale, 1, 0, 1", "id, a, b"}) {
        SCP_Setup refused;
        EXPECT_EQ(SCP_ParseSetupLine(bad, &refused), -1) << bad;
    }
    EXPECT_EQ(SCP_LoadSetup((folder / "none").string(), &setup, &problems), -1);
}

TEST_F(ScopeFiles, RecordingsComeBackAsTheyWere)
{
    SCP_Capture capture;
    capture.id = "PWM_rScope";
    capture.taken = "2026-11-21 13:05:00";
    capture.rate = 2500;
    capture.subPd = 2;
    capture.mode = 1;
    capture.slope = 6;
    capture.level = -0.1;
    capture.position = 25;
    capture.triggerAt = 1;
    capture.traces = {{"nSine", "V", SX_I2, 0.1, -3, {1, 0.1, -1e-30}},
                      {"a,\"b\"", "", SX_F4, 1, 0, {5, NAN, 1234}}};
    const std::string file = path("scope.csv");
    ASSERT_EQ(SCP_SaveCapture(file, capture), 0);
    const std::string text = ReadFileText(file);
    EXPECT_TRUE(
        Has(text, "\r\nsample,time,nSine,\"a,\"\"b\"\"\"\r\n0,-0.0004,1,5\r\n1,0,0.1,\r\n"));
    SCP_Capture loaded;
    std::string problem;
    ASSERT_EQ(SCP_LoadCapture(file, &loaded, &problem), 0) << problem;
    EXPECT_EQ(loaded.id + loaded.taken, capture.id + capture.taken);
    EXPECT_EQ(loaded.rate, 2500);
    EXPECT_EQ(loaded.mode, 1);
    EXPECT_EQ(loaded.slope, 6);
    EXPECT_EQ(loaded.level, -0.1);
    EXPECT_EQ(loaded.triggerAt, 1);
    ASSERT_EQ(loaded.traces.size(), 2u);
    EXPECT_EQ(loaded.traces[0].unit, "V");
    EXPECT_EQ(loaded.traces[0].samples, capture.traces[0].samples);
    EXPECT_EQ(loaded.traces[0].factor, 0.1);
    EXPECT_EQ(loaded.traces[1].name, "a,\"b\"");
    EXPECT_EQ(loaded.traces[1].type, SX_F4);
    EXPECT_TRUE(std::isnan(loaded.traces[1].samples[1]));
    // Cut anywhere it is a shorter recording or refused, and never another one.
    for (size_t length = 0; length < text.size(); ++length) {
        SCP_Capture cut;
        WriteFileText(file, text.substr(0, length));
        if (SCP_LoadCapture(file, &cut, &problem) != 0) {
            EXPECT_TRUE(cut.traces.empty());
            continue;
        }
        ASSERT_EQ(cut.traces.size(), 2u) << length;
        EXPECT_EQ(cut.traces[0].samples[0], 1) << length;
        for (const double value : cut.traces[1].samples)
            EXPECT_TRUE(value == 5 || std::isnan(value) || value == 1234) << "half a number";
    }
    for (const char *bad : {"0,0,1", "1,0,1,2", "0,0,1,2,3", "0,0,x,1", "0,0,\"1,1", "0,0,inf,1"}) {
        WriteFileText(file, text.substr(0, text.find("0,-0.0004")) + bad + "\r\n");
        EXPECT_EQ(SCP_LoadCapture(file, &loaded, &problem), -1) << bad;
    }
    EXPECT_EQ(loaded.traces[0].samples.size(), 3u);
}

} // namespace
