// The console program as other programs meet it: the built binary, its exit codes,
// what stands on which stream, and the watch tables.

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/system.h"
#include "sim/sim.h"
#include "support/scratch.h"
#include "support/sim_fixture.h"
#include "support/text_checks.h"

namespace {

struct Outcome {
    int code = -1;
    std::string out, err;
};

size_t CountLines(const std::string &text)
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

class ConsoleProgram : public testing::Test {
protected:
    void TearDown() override
    {
        SIM_Stop(target);
        unsetenv("VIREO2_COM1");
    }
    void StartTarget(const SIM_Options &options = {})
    {
        target = SIMT_Start(1, options);
        ASSERT_TRUE(target);
    }
    void Write(const std::string &name, const std::string &text)
    {
        WriteFileText(folder / name, text);
    }
    Outcome Run(const std::string &arguments, const std::string &input = "",
                const std::string &streams = "")
    {
        Write("in", input);
        const std::string command = "cd '" + folder.path + "' && '" BINARY_DIR "/vireo2-console' " +
                                    arguments + " <in >out 2>err " + streams;
        const int status = std::system(command.c_str());
        Outcome outcome;
        outcome.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.out = ReadFileText(folder / "out");
        outcome.err = ReadFileText(folder / "err");
        return outcome;
    }
    const ScratchFolder folder;
    SIM_Target *target = nullptr;
};

TEST_F(ConsoleProgram, OptionsAreChecked)
{
    const struct {
        const char *arguments, *says;
    } wrong[] = {
        {"--nonsense", "unknown option --nonsense"}, {"--yes=1", "unknown option --yes=1"},
        {"--watch", "--watch needs a value"},        {"--watch a --sweeps 0", "bad value '0'"},
        {"--watch a --sweeps 3x", "bad value '3x'"}, {"--watch a --format xml", "bad value 'xml'"},
        {"--sweeps 3", "go with --watch"},           {"--watch a b.scr", "exclude each other"},
        {"--make-archive out", "needs the files"}};
    for (const auto &c : wrong) {
        const Outcome outcome = Run(c.arguments);
        EXPECT_EQ(2, outcome.code) << c.arguments;
        EXPECT_TRUE(Has(outcome.err, c.says));
        EXPECT_EQ("", outcome.out);
    }
    EXPECT_EQ(0u, Run("--version").out.find("vireo2-console "));
    EXPECT_EQ(0u, Run("--help").out.find("Usage: vireo2-console"));
}

TEST_F(ConsoleProgram, ComparesTheTargetWithADataFile)
{
    std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    Write("Vireo2.ini", "r, AC167\nm, demo.m66\ntm, demo.tmf\nb, 115200\np, 1\ns, 1\n");
    StartTarget();
    const Outcome equal = Run("--compare demo.ulh demo.ldx");
    EXPECT_EQ(equal.code, 0) << equal.err;
    EXPECT_EQ(equal.out, "");
    const uint8_t other[] = {120, 0};
    SIM_Poke(target, 1, 0x8300, other, sizeof other); // a mirror
    const Outcome different = Run("--compare demo.ulh demo.ldx");
    EXPECT_EQ(different.code, 1);
    EXPECT_EQ(different.out, "SAV_wGain: 120 in the target, 100 in the file\n");
    EXPECT_EQ(Run("--compare demo.ulh demo.m66").code, 2);
    EXPECT_EQ(Run("--compare demo.ulh").code, 2);
}

TEST_F(ConsoleProgram, LinesAreEnteredUntilExit)
{
    const Outcome outcome = Run("-s3", "station 5\r\nnonsense\n  exit \nstation 7\n");
    EXPECT_EQ(1, outcome.code) << "a line was refused";
    EXPECT_TRUE(Has(outcome.out, "station 5 -> OK!"));
    EXPECT_TRUE(Has(outcome.out, "Sorry, unknown or unsupported command ('nonsense')."));
    EXPECT_FALSE(Has(outcome.out, "station 7"));
    EXPECT_TRUE(Has(ReadFileText(folder / "Vireo2.ini"), "s, 5\r\n"))
        << "a session ends like the program in the window";
    const Outcome tooLong = Run("", std::string(5000, 'x') + "\nstation 6\n");
    EXPECT_TRUE(Has(tooLong.err, "Line of 5000 characters refused"));
    EXPECT_TRUE(Has(tooLong.out, "station 6 -> OK!"));
}

TEST_F(ConsoleProgram, LinesAndScriptsEndWithTheirResult)
{
    SIM_Options silent; // no port of this machine: whatever is there may answer
    silent.stations = 0;
    StartTarget(silent);
    Write("s.scr", "station 2\nd 1000\nsave x, u1, 1, f\nstation 3\n");
    Write("t.scr", "station 2\n  station 99\nstation 3\n");
    Write("g.scr", "getlog 'Faults', f\nzebra\n");
    Write("good.scr", "station 2\n");
    Write("ask.scr", "qst Go on?,No,Stop\nstation 4\ngoto End\nStop:\nstation 5\nEnd:\n");
    const struct {
        std::string arguments, input;
        int code;
        std::string says;
    } cases[] = {{"", "station 2\n", 0, "OK!"},
                 {"", "station 99\nstation 2\n", 1, "OK!"},
                 {"", std::string(600, 'x') + "\n", 1, "was not run"},
                 {"s.scr", "", 1, "\n2 lines were refused: they need the full command set.\n"},
                 {"g.scr", "", 1,
                  "\n1 lines were refused: they need the full command set.\n"
                  "1 lines were refused: there is no such command.\n"},
                 {"", "getlog 'Faults', f\n", 1, "unsupported command ('getlog 'Faults', f')"},
                 {"t.scr", "", 1, "t.scr, line 2: station 99"},
                 {"--full", "zebra\n", 1, "Unknown command."},
                 {"--full", "! s.scr\n", 1, "s.scr, line 2: d 1000"},
                 {"good", "", 0, "station 2 -> OK!"},
                 {"missing.scr", "", 1, "Could not open the script file."},
                 {"--yes ask.scr", "", 0, "station 4 -> OK!"},
                 {"--no ask.scr", "", 0, "station 5 -> OK!"}};
    for (const auto &c : cases) {
        std::filesystem::remove(folder / "Vireo2.ini");
        const Outcome outcome = Run(c.arguments, c.input);
        EXPECT_EQ(c.code, outcome.code) << c.arguments << c.input << outcome.err;
        EXPECT_TRUE(Has(outcome.out, c.says)) << c.arguments;
        EXPECT_EQ(c.input.empty(), !std::filesystem::exists(folder / "Vireo2.ini"))
            << "a script leaves the settings alone: " << c.arguments;
    }
}

// What is taken without effect, or otherwise than typed, is said in one line.
TEST_F(ConsoleProgram, TheCommandLineSaysWhatItTakesSilently)
{
    Write("a.scr", "station 2\n");
    Write("b.scr", "station 3\n");
    const struct {
        const char *arguments, *says;
    } cases[] = {{"-x -7 a.scr", "-x: has no effect. -7: ports are -1 to -4; port 1 is used.\n"},
                 {"-b a.scr", "-b: no number; the baud rate is 0.\n"},
                 {"-b96o0 a.scr", "-b96o0: no number; the baud rate is 96.\n"},
                 {"-b-5 -s-1 a.scr", "-b-5: no number; the baud rate is 19200. "
                                     "-s-1: no number; the station is 0.\n"},
                 {"-s a.scr", "-s: no number; the station is 0.\n"},
                 {"-s16 a.scr", "-s16: stations are 0 to 15.\n"},
                 {"-12 -Cx a.scr", "-12: taken as -1. -Cx: taken as -C.\n"},
                 {"a.scr b.scr -C", "b.scr: has no effect behind the script. "
                                    "-C: has no effect behind the script.\n"},
                 {"- a.scr", "-: has no effect.\n"},
                 {"-4 -b9600 -s15 a.scr", ""}};
    for (const auto &c : cases) {
        const Outcome outcome = Run(c.arguments);
        EXPECT_EQ(c.says, outcome.err) << c.arguments;
        EXPECT_EQ(0, outcome.code) << c.arguments;
    }
    Write("Vireo2.ini", "t, MODBUS\n");
    EXPECT_EQ("", Run("-s16 a.scr").err) << "a slave's address goes further";
}

TEST_F(ConsoleProgram, TypesAreOpenedRememberedOrNothingIsDone)
{
    StartTarget();
    std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    const std::string line = "set DRV_stParams.fScale = -3\n";
    EXPECT_TRUE(Has(Run("--full --types demo.tmf", line).out, "= -3 (f at 0x008230)"));
    EXPECT_TRUE(Has(ReadFileText(folder / "Vireo2.ini"), "\ntm, demo.tmf\r\n"));
    EXPECT_EQ(0, Run("--full", line).code) << "the settings know it now";
    Write("a.scr", "set wGain = 3\n");
    Write("bad.tmf", "## 1 VARS\nnonsense\n");
    for (const char *arguments : {"--full --types=gone.tmf", "--full --types bad.tmf a.scr",
                                  "--types gone.tmf --watch demo.dbg --sweeps 1"}) {
        const Outcome outcome = Run(arguments, line);
        EXPECT_EQ(1, outcome.code) << arguments;
        EXPECT_EQ("", outcome.out) << arguments;
        EXPECT_TRUE(Has(outcome.err, "Could not open type map file ")) << arguments;
    }
    EXPECT_EQ(2, Run("--types").code);
}

TEST_F(ConsoleProgram, LinesWithoutAPortAndSettingsThatAreLostAreNoSuccess)
{
    StartTarget();
    EXPECT_EQ(0, Run("", "write 1, 1, 9000H\n").code);
    const int device = open(SIM_DevicePath(target), O_RDWR | O_NOCTTY);
    ASSERT_EQ(0, flock(device, LOCK_EX | LOCK_NB));
    const Outcome busy = Run("", "write 1, 1, 9000H\n");
    EXPECT_EQ(1, busy.code);
    EXPECT_TRUE(Has(busy.out, "another program"));
    Write("w.dbg", "[9000], u1\n");
    EXPECT_EQ(1, Run("--watch w.dbg --sweeps 1").code);
    close(device);
    std::filesystem::remove(folder / "Vireo2.ini");
    std::filesystem::create_directory(folder / "Vireo2.ini");
    const Outcome lost = Run("", "station 2\n");
    EXPECT_EQ(1, lost.code);
    EXPECT_TRUE(Has(lost.err, "the settings will not be saved"));
}

// The descriptors' numbers must not be taken by the port or by a file either.
TEST_F(ConsoleProgram, LostOutputIsNoSuccess)
{
    StartTarget();
    Write("w.dbg", "[1000],u2\n");
    Write("s.scr", "help\n");
    for (const std::string where : {">/dev/full", ">&-", ">&- 2>&-"}) {
        for (const char *arguments : {"--help", "--version", "", "s.scr", "-s2 --watch w.dbg"}) {
            const Outcome outcome = Run(arguments, "help\nhelp\n", where);
            EXPECT_EQ(1, outcome.code) << arguments << where;
            const bool isSaid = outcome.err.find("Cannot write to standard output.") < 999;
            EXPECT_EQ(where.find("2>") == std::string::npos, isSaid) << arguments << where;
        }
    }
}

TEST_F(ConsoleProgram, ExampleScriptsDoWhatTheySay)
{
    StartTarget();
    std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    for (const char *arguments : {"demo.scr", "--full demo.scr"}) {
        const Outcome demo = Run(arguments);
        EXPECT_EQ(0, demo.code);
        EXPECT_FALSE(Has(demo.out, "ERROR"));
        EXPECT_TRUE(Has(demo.out, "write 2, 40, wGain -> OK!"));
        EXPECT_FALSE(Has(demo.out, "write 2, 0, wGain"));
    }
    EXPECT_EQ("Question: Try out another table in station 1?\nmessage: Nothing was changed.\n",
              Run("--full --no service.scr").err);
    const Outcome service = Run("--full --yes service.scr");
    EXPECT_TRUE(Has(service.err, "message: A step failed")) << service.out;
    EXPECT_TRUE(Has(service.out, "008140[   0]    1234 04d2h       1 0001h"));
    EXPECT_TRUE(Has(service.out, "008140[   0]       0 0000h       1 0001h"));
    EXPECT_EQ(256u, std::filesystem::file_size(folder / "log.bin"));
    Write("curve.csv", "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n12\n13\n14\n15\n1.6e1\n");
    EXPECT_TRUE(Has(Run("--full --yes service.scr").err, "The curve is loaded."));
}

TEST_F(ConsoleProgram, WatchPrintsEveryItemEachSweep)
{
    SIM_Options options;
    options.demo = false;
    StartTarget(options);
    std::string list = "\"quoted\"|name,[2000],u8\n";
    for (int i = 0; i < 30; i++) {
        const uint16_t value = static_cast<uint16_t>(1000 + i);
        SIM_Poke(target, 1, static_cast<uint32_t>(0x1000 + 2 * i), &value, 2);
        list += "[" + std::to_string(1000 + 2 * i) + "],i2\n";
    }
    list.replace(list.rfind("[1058]"), 6, "[103A]"); // the last one, in hexadecimal
    const uint64_t big = 0x8877665544332211u;        // either half in the wrong place shows
    SIM_Poke(target, 1, 0x2000, &big, 8);
    Write("w.dbg", list + "nowhere,x1\n");

    const Outcome csv = Run("--watch w.dbg --sweeps 2 --format csv");
    EXPECT_EQ(0, csv.code) << csv.err;
    EXPECT_EQ(0u, csv.out.find("sweep,name,address,type,size,value,raw,error\n"));
    EXPECT_EQ(1u + 2 * 32, CountLines(csv.out));
    EXPECT_TRUE(Has(csv.out, "1,\"\"\"quoted\"\"|name\",0x002000,u,8,9833440827789222417,"
                             "9833440827789222417,0\n"));
    EXPECT_TRUE(Has(csv.out, "\n2,,0x001000,i,2,1000,1000,0\n"));
    EXPECT_TRUE(Has(csv.out, "\n2,,0x00103A,i,2,1029,1029,0\n"));
    EXPECT_TRUE(Has(csv.out, "\n2,nowhere,,x,1,,,1\n"));

    const Outcome json = Run("--watch w.dbg --sweeps 1 --format json");
    EXPECT_TRUE(Has(json.out,
                    "{\"sweep\":1,\"name\":\"\\\"quoted\\\"|name\",\"address\":\"0x002000\","
                    "\"type\":\"u\",\"size\":8,\"value\":\"9833440827789222417\","
                    "\"raw\":9833440827789222417,\"error\":0}\n"));
    EXPECT_TRUE(Has(json.out, "\"nowhere\",\"address\":\"\",\"type\":\"x\",\"size\":1,"
                              "\"value\":\"\",\"raw\":null,\"error\":1}\n"));
    EXPECT_TRUE(Has(Run("--watch w.dbg --sweeps 1").out, "0x001000  i2  1000\n"));
    EXPECT_FALSE(std::filesystem::exists(folder / "Vireo2.ini"));
}

TEST_F(ConsoleProgram, WatchEndsWithOneWhenTheTargetDoesNotAnswer)
{
    Write("w.dbg", "[1000],u2\n");
    setenv("VIREO2_COM1", (folder / "no-port").c_str(), 1);
    const Outcome noPort = Run("--watch w.dbg --sweeps 2");
    EXPECT_EQ(1, noPort.code);
    EXPECT_TRUE(Has(noPort.err, "(port is not available)"));

    SIM_Options silent;
    silent.silentAfter = 0;
    StartTarget(silent);
    const Outcome quiet = Run("--watch w.dbg --sweeps 5 --format csv");
    EXPECT_EQ(1, quiet.code);
    EXPECT_TRUE(Has(quiet.out, "1,,0x001000,u,2,,,1\n"));
    const size_t said = quiet.err.find("Communication switched off: ");
    EXPECT_NE(std::string::npos, said);
    EXPECT_EQ(said, quiet.err.rfind("Communication switched off: ")) << "once";
    EXPECT_EQ(1, Run("--watch missing.dbg --sweeps 1").code);
    Write("empty.dbg", "; nothing\n");
    EXPECT_EQ(1, Run("--watch empty.dbg --sweeps 1").code);
    EXPECT_EQ(1, Run("--watch w.dbg --sweeps 1 --trace /nonexistent/t").code);
}

TEST_F(ConsoleProgram, RecordsWithTheTargetsScope)
{
    StartTarget();
    Write("demo.m66", ReadFileText(EXAMPLES_DIR "/demo.m66"));
    Write("Vireo2.ini", "r, AC167\r\nm, demo.m66\r\np, 1\r\ns, 1\r\n");
    Write("a.scope", "id, SCP3_rScope\r\nch, 1, nFast, i2\r\nlevel, 400\r\nposition, 25\r\n");
    Outcome outcome = Run("--scope a.scope --csv - --wait 20");
    ASSERT_EQ(0, outcome.code) << outcome.err;
    EXPECT_EQ(0u, outcome.out.find("; Vireo2 scope 1\r\n"));
    EXPECT_TRUE(Has(outcome.out, "sample,time,nFast\r\n0,-"));
    EXPECT_TRUE(Has(outcome.out, "\r\n124,0,")) << "the trigger";
    EXPECT_TRUE(Has(outcome.err, "Upload successful."));
    // A level that is never reached: 1 and why, unless it is forced. No file is left behind.
    Write("b.scope", "id, SCP3_rScope\r\nch, 1, nFast, i2\r\nlevel, 4000\r\n");
    outcome = Run("--scope b.scope --csv out.csv --wait 0.1");
    EXPECT_EQ(1, outcome.code);
    EXPECT_TRUE(Has(outcome.err, "No trigger (try snap)."));
    EXPECT_FALSE(std::filesystem::exists(folder / "out.csv"));
    EXPECT_EQ(0, Run("--scope b.scope --csv out.csv --snap").code);
    EXPECT_GT(CountLines(ReadFileText(folder / "out.csv")), 500u);
    Write("c.scope", "id, nowhere\r\nch, 1, nFast, i2\r\n");
    outcome = Run("--scope c.scope --csv out.csv");
    EXPECT_EQ(1, outcome.code);
    EXPECT_TRUE(Has(outcome.err, "Init error (1)."));
}

TEST_F(ConsoleProgram, TraceHoldsTheExchangesAndInterruptEndsCleanly)
{
    StartTarget();
    Write("w.dbg", "[1000],u2\n");
    const std::string program = "'" BINARY_DIR "/vireo2-console' --watch w.dbg --trace t";
    Write("run", "cd '" + folder.path + "'\n" + program +
                     " >live &\npid=$!\n"
                     "until grep -q 'Sweep 2' live; do sleep 0.05; kill -0 $pid || exit 9; done\n"
                     "kill -INT $pid\nwait $pid\n");
    EXPECT_EQ(0, WEXITSTATUS(std::system(("sh '" + (folder / "run").string() + "'").c_str())));
    EXPECT_TRUE(Has(ReadFileText(folder / "t"), "0x001000"));
}

// The other protocol, on a line that echoes: watch list, console, files and registers.
TEST_F(ConsoleProgram, SpeaksModbus)
{
    SIM_Options options;
    options.demo = false;
    options.modbus = options.echo = true;
    StartTarget(options);
    const uint8_t counter[] = {0x39, 0x30};
    SIM_Poke(target, 1, 0x8000, counter, sizeof counter);
    Write("w.dbg", "[8000],u2\n");
    Write("Vireo2.ini", "t, MODBUS\no-\nb, 115200\ns, 1\n");
    const Outcome watch = Run("--echo --watch w.dbg --sweeps 2 --format csv --trace t");
    EXPECT_EQ(0, watch.code) << watch.err;
    EXPECT_TRUE(Has(watch.out, "2,,0x008000,u,2,12345,12345,0\n"));
    EXPECT_TRUE(Has(ReadFileText(folder / "t"), "memory read of 2 bytes at "));
    EXPECT_EQ(0, Run("--echo --full", "mbwrite 2:5, 7\n").code);
    // Without the option such a line gives no value, and says what to do.
    EXPECT_TRUE(Has(Run("--full", "mbwrite 2:5, 8\n").out, "switch two-wire line echoes on"));
    uint8_t written = 0;
    SIM_Peek(target, 2, 10, &written, 1);
    EXPECT_EQ(7, written) << "the echo was taken for a confirmation";
}

// Without auto-off a watch outlives its target: the same link leads to another device later.
TEST_F(ConsoleProgram, WatchTakesAPortAgainThatWasUnplugged)
{
    const auto plug = [this] {
        StartTarget();
        std::filesystem::remove(folder / "link");
        std::filesystem::create_symlink(SIM_DevicePath(target), folder / "link");
        setenv("VIREO2_COM1", (folder / "link").c_str(), 1);
    };
    const auto awaitText = [this](const char *file, const std::string &text) {
        for (int i = 0; i < 2000; i++, PLT_SleepMs(5))
            if (ReadFileText(folder / file).find(text) != std::string::npos)
                return;
        ADD_FAILURE() << text << " did not come";
    };
    plug();
    Write("w.dbg", "[8000],u2\n");
    Write("Vireo2.ini", "o-\n");
    Write("run", "cd '" + folder.path +
                     "'\n'" BINARY_DIR
                     "/vireo2-console' --watch w.dbg --sweeps 999999 --format csv >live 2>err &\n"
                     "echo $! >pid\nwait $!\necho $? >code\n");
    ASSERT_EQ(0, std::system(("sh '" + (folder / "run").string() + "' &").c_str()));
    awaitText("live", ",0\n");
    SIM_Stop(target);
    target = nullptr;
    awaitText("err", "COM1 is gone");
    plug();
    awaitText("err", "COM1 is back");
    const std::string before = ReadFileText(folder / "live");
    for (int i = 0; i < 2000 && CountLines(ReadFileText(folder / "live")) < CountLines(before) + 3;
         i++)
        PLT_SleepMs(5);
    kill(std::stoi(ReadFileText(folder / "pid")), SIGINT);
    awaitText("code", "\n");
    EXPECT_EQ("1\n", ReadFileText(folder / "code")) << "not all sweeps that were asked for";
    const std::string live = ReadFileText(folder / "live");
    EXPECT_EQ(",0\n", live.substr(live.size() - 3));
}

} // namespace
