#include "xml_support.h"

#include <sstream>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

std::string written(const XmlTag& tag, bool allowSelfClose = true) {
    std::ostringstream os;
    tag.write(os, allowSelfClose);
    return os.str();
}

// A stream buffer that counts how often it is flushed.
class CountingBuffer : public std::stringbuf {
public:
    int mFlushes = 0;

protected:
    int sync() override {
        ++mFlushes;
        return 0;
    }
};

} // namespace

TEST(XmlWrite, NormalTag) {
    XmlTag tag;
    tag.setName("a");
    EXPECT_EQ("<a/>\n", written(tag));
    EXPECT_EQ("<a>\n", written(tag, false));
    tag.setValue("x", "1");
    tag.setValue("y", "<\"&'\n");
    EXPECT_EQ("<a x=\"1\" y=\"<\"&'\n\"/>\n", written(tag));
    tag.setClosed(false);
    EXPECT_EQ("<a x=\"1\" y=\"<\"&'\n\">\n", written(tag));
}

TEST(XmlWrite, OtherTypes) {
    XmlTag tag;
    tag.setName("n");
    tag.setValue("content", " c ");
    tag.setValue("b", "2");
    tag.type = XmlTag::Comment;
    EXPECT_EQ("<!-- c -->\n", written(tag));
    tag.type = XmlTag::SpecialQuestion;
    EXPECT_EQ("<?n content=\" c \" b=\"2\"?>\n", written(tag));
    tag.type = XmlTag::SpecialExclaim;
    EXPECT_EQ("<!content  c  b 2>\n", written(tag));
    tag.type = XmlTag::Text;
    EXPECT_EQ("' c '\n", written(tag));
    EXPECT_EQ("' c '\n", written(tag, false));
}

TEST(XmlWrite, BodyThatIsMissingIsEmpty) {
    XmlTag tag;
    tag.type = XmlTag::Comment;
    EXPECT_EQ("<!---->\n", written(tag));
    tag.type = XmlTag::SpecialExclaim;
    EXPECT_EQ("<!>\n", written(tag));
}

TEST(XmlWrite, UnknownTypeFails) {
    XmlTag tag;
    tag.type = static_cast<XmlTag::Type>(5);
    EXPECT_EQ("XmlTag::write; Unknown tagtype!", failure([&] { written(tag); }));
}

TEST(XmlWrite, OperatorAllowsSelfClosing) {
    XmlTag tag;
    tag.setName("a");
    std::ostringstream os;
    os << tag << tag;
    EXPECT_EQ("<a/>\n<a/>\n", os.str());
}

TEST(XmlWrite, EachTagEndsInAFlush) {
    CountingBuffer buffer;
    std::ostream os(&buffer);
    XmlTag tag;
    tag.write(os, true);
    EXPECT_EQ(1, buffer.mFlushes);
    tag.type = XmlTag::Text;
    tag.write(os, true);
    EXPECT_EQ(2, buffer.mFlushes);
}

TEST(XmlWrite, DocumentWithHeaderAndIndent) {
    EXPECT_EQ(
        "<?xml version=\"1.0\"?>\n"
        "\n"
        "<r a=\"1\">\n"
        "\t<b>\n"
        "\t\t<c/>\n"
        "\t\t<!-- x -->\n"
        "\t</b>\n"
        "\t<?p q=\"2\"?>\n"
        "\t<!D e f g>\n"
        "\t'hello  '\n"
        "</r>\n",
        rewritten("<?xml version='1.0'?><r a=1><b><c></c><!-- x --></b><?p q=2?><!D e f g>  hello  </r>"));
}

TEST(XmlWrite, RootIsNeverSelfClosed) {
    EXPECT_EQ("<r>\n</r>\n", rewritten("<r></r>"));
}

TEST(XmlWrite, EmptyElementIsWrittenSelfClosedAndOneWithOnlyACommentStaysOpen) {
    EXPECT_EQ("<r>\n\t<a/>\n\t<a>\n\t\t<!--c-->\n\t</a>\n</r>\n", rewritten("<r><a></a><a><!--c--></a></r>"));
}

TEST(XmlWrite, OpenNodeWithoutChildrenPrintsOnTwoLines) {
    XmlParser parser;
    parser.parse("<r><a/></r>");
    parser.getChildren(0)->setClosed(false);
    std::string out = "before";
    parser.write(out, "  ");
    EXPECT_EQ("<r>\n  <a>\n  </a>\n</r>\n", out);
}

TEST(XmlWrite, HeaderOfAnotherNameIsNotWritten) {
    XmlParser parser;
    parser.parse("<r></r>");
    parser.header.setName("xm");
    std::string out;
    parser.write(out, "\t");
    EXPECT_EQ("<r>\n</r>\n", out);
}

TEST(XmlWrite, TextGainsAPairOfQuotesAtEachParseAndWrite) {
    const std::string once = rewritten("<r>hello</r>");
    EXPECT_EQ("<r>\n\t'hello'\n</r>\n", once);
    EXPECT_EQ("<r>\n\t''hello'\n'\n</r>\n", rewritten(once));
}

TEST(XmlWrite, WhatIsWrittenLoadsToTheSameTree) {
    const std::string text = "<?xml version='1.0'?><r a='x y'><b c=1><d/><!-- e --></b><f><f g=2/></f></r>";
    EXPECT_EQ(parsed(text), parsed(rewritten(text)));
    EXPECT_EQ(rewritten(text), rewritten(rewritten(text)));
}

TEST(XmlWrite, WriteRecurseKeepsToTheIteratorsCriteriaOnItsOwnLevel) {
    XmlParser parser;
    parser.parse("<r><a><b/></a><b><a/></b></r>");
    IteratorConst it = static_cast<const XmlParser&>(parser).createIterator("b");
    std::ostringstream os;
    parser.writeRecurse(os, it, "-", 2);
    EXPECT_EQ("--<b>\n---<a/>\n--</b>\n-</r>\n", os.str());
    EXPECT_TRUE(it.isAtEnd());
}

TEST(XmlWrite, ChildrenOfANodeMarkedClosedAreNotWritten) {
    XmlParser parser;
    parser.parse("<r><a><b/></a></r>");
    parser.getChildren(0)->setClosed(true);
    std::string out;
    parser.write(out, "\t");
    EXPECT_EQ("<r>\n\t<a/>\n</r>\n", out);
}
