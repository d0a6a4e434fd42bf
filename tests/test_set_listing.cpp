// Listings of data files: templates with faults, what is repeated, what is marked, and that
// nothing of a file becomes part of the page's own text.
#include "sets/listing.h"
#include "support/console_rig.h"

namespace {

const char HEAD[] = "// Uploader v1.00\n// date = 31-12-2015, time = 23:59:59\n";

class SetListing : public testing::Test {
protected:
    const ScratchFolder folder{true};

    static PST_File Read(const std::string &name, const std::string &lines)
    {
        WriteFileText(name, HEAD + lines + "// end\n");
        PST_File file;
        PST_Problems problems;
        EXPECT_EQ(PST_ReadData(name, &file, &problems), 0) << PST_FormatProblems(problems);
        return file;
    }
    // The page, or what the template is refused for.
    static std::string Fill(const std::string &pattern, const std::vector<PST_File> &files,
                            int language = LANGUAGE_EN)
    {
        WriteFileText("t.tldx", pattern);
        PST_Problems problems;
        std::filesystem::remove("out.html");
        if (PST_WriteListing("t.tldx", files, language, "out.html", &problems) == 0)
            return ReadFileText("out.html");
        EXPECT_FALSE(std::filesystem::exists("out.html"));
        return PST_FormatProblems(problems);
    }
};

TEST_F(SetListing, TemplateFaultsAreNamedWithTheirLine)
{
    const std::vector<PST_File> files = {Read("a.ldx", "(u2) a = 1\n")};
    const struct {
        const char *pattern, *says;
    } cases[] = {
        {"", "t.tldx: The template has no places"},
        {"<html></html>", "has no places"},
        {"{{name}}", "has no '<!-- row -->'"},
        {"\n<!-- group --><!-- row -->{{nmae}}<!-- /row --><!-- /group -->",
         "t.tldx, line 2: There is no place 'nmae'"},
        {"{{t.nope}}", "line 1: There is no place 't.nope'"},
        {"a\n\n{{name", "line 3: '{{' without '}}'"},
        {"<!-- group -->\n<!-- row -->\n{{name}}", "line 2: '<!-- row -->' has no end"},
        {"<!-- row -->{{name}}<!-- /row -->", "'row' cannot stand here"},
        {"<!-- group -->{{name}}<!-- /row --><!-- /group -->", "'/row' cannot stand here"},
        {"<!-- group --><!-- group -->{{name}}<!-- /group --><!-- /group -->",
         "'group' cannot stand here"},
    };
    for (const auto &c : cases)
        EXPECT_TRUE(Has(Fill(c.pattern, files), c.says)) << c.pattern;
}

TEST_F(SetListing, RowsAreRepeatedByGroupAndShownInUnits)
{
    const std::vector<PST_File> files = {Read(
        "a.ldx", "(i2) top = -5\n// group = One\nLow_end:\n"
                 "(u2) a = 25 ; unit \"A\", factor 0.1, min 0, max 100, default 20\n"
                 "(float) b = 0.1 ; default 0.1\n008100h = 01 ab\n// group = Two\n(u1) c = 3\n")};
    EXPECT_EQ(Fill("{{t.value}} <!-- note --><!-- group -->[{{group}}:<!-- heading -->({{heading}})"
                   "<!-- /heading --><!-- row -->{{name}}={{value}}{{unit}}|{{raw}}|{{limits}}|"
                   "{{default}}|{{type}}{{mark}};<!-- /row -->]<!-- /group -->",
                   files),
              "Value <!-- note -->[:top=-5|-5|||i2;][One:(Low end)a=2.5A|25|0 … 10|2|u2changed;"
              "b=0.1|0.1||0.1|float;008100h=01 ab|01 ab|||;][Two:c=3|3|||u1;]");
    const char *const pattern =
        "{{language}} {{t.unit}}<!-- group --><!-- row --><!-- /row --><!-- /group -->";
    EXPECT_EQ(Fill(pattern, files, LANGUAGE_CZ), "cs Jednotka");
    EXPECT_EQ(Fill(pattern, files, LANGUAGE_RU), "ru Единица");
}

TEST_F(SetListing, DifferencesAreOfValuesNotOfTheirSpelling)
{
    const std::vector<PST_File> files = {
        Read("a.ldx", "// group = G\n(u2) same = 10\n(float) f = 0.1\n008100h = 01 AB\n(u2) n = 1\n"
                      "(u2) gone = 1\n// group = H\n(u1) t = 1\n"),
        Read("b.ldx", "// group = H\n(u2) t = 1\n// group = G\n(u2) same = 0Ah\n"
                      "(float) f = 0.10000000149\n008100h = 01 ab\n(u2) n = 2\n(u2) new = 1\n")};
    EXPECT_EQ(Fill("{{differences}}{{mark}}{{sign}}{{name}}{{limits}}<!-- file --> "
                   "{{number}}{{file}}<!-- /file --><!-- group -->"
                   "[{{group}}<!-- row --> {{name}}{{rowmark}}<!-- file -->,{{value}}{{sign}}"
                   "<!-- /file --><!-- /row -->]<!-- /group -->",
                   files),
              "4 1a.ldx 2b.ldx[G same,10,0Ah f,0.1,0.10000000149 008100h,01 AB,01 ab "
              "ndiffers,1,2≠ gonediffers,1,–≠ newdiffers,–,1≠][H tdiffers,1,1≠]");
}

TEST_F(SetListing, NothingOfAFileBecomesMarkup)
{
    std::vector<PST_File> files = {
        Read("a<b>.ldx", "// device = <script>alert(\"1\")&'\x01\xFF\xC0\xAF\xED\xA0\x80Ж\n"
                         "// group = </td>{{name}}\n(u2) a = 1 ; text \"<!-- /row -->&amp;\"\n")};
    EXPECT_EQ(Fill("{{device}}|{{file}}<!-- group -->{{group}}<!-- row -->{{text}}<!-- /row -->"
                   "<!-- /group -->",
                   files),
              "&lt;script&gt;alert(&quot;1&quot;)&amp;&#39;.\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"
              "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDЖ|a&lt;b&gt;.ldx&lt;/td&gt;{{name}}"
              "&lt;!-- /row --&gt;&amp;amp;");
}

class SetListingCommands : public ConsoleRig {};

TEST_F(SetListingCommands, FilesAreCollectedUpToTheirBoundAndShippedTemplatesWork)
{
    const std::string examples = EXAMPLES_DIR "/";
    EXPECT_EQ(Run("ldx2vldx -h,,"), "use: ldx2vldx input.ldx, template.tldx, output.vldx\n"
                                    "ldx2vldx -h,, -> OK!\n");
    EXPECT_TRUE(
        Has(Run("ldx2vldx " + examples + "demo.ldx, " + examples + "listing.tldx, one.html"),
            "-> OK!"));
    EXPECT_TRUE(Has(ReadFile("one.html"), "<td class=\"name\">wGain</td>"));
    EXPECT_TRUE(Has(Run("mkcmpvldx " + examples + "compare.tldx, all.html"), "two at least"));
    for (size_t i = 0; i < PST_COMPARE_MAX; i++)
        EXPECT_TRUE(Has(Run("ldcmpldx " + examples + "demo.ldx"), "-> OK!"));
    EXPECT_TRUE(
        Has(Run("ldcmpldx " + examples + "demo.ldx"), "ERROR - Too many ldx files to load."));
    EXPECT_TRUE(
        Has(Run("mkcmpvldx none.tldx, all.html"), "none.tldx: The template cannot be opened"));
    Run("language EN");
    EXPECT_TRUE(Has(Run("mkcmpvldx " + examples + "compare.tldx, all.html"), "-> OK!"));
    EXPECT_TRUE(Has(ReadFile("all.html"), "Differences: <strong>0</strong>"));
    EXPECT_TRUE(
        Has(Run("ldcmpldx " + examples + "demo.m66"), "demo.m66, line 1: This is no data file"));
}

} // namespace
