// A tag in a tree: it owns its children and knows its parent.
#pragma once

#include "xml_tag.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::xml {

class Iterator;
class IteratorConst;

class XmlNode : public XmlTag {
public:
    std::vector<XmlNode*> children; // owned, in document order
    XmlNode* parent = nullptr;      // not owned

    explicit XmlNode(XmlNode* aParent);
    XmlNode(const XmlTag& tag, XmlNode* aParent);
    // Takes the node out of its parent and deletes what is below it.
    ~XmlNode();

    XmlNode(const XmlNode&) = delete;
    XmlNode& operator=(const XmlNode&) = delete;

    XmlTag& getTag() { return *this; }
    const XmlTag& getTag() const { return *this; }

    int getNumChildren() const { return int(children.size()); }
    // The child at `index`, still owned here. Throws where there is none.
    XmlNode* getChildren(int index);
    const XmlNode* getChildren(int index) const;

    // Adds a copy of `tag` before the child now at `position`, or after all of them for -1 and for any
    // position out of range. Opens this node. The result walks the children of the new one.
    Iterator addChild(const XmlTag& tag, int position);
    // The same with a node that is owned here from then on, such as one that was detached. Returns it.
    XmlNode* adoptChild(std::unique_ptr<XmlNode> child, int position);
    // Takes the child out of the list and returns its former index. The caller owns it from then on; its
    // parent pointer stays. Throws "detachChild(%p); No such child in '%s'".
    int detachChild(XmlNode* child);

    // Walks the children, those of the name `searchCriteria` or, if that is empty, all.
    Iterator createIterator(const std::string& searchCriteria);
    IteratorConst createIterator(const std::string& searchCriteria) const;

    // Resets the tag, takes the node out of its parent and deletes what is below it. Throws as detachChild
    // where the node was detached before; its parent must then still live.
    void clear();

private:
    bool mDetached = false; // out of the parent's list, although `parent` stays

    void deleteChildren();
};

} // namespace zentrak::xml
