// Ports behind the network: addresses, ends that close, stall or dribble, numbers.
#include "platform/port_list.h"
#include "platform/remote_ports.h"
#include "platform/serial.h"
#include "platform/system.h"
#include "platform/tcp_port.h"
#include "support/link_fixture.h"

#include <arpa/inet.h>
#include <atomic>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace {

constexpr int PORT = 71;
constexpr int PATIENCE_MS = 5000;

TEST(RemotePorts, KnowTheirAddresses)
{
    const struct {
        const char *text, *host, *port; // host null: no address
    } cases[] = {{"tcp:server:4001", "server", "4001"}, {"tcp:10.0.0.7:65535", "10.0.0.7", "65535"},
                 {"tcp:[::1]:80", "::1", "80"},         {"tcp:server", nullptr, nullptr},
                 {"tcp:server:", nullptr, nullptr},     {"tcp::4001", nullptr, nullptr},
                 {"tcp:server:0", nullptr, nullptr},    {"tcp:server:65536", nullptr, nullptr},
                 {"tcp:server:4x", nullptr, nullptr},   {"tcp:::1:80", nullptr, nullptr},
                 {"tcp:a b:80", nullptr, nullptr},      {"tcp:../x:80", nullptr, nullptr},
                 {"/dev/ttyS0", nullptr, nullptr},      {"", nullptr, nullptr}};
    for (const auto &row : cases) {
        std::string host, port;
        ASSERT_EQ(row.host != nullptr, TCP_ParseAddress(row.text, &host, &port)) << row.text;
        if (row.host != nullptr) {
            EXPECT_EQ(row.host, host);
            EXPECT_EQ(row.port, port);
        }
    }
}

// A socket that listens on this machine, and its first connection.
struct FarEnd : testing::Test {
    void TestBody() override
    {
    }
    int listening = -1, far = -1;
    SER_Handle port = SER_INVALID;

    void SetUp() override
    {
        sockaddr_in name = {};
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof name;
        auto *generic = reinterpret_cast<sockaddr *>(&name);
        listening = socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_EQ(0, bind(listening, generic, size));
        ASSERT_EQ(0, listen(listening, 4));
        ASSERT_EQ(0, getsockname(listening, generic, &size));
        const std::string address = "tcp:127.0.0.1:" + std::to_string(ntohs(name.sin_port));
        setenv("VIREO2_COM71", address.c_str(), 1);
        ASSERT_EQ(SER_OK, SER_Open(PORT, &port));
        far = accept(listening, nullptr, nullptr);
        ASSERT_GE(far, 0);
        ASSERT_EQ(SER_OK, SER_Configure(port, SER_Settings()));
        ASSERT_EQ(SER_OK, SER_SetTimeouts(port, 50, 50));
    }
    void TearDown() override
    {
        SER_Close(port);
        for (const int fd : {far, listening})
            if (fd >= 0)
                close(fd);
        unsetenv("VIREO2_COM71");
    }
    void Send(const std::string &bytes)
    {
        const int before = SER_BytesWaiting(port);
        ASSERT_EQ(static_cast<ssize_t>(bytes.size()), write(far, bytes.data(), bytes.size()));
        while (SER_BytesWaiting(port) < before + static_cast<int>(bytes.size()))
            PLT_SleepMs(1);
    }
};

TEST_F(FarEnd, IsAPortLikeAnyOther)
{
    const std::string all = std::string("\x00\x03\r\n\x11\x13\x1A\xFF", 8);
    char got[16];
    EXPECT_EQ(8, SER_Write(port, all.data(), 8));
    EXPECT_EQ(8, read(far, got, sizeof got));
    EXPECT_EQ(all, std::string(got, 8));
    EXPECT_EQ(0, SER_Read(port, got, 8)) << "silence";
    Send("old");
    EXPECT_EQ(3, SER_BytesWaiting(port));
    EXPECT_EQ(SER_OK, SER_DropInput(port));
    Send("new");
    EXPECT_EQ(2, SER_ReadSome(port, got, 2, PATIENCE_MS));
    EXPECT_EQ('n', got[0]);
    EXPECT_EQ(1, SER_Read(port, got, 8)) << "what came in time";
    const std::string flood(64u << 20, 'x');
    EXPECT_LT(SER_Write(port, flood.data(), flood.size()), 64 << 20)
        << "an end that takes nothing holds nobody";
}

TEST_F(FarEnd, IsGoneOnceItHasClosed)
{
    char got[8];
    Send("last");
    close(far);
    far = -1;
    EXPECT_EQ(4, SER_BytesWaiting(port)) << "what it sent before counts";
    EXPECT_EQ(4, SER_Read(port, got, 8));
    EXPECT_EQ(SER_ERR_IO, SER_BytesWaiting(port));
    EXPECT_EQ(SER_ERR_IO, SER_Read(port, got, 8));
    EXPECT_EQ(SER_ERR_IO, SER_ReadSome(port, got, 8, 10));
    SER_Close(port);
    EXPECT_EQ(SER_ERR_IO, SER_Write(port, got, 1)) << "closed on this side, too";
    close(listening);
    listening = -1;
    EXPECT_EQ(SER_ERR_OPEN, SER_Open(PORT, &port));
    EXPECT_EQ(SER_WHY_REFUSED, SER_LastReason());
}

// The target at the end of the network, as the programs meet it.
struct RemoteLink : LinkTest {
    void PlugAt(const std::string &place)
    {
        options.tcp = place;
        plug();
    }
};

TEST_F(RemoteLink, ReadsWritesGoesAndComesBack)
{
    PlugAt("0");
    const std::string place = SIM_DevicePath(target);
    for (const int isWin32 : {1, 0}) { // both drivers
        MrASC_UseWin32(isWin32);
        const uint8_t bytes[] = {1, 2, 3, 4};
        uint8_t got[4] = {};
        ASSERT_EQ(0, UCM_Open(1, LINK_PORT, LINK_BAUD));
        EXPECT_EQ(0, UCM_Write(1, 0x8000, 4, bytes));
        EXPECT_EQ(0, UCM_Read(1, 0x8000, 4, got));
        EXPECT_EQ(0, memcmp(bytes, got, 4));
        EXPECT_EQ("COM61 (" + place + ")", UCM_PortName(LINK_PORT));
        // A second program at the same port gets no answers of the first one's.
        SER_Handle second = SER_INVALID;
        char byte = 0;
        ASSERT_EQ(SER_OK, SER_Open(LINK_PORT, &second));
        EXPECT_EQ(SER_ERR_IO, SER_ReadSome(second, &byte, 1, PATIENCE_MS));
        SER_Close(second);
        EXPECT_EQ(0, UCM_Read(1, 0x8000, 4, got));

        unplug();
        EXPECT_GT(0, UCM_Read(1, 0x8000, 4, got));
        EXPECT_TRUE(UCM_IsGone());
        EXPECT_EQ("port is gone", UCM_LastErrorText());
        UCM_Close();
        PlugAt(place.substr(4)); // where it was
        setenv("VIREO2_COM61", place.c_str(), 1);
    }
}

TEST_F(RemoteLink, ADribblingEndGivesNoValue)
{
    FarEnd end;
    end.SetUp();
    SER_Close(end.port);
    // Echoes nothing, answers a byte at a time, slower than anybody waits.
    std::atomic<bool> isEnding{false};
    std::thread dribble([&] {
        const int far = accept(end.listening, nullptr, nullptr);
        while (!isEnding) {
            (void)!send(far, "<", 1, MSG_NOSIGNAL);
            PLT_SleepMs(HASTY_MS / 2);
        }
        close(far);
    });
    Mr166_nTimeoutMs = HASTY_MS;
    uint8_t byte = 0x55;
    ASSERT_EQ(0, UCM_Open(1, PORT, LINK_BAUD));
    EXPECT_GT(0, UCM_Read(1, 0x8000, 1, &byte));
    EXPECT_NE("", UCM_LastErrorText());
    isEnding = true;
    dribble.join();
    end.TearDown();
}

TEST(RemotePorts, GetTheFirstFreeNumberAndKeepIt)
{
    const ScratchFolder folder;
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    setenv("VIREO2_COM1", "/dev/null", 1);
    const std::string address = "tcp:server:4001";
    int number = 0, again = 0;
    ASSERT_EQ(0, SER_PortUse(address, &number));
    EXPECT_GT(number, 1);
    ASSERT_EQ(0, SER_PortUse(address, &again));
    EXPECT_EQ(number, again);
    ASSERT_EQ(0, SER_PortUse("tcp:server:4002", &again));
    EXPECT_EQ(number + 1, again);
    EXPECT_EQ(address, SER_DevicePath(number));
    bool isListed = false;
    for (const SER_PortEntry &port : SER_ListPorts())
        isListed = isListed || (port.number == number && port.device == address);
    EXPECT_TRUE(isListed);
    EXPECT_EQ(0, TCP_SetPortAddress(number, ""));
    EXPECT_NE(address, SER_DevicePath(number));
    setenv("XDG_CONFIG_HOME", "/dev/null", 1);
    EXPECT_EQ(SER_PORT_ERR_WRITE, SER_PortUse(address, &number));
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("VIREO2_COM1");
}

} // namespace
