#include "check/document.h"

#include "command/command.h"
#include "ztk_system.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace zentrak::check {

bool isElement(const xml::XmlTag& tag) {
    return tag.getType() == xml::XmlTag::Normal;
}

bool Document::read(const std::string& path) {
    mPath = path;
    std::string text;
    if (!command::readFile(path, text))
        return false;
    try {
        mRoot.parse(text);
    } catch (const Exception& problem) {
        fprintf(stderr, "%s: is not XML: %s\n", path.c_str(), problem.what());
        return false;
    }
    findLines(text);
    return true;
}

int Document::line(const xml::XmlNode& node) const {
    const auto found = mLines.find(&node);
    return found == mLines.end() ? 0 : found->second;
}

std::string Document::folder() const {
    const size_t slash = mPath.rfind('/');
    return slash == std::string::npos ? std::string() : mPath.substr(0, slash + 1);
}

// Reads the tags again, one at a time, and walks the tree in step with them.
void Document::findLines(const std::string& text) {
    xml::BufferReader reader(text.data(), text.size());
    const xml::XmlNode* node = nullptr; // the open element
    std::vector<size_t> next;           // the next child of each open element
    while (true) {
        reader.skipSpaces(0);
        const int line = reader.line;
        xml::XmlTag tag;
        tag.parse(reader);
        if (!node) {
            if (!isElement(tag))
                continue;
            node = &mRoot;
        } else if (tag.isClosed() && tag.arguments.empty() && tag.getName() == node->getName()) {
            if (node == &mRoot)
                return;
            node = node->parent;
            next.pop_back();
            continue;
        } else {
            const xml::XmlNode* const child = node->children[next.back()++];
            mLines[child] = line;
            if (tag.isClosed() || !isElement(tag))
                continue;
            node = child;
        }
        mLines[node] = line;
        next.push_back(0);
    }
}

void Findings::say(const xml::XmlNode& node, const std::string& what) {
    ++mCount;
    printf("%s:%d: %s\n", mDocument.path().c_str(), mDocument.line(node), what.c_str());
}

void Findings::eachElement(const xml::XmlNode& node, const std::function<void(const xml::XmlNode&)>& visit) {
    for (const xml::XmlNode* child : node.children)
        if (child->getType() == xml::XmlTag::Text)
            say(*child, "text in '" + node.getName() + "' is ignored");
        else if (isElement(*child))
            visit(*child);
}

double Findings::number(const xml::XmlNode& node, const std::string& name, const std::string& text) {
    char* end = nullptr;
    const double value = strtod(text.c_str(), &end);
    if (*end || end == text.c_str()) {
        char read[32];
        snprintf(read, sizeof read, "%g", value);
        say(node, name + " of '" + text + "' is read as " + read);
    } else if (!std::isfinite(value)) {
        say(node, name + " is no finite number");
    }
    return value;
}

} // namespace zentrak::check
