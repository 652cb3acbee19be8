#include "xml_iterator.h"

#include <algorithm>
#include <utility>

namespace zentrak::xml {

namespace {

int childCount(const XmlNode* node) {
    return node ? node->getNumChildren() : 0;
}

} // namespace

IteratorConst::IteratorConst(const XmlNode* aRoot, const std::string& criteria)
    : root(aRoot), searchCriteria(criteria) {}

bool IteratorConst::operator++() {
    if (atEnd)
        throw Exception("IteratorConst::operator++; Called after last tag!");
    atBegin = false;
    const int count = childCount(root);
    for (int i = index + 1; i < count; ++i) {
        if (searchCriteria.empty() || root->children[size_t(i)]->name == searchCriteria) {
            index = i;
            return true;
        }
    }
    atEnd = true;
    if (searchCriteria.empty())
        index = count; // with criteria, stay on the last match
    return false;
}

const XmlNode* IteratorConst::current(const char* beforeFirst, const char* afterLast) const {
    if (atBegin)
        throw Exception("%s", beforeFirst);
    // Out of range if children were removed meanwhile.
    if (atEnd || index < 0 || index >= childCount(root))
        throw Exception("%s", afterLast);
    return root->children[size_t(index)];
}

const XmlTag* IteratorConst::operator->() const {
    return current("IteratorConst::operator->; Can't access before first element!",
                   "IteratorConst::operator->; Can't access after last element!");
}

IteratorConst IteratorConst::createIterator(const std::string& criteria) const {
    return IteratorConst(static_cast<const XmlNode*>(operator->()), criteria);
}

Iterator::Iterator(XmlNode* aRoot, const std::string& criteria) : IteratorConst(aRoot, criteria) {}

XmlNode* Iterator::currentNode() const {
    return const_cast<XmlNode*>(
        current("XmlParser::Iterator::operator->; Can't access before first element, try operator++ first!",
                "XmlParser::Iterator::operator->; Can't access after last element, no Tags matching "
                "searchCriteria?"));
}

XmlNode* Iterator::operator->() {
    return currentNode();
}

Iterator Iterator::createIterator(const std::string& criteria) const {
    return Iterator(currentNode(), criteria);
}

XmlNode* Iterator::adoptChild(std::unique_ptr<XmlNode> child) {
    atEnd = false;
    atBegin = false;
    index = std::min(index + 1, getRoot()->getNumChildren()); // appends past the end
    return getRoot()->adoptChild(std::move(child), index);
}

Iterator Iterator::addChild(const XmlTag& tag) {
    return Iterator(adoptChild(std::make_unique<XmlNode>(tag, nullptr)), emptyString);
}

void Iterator::setRoot(const XmlTag& tag) {
    getRoot()->setTag(tag);
}

std::ostream& operator<<(std::ostream& os, const IteratorConst& it) {
    return os << *it.operator->();
}

} // namespace zentrak::xml
