#include "calendar/archive.h"
#include "calendar/crc32.h"
#include "support/scratch.h"
#include "support/text_checks.h"
#include "text/txfrw.h"

#include <zlib.h>

#include <random>
#include <vector>

namespace {

class Archive : public testing::Test {
protected:
    const ScratchFolder folder;
    const std::string archive = folder.path + "/vireo2.qar";
    const std::string first = folder.path + "/vireo2 first.bin",
                      second = folder.path + "/vireo2_\"second\".txt";
    const std::string firstContent = std::string(100, '\0') + "QAR9/9;\n";

    void SetUp() override
    {
        WriteFileText(first, firstContent);
        WriteFileText(second, "line 1\nline 2\r\n");
        ASSERT_EQ(QAR_Make(archive.c_str(), {first, second}), 0);
    }
    int extract(const std::string &member)
    {
        std::string content;
        return QAR_Extract_file(&content, archive.c_str(), member.c_str());
    }
};

// zlib inverts before and after; started from all ones it starts our register from 0.
TEST(Crc32Lsb, AgreesWithZlibAndWithTheShiftOfEveryPolynomial)
{
    std::mt19937 random(7);
    std::string data(300, '\0');
    for (char &c : data)
        c = static_cast<char>(random());
    for (size_t from = 0; from < 20; from++) {
        for (const size_t length : {0u, 1u, 7u, 39u, 40u, 41u, 80u, 280u}) {
            const auto *bytes = reinterpret_cast<const unsigned char *>(data.data()) + from;
            const uint32_t peer =
                ~static_cast<uint32_t>(crc32(0xFFFFFFFFu, bytes, static_cast<uInt>(length)));
            EXPECT_EQ(Crc32_LSB(bytes, length, CRC32_POLYNOMIAL), peer);
            uint32_t shifted = 0;
            for (size_t bit = 0; bit < 8 * length; bit++) {
                shifted ^= (bytes[bit / 8] >> (bit % 8)) & 1u;
                shifted = (shifted >> 1) ^ ((shifted & 1) != 0 ? 0x82F63B78u : 0);
            }
            EXPECT_EQ(Crc32_LSB(bytes, length, 0x82F63B78u), shifted);
        }
    }
}

TEST_F(Archive, ComesBackByNameAndInOrder)
{
    EXPECT_EQ(ReadFileText(archive).substr(0, 11), "QAR1/2;108;");
    std::string content, name;
    EXPECT_EQ(QAR_Extract_file(&content, archive.c_str(), first.c_str()), 0);
    EXPECT_EQ(content, firstContent);
    EXPECT_EQ(extract("vireo2 first.bin"), -1); // names are kept with their path
    EXPECT_EQ(content, firstContent);
    const int text = QAR_Extract_txfrw(archive.c_str(), second.c_str());
    EXPECT_EQ(TXFRW_GetCnLines(text), 2);
    EXPECT_STREQ(TXFRW_GetLinePtr(text, 1), "line 2");
    EXPECT_EQ(second, TXFRW_GetFileNamePtr(text));
    TXFRW_Close(text);
    std::FILE *file = std::fopen(archive.c_str(), "rb");
    EXPECT_EQ(QAR_Extract(&content, &name, file), 1);
    EXPECT_EQ(QAR_Extract(&content, &name, file), 0);
    EXPECT_EQ(name, second);
    EXPECT_EQ(content, "line 1\nline 2\r\n");
    EXPECT_EQ(QAR_Extract(&content, &name, file), -2);
    std::fclose(file);
}

TEST_F(Archive, CreationRefusesWhatItCannotDo)
{
    const std::string before = ReadFileText(archive);
    const char *arguments[] = {"program", "-a", archive.c_str(), first.c_str(), "no/such/file"};
    EXPECT_EQ(QAR_Create_archiv(3, arguments), -1);
    EXPECT_EQ(QAR_Create_archiv(5, arguments), -1); // the second member fails
    EXPECT_EQ(ReadFileText(archive), before);
    EXPECT_EQ(QAR_Create_archiv(4, arguments), 0);
    EXPECT_EQ(ReadFileText(archive).substr(0, 7), "QAR1/1;");
    arguments[1] = "-b";
    arguments[2] = "never_made.qar";
    EXPECT_EQ(QAR_Create_archiv(5, arguments), -1);
    EXPECT_EQ(std::fopen("never_made.qar", "rb"), nullptr);
    QarHeader header;
    header.index = 2, header.count = 1;
    std::FILE *file = std::tmpfile();
    EXPECT_EQ(QAR_Put_file_header(file, header), -1);
    header.index = 1, header.name = "two\nlines";
    EXPECT_EQ(QAR_Put_file_header(file, header), -1);
    std::fclose(file);
}

TEST_F(Archive, MembersOfAUserAreChecked)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    std::filesystem::create_directory("sub");
    WriteFileText("a", "a");
    WriteFileText("two\nlines", "a");
    WriteFileText("sub/prjinfo.tmf", "a");
    WriteFileText("large", "");
    std::filesystem::resize_file("large", QAR_FILE_MAX + 1);
    const struct {
        std::vector<std::string> names;
        const char *says; // null: good
    } cases[] = {{{"a", "large"}, "'large' has more than 128 MiB"},
                 {{"a", "sub/prjinfo.tmf"}, "looks for 'prjinfo.tmf'"},
                 {{"C:prjinfo.tmf"}, "looks for 'prjinfo.tmf'"},
                 {{"sub\\prjinfo.tmf"}, "looks for 'prjinfo.tmf'"},
                 {{"./a"}, "looks for 'a'"},
                 {{"a", "sub"}, "'sub' is a folder, device or pipe"},
                 {{"none"}, "'none' cannot be opened"},
                 {{"a", "two\nlines"}, "name of member 2"},
                 {{"a", "a"}, "'a' is given twice"},
                 {{"a"}, nullptr}};
    for (const auto &c : cases) {
        std::string message;
        EXPECT_EQ(QAR_CheckMembers(c.names, &message), c.says != nullptr ? -1 : 0);
        EXPECT_TRUE(Has(message, c.says != nullptr ? c.says : ""));
    }
    std::filesystem::resize_file("large", QAR_FILE_MAX); // still fits
    std::string message;
    EXPECT_EQ(QAR_CheckMembers({"large"}, &message), 0);
    EXPECT_EQ(QAR_Make("out.qar", {"sub"}), -1); // whoever asks
    std::filesystem::current_path(before);
}

TEST_F(Archive, DamageIsFound)
{
    const std::string whole = ReadFileText(archive);
    // Cut anywhere, the second member is never returned; the first one once it is complete.
    const size_t firstEnd = whole.find("QAR2/2;");
    for (size_t length = 0; length < whole.size(); length++) {
        WriteFileText(archive, whole.substr(0, length));
        EXPECT_EQ(extract(second), -1) << length;
        EXPECT_EQ(extract(first), length >= firstEnd ? 0 : -1) << length;
    }
    const struct {
        const char *from, *to;
        bool firstGood, secondGood;
    } cases[] = {
        {"QAR2/2;", "QAR2/3;", true, false},
        {"QAR2/2;", "QAR3/2;", true, false},
        {"QAR1/2;", "QAR2/2;", false, false},
        {"QAR1/2;", "QAR1/1;", true, false},
        {"QAR1/2;", "QXR1/2;", false, false},
        {";108;", ";2147483647;", false, false},
        {";108;", ";99999999999999999999;", false, false},
        {";108;", ";-1;", false, false},
        {";108;", ";107;", false, false},
        {"line 1", "line 7", true, false},
        {"txt\"\n", "txt\n", true, true}, // the quote of the name's own is the last one then
        {"QAR2/2;", "QAR2 / 2 ; ", true, true}};
    for (const auto &c : cases) {
        std::string damaged = whole;
        damaged.replace(damaged.find(c.from), std::string(c.from).size(), c.to);
        WriteFileText(archive, damaged);
        EXPECT_EQ(extract(first), c.firstGood ? 0 : -1) << c.from << " to " << c.to;
        const bool quoteLost = std::string(c.to) == "txt\n";
        const std::string wanted = quoteLost ? second.substr(0, second.rfind('"')) : second;
        EXPECT_EQ(extract(wanted), c.secondGood ? 0 : -1) << c.from << " to " << c.to;
    }
    WriteFileText(archive, "QAR1/1;4;0x00000000;\"zeros\"\n" + std::string(3, '\0'));
    EXPECT_EQ(extract("zeros"), -1); // too short, though its check value fits
}

} // namespace
