#include "platform/plain_file.h"
#include "support/scratch.h"
#include "text/csv_row.h"
#include "text/txfr.h"
#include "text/txfrw.h"

#include <cstring>
#include <sys/stat.h>
#include <vector>

namespace {

using Lines = std::vector<std::string>;

class TextFiles : public testing::Test {
protected:
    const ScratchFolder folder;
    const std::string path = folder.path + "/text_files.txt";

    static Lines linesOf(int handle)
    {
        Lines lines;
        for (int i = 0; i < TXFRW_GetCnLines(handle); i++)
            lines.push_back(TXFRW_GetLinePtr(handle, i));
        return lines;
    }
};

TEST_F(TextFiles, EveryLineEndEndsALine)
{
    const struct {
        std::string content;
        Lines lines;
    } cases[] = {{"a\r\nb\n\rc", {"a", "b", "c"}},
                 {"a\r\rb\n\nc\n", {"a", "", "b", "", "c"}},
                 {"\r\n\r\n", {"", ""}},
                 {"", {}},
                 {"last", {"last"}},
                 {std::string("ab\0cd\nef\n\0\ngh", 13), {"ab", "ef", "", "gh"}},
                 {"\xEF\xBB\xBF"
                  "a\n",
                  {"a"}},
                 {"\xEF\xBB\xBF", {}},
                 {"a\n\xEF\xBB\xBF", {"a", "\xEF\xBB\xBF"}}, // only at the start
                 {std::string("\0\0\0", 3), {}}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.content));
        WriteFileText(path, c.content);
        const int handle = TXFR_Open(path.c_str());
        ASSERT_EQ(handle, 0); // the slot is free again each time
        Lines lines;
        std::string line;
        while (TXFR_RdNewLine(handle, &line, -1) >= 0)
            lines.push_back(line);
        EXPECT_EQ(lines, c.lines);
        EXPECT_EQ(TXFR_GetLineNo(handle), -1);
        EXPECT_EQ(TXFR_RdNewLine(handle, &line, 10), -1);
        const int text = TXFRW_Create("name", "r", c.content.data(), c.content.size());
        if (c.content.find("\n\r") == std::string::npos && c.content[0] != '\0') {
            EXPECT_EQ(linesOf(text), c.lines); // cut from memory just the same
        }
        TXFRW_Close(text);
    }
}

TEST_F(TextFiles, LongLinesComeInPieces)
{
    WriteFileText(path, std::string(2000, 'x') + "\r\n" + std::string(999, 'y') + "\nend");
    const int handle = TXFR_Open(path.c_str());
    char buffer[1000];
    const struct {
        int length, broken, lineNo;
        long position;
    } pieces[] = {
        {999, 1, 0, 999}, {999, 1, 0, 1998}, {2, 0, 1, 2002}, {999, 1, 1, 3001}, {0, 0, 2, 3002}};
    for (const auto &piece : pieces) {
        EXPECT_EQ(TXFR_RdLine(handle, buffer, sizeof buffer), piece.length);
        EXPECT_EQ(std::strlen(buffer), static_cast<size_t>(piece.length));
        EXPECT_EQ(TXFR_IsBrokenLine(handle), piece.broken);
        EXPECT_EQ(TXFR_GetLineNo(handle), piece.lineNo);
        EXPECT_EQ(TXFR_GetFilePos(handle), piece.position);
    }
    EXPECT_EQ(TXFR_RdLine(handle, buffer, 1), -1); // no room: closes
    EXPECT_EQ(TXFR_Close(handle), -1);
    EXPECT_EQ(TXFR_Open(testing::TempDir().c_str()), -1);
}

// A line that goes on behind a NUL is dropped in pieces no longer than the buffer: the next
// call comes soon, and the text of the next line is whole.
TEST_F(TextFiles, DroppedBytesFillTheBufferToo)
{
    const std::string content = "ab" + std::string(3000, '\0') + "cd\nnext\n";
    WriteFileText(path, content);
    for (const int handle :
         {TXFR_Open(path.c_str()), TXFR_OpenMemory(content.data(), content.size())}) {
        char buffer[1000];
        EXPECT_EQ(TXFR_RdLine(handle, buffer, sizeof buffer), 2);
        EXPECT_EQ(TXFR_IsBrokenLine(handle), 1);
        EXPECT_EQ(TXFR_GetFilePos(handle), 999);
        int pieces = 1;
        for (; TXFR_IsBrokenLine(handle) == 1; ++pieces)
            EXPECT_EQ(TXFR_RdLine(handle, buffer, sizeof buffer), 0);
        EXPECT_EQ(pieces, 4);
        EXPECT_EQ(TXFR_RdLine(handle, buffer, sizeof buffer), 4);
        EXPECT_STREQ(buffer, "next");
        EXPECT_EQ(TXFR_Close(handle), 0);
    }
    EXPECT_EQ(TXFRW_Open(path.c_str(), "r"), -1); // too long, though its text is not
}

// What has no end, or blocks whoever opens it, is refused before a byte of it is read.
TEST_F(TextFiles, OnlyPlainFilesAreOpened)
{
    const std::string pipe = folder.path + "/pipe", large = folder.path + "/large";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    WriteFileText(large, "");
    const struct {
        std::string name;
        int result;
    } cases[] = {{pipe, PLT_FILE_ERR_SPECIAL},        {folder.path, PLT_FILE_ERR_SPECIAL},
                 {"/dev/zero", PLT_FILE_ERR_SPECIAL}, {large, PLT_FILE_ERR_LARGE},
                 {"no/such", PLT_FILE_ERR_OPEN},      {"", PLT_FILE_ERR_OPEN}};
    std::filesystem::resize_file(large, PLT_FILE_SIZE_MAX + 1); // full of nothing
    for (const auto &c : cases) {
        std::string text = "old";
        EXPECT_EQ(PLT_ReadFile(c.name, PLT_FILE_SIZE_MAX, &text), c.result) << c.name;
        EXPECT_EQ(text, "");
        EXPECT_STREQ(PLT_WhyUnreadable(c.name), PLT_FileErrorText(c.result));
        EXPECT_EQ(TXFR_Open(c.name.c_str()), -1) << c.name;
        EXPECT_EQ(TXFRW_Open(c.name.c_str(), "r"), -1) << c.name;
    }
    std::filesystem::resize_file(large, PLT_FILE_SIZE_MAX);
    const int handle = TXFR_Open(large.c_str());
    EXPECT_EQ(handle, 0); // no slot was lost on the way
    EXPECT_EQ(TXFR_Close(handle), 0);
    std::string some;
    EXPECT_EQ(PLT_ReadFile(path, 3, &some), PLT_FILE_ERR_OPEN);
    WriteFileText(path, "abc");
    EXPECT_EQ(PLT_ReadFile(path, 3, &some), PLT_FILE_OK);
    EXPECT_EQ(some, "abc");
}

TEST_F(TextFiles, HandlesRunOut)
{
    WriteFileText(path, "a");
    std::vector<int> readers, texts;
    for (int handle; (handle = TXFR_Open(path.c_str())) >= 0;)
        readers.push_back(handle);
    for (int handle; (handle = TXFRW_Open(path.c_str(), "w")) >= 0;)
        texts.push_back(handle);
    EXPECT_EQ(readers.size(), 200u);
    EXPECT_EQ(texts.size(), 10u);
    for (int handle : readers)
        EXPECT_EQ(TXFR_Close(handle), 0);
    for (int handle : texts)
        EXPECT_EQ(TXFRW_Close(handle), 0);
    EXPECT_EQ(TXFRW_SetLine(texts[0], 0, "x"), -1);
    EXPECT_EQ(TXFRW_GetLinePtr(texts[0], 0), nullptr);
}

TEST_F(TextFiles, ModesAndLimitsOfOpening)
{
    WriteFileText(path, "one");
    const int handle = TXFRW_Open(path.c_str(), "w");
    EXPECT_EQ(TXFRW_GetCnLines(handle), 0); // not read
    const struct {
        const char *mode;
        int result;
    } modes[] = {{"r", 1}, {"W", 2},  {"rw", 3},  {"Wr", 3},  {"rx", 1},
                 {"", -1}, {"x", -1}, {"xr", -1}, {"rwr", -1}};
    for (const auto &m : modes)
        EXPECT_EQ(TXFRW_SetFileMode(handle, m.mode), m.result) << m.mode;
    EXPECT_EQ(TXFRW_SetFileName(handle, std::string(2000, 'n').c_str()), -1);
    EXPECT_STREQ(TXFRW_GetFileNamePtr(handle), path.c_str());
    TXFRW_Close(handle);
    EXPECT_EQ(TXFRW_Open("no/such/file", "r"), -1);
    for (const size_t length : {998u, 999u, 2000u}) {
        for (const char *end : {"", "\r\nb"}) {
            WriteFileText(path, "a\n" + std::string(length, 'x') + end);
            const int text = TXFRW_Open(path.c_str(), "r");
            EXPECT_EQ(text, length == 998 ? 0 : -1) << length;
            EXPECT_EQ(TXFRW_GetCnLines(text), length > 998 ? -1 : *end != '\0' ? 3 : 2);
            EXPECT_EQ(TXFRW_IsCtsOnDisk(text), length == 998 ? 1 : -1);
            TXFRW_Close(text);
        }
    }
    const std::string many(12000, '\n');
    const std::string wide = std::string(999, 'a') + "\n" + std::string(1000, 'b');
    const int full = TXFRW_Create("many", "r", many.data(), many.size());
    const int cut = TXFRW_Create("wide", "r", wide.data(), wide.size());
    EXPECT_EQ(TXFRW_GetCnLines(full), 9999);
    EXPECT_EQ(TXFRW_InsertLine(full, 0, "x"), -1);
    TXFRW_SetWrkLineNo(full, 5);
    EXPECT_EQ(TXFRW_printf(full, "x\n"), -1);
    EXPECT_STREQ(TXFRW_GetLinePtr(full, 5), ""); // all of it or nothing
    EXPECT_EQ(linesOf(cut), (Lines{std::string(999, 'a'), std::string(999, 'b'), "b"}));
    TXFRW_Close(full);
    TXFRW_Close(cut);
}

TEST_F(TextFiles, LinesAreEditedAndPrinted)
{
    const int handle = TXFRW_Create("edit", "rw", "", 0);
    EXPECT_EQ(TXFRW_printf(handle, "x=%d\n", 5), 4);
    EXPECT_EQ(linesOf(handle), (Lines{"x=5", ""}));
    EXPECT_EQ(TXFRW_GetWrkLineNo(handle), 1);
    EXPECT_EQ(TXFRW_printf(handle, "%s", "y\r\rz\r\n="), 7);
    EXPECT_EQ(linesOf(handle), (Lines{"x=5", "y", "", "z", "="}));
    EXPECT_EQ(TXFRW_printf(handle, "%01200d", 0), 999); // continues the line, cut
    EXPECT_EQ(std::strlen(TXFRW_GetLinePtr(handle, 4)), 1000u);
    EXPECT_EQ(TXFRW_DeleteLine(handle, 4), 0);
    EXPECT_EQ(TXFRW_DeleteLine(handle, 4), -1);
    EXPECT_EQ(TXFRW_SetLine(handle, 4, "end"), 0);
    EXPECT_EQ(TXFRW_SetLine(handle, 6, "far"), -1);
    EXPECT_EQ(TXFRW_SetLine(handle, 2, "mid"), 0);
    EXPECT_EQ(TXFRW_InsertLine(handle, 6, "far"), -1);
    EXPECT_EQ(TXFRW_InsertLine(handle, 5, "end2"), 0);
    EXPECT_EQ(TXFRW_SetWrkLineNo(handle, -3), 0);
    EXPECT_EQ(TXFRW_InsertLine(handle, -1, "0"), 0);
    EXPECT_EQ(TXFRW_InsertLine(handle, -1, "1"), 0);
    EXPECT_EQ(TXFRW_AppendLine(handle, "last"), 0);
    EXPECT_EQ(linesOf(handle), (Lines{"0", "1", "x=5", "y", "mid", "z", "end", "end2", "last"}));
    char buffer[4];
    EXPECT_EQ(TXFRW_ReadLine(handle, buffer, 3), 2);
    EXPECT_STREQ(buffer, "x=");
    TXFRW_SetWrkLineNo(handle, 100);
    EXPECT_EQ(TXFRW_ReadLine(handle, buffer, 3), -1);
    EXPECT_EQ(TXFRW_GetWrkLineNo(handle), 9);
    TXFRW_Close(handle);
}

TEST_F(TextFiles, SavingSeparatesLinesAndComesBackTheSame)
{
    const struct {
        Lines lines;
        const char *saved;
    } cases[] = {{{"a", "b"}, "a\r\nb"}, {{"a", ""}, "a\r\n"}, {{"a", "", "b"}, "a\r\n\r\nb"},
                 {{"", "b"}, "\r\nb"},   {{""}, ""},           {{}, ""}};
    for (const auto &c : cases) {
        const int handle = TXFRW_Create(path.c_str(), "w", "", 0);
        for (const std::string &line : c.lines)
            TXFRW_AppendLine(handle, line.c_str());
        std::remove(path.c_str());
        EXPECT_EQ(TXFRW_IsCtsOnDisk(handle), -1);
        EXPECT_EQ(TXFRW_Save(handle), 0);
        EXPECT_EQ(ReadFileText(path), c.saved);
        EXPECT_EQ(TXFRW_IsCtsOnDisk(handle), 1) << c.saved;
        TXFRW_AppendLine(handle, "more");
        EXPECT_EQ(TXFRW_IsCtsOnDisk(handle), 0) << c.saved;
        TXFRW_Close(handle);
    }
    WriteFileText(path, "old");
    const int handle = TXFRW_Open(path.c_str(), "r");
    TXFRW_AppendLine(handle, "new");
    EXPECT_EQ(TXFRW_Save(handle), -1); // not open for writing
    EXPECT_EQ(ReadFileText(path), "old");
    TXFRW_SetFileMode(handle, "w");
    TXFRW_SetFileName(handle, "no/such/folder/file");
    EXPECT_EQ(TXFRW_Save(handle), -1);
    TXFRW_Close(handle);
}

TEST(CsvRow, SplitsAsItIsQuoted)
{
    std::vector<std::string> cells;
    const struct {
        const char *row;
        std::vector<std::string> cells;
    } good[] = {{"", {""}},           {"a,b", {"a", "b"}},
                {",", {"", ""}},      {"\"a,b\",c", {"a,b", "c"}},
                {"\"\"\"\"", {"\""}}, {"\"\",x,", {"", "x", ""}},
                {"a\"b", {"a\"b"}}};
    for (const auto &c : good) {
        EXPECT_TRUE(TXT_SplitCsvRow(c.row, &cells)) << c.row;
        EXPECT_EQ(cells, c.cells) << c.row;
    }
    for (const char *bad : {"\"a", "\"a\"b", "x,\"", "\"\"\""})
        EXPECT_FALSE(TXT_SplitCsvRow(bad, &cells)) << bad;
}

} // namespace
