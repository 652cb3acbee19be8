// Trees too deep for recursion and too wide for quadratic algorithms.

#include "xml_support.h"

#include <memory>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

const int million = 1000000;

// Names alternate: an empty element inside one of the same name would be written like its end tag.
std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += i % 2 ? "<b>" : "<a>";
    for (int i = depth; i-- > 0;)
        text += i % 2 ? "</b>" : "</a>";
    return text;
}

int depthOf(const XmlNode& root) {
    int depth = 1;
    for (const XmlNode* node = &root; !node->children.empty(); node = node->children.front())
        ++depth;
    return depth;
}

} // namespace

TEST(XmlDeep, MillionNestedElementsLoadAndAreDeleted) {
    XmlParser parser;
    parser.parse(nested(million));
    EXPECT_EQ(million, depthOf(parser));
}

TEST(XmlDeep, MillionNestedElementsAreCleared) {
    XmlParser parser;
    parser.parse(nested(million));
    parser.clear();
    EXPECT_EQ("/", shape(parser));
    parser.parse("<b></b>");
    EXPECT_EQ("b/", shape(parser));
}

TEST(XmlDeep, MillionNestedElementsAreWritten) {
    XmlParser parser;
    parser.parse(nested(million));
    std::string out;
    parser.write(out, "");
    parser.clear();
    parser.parse(out);
    EXPECT_EQ(million, depthOf(parser));
    EXPECT_EQ("<a>\n<b>\n", out.substr(0, 8));
    EXPECT_EQ("</b>\n</a>\n", out.substr(out.size() - 10));
}

TEST(XmlDeep, MillionElementsThatAreNeverClosedFailAsEof) {
    XmlParser parser;
    std::string text = nested(million);
    text.resize(size_t(million) * 3);
    EXPECT_EQ("(error at line 1, col 3000001); EOF (when reading tag at 1:3000001)",
              failure([&] { parser.parse(text); }));
    EXPECT_EQ(million, depthOf(parser));
}

TEST(XmlDeep, IndentGrowsWithDepth) {
    XmlParser parser;
    parser.parse(nested(200));
    std::string out;
    parser.write(out, "\t");
    EXPECT_NE(std::string::npos,
              out.find("\n" + std::string(199, '\t') + "<b/>\n" + std::string(198, '\t') + "</a>"));
}

TEST(XmlDeep, SubtreeDeletedByItselfLeavesTheRest) {
    XmlParser parser;
    parser.parse("<r>" + nested(million) + "<b/></r>");
    delete parser.getChildren(0);
    EXPECT_EQ("r(b/)", shape(parser));
}

TEST(XmlDeep, MillionSiblingsLoadAndAreDeleted) {
    std::string text = "<r>";
    for (int i = 0; i < million; ++i)
        text += "<a/>";
    XmlParser parser;
    parser.parse(text + "</r>");
    EXPECT_EQ(million, parser.getNumChildren());
}

TEST(XmlDeep, MillionPrologsLoadAndAddUp) {
    std::string text;
    for (int i = 0; i < million; ++i)
        text += "<?xml a" + std::to_string(i) + "=1?>";
    XmlParser parser;
    parser.parse(text + "<?xml a0=2?><r></r>");
    ASSERT_EQ(size_t(million), parser.header.arguments.size());
    EXPECT_EQ("2", parser.header.arguments.front().value);
    EXPECT_EQ("a999999", parser.header.arguments.back().name);
}
