#include "xml_support.h"

#include <sstream>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

const char constBefore[] = "IteratorConst::operator->; Can't access before first element!";
const char constAfter[] = "IteratorConst::operator->; Can't access after last element!";
const char before[] =
    "XmlParser::Iterator::operator->; Can't access before first element, try operator++ first!";
const char after[] = "XmlParser::Iterator::operator->; Can't access after last element, no Tags matching "
                     "searchCriteria?";
const char calledAfter[] = "IteratorConst::operator++; Called after last tag!";

XmlTag named(const std::string& name) {
    XmlTag tag;
    tag.setName(name);
    return tag;
}

class XmlIterator : public testing::Test {
protected:
    XmlIterator() { mParser.parse("<r><x n=0/><y n=1><z/></y><x n=2/></r>"); }

    const XmlParser& constParser() const { return mParser; }

    XmlParser mParser;
};

} // namespace

TEST_F(XmlIterator, StartsBeforeTheFirstElement) {
    const IteratorConst it = constParser().createIterator("x");
    EXPECT_EQ(&mParser, it.getRoot());
    EXPECT_EQ(-1, it.index);
    EXPECT_TRUE(it.isAtBegin());
    EXPECT_FALSE(it.isAtEnd());
    EXPECT_EQ("x", it.searchCriteria);
}

TEST_F(XmlIterator, WalkWithCriteriaStopsOnMatchesAndStaysOnTheLastOne) {
    Iterator it = mParser.createIterator("x");
    EXPECT_TRUE(++it);
    EXPECT_EQ(0, it.index);
    EXPECT_EQ("0", it->getValue("n"));
    EXPECT_TRUE(++it);
    EXPECT_EQ(2, it.index);
    EXPECT_FALSE(++it);
    EXPECT_TRUE(it.isAtEnd());
    EXPECT_EQ(2, it.index);
    EXPECT_EQ(calledAfter, failure([&] { ++it; }));
}

TEST_F(XmlIterator, WalkWithCriteriaThatMatchNoFurtherChildLeavesTheIndexWhereItWas) {
    IteratorConst it = constParser().createIterator("y");
    EXPECT_TRUE(++it);
    EXPECT_EQ(1, it.index);
    EXPECT_FALSE(++it);
    EXPECT_EQ(1, it.index);
    EXPECT_TRUE(it.isAtEnd());
    EXPECT_EQ(constAfter, failure([&] { it.operator->(); }));
    EXPECT_EQ(calledAfter, failure([&] { ++it; }));
}

TEST_F(XmlIterator, WalkWithEmptyCriteriaEndsAfterTheLastChild) {
    IteratorConst it = constParser().createIterator("");
    EXPECT_TRUE(++it);
    EXPECT_FALSE(it.isAtBegin());
    EXPECT_TRUE(++it);
    EXPECT_TRUE(++it);
    EXPECT_EQ("2", it->getValue("n"));
    EXPECT_FALSE(++it);
    EXPECT_EQ(3, it.index);
    EXPECT_EQ(calledAfter, failure([&] { ++it; }));
}

TEST_F(XmlIterator, FilterSeesEveryTypeOfTag) {
    XmlParser parser;
    parser.parse("<r>text<!--c--><?p?><!d e><COMMENT/></r>");
    Iterator it = parser.createIterator("COMMENT");
    EXPECT_TRUE(++it);
    EXPECT_EQ(XmlTag::Comment, it->getType());
    EXPECT_TRUE(++it);
    EXPECT_EQ(XmlTag::Normal, it->getType());
    Iterator all = parser.createIterator("");
    std::string names;
    while (++all)
        names += all->getName() + " ";
    EXPECT_EQ("!!!text COMMENT p SPECIAL_EXCLAIM COMMENT ", names);
}

TEST_F(XmlIterator, NodeWithoutChildrenFailsTheFirstStepAndThenIsPastTheLastElement) {
    XmlNode node(nullptr);
    Iterator it = node.createIterator("");
    IteratorConst itConst = static_cast<const XmlNode&>(node).createIterator("x");
    EXPECT_FALSE(++it);
    EXPECT_FALSE(++itConst);
    EXPECT_EQ(0, it.index);
    EXPECT_EQ(-1, itConst.index);
    EXPECT_EQ(after, failure([&] { it.operator->(); }));
    EXPECT_EQ(constAfter, failure([&] { itConst.operator->(); }));
}

TEST_F(XmlIterator, AccessBeforeTheFirstStepThrowsEvenOnANonEmptyNode) {
    Iterator it = mParser.createIterator("");
    IteratorConst itConst = constParser().createIterator("");
    EXPECT_EQ(before, failure([&] { it.operator->(); }));
    EXPECT_EQ(constBefore, failure([&] { itConst.operator->(); }));
    EXPECT_EQ(before, failure([&] { it.createIterator(""); }));
    EXPECT_EQ(constBefore, failure([&] { itConst.createIterator(""); }));
}

TEST_F(XmlIterator, BeginIsTestedBeforeTheEnd) {
    Iterator it = mParser.createIterator("");
    it.atEnd = true;
    EXPECT_EQ(before, failure([&] { it.operator->(); }));
    EXPECT_EQ(calledAfter, failure([&] { ++it; }));
    EXPECT_TRUE(it.isAtBegin());
}

TEST_F(XmlIterator, ChildrenOfTheCurrentChildAreWalkedNext) {
    Iterator it = mParser.createIterator("y");
    ASSERT_TRUE(++it);
    Iterator below = it.createIterator("z");
    ASSERT_TRUE(++below);
    EXPECT_EQ("z", below->getName());
    EXPECT_EQ(mParser.getChildren(1), below.getRoot());

    IteratorConst itConst = constParser().createIterator(std::string("y"));
    ASSERT_TRUE(++itConst);
    IteratorConst belowConst = itConst.createIterator("");
    ASSERT_TRUE(++belowConst);
    EXPECT_EQ("z", belowConst->getName());
}

TEST_F(XmlIterator, PrintsTheCurrentChildsTag) {
    IteratorConst it = constParser().createIterator("");
    std::ostringstream os;
    EXPECT_EQ(constBefore, failure([&] { os << it; }));
    ++it;
    os << it;
    EXPECT_EQ("<x n=\"0\"/>\n", os.str());
}

TEST_F(XmlIterator, AddChildOnAFreshIteratorBuildsTheListInCallOrder) {
    XmlNode node(named("r"), nullptr);
    Iterator it = node.createIterator("");
    it.addChild(named("a"));
    EXPECT_EQ(0, it.index);
    EXPECT_FALSE(it.isAtBegin());
    EXPECT_EQ("a", it->getName());
    it.addChild(named("b")).addChild(named("below"));
    it.addChild(named("c"));
    EXPECT_EQ("r(a/ b(below/) c/)", shape(node));
    EXPECT_EQ(2, it.index);
}

TEST_F(XmlIterator, AddChildInsertsAfterTheCurrentChildAndMovesOntoIt) {
    Iterator it = mParser.createIterator("y");
    ++it;
    it.addChild(named("new"));
    EXPECT_EQ("new", it->getName());
    EXPECT_EQ("r(x/[n=0] y[n=1](z/) new/ x/[n=2])", shape(mParser));
}

TEST_F(XmlIterator, AddChildTakesAnIteratorOutOfTheEnd) {
    Iterator it = mParser.createIterator("");
    while (++it) {
    }
    it.addChild(named("new"));
    EXPECT_FALSE(it.isAtEnd());
    EXPECT_EQ("new", it->getName());
    EXPECT_EQ(3, it.index);
    EXPECT_EQ("r(x/[n=0] y[n=1](z/) x/[n=2] new/)", shape(mParser));
    EXPECT_FALSE(++it);

    Iterator filtered = mParser.createIterator("y");
    while (++filtered) {
    }
    filtered.addChild(named("behindY"));
    EXPECT_EQ("behindY", mParser.getChildren(2)->getName());
}

TEST_F(XmlIterator, SetRootCopiesTheTagOntoTheWalkedNode) {
    Iterator it = mParser.createIterator("");
    XmlTag tag = named("q");
    tag.setValue("k", "v");
    it.setRoot(tag);
    EXPECT_EQ("q/[k=v](x/[n=0] y[n=1](z/) x/[n=2])", shape(mParser));
}

TEST_F(XmlIterator, ChildrenTakenAwayDuringTheWalkArePastTheLastElement) {
    Iterator it = mParser.createIterator("");
    ++it;
    ++it;
    ++it;
    delete mParser.getChildren(0);
    EXPECT_EQ(after, failure([&] { it.operator->(); }));
    EXPECT_FALSE(++it);
}

TEST_F(XmlIterator, NullNodeHasNoChildren) {
    IteratorConst it(nullptr, "");
    EXPECT_FALSE(++it);
    EXPECT_EQ(constAfter, failure([&] { it.operator->(); }));
}
