// The simulated target against frames computed by hand, so that it can judge the program.
#include "sim/sim.h"
#include "support/text_checks.h"

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int PATIENCE_MS = 5000;

struct SimTest : testing::Test {
    SIM_Target *target = nullptr;
    int port = -1;

    void start(SIM_Options options)
    {
        std::string error;
        target = SIM_Start(options, &error);
        ASSERT_NE(target, nullptr) << error;
        port = open(SIM_DevicePath(target), O_RDWR | O_NOCTTY);
        ASSERT_GE(port, 0);
    }
    void send(const std::string &bytes) const
    {
        ASSERT_EQ(write(port, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    // Everything up to the `ends`-th end character.
    std::string receive(int ends = 1) const
    {
        std::string got;
        pollfd fd = {port, POLLIN, 0};
        char c;
        while (ends > 0 && poll(&fd, 1, PATIENCE_MS) > 0 && read(port, &c, 1) == 1) {
            got += c;
            ends -= c == '\x03';
        }
        return got;
    }
    std::string ask(const std::string &request) const
    {
        send(request);
        return receive();
    }
    void TearDown() override
    {
        if (port >= 0)
            close(port);
        SIM_Stop(target);
    }
};

const char READ_NOTHING[] = "\002100001000000136E\x03";
const char NOTHING[] = "\006100056B7\x03";
const char WRITTEN[] = "\0061800E5AF\x03";

TEST_F(SimTest, AnswersEachKindOfRequest)
{
    const struct {
        const char *request, *answer;
    } cases[] = {{"\03218DEBC0A021234A5A5A5A5A5A5A5A5A5A5A5A5A5A5D9D1\x03", WRITTEN},
                 {"\00210DEBC0A04008C70\x03", "\0061004123400003855\x03"},
                 {"\002100001004100DDF4\x03", "\0061041D697\x03"}, // 65 bytes wanted
                 {READ_NOTHING, NOTHING},
                 {"\0021400020034128364\x03", "\00614023412A571\x03"},
                 {"\002190002003412A551\x03", "\00619007D6A\x03"}};
    start({});
    for (const auto &c : cases)
        EXPECT_EQ(ask(c.request), c.answer) << c.request;
    SIM_SetErrorCode(target, 0, 255);
    EXPECT_EQ(ask(READ_NOTHING).substr(0, 5), "\00610FF");
}

TEST_F(SimTest, FindsFramesAmongGarbageAndStaysSilentOtherwise)
{
    SIM_Options options;
    options.stations = 0xFFFF & ~(1U << 5);
    start(options);
    const std::string silent = std::string("noise\x03\x06") +
                               "\0025000010001005151\x03"  // station 5 is absent
                               "\002100001000000136F\x03"  // wrong check value
                               "\00210000100000013"        // cut short
                               "\002100001000000136e\x03"; // lower case
    EXPECT_EQ(ask(silent + READ_NOTHING), NOTHING);
    const SIM_Counters counters = SIM_GetCounters(target);
    EXPECT_EQ(counters.requests, 1U);
    EXPECT_EQ(counters.answers, 1U);
    EXPECT_EQ(counters.malformed, 3U);
}

TEST_F(SimTest, AnswersNeverComeBeforeTheirTimeOnTheWire)
{
    SIM_Options options;
    options.baud = 9600;
    start(options);
    const int64_t charNs = 11 * 1000000000LL / 9600;
    timespec begin, end;
    clock_gettime(CLOCK_MONOTONIC, &begin);
    for (int i = 0; i < 3; i++)
        EXPECT_EQ(ask(READ_NOTHING), NOTHING);
    clock_gettime(CLOCK_MONOTONIC, &end);
    const int64_t took = (end.tv_sec - begin.tv_sec) * 1000000000LL + end.tv_nsec - begin.tv_nsec;
    EXPECT_GE(took, 3 * (18 + 10) * charNs - 4000000); // lateness of ours is given back
}

const char MAILBOX_ADDRESS[] = "\0321804C0030410040000A5A5A5A5A5A5A5A5A5A5A5A5B67E\x03";
const char MAILBOX_READ[] = "\0321800C0030401000000A5A5A5A5A5A5A5A5A5A5A5A55BCA\x03";
const char MAILBOX_PUT[] = "\0321808C0030478563412A5A5A5A5A5A5A5A5A5A5A5A50CC6\x03";
const char MAILBOX_WRITE[] = "\0321800C0030402000000A5A5A5A5A5A5A5A5A5A5A5A56B8F\x03";
const char MAILBOX_POLL[] = "\0021000C00302005240\x03";
const char MAILBOX_GET[] = "\0021008C0030400419E\x03";

TEST_F(SimTest, MailboxReadsAndWritesWordsOfTheTms)
{
    start({});
    SIM_PokeTMS(target, 1, 0x410, 0xDEADBEEF);
    EXPECT_EQ(ask(MAILBOX_ADDRESS), WRITTEN);
    EXPECT_EQ(ask(MAILBOX_READ), WRITTEN);
    EXPECT_EQ(ask(MAILBOX_POLL), "\00610020000CABD\x03");
    EXPECT_EQ(ask(MAILBOX_GET), "\0061004EFBEADDE2C97\x03");
    EXPECT_EQ(ask(MAILBOX_PUT), WRITTEN);
    EXPECT_EQ(ask(MAILBOX_WRITE), WRITTEN);
    EXPECT_EQ(SIM_PeekTMS(target, 1, 0x410), 0x12345678U);
    SIM_Options dead;
    dead.mailbox = false;
    SIM_SetFaults(target, dead);
    EXPECT_EQ(ask(MAILBOX_READ), WRITTEN);
    EXPECT_EQ(ask(MAILBOX_POLL), "\006100201005278\x03"); // stays busy
}

// Address of a public symbol in the example map, so that map and target stay together.
uint32_t AddressOf(const std::string &name)
{
    std::ifstream map(EXAMPLES_DIR "/demo.m66");
    std::string line;
    while (std::getline(map, line))
        if (line.size() > 46 && line.substr(9, name.size() + 1) == name + " ")
            return static_cast<uint32_t>(std::stoul(line, nullptr, 16));
    ADD_FAILURE() << name << " is not in the map";
    return 0;
}

TEST_F(SimTest, DemoVariablesMoveAndFollowTheirSetPoints)
{
    start({});
    uint32_t first = 0, later = 0;
    SIM_Peek(target, 0, AddressOf("dwCount"), &first, 4);
    do
        SIM_Peek(target, 0, AddressOf("dwCount"), &later, 4);
    while (later == first);
    EXPECT_GT(later, first);
    const uint16_t gain = 0;
    const int16_t offset = -321;
    int16_t output = 0;
    SIM_Poke(target, 3, AddressOf("wGain"), &gain, 2);
    SIM_Poke(target, 3, AddressOf("nOffset"), &offset, 2);
    SIM_Peek(target, 3, AddressOf("nOutput"), &output, 2);
    EXPECT_EQ(output, offset);
    SIM_Peek(target, 4, AddressOf("nOffset"), &output, 2); // another station keeps its own
    EXPECT_EQ(output, 0);
    EXPECT_EQ(SIM_PeekTMS(target, 0, 0x404), 0x00400000U); // 1.5 in the TMS320's format
}

TEST(SimLink, IsReplacedAndRemovedOnlyByItsOwner)
{
    SIM_Options options;
    options.link = testing::TempDir() + "vireo2-sim-link-" + std::to_string(getpid());
    std::string error;
    SIM_Target *first = SIM_Start(options, &error);
    SIM_Target *second = SIM_Start(options, &error);
    ASSERT_TRUE(first && second) << error;
    SIM_Stop(first);
    EXPECT_EQ(access(options.link.c_str(), F_OK), 0);
    SIM_Stop(second);
    EXPECT_NE(access(options.link.c_str(), F_OK), 0);
    options.link = testing::TempDir();
    EXPECT_EQ(SIM_Start(options, &error), nullptr);
    EXPECT_TRUE(Has(error, "Cannot make the link"));
}

} // namespace
