// The log of a target, from the console: what is read, what is written, and every way in
// which it fails.
#include "logger/dlld.h"
#include "settings/limits.h"

#include "comm/communication.h"
#include "logger/dlld_record.h"
#include "support/log_target.h"
#include "symbols/typemap.h"

#include <csignal>
#include <functional>
#include <sys/resource.h>

namespace {

const std::string EXAMPLES = EXAMPLES_DIR "/";

struct LogTarget : LogRig {
    static inline std::function<void(uint32_t done, uint32_t total)> onProgress;
    static inline std::vector<std::string> errors;
    static inline bool isCancelWished;

    void SetUp() override
    {
        LogRig::SetUp();
        PutRecIds(0, {});
        PutLog(Sample());
    }
    void TearDown() override
    {
        onProgress = nullptr;
        errors.clear();
    }
    static LogBuilder Sample()
    {
        return LogBuilder().Text("first").Add(0x20, {0, 5}, STAMP_2015 + 30);
    }
    DLLD_Log PutLog(LogBuilder log, size_t words = 2000)
    {
        const DLLD_Log finished = log.Finish(words, LOG_BUFFER_AT / 2);
        LogRig::PutLog(finished);
        return finished;
    }
    // The module without the console: errors and progress come here.
    void UseOwnHost()
    {
        DLLD_Host host;
        host.station = STATION;
        host.isWordAddressing = host.hasRecIds = true;
        host.showError = [](const char *title, const std::string &text) {
            errors.push_back(std::string(title) + ": " + text);
        };
        host.showProgress = [](uint32_t done, uint32_t total, const char *) {
            if (onProgress)
                onProgress(done, total);
            return isCancelWished;
        };
        isCancelWished = false;
        onProgress = nullptr;
        DLLD_SetHost(host);
        ASSERT_EQ(VR_OpenLink(), 0);
    }
    static std::string Popups(size_t from)
    {
        std::string text;
        for (size_t i = from; i < HL_GetPopups().size(); i++)
            text += HL_GetPopups()[i] + "|";
        return text;
    }
};

const char LISTING[] = "\n2015-03-01 10:20:30 MsgType=02 Text: 'first'"
                       "\n2015-03-01 10:21:30 MsgType=20 ";

} // namespace

TEST_F(LogTarget, GetLogWritesBothFiles)
{
    PutRecIds(1, {{0x20, "Rec;a:u2;b:u2 V"}});
    const DLLD_Log log = PutLog(Sample());
    EXPECT_EQ(Run("getlog DL_log, out"),
              "Reading log DL_log! This can take up to few minutes, wait please ...\n"
              "Writing log data to HDD ('out' + .bin, .slog)\n"
              "getlog DL_log, out -> OK!\n");
    EXPECT_EQ(ReadFile("out.slog"), LISTING + std::string("Rec\n\ta = 0\n\tb = 5 V"));
    const std::vector<uint8_t> bytes = LogBytes(log);
    EXPECT_EQ(ReadFile("out.bin"), std::string(bytes.begin(), bytes.end()));
    // Without a table every record is hexadecimal.
    PutRecIds(0, {});
    Run("getlog '1:_DL_log',none");
    EXPECT_EQ(ReadFile("none.slog"), LISTING + std::string("MsgStart=ee\n    0000 0005 "));
    EXPECT_TRUE(HL_GetPopups().empty());
}

TEST_F(LogTarget, GetLogSaysOnceWhyItFailed)
{
    const std::string types = "Could not read log type list (DL_arecId).", log = "(DL_log).";
    const struct {
        const char *arguments;
        uint32_t spoiled; // address, 0 = nothing
        std::vector<uint8_t> bytes;
        std::string error, popups;
    } cases[] = {
        {"'',out", 0, {}, "Invalid parameters.", ""},
        {"DL_log,", 0, {}, "Invalid parameters.", ""},
        {"DL_log,out", LOG_COUNT_AT, {0, 1}, types, "Error: Data integrity.|"}, // 256
        {"DL_log,out", LOG_COUNT_AT, {255, 255}, types, "Error: Data integrity.|"},
        {"x,out", 0, {}, "Could not read the log (x).", "Error: Variable 'x' not found|"},
        {"nSpeedRef,out", 0, {}, "", "Error: Variable 'nSpeedRef.dwLogAddr' not found|"},
        {"'2:DL_log',out", 0, {}, "", "Error: Variable '2:DL_log' not found|"},
        {"DL_log,out", LOG_BUFFER_AT + 8, {'l'}, log, "Read error: Bad log header (DL_log).|"},
        {"DL_log,out",
         LOG_VARIABLE_AT + 4,
         {1, 0, 8},
         log,
         "Read error: Bad log header (DL_log).|"},
        {"DL_log,out",
         LOG_VARIABLE_AT,
         {254, 255, 127},
         log,
         "Read error: Data read error (16 bytes at address FFFFFCh).|"},
        {"DL_log,no/out", 0, {}, "Couldn't open output file 'no/out.bin'.", ""},
    };
    const auto check = [&](const char *arguments, const std::string &error,
                           const std::string &popups) {
        const size_t before = HL_GetPopups().size();
        const std::string text = Run(std::string("getlog ") + arguments);
        const size_t at = text.find("ERROR - getlog: ");
        ASSERT_NE(at, std::string::npos) << text;
        EXPECT_NE(text.find(error + "\n", at), std::string::npos) << text;
        EXPECT_EQ(text.find("ERROR", at + 1), std::string::npos) << text;
        EXPECT_EQ(Popups(before), popups);
        EXPECT_EQ(ReadFile("out.bin") + ReadFile("out.slog"), "<none><none>") << text;
    };
    for (const auto &c : cases) {
        PutRecIds(0, {});
        PutLog(Sample());
        Poke(c.spoiled, c.bytes);
        check(c.arguments, c.error, c.popups);
    }
    PutLog(Sample());
    HL_CancelProgressAt(2);
    check("DL_log,out", "cancelled by the user.", "");
    Procesor = CPU_F2803X;
    check("DL_log,out", types, "Error: Unsupported CPU.|");
    Procesor = CPU_F283XX;
    SIM_Options dead;
    dead.stations = 0;
    SIM_SetFaults(target, dead);
    check("DL_log,out", types + std::string(" (no answer)"),
          "Read error: Data read error (2 bytes at address  182D0h).|");
}

TEST_F(LogTarget, FullDiskBehindTheRawFile)
{
    LogBuilder log;
    for (int i = 0; i < 120; i++)
        log.Add(0x20, {1, 2, 3, 4, 5, 6, 7, 8});
    PutLog(log);
    WriteFileText("out.slog", "old");
    rlimit unlimited;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    rlimit full = unlimited;
    full.rlim_cur = 5000; // the raw file has 4,000 bytes, the listing more
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &full);
    const std::string text = Run("getlog DL_log,out");
    setrlimit(RLIMIT_FSIZE, &unlimited);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_TRUE(Has(text, "ERROR - getlog: Couldn't save output file.\n"));
    EXPECT_EQ(ReadFile("out.bin").size(), 4000u);
    EXPECT_EQ(ReadFile("out.slog"), "old");
    const std::filesystem::directory_iterator entries(folder.path), none;
    EXPECT_EQ(std::distance(entries, none), 2); // nothing half-written is left
}

TEST_F(LogTarget, ReadsTheRecordTable)
{
    const std::string endless(126, 'x');
    const std::vector<std::pair<int, std::string>> entries = {
        {0x20, "Rec;a:u2"}, {0x21, endless}, {0x22, ""}, {0x23, "Bad;a"}, {-1, "x"}, {0x24, "No"}};
    PutRecIds(6, entries);
    UseOwnHost();
    ASSERT_EQ(DLLD_ReadARecId(), 0);
    EXPECT_EQ(DLLD_nDimARecId, 4);
    EXPECT_NE(DLLD_FindRecord(0x20), nullptr);
    for (const uint8_t type : {uint8_t(0x21), uint8_t(0x22), uint8_t(0x23), uint8_t(0x24)})
        EXPECT_EQ(DLLD_FindRecord(type), nullptr) << int(type);
    // A failure leaves the table as it was.
    PutLong(LOG_TABLE_AT + 4, 0x7FFFF0);
    EXPECT_EQ(DLLD_ReadARecId(), -1);
    EXPECT_EQ(DLLD_nDimARecId, 4);
    EXPECT_EQ(errors.back(), "Read error: Data read error (126 bytes at address FFFFE0h).");
    // One character a word, and the highest count there may be.
    Poke(LOG_TEXTS_AT, {'W', 0, ';', 0, 'a', 0, ':', 0, 'u', 0, '1', 0, 0, 0});
    PutLong(LOG_TABLE_AT + 4, LOG_TEXTS_AT / 2);
    PutRecIds(255, {});
    ASSERT_EQ(DLLD_ReadARecId(), 0);
    EXPECT_EQ(DLLD_paRecId[0].text, "W;a:u1");
    char byte = 0;
    EXPECT_EQ(DLLD_ReadVar("", 1, &byte) + DLLD_ReadVar("DL_log", 0, &byte), -2);
    EXPECT_EQ(errors.back(), "Internal error: DLLD_ReadVar bad parameters.");
    EXPECT_EQ(errors.size(), 3u);
}

// What happens on the target once the first block has been read.
TEST_F(LogTarget, ReadsALogThatChangesOnceMore)
{
    const uint32_t end = LOG_BUFFER_AT + 2 * static_cast<uint32_t>(Sample().log.size());
    const std::string changes = "Read error: The log changes while it is read (DL_log).";
    const struct {
        const char *what;
        uint32_t address;
        std::vector<uint8_t> bytes;
        bool isEveryTime;
        int tries; // that got as far as the log itself
        std::string error;
    } cases[] = {
        {"nothing", LOG_BUFFER_AT, {}, true, 1, ""},
        {"a message behind the newest", end, {2, 9, 0x55, 0x27, 0x29, 15, 'n'}, true, 1, ""},
        {"the newest goes on", end - 2, {1, 1}, false, 2, ""},
        {"the newest is another", end - 4, {9}, false, 2, ""},
        {"the newest has a head", end - 14, {1, 1}, false, 2, ""},
        {"the reserved word", LOG_BUFFER_AT + 14, {1}, false, 2, ""},
        {"the same, every time", LOG_BUFFER_AT + 14, {0}, true, 2, changes},
        {"another place",
         LOG_BUFFER_AT,
         {0x34, 0x12},
         false,
         1,
         "Read error: Bad log header (DL_log)."},
    };
    for (const auto &c : cases) {
        PutLog(Sample());
        UseOwnHost();
        errors.clear();
        int tries = 0;
        onProgress = [&](uint32_t done, uint32_t) {
            if (done != 1024 || (tries++ > 0 && !c.isEveryTime))
                return;
            std::vector<uint8_t> bytes = c.bytes;
            if (c.address == LOG_BUFFER_AT + 14)
                bytes[0] = static_cast<uint8_t>(tries);
            Poke(c.address, bytes);
        };
        DLLD_Log log = {1, 2, 3};
        EXPECT_EQ(DLLD_ReadLog("DL_log", &log), c.error.empty() ? 0 : -1) << c.what;
        EXPECT_EQ(tries, c.tries) << c.what;
        EXPECT_EQ(errors,
                  c.error.empty() ? std::vector<std::string>() : std::vector<std::string>{c.error})
            << c.what;
        EXPECT_EQ(log.size(), c.error.empty() ? 2000u : 3u);
    }
}

TEST_F(LogTarget, ReadsUpToTheLastByteOfTheMemoryAndNoFurther)
{
    UseOwnHost();
    uint8_t bytes[65];
    EXPECT_EQ(DLLD_ReadData(ADDR_LIMIT - 64, 64, bytes), 0);
    EXPECT_EQ(DLLD_ReadData(ADDR_LIMIT - 64, 65, bytes), -1);
}

// Two requests a try, and the line's proofs.
TEST_F(LogTarget, ADamagedHeaderIsAskedForOnceMore)
{
    PutLog(Sample());
    UseOwnHost();
    Poke(LOG_BUFFER_AT + 9, {'x'});
    const uint64_t before = SIM_GetCounters(target).requests;
    DLLD_Log log;
    EXPECT_EQ(DLLD_ReadLogAt(LOG_BUFFER_AT, &log), -1);
    EXPECT_EQ(errors.back(), "Read error: Bad log header (01A000h).");
    EXPECT_GE(SIM_GetCounters(target).requests - before, 4u);
    Poke(LOG_BUFFER_AT + 9, {'O'});
    EXPECT_EQ(DLLD_ReadLogAt(LOG_BUFFER_AT, &log), 0);
}

TEST_F(LogTarget, SaveLogTakesANameOrAnAddress)
{
    const std::vector<uint16_t> state = {0x5180, 1, 1, 0, 2, 0, 3, 0, 0x0105}; // a day and 256 s
    PutLog(Sample().Add(0x10, state).Add(1, {4}).Raw({0x0120, 1}));
    const std::string wanted = "2015-03-01 10:20:30 ST8: first\r\n"
                               "2015-03-01 10:21:30 Usr32: 0000 0005\r\n"
                               "2015-03-01 10:20:30 T=1d ErrFlag=00000001 IntErr=00000002 "
                               "Warning=00000003 DevSt=05\r\n";
    for (const char *place : {"DL_log", "_DL_log", "1A000H"}) {
        Run(std::string("savelog ") + place + ", old.txt");
        EXPECT_EQ(ReadFile("old.txt"), wanted) << place;
        std::filesystem::remove("old.txt");
    }
    const std::string bad = "Neplatne parametry skriptu.";
    for (const auto &[line, error] : std::vector<std::pair<std::string, std::string>>{
             {"nothing, old.txt", bad},
             {"1000000H, old.txt", bad},
             {"1A002H, old.txt", "Chyba pri cteni logu."},
             {"DL_log, none/old.txt", "Nelze otevrit soubor 'none/old.txt'."}})
        EXPECT_TRUE(Has(Run("savelog " + line), "ERROR - SaveLog: " + error));
}

TEST_F(LogTarget, DlldTstLooksWithoutDownloading)
{
    EXPECT_EQ(Run("dlldtst 0"), "  1  _DL_log\ndlldtst 0 -> OK!\n");
    PutRecIds(3, {{0x20, "Rec;a:u2"}, {0x21, "Bad;a"}, {0x22, ""}});
    LogBuilder log = Sample();
    for (uint32_t i = 0; i < 100; i++)
        log.Add(0x20, {1, 2}, STAMP_2015 + 60 + 30 * i);
    PutLog(log, 20000);
    const uint64_t before = SIM_GetCounters(target).requests;
    EXPECT_EQ(Run("dlldtst 1"), "Log:      _DL_log, 20000 words at 01A000h\n"
                                "Header:   D000 0000 4E20 0000 4F4C 4F47 3A53 0000 (good)\n"
                                "Filled:   620 words, 3 %\n"
                                "First:    2015-03-01 10:20:30\n"
                                "Last:     2015-03-01 12:01:30\n"
                                "Records:  3\n"
                                "  20h  Rec;a:u2\n"
                                "  21h  Bad;a (wrong at character 6)\n"
                                "  22h  no description\n"
                                "dlldtst 1 -> OK!\n");
    EXPECT_LT(SIM_GetCounters(target).requests - before, 40u); // the whole log takes 625
    PutLog(LogBuilder(), 8);
    EXPECT_TRUE(
        Has(Run("dlldtst 1"), "Filled:   8 words, 100 %\nFirst:    none\nLast:     none\n"));
    PutLog(LogBuilder().Raw({5, 6}), 100);
    EXPECT_TRUE(Has(Run("dlldtst 1"), "Filled:   10 words, 10 %\nFirst:    none\n"));
    Poke(LOG_BUFFER_AT + 8, {'l'});
    EXPECT_TRUE(Has(Run("dlldtst 1"), "(bad)\nERROR - dlldtst: Bad log header (_DL_log)."));
    for (const char *line : {"dlldtst 2", "dlldtst -1"})
        EXPECT_TRUE(Has(Run(line), "logs are numbered 1 to 1"));
    TMF_CleanTables();
    EXPECT_TRUE(Has(Run("dlldtst 0"), "no variable of the map"));
}

// What the examples name is what the simulated target keeps, on both processors.
TEST_F(LogTarget, TheDemoTargetKeepsALog)
{
    SIMT_Stop(RIG_PORT, target);
    target = SIMT_Start(RIG_PORT, SIM_Options());
    ASSERT_NE(target, nullptr);
    UCM_Close();
    Run("getlog DL_log,out");
    const std::string listing = ReadFile("out.slog");
    for (const char *part : {"MsgType=02 Text: 'Station 1, message 0'\n", "MsgType=20 Drive\n\tsp",
                             "MsgType=10 #BSTAMP\n    S=0005h(ctl,run), t=180s"})
        EXPECT_TRUE(Has(listing, part)) << part;
    Procesor = CPU_C167;
    ASSERT_EQ(map2node((EXAMPLES + "demo.m66").c_str()), 0);
    ASSERT_EQ(TMF_OpenMap((EXAMPLES + "demo.tmf").c_str()), 0);
    EXPECT_TRUE(Has(Run("savelog stDataLog, old.txt"), "-> OK!"));
    EXPECT_TRUE(Has(ReadFile("old.txt"), " ST8: Station 1, message 8\r\n"));
}
