#include "xml_support.h"

#include <cstring>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

XmlTag tagFrom(const std::string& text) {
    XmlTag tag;
    BufferReader reader(text.data(), text.size());
    tag.parse(reader);
    return tag;
}

} // namespace

TEST(XmlTag, Defaults) {
    const XmlTag tag;
    EXPECT_EQ(XmlTag::Normal, tag.getType());
    EXPECT_TRUE(tag.isClosed());
    EXPECT_EQ("", tag.getName());
    EXPECT_TRUE(tag.arguments.empty());
}

TEST(XmlTag, TypeValuesAreFixed) {
    EXPECT_EQ(0, XmlTag::Normal);
    EXPECT_EQ(1, XmlTag::Comment);
    EXPECT_EQ(2, XmlTag::SpecialQuestion);
    EXPECT_EQ(3, XmlTag::SpecialExclaim);
    EXPECT_EQ(4, XmlTag::Text);
    EXPECT_EQ(4u, sizeof(XmlTag::Type));
}

TEST(XmlTag, GetValueWithoutThatAttributeIsTheSameSharedEmptyStringEachTime) {
    XmlTag tag;
    tag.setValue("a", "1");
    EXPECT_EQ("", tag.getValue("b"));
    EXPECT_EQ(&emptyString, &tag.getValue("b"));
    EXPECT_EQ(&emptyString, &XmlTag().getValue("c"));
    EXPECT_EQ(&tag.arguments[0].value, &tag.getValue("a"));
}

TEST(XmlTag, SetValueTwiceLeavesOneArgumentAtThePositionOfTheFirstCall) {
    XmlTag tag;
    tag.setValue("a", "1");
    tag.setValue("b", "2");
    tag.setValue("a", "3");
    ASSERT_EQ(2u, tag.arguments.size());
    EXPECT_EQ("a", tag.arguments[0].name);
    EXPECT_EQ("3", tag.arguments[0].value);
    EXPECT_EQ("b", tag.arguments[1].name);
}

TEST(XmlTag, SetValueOfNumbers) {
    XmlTag tag;
    tag.setValue("i", 3);
    tag.setValue("n", -2147483647 - 1);
    tag.setValue("d", 0.1);
    tag.setValue("h", 1e300);
    tag.setValue("s", 2.0);
    EXPECT_EQ("3", tag.getValue("i"));
    EXPECT_EQ("-2147483648", tag.getValue("n"));
    EXPECT_EQ("0.1000000000000000055511151", tag.getValue("d"));
    EXPECT_EQ("1.00000000000000005250476e+300", tag.getValue("h"));
    EXPECT_EQ("2", tag.getValue("s"));
    tag.setValue("i", 0.5f);
    EXPECT_EQ("0.5", tag.getValue("i"));
    EXPECT_EQ(5u, tag.arguments.size());
}

TEST(XmlTag, SetTagCopiesAllFields) {
    XmlTag from = tagFrom("<!-- body -->"), to = tagFrom("<x a=1>");
    to.setTag(from);
    EXPECT_EQ(XmlTag::Comment, to.type);
    EXPECT_TRUE(to.closed);
    EXPECT_EQ("COMMENT", to.name);
    ASSERT_EQ(1u, to.arguments.size());
    EXPECT_EQ(" body ", to.getValue("content"));
    to.setName("y");
    to.setClosed(false);
    EXPECT_EQ("y", to.getName());
    EXPECT_FALSE(to.isClosed());
}

TEST(XmlTag, ParseResetsWhatTheTagHeld) {
    XmlTag tag = tagFrom("<!-- body -->");
    for (const char* text : {"<x>", "text", "<?p?>", "<!D e>", "<!--c-->"}) {
        const XmlTag fresh = tagFrom(text);
        BufferReader reader(text, strlen(text));
        tag.parse(reader);
        EXPECT_EQ(fresh.type, tag.type) << text;
        EXPECT_EQ(fresh.closed, tag.closed) << text;
        EXPECT_EQ(fresh.name, tag.name) << text;
        EXPECT_EQ(fresh.arguments.size(), tag.arguments.size()) << text;
    }
}

TEST(XmlTag, TagPositionIsWhereTheTagBeforeEnded) {
    const std::string text = "<a>\n\t<b/>";
    BufferReader reader(text.data(), text.size());
    EXPECT_EQ(-1, reader.tagLine);
    EXPECT_EQ(-1, reader.tagCol);
    XmlTag tag;
    tag.parse(reader);
    EXPECT_EQ(1, reader.tagLine);
    EXPECT_EQ(1, reader.tagCol);
    EXPECT_EQ(4, reader.col);
    tag.parse(reader);
    EXPECT_EQ(1, reader.tagLine);
    EXPECT_EQ(4, reader.tagCol);
    EXPECT_EQ(2, reader.line);
    EXPECT_EQ(9, reader.col);
    EXPECT_TRUE(reader.atEnd());
}

TEST(XmlTag, ParseAttributeTakesTerminatorsWithoutEffect) {
    for (const char* terminators : {"/>", "?>", ">", "=\"v", ""}) {
        const std::string text = "n = \"v w\" rest";
        BufferReader reader(text.data(), text.size());
        XmlTag tag;
        tag.parseAttribute(reader, terminators, true);
        EXPECT_EQ("v w", tag.getValue("n"));
        EXPECT_EQ(9u, reader.pos);
    }
}

TEST(XmlTag, ParseAttributeReplacesAnEarlierValueInPlace) {
    XmlTag tag;
    tag.setValue("a", "1");
    tag.setValue("b", "2");
    BufferReader reader("a=3", 3);
    EXPECT_EQ("EOF", failure([&] {
                  tag.parseAttribute(reader, "", true);
                  tag.parseAttribute(reader, "", true);
              }));
    EXPECT_EQ("3", tag.arguments[0].value);
    EXPECT_EQ(2u, tag.arguments.size());
}

TEST(XmlTag, PartsCalledAtTheEndOfTheDataFailAsEof) {
    XmlTag tag;
    for (const size_t pos : {size_t(0), size_t(7)}) { // also with a position past the data
        BufferReader reader("", 0);
        reader.pos = pos;
        EXPECT_EQ("EOF", failure([&] { tag.parse(reader); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseNormal(reader); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseComment(reader); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseSpecialExclaim(reader); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseSpecialQuestion(reader); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseAttribute(reader, ">", false); }));
        EXPECT_EQ("EOF", failure([&] { tag.parseAttribute(reader, ">", true); }));
        tag.parseText(reader);
        EXPECT_EQ("", tag.getValue("content"));
    }
}

TEST(BufferReader, CountsLinesAndColumns) {
    BufferReader reader("ab\tc\r\nd", 7);
    const int columns[] = {2, 3, 7, 8, 8, 1, 2};
    for (const int column : columns) {
        reader.consume();
        EXPECT_EQ(column, reader.col);
    }
    EXPECT_EQ(2, reader.line);
    EXPECT_EQ("EOF", failure([&] { reader.consume(); }));
    EXPECT_EQ("EOF", failure([&] { reader.peek(); }));
}

TEST(BufferReader, SkipsSpacesAndNothingElseAndAsksForAMinimum) {
    BufferReader reader(" \t\r\n\fx", 6);
    reader.skipSpaces(4);
    EXPECT_EQ(4u, reader.pos);
    reader.skipSpaces(0);
    EXPECT_EQ(4u, reader.pos);
    EXPECT_EQ("Not enough spaces!", failure([&] { reader.skipSpaces(1); }));
    BufferReader end("  ", 2);
    EXPECT_EQ("Eof before enough spaces were found", failure([&] { end.skipSpaces(3); }));
    end.skipSpaces(0);
}

TEST(BufferReader, NullTextIsEmpty) {
    const BufferReader reader(nullptr, 10);
    EXPECT_TRUE(reader.atEnd());
}
