#include "xml_support.h"

#include <cstdio>
#include <memory>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

XmlTag named(const std::string& name) {
    XmlTag tag;
    tag.setName(name);
    return tag;
}

std::string noSuchChild(const void* child, const std::string& parent) {
    char pointer[32];
    snprintf(pointer, sizeof(pointer), "%p", child);
    return std::string("detachChild(") + pointer + "); No such child in '" + parent + "'";
}

} // namespace

TEST(XmlNode, IsItsOwnTag) {
    XmlNode node(nullptr);
    EXPECT_EQ("/", shape(node));
    EXPECT_EQ(nullptr, node.parent);
    EXPECT_EQ(&node, &node.getTag());
    EXPECT_EQ(&node, &static_cast<const XmlNode&>(node).getTag());
    XmlNode other(named("x"), &node);
    EXPECT_EQ("x", other.getName());
    EXPECT_EQ(&node, other.parent);
    other.parent = nullptr;
    node.setTag(named("y"));
    EXPECT_EQ("y/", shape(node));
}

TEST(XmlNode, AddChildAppendsOrInserts) {
    XmlNode node(named("r"), nullptr);
    node.addChild(named("b"), -1);
    node.addChild(named("d"), 1);
    node.addChild(named("a"), 0);
    node.addChild(named("c"), 2);
    EXPECT_EQ("r(a/ b/ c/ d/)", shape(node));
    EXPECT_EQ(4, node.getNumChildren());
    EXPECT_EQ("c", node.getChildren(2)->getName());
    EXPECT_EQ(&node, node.getChildren(2)->parent);
    EXPECT_EQ("c", static_cast<const XmlNode&>(node).getChildren(2)->getName());
}

TEST(XmlNode, AddChildAtAPositionThatIsNotThereAppends) {
    XmlNode node(named("r"), nullptr);
    node.addChild(named("a"), 5);
    node.addChild(named("b"), -7);
    node.addChild(named("c"), 2147483647);
    EXPECT_EQ("r(a/ b/ c/)", shape(node));
}

TEST(XmlNode, AddChildOnAClosedLeafMakesItOpenSoThatItIsWrittenWithAnEndTag) {
    XmlParser parser;
    parser.setName("r");
    Iterator leaf = parser.addChild(named("leaf"), -1);
    EXPECT_TRUE(leaf.getRoot()->isClosed());
    leaf.getRoot()->addChild(named("x"), -1);
    EXPECT_FALSE(leaf.getRoot()->isClosed());
    std::string out;
    parser.write(out, "\t");
    EXPECT_EQ("<r>\n\t<leaf>\n\t\t<x/>\n\t</leaf>\n</r>\n", out);
}

TEST(XmlNode, AddChildReturnsAnIteratorOverTheNewChildsChildren) {
    XmlNode node(nullptr);
    Iterator it = node.addChild(named("a"), -1);
    EXPECT_EQ(node.getChildren(0), it.getRoot());
    EXPECT_EQ("", it.searchCriteria);
    EXPECT_TRUE(it.isAtBegin());
}

TEST(XmlNode, GetChildrenOutsideTheListThrows) {
    XmlNode node(named("r"), nullptr);
    node.addChild(named("a"), -1);
    EXPECT_EQ("getChildren(1); No such child in 'r'", failure([&] { node.getChildren(1); }));
    EXPECT_EQ("getChildren(-1); No such child in 'r'",
              failure([&] { static_cast<const XmlNode&>(node).getChildren(-1); }));
}

TEST(XmlNode, DetachChildReturnsItsFormerIndexAndLeavesItsParentPointer) {
    XmlNode node(named("r"), nullptr);
    for (const char* name : {"a", "b", "c"})
        node.addChild(named(name), -1);
    std::unique_ptr<XmlNode> child(node.getChildren(1));
    EXPECT_EQ(1, node.detachChild(child.get()));
    EXPECT_EQ("r(a/ c/)", shape(node));
    EXPECT_EQ(&node, child->parent);
    EXPECT_EQ(noSuchChild(child.get(), "r"), failure([&] { node.detachChild(child.get()); }));
    EXPECT_EQ("r(a/ c/)", shape(node));
}

TEST(XmlNode, DetachChildOfAStrangerThrowsWithItsPointerAndTheNodesName) {
    XmlNode node(named("r"), nullptr), stranger(nullptr);
    EXPECT_EQ(noSuchChild(&stranger, "r"), failure([&] { node.detachChild(&stranger); }));
    EXPECT_EQ(noSuchChild(nullptr, "r"), failure([&] { node.detachChild(nullptr); }));
}

TEST(XmlNode, DetachedChildMayOutliveItsParent) {
    auto node = std::make_unique<XmlNode>(nullptr);
    node->addChild(named("a"), -1);
    std::unique_ptr<XmlNode> child(node->getChildren(0));
    node->detachChild(child.get());
    node.reset();
    EXPECT_EQ("a", child->getName());
}

TEST(XmlNode, DeletingAChildDirectlyRemovesItFromItsParentsList) {
    XmlNode node(named("r"), nullptr);
    for (const char* name : {"a", "b", "c"})
        node.addChild(named(name), -1);
    delete node.getChildren(1);
    EXPECT_EQ("r(a/ c/)", shape(node));
}

TEST(XmlNode, ClearOnARootDeletesTheWholeSubtreeWithoutAnyDetachError) {
    XmlParser parser;
    parser.parse("<r><a><b><c/></b><d/></a><e/></r>");
    CaptureStdout capture;
    parser.clear();
    EXPECT_EQ("", capture.text());
    EXPECT_EQ("/", shape(parser));
    parser.clear();
    EXPECT_EQ("/", shape(parser));
}

TEST(XmlNode, ClearOnAChildTakesItOutOfItsParentWhosePointerStays) {
    XmlNode node(named("r"), nullptr);
    node.addChild(named("a"), -1);
    std::unique_ptr<XmlNode> child(node.getChildren(0));
    child->addChild(named("x"), -1);
    child->clear();
    EXPECT_EQ("r", shape(node));
    EXPECT_EQ("/", shape(*child));
    EXPECT_EQ(&node, child->parent);
    EXPECT_EQ(noSuchChild(child.get(), "r"), failure([&] { child->clear(); }));
}

TEST(XmlNode, DetachedChildIsAdoptedByAnother) {
    XmlNode node(named("r"), nullptr), other(named("o"), nullptr);
    node.addChild(named("a"), -1);
    other.addChild(named("b"), -1);
    std::unique_ptr<XmlNode> child(node.getChildren(0));
    node.detachChild(child.get());
    XmlNode* adopted = other.adoptChild(std::move(child), 0);
    EXPECT_EQ(&other, adopted->parent);
    EXPECT_EQ("o(a/ b/)", shape(other));
    delete adopted;
    EXPECT_EQ("o(b/)", shape(other));
}
