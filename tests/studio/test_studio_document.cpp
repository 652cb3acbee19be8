// The script as text with positions: it is read as by the player, and what isn't edited stays.

#include "model.h"
#include "support.h"
#include "ztk_system.h"

#include <map>
#include <random>

using namespace zentrak;
using namespace zentrak::test;
using studio::Document;
using studio::Element;
using studio::Kind;

namespace {

int named(const Document& document, const std::string& name, int nth = 0) {
    for (int i = 1; i < document.getSize(); ++i)
        if (document[i].name == name && nth-- == 0)
            return i;
    return -1;
}

std::string failure(const std::string& text) {
    Document document;
    const std::string before = document.getText();
    try {
        document.load(text);
    } catch (const Exception& exception) {
        EXPECT_EQ(document.getText(), before);
        return exception.what();
    }
    return "";
}

} // namespace

TEST(Document, EveryKindIsFound) {
    Document document;
    document.load(SCRIPT);
    std::map<Kind, int> counts;
    for (const Element& element : document.getElements())
        ++counts[element.kind];
    EXPECT_EQ(counts[Kind::SPAN], 5);
    EXPECT_EQ(counts[Kind::TRIGGER], 3);
    EXPECT_EQ(counts[Kind::SPLINE], 2);
    EXPECT_EQ(counts[Kind::KEY], 4);
    EXPECT_EQ(counts[Kind::SECTION], 2);
    EXPECT_EQ(counts[Kind::BOOKMARK], 1);
    EXPECT_EQ(counts[Kind::TEMPO], 1);
    EXPECT_EQ(document[named(document, "rund")].end, 5);
    EXPECT_FALSE(document[named(document, "waxon")].enabled);
    EXPECT_EQ(document.getOrigin(named(document, "shot")), 5);
}

TEST(Document, ElementsAreWhereTheyStandInTheText) {
    Document document;
    document.load(SCRIPT);
    const auto text = [&](int i) {
        return document.getText().substr(document[i].from, document[i].to - document[i].from);
    };
    EXPECT_EQ(text(named(document, "drop")), "<bookmark name=\"drop\" time=\"12\"/>");
    EXPECT_EQ(text(named(document, "rund")), "<effect   start=2 end=5 name=rund />");
    EXPECT_EQ(text(named(document, "Finale")), "<!-- Finale -->");
    EXPECT_EQ(text(named(document, "alpha", 1)).substr(0, 14), "<spline name=\"");
    EXPECT_EQ(document.getLine(document[named(document, "overlay")].from), 24);
}

TEST(Document, ThePlayerReadsTheSame) {
    Document document;
    document.load(SCRIPT);
    EXPECT_EQ(readByDocument(document), readByPlayer(SCRIPT));
    const std::string show = readFile(sourcePath("data/script.xml"));
    document.load(show);
    EXPECT_EQ(readByDocument(document), readByPlayer(show));
    EXPECT_GT(document.getSize(), 300);
}

TEST(Document, AnErrorNamesItsLineAndChangesNothing) {
    EXPECT_EQ(failure("<script>\n<effect name=>\n\n"), "line 4: EOF");
    EXPECT_EQ(failure("<demo></demo>"), "line 1: The root is 'demo' and not 'script'");
    EXPECT_EQ(failure("<script/>"), "line 1: Root tag is closed!");
    EXPECT_EQ(failure(""), "line 1: EOF");
}

TEST(Document, ASplineWithoutKeysIsAProblem) {
    Document document;
    document.load("<script>\n<effect>\n<spline name='alpha'></spline></effect></script>");
    ASSERT_EQ(document.getProblems().size(), 1u);
    EXPECT_EQ(document.getProblems()[0].line, 3);
}

TEST(Document, OnlyTheValueOfAnAttributeChanges) {
    Document document;
    document.load(SCRIPT);
    std::string expected = SCRIPT;
    expected.replace(expected.find("10.50"), 5, "11");
    document.apply({document.setAttribute(named(document, "clear"), "end", "11")});
    EXPECT_EQ(document.getText(), expected);
    EXPECT_EQ(document[named(document, "clear")].end, 11);
    EXPECT_EQ(document[named(document, "overlay")].start, 12);
}

TEST(Document, AnAttributeThatIsMissingIsAddedAfterTheOthers) {
    Document document;
    document.load("<script><effect start=2 end=5 name=rund /></script>");
    document.apply({document.setAttribute(1, "state", "off")});
    EXPECT_EQ(document.getText(), "<script><effect start=2 end=5 name=rund state=\"off\" /></script>");
    document.apply({document.setAttribute(1, "start", "3.5")});
    EXPECT_EQ(document.getText(), "<script><effect start=\"3.5\" end=5 name=rund state=\"off\" /></script>");
}

TEST(Document, OfAnAttributeThatIsThereTwiceTheLastCountsAndIsSet) {
    Document document;
    document.load("<script><effect start='1' start='2'/></script>");
    EXPECT_EQ(document[1].start, 2);
    document.apply({document.setAttribute(1, "start", "7")});
    EXPECT_EQ(document[1].start, 7);
}

TEST(Document, QuotesInAValueAreKeptOrBecomeTheOtherOnes) {
    Document document;
    document.load("<script><effect name='a'/></script>");
    for (const std::string name : {"it's", "\"so\"", "it's \"so\"", "a>b</effect>", "two\nlines"}) {
        document.apply({document.setAttribute(1, "name", name)});
        EXPECT_EQ(readByDocument(document), readByPlayer(document.getText()));
        EXPECT_EQ(document[1].name.size(), name.size());
    }
    EXPECT_EQ(document[1].name, "two lines");
}

TEST(Document, ElementsKeepTheirIdsWhateverIsDoneAroundThem) {
    Document document;
    document.load(SCRIPT);
    std::map<std::string, uint32_t> ids;
    for (const Element& element : document.getElements())
        ids[element.name] = element.id;
    document.apply({document.erase(named(document, "clear"))});
    document.apply({*document.insert(0, named(document, "Finale"), "<effect name=\"new\"/>")});
    EXPECT_EQ(document.getMade(), std::vector<int>{named(document, "new")});
    for (const char* name : {"waxon", "grid", "rund", "shot", "overlay", "drop", "Finale"})
        EXPECT_EQ(document[named(document, name)].id, ids[name]) << name;
    EXPECT_EQ(document.find(ids["clear"]), -1);
    EXPECT_EQ(document.find(ids["drop"]), named(document, "drop"));
}

TEST(Document, AChildOfAClosedElementOpensIt) {
    Document document;
    document.load("<script>\n  <effect name=\"a\"/>\n</script>");
    document.apply({*document.insert(1, -1, "<trigger name=\"t\"/>")});
    EXPECT_EQ(document.getText(),
              "<script>\n  <effect name=\"a\">\n    <trigger name=\"t\"/>\n  </effect>\n</script>");
    document.apply({*document.insert(1, -1, "<spline>\n\t<key/>\n</spline>")});
    EXPECT_EQ(readByDocument(document), readByPlayer(document.getText()));
}

TEST(Document, LineEndsOfAnElementAreThoseOfTheFile) {
    Document document;
    document.load("<script>\r\n\t<effect name=\"a\">\r\n\t</effect>\r\n</script>\r\n");
    document.apply({*document.insert(0, 1, document.getElementText(1))});
    EXPECT_EQ(document.getText(), "<script>\r\n\t<effect name=\"a\">\r\n\t</effect>\r\n\t<effect "
                                  "name=\"a\">\r\n\t</effect>\r\n</script>\r\n");
    document.apply({document.erase(2)});
    EXPECT_EQ(document.getText(), "<script>\r\n\t<effect name=\"a\">\r\n\t</effect>\r\n</script>\r\n");
}

TEST(Document, NumbersAreWrittenAsAPersonDoes) {
    for (const auto& [number, text] :
         std::vector<std::pair<double, std::string>>{{0, "0"},
                                                     {-0.00001, "0"},
                                                     {15.2381, "15.2381"},
                                                     {15.238095, "15.2381"},
                                                     {10, "10"},
                                                     {100, "100"},
                                                     {-1.5, "-1.5"},
                                                     {double(0.1f), "0.1"},
                                                     {1e300, "1000000000000000"},
                                                     {-1e300, "-1000000000000000"},
                                                     {double(ENDLESS), "0"}})
        EXPECT_EQ(studio::formatNumber(number), text);
    EXPECT_EQ(studio::parseNumber(" 1,5 "), 1.5);
    EXPECT_EQ(studio::parseNumber("+2"), 2);
    for (const char* text : {"", "-", "1 2", "1e999", "nan", "inf", "one"})
        EXPECT_FALSE(studio::parseNumber(text)) << text;
}

TEST(Document, ACommentCanAlwaysBeRead) {
    for (const char* text : {"", "-", "a--b", "a-->b", "--", "x -", "a---->"}) {
        Document document;
        document.load("<script><!-- " + studio::toComment(text) + " --></script>");
        EXPECT_EQ(document.getSize(), 2) << text;
    }
}

// Scripts that were damaged at random: either both refuse, or both read the same.
TEST(Document, DamagedScriptsAreReadAsThePlayerReadsThem) {
    std::mt19937 random(1);
    const std::string pieces[] = {
        "<effect", ">",    "/>",       "</effect>",       "\"",        "'",     "=",
        " ",       "<!--", "-->",      "<key time='1'/>", "</spline>", "name=", "<?",
        "?>",      "\r\n", "<script>", "</script>",       "x"};
    int read = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string text = SCRIPT;
        for (unsigned n = random() % 4 + 1; n > 0; --n) {
            const size_t at = random() % text.size(),
                         length = std::min<size_t>(random() % 12, text.size() - at);
            text.replace(at, length, pieces[random() % std::size(pieces)]);
        }
        Document document;
        try {
            document.load(text);
        } catch (const Exception&) {
            EXPECT_EQ(readByPlayer(text), "refused") << text;
            continue;
        }
        ++read;
        EXPECT_EQ(readByDocument(document), readByPlayer(text)) << text;
        // And whatever it is, its elements can be edited.
        for (int i = 1; i < document.getSize(); ++i) {
            if (document[i].kind != Kind::SPAN)
                continue;
            const std::string before = document.getText();
            const auto back = document.apply({document.setAttribute(i, "end", "77")});
            EXPECT_EQ(document[i].end, 77) << before;
            EXPECT_EQ(readByDocument(document), readByPlayer(document.getText())) << document.getText();
            document.apply(back);
            EXPECT_EQ(document.getText(), before);
        }
    }
    EXPECT_GT(read, 300);
}
