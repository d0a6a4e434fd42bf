// Another program's requests over standard input and output: values, refusals, watches, bad
// lines, and the client that is shipped as an example.

#include <sstream>
#include <sys/wait.h>

#include "sim/sim.h"
#include "support/scratch.h"
#include "support/text_checks.h"

namespace {

class Serve : public testing::Test {
protected:
    void SetUp() override
    {
        std::string error;
        target = SIM_Start({}, &error);
        ASSERT_TRUE(target) << error;
        setenv("VIREO2_COM1", SIM_DevicePath(target), 1);
        std::filesystem::copy(EXAMPLES_DIR, folder.path, std::filesystem::copy_options::recursive);
    }
    void TearDown() override
    {
        SIM_Stop(target);
        unsetenv("VIREO2_COM1");
    }
    int RunCommand(const std::string &command)
    {
        const int status =
            std::system(("cd '" + folder.path + "' && " + command + " <in >out 2>err").c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    // The answers, a line each.
    std::vector<std::string> Ask(const std::string &requests)
    {
        WriteFileText(folder / "in", requests);
        code = RunCommand("'" BINARY_DIR "/vireo2-console' --serve --full");
        std::istringstream text(ReadFileText(folder / "out"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }
    const ScratchFolder folder;
    SIM_Target *target = nullptr;
    int code = -1;
};

TEST_F(Serve, EveryRequestIsAnsweredInOrderWithItsIdOrItsError)
{
    const struct {
        std::string request, answer; // the answer begins so
    } cases[] = {
        {R"({"id":1,"op":"hello"})", R"({"id":1,"ok":true,"protocol":1,"version":")"},
        {R"({"id":"a","op":"write","item":"wGain","value":65535})",
         R"({"id":"a","ok":true,"values":[{"name":"wGain","value":65535,"text":"65535","raw":65535}]})"},
        {R"({"id":3,"op":"read","items":[{"name":"wGain","type":"i2"},"[8100]","nope"]})",
         R"({"id":3,"ok":true,"values":[{"name":"wGain","value":-1,"text":"-1","raw":65535},)"
         R"({"name":"[0x8100]","value":-1,"text":"-1","raw":65535},{"name":"nope","error":{"code":"not-resolved")"},
        {R"({"id":4,"op":"write","item":"wGain","value":65536})",
         R"({"id":4,"ok":false,"error":{"code":"out-of-range")"},
        {R"({"id":5,"op":"write","item":"wGain","value":"12x"})",
         R"({"id":5,"ok":false,"error":{"code":"bad-value")"},
        {R"({"id":6,"op":"resolve","item":{"name":"wGain","type":"q9"}})",
         R"({"id":6,"ok":false,"error":{"code":"bad-item")"},
        {R"({"id":7,"op":"run","line":"write 2, 77, wGain"})", R"({"id":7,"ok":true,"output":")"},
        {R"({"id":8,"op":"read","item":"wGain"})",
         R"({"id":8,"ok":true,"values":[{"name":"wGain","value":77,)"},
        {R"({"id":9,"op":"run","line":"nonsense"})", R"({"id":9,"ok":false,"output":")"},
        {R"({"id":10,"op":"read"})", R"({"id":10,"ok":false,"error":{"code":"bad-request")"},
        {R"({"id":11,"op":"read","items":[1]})", R"({"id":11,"ok":false,"error":{"code":"bad-req)"},
        {R"({"id":12,"op":7})", R"({"id":12,"ok":false,"error":{"code":"unknown-op")"},
        {R"({"id":13,"op":"watch","item":"wGain","period":1})",
         R"({"id":13,"ok":false,"error":{"code":"bad-request")"},
        {R"({"id":14,"op":"unwatch","watch":5})", R"({"id":14,"ok":false,"error":{"code":"bad-r)"},
        {"{\"id\":15", R"({"id":null,"ok":false,"error":{"code":"bad-json")"},
        {std::string(70000, '['), R"({"id":null,"ok":false,"error":{"code":"too-long")"},
        {std::string(60000, '['), R"({"id":null,"ok":false,"error":{"code":"bad-json")"},
        {"\xff\xfe", R"({"id":null,"ok":false,"error":{"code":"bad-json")"},
        {R"({"id":16,"op":"end"})", R"({"id":16,"ok":true})"}};
    std::string requests;
    for (const auto &c : cases)
        requests += c.request + "\n";
    const std::vector<std::string> answers = Ask(requests + R"({"id":17,"op":"hello"})" + "\n");
    ASSERT_EQ(std::size(cases), answers.size()) << "nothing behind the end";
    for (size_t i = 0; i < answers.size(); i++)
        EXPECT_EQ(cases[i].answer, answers[i].substr(0, cases[i].answer.size()));
    EXPECT_EQ(0, code);
}

// What is sent at once is read together; the answers stay in order and each is of its own item.
TEST_F(Serve, ReadsThatWaitTogetherShareAProof)
{
    constexpr int READS = 64;
    const char *const items[] = {"wGain", "fTempSet", "nope", "[8118]"};
    const char *const texts[] = {R"("raw":100})", R"("value":60.0,)", "not-resolved", R"("raw":)"};
    std::string requests;
    for (int i = 0; i < READS; ++i)
        requests += R"({"id":)" + std::to_string(i) + R"(,"op":"read","item":")" + items[i % 4] +
                    "\"}\n" + (i == 40 ? "{\"id\":\"bad\",\"op\":\"read\"}\n" : "");
    const auto before = SIM_GetCounters(target).requests;
    const auto answers = Ask(requests);
    ASSERT_EQ(READS + 1u, answers.size());
    for (int i = 0; i < READS; ++i) {
        const std::string &answer = answers[static_cast<size_t>(i <= 40 ? i : i + 1)];
        EXPECT_EQ(0u, answer.find(R"({"id":)" + std::to_string(i) + R"(,"ok":true)")) << answer;
        EXPECT_NE(std::string::npos, answer.find(texts[i % 4])) << answer;
    }
    EXPECT_EQ(0u, answers[41].find(R"({"id":"bad","ok":false)")) << answers[41];
    // 48 reads; a proof for each would be as many again.
    EXPECT_LT(SIM_GetCounters(target).requests - before, 48u + 30u);
}

TEST_F(Serve, ATargetThatIsGoneIsAnErrorOfEachRequestAndNotTheEnd)
{
    setenv("VIREO2_COM1", (folder / "unplugged").c_str(), 1);
    const auto answers = Ask("{\"op\":\"read\",\"item\":\"wGain\"}\n{\"op\":\"hello\"}\n");
    ASSERT_EQ(2u, answers.size());
    EXPECT_TRUE(Has(answers[0], R"("code":"port")"));
    EXPECT_TRUE(Has(answers[1], R"("ok":true)"));
}

// More answers than a pipe holds: the program waits for its reader, and when that is gone it ends.
TEST_F(Serve, AClientThatStopsReadingIsWaitedForAndItsEndIsTheProgramsEnd)
{
    std::string requests;
    for (int i = 0; i < 3000; i++)
        requests += R"({"op":"hello"})"
                    "\n";
    WriteFileText(folder / "in", requests);
    EXPECT_EQ(0, RunCommand("sh -c '{ \"" BINARY_DIR "/vireo2-console\" --serve; echo $? >code; } "
                            "| { read first; sleep 0.2; echo \"$first\"; }'"));
    EXPECT_EQ("1\n", ReadFileText(folder / "code"));
    EXPECT_NE(std::string::npos, ReadFileText(folder / "err").find("does not read any more"));
    EXPECT_NE(std::string::npos, ReadFileText(folder / "out").find("\"ok\":true"));
}

TEST_F(Serve, TheExampleClientTestsTheDemoTarget)
{
    WriteFileText(folder / "in", "");
    EXPECT_EQ(0, RunCommand("VIREO2_FOLDER='" + folder.path +
                            "' VIREO2_CONSOLE='" BINARY_DIR
                            "/vireo2-console' PYTHONDONTWRITEBYTECODE=1 sh -c 'cd python && exec "
                            "python3 -m unittest test_demo'"))
        << ReadFileText(folder / "err");
    EXPECT_TRUE(Has(ReadFileText(folder / "err"), "Ran 3 tests"));
}

} // namespace
