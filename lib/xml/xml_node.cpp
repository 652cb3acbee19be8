#include "xml_node.h"

#include "xml_iterator.h"

#include <algorithm>
#include <cassert>

namespace zentrak::xml {

XmlNode::XmlNode(XmlNode* aParent) : parent(aParent) {}

XmlNode::XmlNode(const XmlTag& tag, XmlNode* aParent) : XmlTag(tag), parent(aParent) {}

XmlNode::~XmlNode() {
    if (parent && !mDetached) {
        std::vector<XmlNode*>& siblings = parent->children;
        const auto found = std::find(siblings.begin(), siblings.end(), this);
        if (found != siblings.end())
            siblings.erase(found);
    }
    deleteChildren();
}

XmlNode* XmlNode::getChildren(int index) {
    return const_cast<XmlNode*>(static_cast<const XmlNode*>(this)->getChildren(index));
}

const XmlNode* XmlNode::getChildren(int index) const {
    if (index < 0 || index >= getNumChildren())
        throw Exception("getChildren(%d); No such child in '%s'", index, name.c_str());
    return children[size_t(index)];
}

XmlNode* XmlNode::adoptChild(std::unique_ptr<XmlNode> child, int position) {
    assert(child);
    if (children.capacity() == 0)
        children.reserve(8); // most nodes have none or several
    const bool there = position >= 0 && position < getNumChildren();
    children.insert(there ? children.begin() + position : children.end(), child.get());
    closed = false;
    child->parent = this;
    child->mDetached = false;
    return child.release();
}

Iterator XmlNode::addChild(const XmlTag& tag, int position) {
    return Iterator(adoptChild(std::make_unique<XmlNode>(tag, nullptr), position), emptyString);
}

int XmlNode::detachChild(XmlNode* child) {
    const auto found = std::find(children.begin(), children.end(), child);
    if (found == children.end())
        throw Exception("detachChild(%p); No such child in '%s'", static_cast<void*>(child), name.c_str());
    const int index = int(found - children.begin());
    children.erase(found);
    child->mDetached = true;
    return index;
}

Iterator XmlNode::createIterator(const std::string& searchCriteria) {
    return Iterator(this, searchCriteria);
}

IteratorConst XmlNode::createIterator(const std::string& searchCriteria) const {
    return IteratorConst(this, searchCriteria);
}

void XmlNode::clear() {
    setTag(XmlTag());
    if (parent)
        parent->detachChild(this);
    deleteChildren();
}

// Deletes from the leaves up: recursion would overflow the stack on a deep tree.
void XmlNode::deleteChildren() {
    XmlNode* node = this;
    for (;;) {
        if (!node->children.empty()) {
            XmlNode* child = node->children.back();
            child->parent = node;
            if (child->children.empty()) {
                node->children.pop_back();
                child->parent = nullptr;
                delete child;
            } else {
                node = child;
            }
        } else if (node != this) {
            node = node->parent;
        } else {
            return;
        }
    }
}

} // namespace zentrak::xml
