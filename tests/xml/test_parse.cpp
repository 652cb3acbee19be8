#include "xml_support.h"

#include <cstring>

using namespace zentrak::xml;
using namespace zentrak::test;

TEST(XmlParse, ElementsAttributesAndNesting) {
    EXPECT_EQ("root[a=1](b/ c(d/[e=f g] h/) b/)",
              parsed("<root a='1'><b/><c><d e=\"f g\"/><h></h></c><b/></root>"));
}

TEST(XmlParse, QuotedAndUnquotedValuesInOneChild) {
    EXPECT_EQ("r(a/[b=1,c=x y,d=it's])", parsed("<r><a b=1 c='x y' d=\"it's\"/></r>"));
}

TEST(XmlParse, SlashInTheMiddleOfATagClosesIt) {
    EXPECT_EQ("r(a/[x=1,y=2])", parsed("<r><a x=1 / y=2></r>"));
    EXPECT_EQ("r(a/)", parsed("<r><a / / / ></r>"));
    EXPECT_EQ("r(a/)", parsed("<r><a/ ></r>"));
}

TEST(XmlParse, SpaceIsAllowedAroundEverythingInATag) {
    EXPECT_EQ("r(a/[b=1,c=2])", parsed(" \r\n\t< r >< a b\n=\t1 c = '2' / >< / r >"));
}

TEST(XmlParse, NamesTakeLettersDigitsAndColons) {
    EXPECT_EQ("a:1(:/ 2b/)", parsed("<a:1><:/><2b/></a:1>"));
    EXPECT_EQ("(x/)", parsed("<><x/></>"));
    EXPECT_EQ("(error at line 1, col 6); '=' expected! (when reading tag at 1:1)",
              parseFailure("<a b:c=1></a>"));
}

TEST(XmlParse, BytesAbove127AreNoNameCharacters) {
    EXPECT_EQ("(error at line 1, col 4); '=' expected! (when reading tag at 1:1)",
              parseFailure("<a\xe4></a\xe4>"));
    EXPECT_EQ("r(a/[b=\xc3\xa4])", parsed("<r><a b='\xc3\xa4'/></r>"));
}

TEST(XmlParse, UnderscoreInATagNameFailsAsAnAttributeWithAnEmptyName) {
    EXPECT_EQ("(error at line 1, col 5); '=' expected! (when reading tag at 1:1)", parseFailure("<my_tag>"));
}

TEST(XmlParse, UnquotedValueEndsAtAPoint) {
    EXPECT_EQ("(error at line 1, col 8); '=' expected! (when reading tag at 1:1)",
              parseFailure("<a a=1.5></a>"));
}

TEST(XmlParse, UnquotedValueMayBeEmpty) {
    EXPECT_EQ("a/[b=]", parsed("<a b=></a>"));
    EXPECT_EQ("a(c/[b=])", parsed("<a><c b= /></a>"));
    EXPECT_EQ("a/[=v]", parsed("<a ='v'></a>"));
}

TEST(XmlParse, LineEndInAQuotedValueFailsWithTheQuote) {
    EXPECT_EQ("(error at line 1, col 8); You must close the value using \" (when reading tag at 1:1)",
              parseFailure("<a b=\"x\n\">"));
    EXPECT_EQ("(error at line 1, col 7); You must close the value using ' (when reading tag at 1:1)",
              parseFailure("<a b='\n'>"));
}

TEST(XmlParse, ValueTakesTheOtherQuoteAndAngleBracketsAndTurnsTabsIntoFourSpaces) {
    EXPECT_EQ("r/[a=<'/>,b=\"    x]", parsed("<r a=\"<'/>\" b='\"\tx'></r>"));
}

TEST(XmlParse, AttributeValueWithACarriageReturnLosesItAndACommentKeepsIt) {
    EXPECT_EQ("r(a/[v=12] 1:COMMENT/[content= \r ])", parsed("<r><a v='1\r2'/><!-- \r --></r>"));
}

TEST(XmlParse, CarriageReturnCountsAsAColumnOnlyInAComment) {
    EXPECT_EQ("(error at line 1, col 12); EOF (when reading tag at 1:4)", parseFailure("<r><!--\r\rxy"));
    EXPECT_EQ("(error at line 1, col 5); EOF (when reading tag at 1:5)", parseFailure("<r>\r\rx"));
    EXPECT_EQ("(error at line 1, col 9); EOF (when reading tag at 1:4)", parseFailure("<r><a b=\r\r"));
    EXPECT_EQ("(error at line 1, col 10); EOF (when reading tag at 1:4)", parseFailure("<r><a b='\r\r"));
}

TEST(XmlParse, TabCountsAsFourColumnsEverywhere) {
    EXPECT_EQ("(error at line 1, col 12); EOF (when reading tag at 1:4)", parseFailure("<r>\t\t"));
    EXPECT_EQ("(error at line 1, col 12); EOF (when reading tag at 1:4)", parseFailure("<r><!--\t"));
    EXPECT_EQ("(error at line 1, col 14); EOF (when reading tag at 1:4)", parseFailure("<r><a b='\t"));
}

TEST(XmlParse, RepeatedAttributeOverwritesTheEarlierValueAtItsOldPosition) {
    EXPECT_EQ("r/[a=3,b=2]", parsed("<r a=1 b=2 a=3></r>"));
}

TEST(XmlParse, RepeatedAttributesOfATagOfVeryManyOverwriteToo) {
    std::string text = "<r";
    for (int round = 0; round < 2; ++round)
        for (int i = 0; i < 50000; ++i)
            text += " a" + std::to_string(i) + "=" + std::to_string(i * (round + 1));
    XmlParser parser;
    parser.parse(text + "></r>");
    ASSERT_EQ(50000u, parser.arguments.size());
    for (const int i : {0, 1, 63, 64, 65, 49999}) {
        EXPECT_EQ("a" + std::to_string(i), parser.arguments[size_t(i)].name);
        EXPECT_EQ(std::to_string(i * 2), parser.arguments[size_t(i)].value);
    }
}

TEST(XmlParse, TagsOfManyAttributesKnowNothingOfEachOther) {
    const auto tagOf = [](int first, int step) {
        std::string text = "<a";
        for (int i = 0; i < 100; ++i)
            text += " n" + std::to_string(first + i * step) + "=" + std::to_string(i);
        return text + "/>";
    };
    XmlParser parser;
    parser.parse("<r>" + tagOf(0, 1) + tagOf(99, -1) + "</r>");
    for (int i = 0; i < 100; ++i) {
        const XmlTag::Argument& up = parser.getChildren(0)->arguments[size_t(i)];
        const XmlTag::Argument& down = parser.getChildren(1)->arguments[size_t(i)];
        EXPECT_EQ("n" + std::to_string(i), up.name);
        EXPECT_EQ(std::to_string(i), up.value);
        EXPECT_EQ("n" + std::to_string(99 - i), down.name);
        EXPECT_EQ(std::to_string(i), down.value);
    }
}

TEST(XmlParse, TextLosesLeadingSpaceAndKeepsTrailingSpace) {
    EXPECT_EQ("r(4:!!!text/[content=hello  ])", parsed("<r>  hello  </r>"));
    EXPECT_EQ("r(4:!!!text/[content=a\nb    c d])", parsed("<r>\n a\r\nb\tc d</r>"));
    EXPECT_EQ("r/", parsed("<r> \t\r\n </r>"));
    EXPECT_EQ("r(4:!!!text/[content=> & \"'])", parsed("<r>> & \"'</r>"));
}

TEST(XmlParse, CommentKeepsItsBodyAsItIs) {
    EXPECT_EQ("r(1:COMMENT/[content= a -- b - <x> \n\r\t ])", parsed("<r><!-- a -- b - <x> \n\r\t --></r>"));
    EXPECT_EQ("r(1:COMMENT/[content=>])", parsed("<r><!-->--></r>"));
    EXPECT_EQ("r(1:COMMENT/[content=->x])", parsed("<r><!--->x--></r>"));
}

TEST(XmlParse, EmptyCommentAndOneThatEndsInADashFail) {
    EXPECT_EQ("(error at line 1, col 8); Xml: Ill formatted comment! (when reading tag at 1:4)",
              parseFailure("<r><!----></r>"));
    EXPECT_EQ("(error at line 1, col 12); Xml: Ill formatted comment! (when reading tag at 1:4)",
              parseFailure("<r><!-- a ---></r>"));
}

TEST(XmlParse, ElementWithOnlyACommentInsideStaysOpenAndAnEmptyOneIsClosed) {
    EXPECT_EQ("r(a/ a(1:COMMENT/[content=c]))", parsed("<r><a></a><a><!--c--></a></r>"));
}

TEST(XmlParse, EndTagWithAnotherNameBecomesAClosedChild) {
    EXPECT_EQ("a(b(c/) b/)", parsed("<a><b></c></b></b></a>"));
}

TEST(XmlParse, ClosedChildWithItsParentsNameAndNoAttributesEndsTheParent) {
    EXPECT_EQ("r(a/ b/)", parsed("<r><a><a/><b/></r>"));
    EXPECT_EQ("r(a(a/[x=1]))", parsed("<r><a><a x=1/></a></r>"));
}

TEST(XmlParse, EndTagWithAttributesIsAClosedChild) {
    EXPECT_EQ("r(a(a/[b=1]))", parsed("<r><a></a b='1'></a></r>"));
}

TEST(XmlParse, ProcessingInstructionWithItsParentsNameAndNoAttributesEndsTheParentToo) {
    EXPECT_EQ("r(a/ b/)", parsed("<r><a><?a?><b/></r>"));
}

TEST(XmlParse, TextAfterTheRootIsIgnored) {
    EXPECT_EQ("r/", parsed("<r></r><broken _ \" <!"));
}

TEST(XmlParse, HeaderCollectsTheAttributesOfEveryProlog) {
    XmlParser parser;
    parser.parse("<?xml version=\"1.0\"?><?xml encoding=\"x\"?><r></r>");
    EXPECT_EQ("xml", parser.header.getName());
    EXPECT_EQ(XmlTag::SpecialQuestion, parser.header.getType());
    ASSERT_EQ(2u, parser.header.arguments.size());
    EXPECT_EQ("1.0", parser.header.getValue("version"));
    EXPECT_EQ("x", parser.header.getValue("encoding"));
}

TEST(XmlParse, EverythingElseInFrontOfTheRootIsDropped) {
    XmlParser parser;
    parser.parse("text <!--c--><!DOCTYPE html><?other a=1?><r></r>");
    EXPECT_EQ("r/", shape(parser));
    EXPECT_EQ("", parser.header.getName());
}

TEST(XmlParse, HeaderIsResetByTheNextParseAndNotByClear) {
    XmlParser parser;
    parser.parse("<?xml a=1?><r></r>");
    parser.clear();
    EXPECT_EQ("xml", parser.header.getName());
    parser.parse("<r></r>");
    EXPECT_EQ("", parser.header.getName());
}

TEST(XmlParse, ProcessingInstructionNameTakesAGreaterSign) {
    EXPECT_EQ("r(2:foo>/[a=1] 2:p/)", parsed("<r><?foo> a=1?><?p?></r>"));
}

TEST(XmlParse, ProcessingInstructionFailures) {
    EXPECT_EQ("(error at line 1, col 7); Xml: Ill formed <?xml?> tag (when reading tag at 1:1)",
              parseFailure("<?xml ? >"));
    EXPECT_EQ("(error at line 1, col 11); Xml: Ill formed <?xml?> tag, forgot to close it using '?>'? (when "
              "reading tag at 1:1)",
              parseFailure("<?xml a=1 >"));
    EXPECT_EQ("(error at line 1, col 6); EOF (when reading tag at 1:1)", parseFailure("<?xml?"));
    EXPECT_EQ("(error at line 1, col 7); EOF (when reading tag at 1:1)", parseFailure("<?xml>"));
    EXPECT_EQ("(error at line 1, col 10); '=' expected! (when reading tag at 1:1)",
              parseFailure("<?xml a ?>"));
}

TEST(XmlParse, DeclarationIsReadAsPairsOfNameAndValue) {
    EXPECT_EQ("r(3:SPECIAL_EXCLAIM/[DOCTYPE=html,=a b,PUBLIC=x])",
              parsed("<r><!DOCTYPE html 'a b' PUBLIC \"x\"></r>"));
    EXPECT_EQ("r(3:SPECIAL_EXCLAIM/[a=])", parsed("<r><!a></r>"));
    EXPECT_EQ("r(3:SPECIAL_EXCLAIM/)", parsed("<r><!></r>"));
}

TEST(XmlParse, DeclarationByteThatCanStartNothingFailsInsteadOfHanging) {
    EXPECT_EQ("(error at line 1, col 15); Xml: Ill formed <!...> tag (when reading tag at 1:1)",
              parseFailure("<!DOCTYPE a b [ <!ELEMENT c> ]><a></a>"));
    for (const char* text :
         {"<!=>", "<!-x>", "<!a b/>", "<!\x01>", "<!\xff>", "<!DOCTYPE <", "<!a b ?>", "<!&"})
        EXPECT_NE(std::string::npos, parseFailure(text).find("Xml: Ill formed <!...> tag")) << text;
}

TEST(XmlParse, RootAloneAndClosedFails) {
    EXPECT_EQ("(error at line 1, col 8); Root tag is closed! (when reading tag at 1:1)",
              parseFailure("<root/>"));
    EXPECT_EQ("(error at line 2, col 8); Root tag is closed! (when reading tag at 1:1)",
              parseFailure("\n</root>"));
}

TEST(XmlParse, SecondParseWithoutClearFails) {
    XmlParser parser;
    parser.parse("<a></a>");
    EXPECT_EQ(
        "(error at line 1, col 1); Parser has already parsed a xml-file, use clear() first! (when reading "
        "tag at -1:-1)",
        failure([&] { parser.parse("<b></b>"); }));
    EXPECT_EQ("a/", shape(parser));
    parser.clear();
    parser.parse("<b></b>");
    EXPECT_EQ("b/", shape(parser));
}

TEST(XmlParse, EmptyBufferIsEofAtTagPosition1) {
    EXPECT_EQ("(error at line 1, col 1); EOF (when reading tag at 1:1)", parseFailure(""));
    XmlParser parser;
    EXPECT_EQ("(error at line 1, col 1); EOF (when reading tag at 1:1)",
              failure([&] { parser.parse(nullptr, 10); }));
    EXPECT_EQ("(error at line 1, col 1); EOF (when reading tag at 1:1)",
              failure([&] { parser.parse("<a></a>", -1); }));
    EXPECT_EQ("(error at line 2, col 3); EOF (when reading tag at 1:1)", parseFailure("\n  "));
}

TEST(XmlParse, BufferNeedsNoTerminatorAndItsLengthCounts) {
    const std::string text = "<a></a>garbage";
    XmlParser parser;
    parser.parse(text.data(), 7);
    EXPECT_EQ("a/", shape(parser));
    XmlParser cut;
    EXPECT_EQ("(error at line 1, col 7); EOF (when reading tag at 1:4)",
              failure([&] { cut.parse(text.data(), 6); }));
}

TEST(XmlParse, ZeroByteIsAByteLikeAnyOther) {
    const std::string text("<a>x\0y</a>", 10);
    XmlParser parser;
    parser.parse(text);
    EXPECT_EQ(std::string("x\0y", 3), parser.getChildren(0)->getValue("content"));
}

TEST(XmlParse, ReaderOverloadAddsNoPosition) {
    XmlParser parser;
    BufferReader reader("<a", 2);
    EXPECT_EQ("EOF", failure([&] { parser.parse(reader); }));
    EXPECT_EQ(1, reader.tagLine);
    EXPECT_EQ(3, reader.col);
}

TEST(XmlParse, FailureKeepsWhatWasAddedSoFar) {
    XmlParser parser;
    EXPECT_EQ("(error at line 1, col 18); EOF (when reading tag at 1:15)",
              failure([&] { parser.parse("<r><a/><b><c/> <d"); }));
    EXPECT_EQ("r(a/ b(c/))", shape(parser));
    parser.clear();
    EXPECT_EQ("/", shape(parser));
}

TEST(XmlParse, ParseRecurseInsertsAfterTheIteratorsCurrentChild) {
    XmlParser parser;
    parser.parse("<r><a/><b/></r>");
    Iterator it = parser.createIterator("");
    ++it;
    BufferReader reader("<x><y/></x><z/></r>", 19);
    parser.parseRecurse(reader, it, it);
    EXPECT_EQ("r(a/ x(y/) z/ b/)", shape(parser));
    EXPECT_EQ(2, it.index);
    EXPECT_TRUE(reader.atEnd());
}

TEST(XmlParse, FailureIsLoggedTwiceOnceWithItsPosition) {
    CaptureStdout capture;
    XmlParser parser;
    EXPECT_THROW(parser.parse("<a b>"), zentrak::Exception);
    EXPECT_EQ("[error][Exception], '=' expected! (ztk_system:171)\n"
              "[error][Exception], (error at line 1, col 6); '=' expected! (when reading tag at 1:1) "
              "(ztk_system:171)\n",
              capture.text());
}
