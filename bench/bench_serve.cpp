// Reads a second that `--serve` answers on a line without pacing: one after the other, many on
// their way at once, and of sixteen items each; against the same reads and proofs within one
// program, where nothing is said about them.
#include "bench.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace {

constexpr double AIM = 5000; // values a second
constexpr int ROUNDS = 5, REQUESTS = 2000;
constexpr uint32_t ADDRESS = 0x8000;

struct Client {
    std::FILE *requests = nullptr, *answers = nullptr;
};

Client StartServer()
{
    const std::string program = PLT_ProgramDir() + "/vireo2-console";
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "bench_serve";
    std::filesystem::create_directories(folder);
    std::FILE *settings = std::fopen((folder / "Vireo2.ini").c_str(), "wb");
    if (settings == nullptr)
        BEN_Fail("the settings cannot be written");
    std::fclose(settings);
    int to[2], from[2];
    if (pipe(to) != 0 || pipe(from) != 0)
        BEN_Fail("no pipe");
    const pid_t child = fork();
    if (child == 0) {
        dup2(to[0], STDIN_FILENO);
        dup2(from[1], STDOUT_FILENO);
        for (const int fd : {to[0], to[1], from[0], from[1]})
            close(fd);
        if (chdir(folder.c_str()) == 0)
            execl(program.c_str(), program.c_str(), "-1", "-s1", "--serve", nullptr);
        _exit(1);
    }
    close(to[0]);
    close(from[1]);
    return {fdopen(to[1], "wb"), fdopen(from[0], "rb")};
}

void Ask(const Client &client, const std::string &request)
{
    if (std::fwrite(request.data(), 1, request.size(), client.requests) != request.size())
        BEN_Fail("the server has ended");
}

void AwaitAnswer(const Client &client)
{
    char line[8192];
    std::fflush(client.requests);
    if (std::fgets(line, sizeof line, client.answers) == nullptr)
        BEN_Fail("the server has ended");
    if (std::strstr(line, "\"raw\"") == nullptr)
        BEN_Fail(line);
}

// Values a second, with so many requests on their way at a time.
double ServedPerSecond(const Client &client, const std::string &request, int items, int atOnce)
{
    const double seconds = BEN_BestSeconds(ROUNDS, [&] {
        int asked = 0;
        for (int answered = 0; answered < REQUESTS; ++answered) {
            for (; asked < REQUESTS && asked < answered + atOnce; ++asked)
                Ask(client, request);
            AwaitAnswer(client);
        }
    });
    return REQUESTS * items / seconds;
}

double BarePerSecond(int proofs)
{
    BEN_OpenLine(PROTOCOL_MR166);
    const double seconds = BEN_BestSeconds(ROUNDS, [&] {
        for (int i = 0; i < REQUESTS; ++i) {
            uint8_t bytes[2];
            if (UCM_Read(1, ADDRESS, sizeof bytes, bytes) < 0)
                BEN_Fail("a read failed");
            if (i % (REQUESTS / proofs) == 0 && UCM_Prove() != UCM_PROVEN)
                BEN_Fail("a proof failed");
        }
    });
    UCM_Close();
    return REQUESTS / seconds;
}

} // namespace

int main()
{
    std::signal(SIGPIPE, SIG_IGN);
    UCM_Init();
    UCM_UseWin32(1);
    SIM_Target *target = BEN_StartTarget(SIM_Options());
    const double alone = BarePerSecond(REQUESTS), together = BarePerSecond(REQUESTS / 32);
    setenv("VIREO2_COM1", SIM_DevicePath(target), 1);
    const Client client = StartServer();
    const std::string one = R"({"id":1,"op":"read","item":{"name":"[8000]","type":"u2"}})"
                            "\n";
    std::string many = R"({"id":1,"op":"read","items":[)";
    for (int i = 0; i < 16; ++i)
        many += std::string(i > 0 ? "," : "") + R"({"name":"[)" + std::to_string(8000 + 2 * i) +
                R"(]","type":"u2"})";
    many += "]}\n";
    const struct {
        const char *what;
        double rate, floor;
    } rows[] = {{"one after the other", ServedPerSecond(client, one, 1, 1), alone},
                {"32 on their way", ServedPerSecond(client, one, 1, 32), together},
                {"16 items a request", ServedPerSecond(client, many, 16, 1), together}};
    std::printf("%-24s %12s %12s %10s %10s\n", "values a second", "in-process", "served", "ratio",
                "of aim");
    for (const auto &row : rows)
        std::printf("%-24s %12.0f %12.0f %10.2f %10.2f\n", row.what, row.floor, row.rate,
                    row.rate / row.floor, row.rate / AIM);
    std::fclose(client.requests);
    std::fclose(client.answers);
    SIM_Stop(target);
    return 0;
}
