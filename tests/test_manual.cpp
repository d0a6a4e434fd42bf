// The manual tells the truth: every command line, script and console session in it is run on the
// simulated target, page by page in a copy of the examples, and what is shown must be what comes;
// "..." stands for anything. Every link and picture leads somewhere, every page is in the contents.
//
//   ```console   lines behind "$ " (and "> ") for a shell; ends with 0 unless "$ echo $?" follows
//   ```desktop   the same with the desktop program, where it was built
//   ```monitor   lines behind the console's prompt, typed into vireo2-console --full --yes
//   ```file N    a file of the reader's, named N
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <vector>

#include "support/scratch.h"
#include "support/skip.h"

namespace {

namespace fs = std::filesystem;

struct Block {
    std::string kind, name, text;
    int line = 0;
};

std::vector<std::string> SplitLines(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<Block> ReadBlocks(const fs::path &page)
{
    std::vector<Block> blocks;
    bool isInside = false;
    int number = 0;
    for (const std::string &line : SplitLines(ReadFileText(page))) {
        number++;
        if (line.compare(0, 3, "```") == 0) {
            if (!isInside) {
                Block block;
                std::istringstream info(line.substr(3));
                info >> block.kind >> block.name;
                block.line = number;
                blocks.push_back(block);
            }
            isInside = !isInside;
        } else if (isInside) {
            blocks.back().text += line + "\n";
        }
    }
    EXPECT_FALSE(isInside) << page << ": a block has no end";
    return blocks;
}

// Whether `shown` is what came, "..." in it being anything.
bool IsLike(const std::string &shown, const std::string &came)
{
    size_t at = 0, from = 0;
    for (bool isFirst = true;; isFirst = false) {
        const size_t gap = shown.find("...", from);
        const std::string piece = shown.substr(from, gap - from);
        if (gap == std::string::npos) // the last piece ends both
            return isFirst ? shown == came
                           : came.size() >= at + piece.size() &&
                                 came.compare(came.size() - piece.size(), piece.size(), piece) == 0;
        const size_t found = came.find(piece, at);
        if (found == std::string::npos || (isFirst && found != 0))
            return false;
        at = found + piece.size();
        from = gap + 3;
    }
}

struct Command {
    std::string text, shown;
    int line = 0;
    bool isCodeShown = false; // "echo $?" follows
};

std::vector<Command> ReadCommands(const Block &block)
{
    std::vector<Command> commands;
    int line = block.line;
    for (const std::string &text : SplitLines(block.text)) {
        line++;
        if (text.compare(0, 2, "$ ") == 0) {
            if (text == "$ echo $?" && !commands.empty())
                commands.back().isCodeShown = true;
            commands.push_back({text.substr(2) + "\n", "", line, false});
        } else if (!commands.empty() && text.compare(0, 1, ">") == 0) {
            commands.back().text += text.size() > 2 ? text.substr(2) + "\n" : "\n";
        } else if (!commands.empty()) {
            commands.back().shown += text + "\n";
        }
    }
    return commands;
}

// The lines a person typed at the console's prompt.
std::string TypedLines(const std::string &session)
{
    static const std::regex prompt("^ [A-Z0-9\\\\]+ > (.*)$");
    std::string typed;
    std::smatch match;
    for (const std::string &line : SplitLines(session))
        if (std::regex_match(line, match, prompt))
            typed += match[1].str() + "\n";
    return typed;
}

bool IsInBackground(const std::string &command)
{
    return command.size() > 3 && command.compare(command.size() - 3, 3, " &\n") == 0;
}

// One shell for a page, so that what a reader has typed before still holds. What each command says
// goes to a file of its own, its exit code to another.
std::string MakeScript(const std::vector<Command> &commands)
{
    std::string script = "PATH='" BINARY_DIR "':$PATH\n"
                         "mkdir ../said; said=$PWD/../said\n";
    for (size_t i = 0; i < commands.size(); i++) {
        const std::string number = std::to_string(i), &text = commands[i].text;
        if (IsInBackground(text)) {
            // A person would not type on before it says where it is to be found.
            const bool isKept = text.find(">device") != std::string::npos;
            script += text.substr(0, text.size() - 3) + (isKept ? "" : " >device") + " &\n" +
                      "running=\"$running $!\"\n"
                      "i=0; while [ ! -s device ] && [ $i -lt 600 ]; do sleep 0.05; "
                      "i=$((i + 1)); done\n"
                      "echo 0 >$said/" +
                      number + ".code\n";
        } else {
            // Not in a subshell: "cd" and "export" are to last.
            script += "{ (exit ${code:-0})\n" + text + "} >$said/" + number + " 2>&1\n" +
                      "code=$?; echo $code >$said/" + number + ".code\n";
        }
    }
    return script + "kill $running\nwait\n";
}

void RunPage(const fs::path &page)
{
    const ScratchFolder folder;
    const fs::path work = folder / "work";
    fs::copy(EXAMPLES_DIR, work, fs::copy_options::recursive);
    std::vector<Command> commands;
    for (const Block &block : ReadBlocks(page)) {
        const std::string place = page.filename().string() + ":" + std::to_string(block.line);
        const bool isBuilt = block.kind != "desktop" || fs::exists(BINARY_DIR "/vireo2");
        if (block.kind == "file") {
            ASSERT_FALSE(block.name.empty()) << place;
            fs::create_directories((work / block.name).parent_path());
            WriteFileText(work / block.name, block.text);
        } else if (block.kind == "monitor") {
            ASSERT_NE("", TypedLines(block.text)) << place << ": nothing is typed";
            // Whether a line has failed is part of what is shown.
            commands.push_back(
                {"vireo2-console --full --yes <<'END' || true\n" + TypedLines(block.text) + "END\n",
                 block.text, block.line, false});
        } else if ((block.kind == "console" || block.kind == "desktop") && isBuilt) {
            const std::vector<Command> more = ReadCommands(block);
            ASSERT_FALSE(more.empty()) << place << ": nothing is run";
            commands.insert(commands.end(), more.begin(), more.end());
        } else {
            ASSERT_FALSE(isBuilt) << place << ": a block that nobody checks: '" << block.kind
                                  << "'";
        }
    }
    if (commands.empty())
        return;
    WriteFileText(folder / "script", MakeScript(commands));
    const std::string run = "cd '" + work.string() +
                            "' && XDG_CONFIG_HOME=$PWD/config PYTHONDONTWRITEBYTECODE=1 "
                            "timeout 120 sh ../script </dev/null >../out 2>&1";
    EXPECT_EQ(0, std::system(run.c_str())) << page << "\n" << ReadFileText(folder / "out");
    for (size_t i = 0; i < commands.size(); i++) {
        const Command &command = commands[i];
        const fs::path said = folder / "said";
        const std::string place = page.filename().string() + ":" + std::to_string(command.line);
        const std::string code = ReadFileText(said / (std::to_string(i) + ".code"));
        const std::string came = ReadFileText(said / std::to_string(i));
        EXPECT_TRUE(command.isCodeShown || code == "0\n")
            << place << ": ends with " << code << command.text << came;
        if (!IsInBackground(command.text)) {
            EXPECT_TRUE(IsLike(command.shown, came)) << place << ": " << command.text << "shown:\n"
                                                     << command.shown << "came:\n"
                                                     << came;
        }
    }
}

std::vector<fs::path> Pages()
{
    std::vector<fs::path> pages;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(MANUAL_DIR))
        if (entry.path().extension() == ".md")
            pages.push_back(fs::canonical(entry.path()));
    std::sort(pages.begin(), pages.end());
    return pages;
}

// As the help window and the HTML pages make them.
std::set<std::string> Anchors(const fs::path &page)
{
    std::set<std::string> anchors;
    for (const std::string &line : SplitLines(ReadFileText(page))) {
        if (line.compare(0, 1, "#") != 0)
            continue;
        std::string anchor;
        for (const char c : line.substr(std::min(line.find(' '), line.size() - 1) + 1)) {
            if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_')
                anchor += static_cast<char>(std::tolower(c));
            else if (c == ' ')
                anchor += '-';
        }
        anchors.insert(anchor);
    }
    return anchors;
}

class Manual : public testing::TestWithParam<fs::path> {};

TEST_P(Manual, CommandsDoWhatThePageSays)
{
    RunPage(GetParam());
}
INSTANTIATE_TEST_SUITE_P(Pages, Manual, testing::ValuesIn(Pages()), [](const auto &page) {
    std::string name = page.param.stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(ManualLinks, LeadSomewhereAndToEveryPage)
{
    static const std::regex link("\\]\\(([^)#]*)#?([^)]*)\\)");
    std::set<fs::path> linked{fs::canonical(MANUAL_DIR "/index.md")};
    const std::vector<fs::path> pages = Pages();
    ASSERT_GT(pages.size(), 20u);
    for (const fs::path &page : pages) {
        std::string text = ReadFileText(page);
        for (const Block &block : ReadBlocks(page)) // what looks like one in a listing is none
            if (const size_t at = text.find(block.text); at != std::string::npos)
                text.erase(at, block.text.size());
        for (std::sregex_iterator i(text.begin(), text.end(), link), end; i != end; ++i) {
            const fs::path target =
                (*i)[1].length() == 0 ? page : page.parent_path() / (*i)[1].str();
            ASSERT_TRUE(fs::exists(target)) << page << ": " << i->str();
            if ((*i)[2].length() > 0) {
                EXPECT_EQ(1u, Anchors(target).count((*i)[2])) << page << ": " << i->str();
            }
            if (page.filename() == "index.md")
                linked.insert(fs::canonical(target));
        }
    }
    for (const fs::path &page : pages)
        EXPECT_EQ(1u, linked.count(page)) << page << " is not in the contents";
}

// The judge of all this is no yes-man.
TEST(ManualLinks, WhatIsShownMustBeWhatCame)
{
    const struct {
        const char *shown, *came;
        bool isLike;
    } cases[] = {
        {"a\n", "a\n", true},       {"a\n", "a\nb\n", false},     {"a ...\n", "a 12\n", true},
        {"...b\n", "a\nb\n", true}, {"...b\n", "a\nc\n", false},  {"a...a\n", "a\n", false},
        {"x...\n", "ax\n", false},  {"a...b...c", "a1b2c", true}, {"a...b...c", "a1c2b", false}};
    for (const auto &c : cases)
        EXPECT_EQ(c.isLike, IsLike(c.shown, c.came)) << c.shown << c.came;
    EXPECT_EQ("m\nset x\n", TypedLines(" C167 > m\nx\n S166\\TMS > set x\n > no\n"));
}

} // namespace
