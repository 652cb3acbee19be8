// Walkers over the children of a node. Every caller steps with `while (++it)`; a new walk is a new iterator.
// They own nothing and are valid while their node lives.
#pragma once

#include "xml_node.h"

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>

namespace zentrak::xml {

class IteratorConst {
public:
    const XmlNode* root;        // its children are walked
    int32_t index = -1;         // of the current child
    bool atEnd = false;         // past the last child
    bool atBegin = true;        // before the first step
    std::string searchCriteria; // only children of this name, of any type; empty: all

    IteratorConst(const XmlNode* aRoot, const std::string& criteria);

    // Steps to the next match and returns whether there was one. After the last one `index` is the
    // number of children without criteria, and stays on the last match with them. Throws when called again
    // after that.
    bool operator++();

    // The current child. Throws before the first step and after the last.
    const XmlTag* operator->() const;

    bool isAtBegin() const { return atBegin; }
    bool isAtEnd() const { return atEnd; }
    const XmlNode* getRoot() const { return root; }

    // Walks the children of the current child. Throws as operator->.
    IteratorConst createIterator(const std::string& criteria) const;

protected:
    // The current child; throws the given texts if there is none.
    const XmlNode* current(const char* beforeFirst, const char* afterLast) const;
};

class Iterator : public IteratorConst {
public:
    Iterator(XmlNode* aRoot, const std::string& criteria);

    // The current child, owned by its parent. Throws before the first step and after the last.
    XmlNode* operator->();

    XmlNode* getRoot() { return const_cast<XmlNode*>(root); }
    using IteratorConst::getRoot;

    Iterator createIterator(const std::string& criteria) const;

    // Adds a copy of `tag` after the current child and moves onto it, also past the end. The result walks
    // the children of the new one.
    Iterator addChild(const XmlTag& tag);
    // The same with a node that the walked one owns from then on. Returns it.
    XmlNode* adoptChild(std::unique_ptr<XmlNode> child);

    // Copies the tag onto the node whose children are walked.
    void setRoot(const XmlTag& tag);

private:
    XmlNode* currentNode() const;
};

// Prints the current child's tag. Throws as operator->.
std::ostream& operator<<(std::ostream& os, const IteratorConst& it);

} // namespace zentrak::xml
