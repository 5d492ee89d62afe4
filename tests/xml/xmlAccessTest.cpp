// The typed attributes of the XML view files as they stand on disk and come back, and the
// refusal of documents nested too deep for the parser.
#include "xml/xml.h"

#include "GlContext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <tuple>

namespace {

// Each type writes its one form, and the file reads back.
TEST(XmlAttributes, EachTypeWritesItsFormAndReadsBack)
{
    XmlElement e("e");
    e.setAttributeHex("h", -1);
    e.setAttributeDouble("big", 1234567.0);
    e.setAttributeColor("c", Color(0.5f, 1.0f, 0.0f, 0.25f));
    Color none;
    none.setNone(true);
    e.setAttributeColor("n", none);
    e.setAttributeColor("g", Color(NAN, 1e30f, -1, 0.5f)); // garbage still makes two digits each
    e.setAttributeMatrix("m", Matrix2<double>(1.5, -2, 3, 4, 5, 6.25));
    for (int position : {0, 42, int(KR_POS_LEFT)})
        e.setAttributePosition(("p" + std::to_string(position)).c_str(), position);
    e.setAttributeDouble("x", 12.5);
    const std::string latin1 = "caf\xe9 & <x> \"q\" 'a'\n";
    e.setAttributeString("s", latin1);
    XmlDocument document;
    document.appendElement(e);
    k2dtest::TempFile file({}, ".xml");
    document.write(file.path());
    std::ifstream in(file.path(), std::ios::binary);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}),
              "<?xml version=\"1.0\" ?>\n<e h=\"0xffffffff\" big=\"1.23457e+06\" c=\"#7fff003f\" n=\"none\" "
              "g=\"#00ff007f\" m=\"1.500000 4.000000 -2.000000 5.000000 3.000000 6.250000\" "
              "p0=\"center\" p42=\"center\" p8=\"leftCenter\" x=\"12.5\" "
              "s='caf\xe9 &amp; &lt;x&gt; &quot;q&quot; &apos;a&apos;&#x0A;' />\n");
    XmlDocument back;
    ASSERT_TRUE(back.read(file.path()));
    EXPECT_TRUE(back.root().getAttributeInt("h") == -1 && back.root().getAttributeColor("n").none());
    EXPECT_EQ(back.root().getAttributeString("s"), latin1);
    e.setAttributeMatrix("m", Matrix2<double>(1e300, 0, 0, 0, 0, 0)); // hundreds of digits, all written
    EXPECT_EQ(e.getAttributeMatrix("m").m[0][0], 1e300);
}

// Texts the writer doesn't make, and missing attributes, read as documented; every value of a
// colour component reads and writes back to its own digits.
TEST(XmlAttributes, ForeignTextsReadAsDocumented)
{
    XmlDocument document; // frees the element
    XmlElement e("e");
    document.appendElement(e);
    EXPECT_TRUE(e.getAttributeColor("v") == Color() && !e.getAttributeColor("v").none() &&
                e.getAttributeMatrix("v").m[0][0] == 1.0);
    auto with = [&](const std::string& text) { return e.setAttributeString("v", text), e; };
    const std::tuple<const char*, int, int> reads[] = {{"0x00ff", 255, 9}, {"010", 8, 9}, {"12abc", 12, 9},
        {"-7", -7, 9}, {"Center", 0, 9}, {"LeftUpper", 0, 9}, {"rightLower", 0, 5}}; // {text, int, position}
    for (const auto& [text, value, position] : reads)
        EXPECT_TRUE(with(text).getAttributeInt("v") == value && e.getAttributePosition("v") == position) << text;
    EXPECT_FALSE(with("True").getAttributeBool("v") || with("1").getAttributeBool("v"));
    EXPECT_EQ(with("2.5 and more").getAttributeDouble("v"), 2.5);
    const std::pair<const char*, Color> colors[] = {{"#ff000080", Color(1, 0, 0, 128 / 255.0f)},
        {"#ff0000", Color(1, 0, 0, 0)}, {"xff000080", Color(1, 0, 0, 128 / 255.0f)}, {"#ff", Color(1, 0, 0, 0)}};
    for (const auto& [text, color] : colors)
        EXPECT_TRUE(with(text).getAttributeColor("v") == color && !e.getAttributeColor("v").none()) << text;
    for (int v = 0; v < 256; ++v) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "#%02x%02x%02x%02x", v, 255 - v, v ^ 0x5a, v);
        with(digits).setAttributeColor("v", e.getAttributeColor("v"));
        EXPECT_EQ(e.getAttributeString("v"), digits);
    }
    const std::pair<const char*, Matrix2<double>> matrices[] = {{"2 0 0 2", Matrix2<double>(2, 0, 0, 0, 2, 0)},
        {"", Matrix2<double>(0, 0, 0, 0, 0, 0)}, {"1 2 3 4 5 6", Matrix2<double>(1, 3, 5, 2, 4, 6)}};
    for (const auto& [text, matrix] : matrices)
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ(with(text).getAttributeMatrix("v").m[i / 3][i % 3], matrix.m[i / 3][i % 3]) << text << i;
}

// A deep document is refused unparsed, whatever comments, CDATA, quoted values and self-closing
// tags do to a naive count; a normal one isn't. Each read replaces the tree of the one before.
TEST(XmlDocumentRead, RefusesNestingDeeperThanAThousand)
{
    XmlDocument document;
    auto read = [&](const std::string& level, int depth) {
        std::string open, close;
        for (int i = 0; i < depth; ++i)
            open += level, close += "</a>";
        const std::string text = open + close;
        k2dtest::TempFile file({text.begin(), text.end()}, ".xml");
        return document.read(file.path());
    };
    for (const char* level : {"<a>", "<a><b/><c t='x'/>", "<a t=\"/>\">", "<a><!-- <a><a> -->",
                              "<a><![CDATA[<a><a>]]>", "<a><?p x?><!x>"})
        for (int depth : {1000, 1001})
            EXPECT_TRUE(read(level, depth) == (depth == 1000) && document.root().valid() == (depth == 1000)) << level;
    EXPECT_TRUE(!read("<a>", 100000) && !document.root().valid());
}

// Line ends of other systems in a value spanning lines read as LF, each CR LF as one.
// Line ends become line feeds, as the parser's own file loading makes them; a zero byte ends
// the text even where a UTF-8 lead byte before it promises more.
TEST(XmlDocumentRead, TextReadsUpToItsFirstZeroWithLineFeeds)
{
    const std::string lines = "<e v=\"a\r\nb\rc\n\r\n\" />\r";
    const std::string lead = std::string("<?xml version=\"1.0\" ?><e v=\"x\"> \xc3") + '\0' + "<beyond/></e>";
    k2dtest::TempFile linesFile({lines.begin(), lines.end()}, ".xml"), leadFile({lead.begin(), lead.end()}, ".xml");
    XmlDocument document;
    ASSERT_TRUE(document.read(linesFile.path()));
    EXPECT_EQ(document.root().getAttributeString("v"), "a\nb\nc\n\n");
    document.read(leadFile.path());
    EXPECT_TRUE(document.root().getAttributeString("v") == "x" && !document.root().firstElement().valid());
}

} // namespace
