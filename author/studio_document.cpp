#include "studio_document.h"

#include "mb_splinebase.h"
#include "xml_tag.h"
#include "ztk_system.h"
#include "ztk_text.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace zentrak::studio {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool isWord(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

float toFloat(const std::string& text) {
    return float(toNumber(text));
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// The position of an attribute of a start tag in the text.
struct Attribute {
    std::string_view name;
    size_t from = 0; // its value, quotes included
    size_t to = 0;
    char quote = 0; // 0: none
};

// The attributes of a tag that has been read without an error, and where a further one goes.
struct Attributes {
    std::vector<Attribute> list;
    size_t end = 0;
};

Attributes findAttributes(std::string_view text, size_t from, size_t to) {
    Attributes result;
    size_t i = from;
    const auto skipSpaces = [&] {
        while (i < to && isSpace(text[i]))
            ++i;
    };
    ++i; // <
    while (i < to && (isSpace(text[i]) || text[i] == '/' || text[i] == '?'))
        ++i;
    while (i < to && (isWord(text[i]) || text[i] == ':'))
        ++i;
    result.end = i;
    for (;;) {
        skipSpaces();
        if (i >= to || text[i] == '>')
            return result;
        if (text[i] == '/' || text[i] == '?') {
            ++i;
            continue;
        }
        Attribute attribute;
        const size_t start = i;
        while (i < to && isWord(text[i]))
            ++i;
        attribute.name = text.substr(start, i - start);
        skipSpaces();
        ++i; // =
        skipSpaces();
        attribute.from = i;
        if (i < to && (text[i] == '"' || text[i] == '\'')) {
            attribute.quote = text[i++];
            while (i < to && text[i] != attribute.quote)
                ++i;
            ++i;
        } else {
            while (i < to && isWord(text[i]))
                ++i;
        }
        attribute.to = std::min(i, to);
        if (attribute.to > attribute.from) // what comes after an empty one would be read as its value
            result.end = attribute.to;
        result.list.push_back(attribute);
    }
}

std::string withoutLineEnds(std::string_view value) {
    std::string clean(value);
    for (char& c : clean)
        if (c == '\n' || c == '\r' || c == '\t' || c == '\0')
            c = ' ';
    return clean;
}

// The value in quotes: `quote`, or the other kind if the value contains that.
std::string quoted(std::string_view value, char quote) {
    std::string clean = withoutLineEnds(value);
    if (clean.find(quote) != std::string::npos)
        quote = quote == '"' ? '\'' : '"';
    const char other = quote == '"' ? '\'' : '"';
    std::replace(clean.begin(), clean.end(), quote, other);
    return quote + clean + quote;
}

Kind kindOf(const xml::XmlTag& tag, Kind parent) {
    if (tag.name == "effect" && (parent == Kind::ROOT || parent == Kind::SPAN))
        return Kind::SPAN;
    if (parent == Kind::SPAN)
        return tag.name == "trigger" ? Kind::TRIGGER : tag.name == "spline" ? Kind::SPLINE : Kind::OTHER;
    if (parent == Kind::SPLINE && tag.name == "key")
        return Kind::KEY;
    if (parent != Kind::ROOT)
        return Kind::OTHER;
    return tag.type == xml::XmlTag::Comment ? Kind::SECTION
           : tag.name == "bookmark"         ? Kind::BOOKMARK
           : tag.name == "tempo"            ? Kind::TEMPO
                                            : Kind::OTHER;
}

// The values as the player reads them from its tag.
void readValues(Element& element, const xml::XmlTag& tag) {
    element.name = tag.getValue("name");
    switch (element.kind) {
    case Kind::SPAN:
        element.start = toFloat(tag.getValue("start"));
        element.end = toFloat(tag.getValue("end"));
        element.enabled = tag.getValue("state") != "off";
        break;
    case Kind::TRIGGER: {
        const std::string& repeat = tag.getValue("repeat");
        const std::string& delay = tag.getValue("delay");
        element.value = tag.getValue("value");
        element.start = toFloat(tag.getValue("start"));
        element.repeat = repeat.empty() ? 1 : atoi(repeat.c_str());
        element.delay = repeat.empty() ? 0 : toFloat(delay.empty() ? "0.1" : delay);
        break;
    }
    case Kind::SPLINE: {
        const std::string& type = tag.getValue("type");
        element.mode = type == "square"   ? mathbase::SPLINE_SQUARE
                       : type == "smooth" ? mathbase::SPLINE_SMOOTH
                                          : mathbase::SPLINE_LINEAR;
        break;
    }
    case Kind::KEY:
        element.start = toFloat(tag.getValue("time"));
        element.number = toFloat(tag.getValue("value"));
        break;
    case Kind::BOOKMARK:
        element.start = toFloat(tag.getValue("time"));
        break;
    case Kind::TEMPO:
        element.number = toFloat(tag.getValue("bpm"));
        element.beats = atoi(tag.getValue("beats").c_str());
        element.start = toFloat(tag.getValue("start"));
        break;
    case Kind::SECTION:
        element.name = trimmed(tag.getValue("content"));
        break;
    default:
        break;
    }
}

// Reads elements as the player's parser does, with their positions.
class Scanner {
public:
    explicit Scanner(const std::string& text) : mReader(text.data(), text.size()) {}

    // The whole script. Throws Exception, "line 12: ...".
    std::vector<Element> scan() {
        try {
            scanRoot();
            while (!mOpen.empty())
                scanTag();
        } catch (const Exception& exception) {
            throw Exception("line %d: %s", int(mReader.line), exception.what());
        }
        return std::move(mElements);
    }

    // The children of `parent` that lie in [from, to) of the text; the first of them will have the index
    // `first`. None where they do not end there. Throws what the parser throws.
    std::optional<std::vector<Element>> scanChildren(const Element& parent, int parentIndex, int first,
                                                     size_t from, size_t to) {
        mReader.pos = parent.from;
        mTag.parse(mReader);
        mOpen.push_back({parentIndex, mTag.name, parent.kind});
        mFirst = first;
        mReader.pos = from;
        while (!mOpen.empty()) {
            mReader.skipSpaces(0);
            if (mReader.pos >= to)
                return mOpen.size() == 1 ? std::optional(std::move(mElements)) : std::nullopt;
            scanTag();
            if (mReader.pos > to)
                break;
        }
        return std::nullopt;
    }

private:
    struct Open {
        int index;
        std::string name;
        Kind kind;
    };

    xml::BufferReader mReader;
    xml::XmlTag mTag;
    std::vector<Element> mElements;
    std::vector<Open> mOpen;
    int mFirst = 0; // index of mElements[0]

    size_t readTag() {
        mReader.skipSpaces(0);
        const size_t from = mReader.pos;
        mTag.parse(mReader);
        return from;
    }

    void scanRoot() {
        size_t from = readTag();
        while (mTag.type != xml::XmlTag::Normal)
            from = readTag();
        if (mTag.closed)
            throw Exception("Root tag is closed!");
        if (mTag.name != "script")
            throw Exception("The root is '%.100s' and not 'script'", mTag.name.c_str());
        add(Kind::ROOT, from);
    }

    void add(Kind kind, size_t from) {
        Element& element = mElements.emplace_back();
        element.kind = kind;
        element.parent = mOpen.empty() ? -1 : mOpen.back().index;
        element.closed = mTag.closed;
        element.from = from;
        element.tagTo = element.contentTo = element.to = mReader.pos;
        element.next = mFirst + int(mElements.size());
        readValues(element, mTag);
        if (!mTag.closed)
            mOpen.push_back({element.next - 1, mTag.name, kind});
    }

    void scanTag() {
        const size_t from = readTag();
        const Open& open = mOpen.back();
        if (!mTag.closed || !mTag.arguments.empty() || mTag.name != open.name) {
            add(kindOf(mTag, open.kind), from);
            return;
        }
        if (open.index >= mFirst) {
            Element& element = mElements[size_t(open.index - mFirst)];
            element.contentTo = from;
            element.to = mReader.pos;
            element.next = mFirst + int(mElements.size());
        }
        mOpen.pop_back();
    }
};

// Moves positions of the old text to the new one, in ascending order.
class Shift {
public:
    explicit Shift(const std::vector<Document::Change>& changes) : mChanges(changes) {}

    // A position at which text is inserted ends up after it. None for one that is removed.
    std::optional<size_t> operator()(size_t position) {
        while (mNext < mChanges.size() && mChanges[mNext].at + mChanges[mNext].length <= position) {
            mAdded += mChanges[mNext].text.size();
            mRemoved += mChanges[mNext].length;
            ++mNext;
        }
        if (mNext < mChanges.size() && mChanges[mNext].at <= position)
            return std::nullopt;
        return position + mAdded - mRemoved;
    }

private:
    const std::vector<Document::Change>& mChanges;
    size_t mNext = 0;
    size_t mAdded = 0;
    size_t mRemoved = 0;
};

} // namespace

Document::Document() {
    load("<script>\n</script>\n");
}

void Document::load(std::string text) {
    std::vector<Element> elements = Scanner(text).scan();
    for (Element& element : elements)
        element.id = ++mLastId;
    mText = std::move(text);
    mElements = std::move(elements);
    mMade.clear();
    indexIds();
    ++mVersion;
}

int Document::find(uint32_t id) const {
    return id < mIndexOf.size() ? mIndexOf[id] : -1;
}

std::vector<int> Document::getChildren(int index, Kind kind) const {
    std::vector<int> children;
    for (int i = index + 1; i < (*this)[index].next; i = (*this)[i].next)
        if ((*this)[i].kind == kind)
            children.push_back(i);
    return children;
}

void Document::indexIds() {
    mIndexOf.assign(size_t(mLastId) + 1, -1);
    for (int i = 0; i < getSize(); ++i)
        mIndexOf[mElements[size_t(i)].id] = i;
}

std::vector<Document::Change> Document::apply(std::vector<Change> changes) {
    std::stable_sort(changes.begin(), changes.end(),
                     [](const Change& a, const Change& b) { return a.at < b.at; });
    std::vector<Change> kept, inverse;
    std::string text;
    text.reserve(mText.size() + 256);
    size_t done = 0;
    for (Change& change : changes) {
        assert(change.at + change.length <= mText.size());
        if (change.at < done)
            continue; // inside what another change removes
        text.append(mText, done, change.at - done);
        inverse.push_back({text.size(), change.text.size(), mText.substr(change.at, change.length), -1});
        text += change.text;
        done = change.at + change.length;
        kept.push_back(std::move(change));
    }
    text.append(mText, done, std::string::npos);

    mMade.clear();
    if (applyToTags(kept, text)) {
        for (size_t i = 0; i < kept.size(); ++i)
            inverse[i].element = kept[i].element;
    } else if (!applyToChildren(kept, text)) {
        std::vector<Element> elements = Scanner(text).scan();
        numberElements(elements, 0, getSize(), 0, kept);
        mElements = std::move(elements);
        indexIds();
    }
    mText = std::move(text);
    ++mVersion;
    return inverse;
}

// The fast path for changes of attributes only: the tree stays, all positions move, and only the tags
// concerned are read again. False, with nothing changed, if there is any other change.
bool Document::applyToTags(const std::vector<Change>& changes, const std::string& text) {
    for (const Change& change : changes)
        if (change.element < 0)
            return false;
    std::vector<std::pair<int, xml::XmlTag>> tags;
    size_t delta = 0; // modulo
    for (size_t i = 0; i < changes.size(); ++i) {
        const Element& element = mElements[size_t(changes[i].element)];
        const size_t from = element.from + delta;
        for (; i < changes.size(); ++i) {
            delta += changes[i].text.size() - changes[i].length;
            if (i + 1 == changes.size() || changes[i + 1].element != changes[i].element)
                break;
        }
        xml::BufferReader reader(text.data(), text.size());
        reader.pos = from;
        xml::XmlTag tag;
        try {
            tag.parse(reader);
        } catch (const Exception&) {
            return false;
        }
        if (reader.pos != element.tagTo + delta || tag.closed != element.closed)
            return false;
        tags.emplace_back(changes[std::min(i, changes.size() - 1)].element, std::move(tag));
    }
    movePositions(changes);
    for (const auto& [index, tag] : tags)
        readValues(mElements[size_t(index)], tag);
    return true;
}

// Moves every position by the changes before it. Tags are in the order of the text, ends of content are not.
void Document::movePositions(const std::vector<Change>& changes) {
    std::vector<size_t> ends, sums;
    size_t sum = 0;
    for (const Change& change : changes) {
        ends.push_back(change.at + change.length);
        sums.push_back(sum += change.text.size() - change.length);
    }
    size_t before = 0; // changes before the tag
    for (Element& element : mElements) {
        for (size_t* position : {&element.from, &element.tagTo}) {
            while (before < ends.size() && ends[before] <= *position)
                ++before;
            *position += before > 0 ? sums[before - 1] : 0;
        }
        if (element.closed) {
            element.contentTo = element.to = element.tagTo;
            continue;
        }
        for (size_t* position : {&element.contentTo, &element.to}) {
            const auto after = std::upper_bound(ends.begin(), ends.end(), *position);
            *position += after > ends.begin() ? sums[size_t(after - ends.begin()) - 1] : 0;
        }
    }
}

// The fast path for changes within one element: only the children that they touch are read again. False, with
// nothing changed, if it can't be taken. Adding a span to 500 takes 1 ms of processor time, and 4 if all of
// the script is read.
bool Document::applyToChildren(const std::vector<Change>& changes, const std::string& text) {
    if (changes.empty())
        return false;
    size_t from = changes.front().at, to = changes.back().at + changes.back().length;
    int parent = -1;
    for (int i = 0; i < getSize();) {
        const Element& element = mElements[size_t(i)];
        const bool around = !element.closed && element.tagTo <= from && to <= element.contentTo;
        parent = around ? i : parent;
        i = around ? i + 1 : element.next;
    }
    if (parent < 0)
        return false;
    int first = parent + 1;
    const int end = mElements[size_t(parent)].next;
    while (first < end && mElements[size_t(first)].to < from)
        first = mElements[size_t(first)].next;
    int last = first; // past the children that are touched
    for (; last < end && mElements[size_t(last)].from <= to; last = mElements[size_t(last)].next) {
        from = std::min(from, mElements[size_t(last)].from);
        to = std::max(to, mElements[size_t(last)].to);
    }
    const size_t delta = text.size() - mText.size(); // modulo
    std::optional<std::vector<Element>> made;
    try {
        made = Scanner(text).scanChildren(mElements[size_t(parent)], parent, first, from, to + delta);
    } catch (const Exception&) { // reading all of it says where
    }
    if (!made)
        return false;
    numberElements(*made, first, last, first, changes);
    replaceElements(parent, first, last, std::move(*made), delta);
    indexIds();
    return true;
}

// Replaces the elements [first, last) of `parent`; what follows moves by `delta` bytes.
void Document::replaceElements(int parent, int first, int last, std::vector<Element> made, size_t delta) {
    const int more = int(made.size()) - (last - first);
    for (int i = parent; i >= 0; i = mElements[size_t(i)].parent) {
        mElements[size_t(i)].next += more;
        mElements[size_t(i)].contentTo += delta;
        mElements[size_t(i)].to += delta;
    }
    for (size_t i = size_t(last); i < mElements.size(); ++i) {
        Element& element = mElements[i];
        element.next += more;
        element.parent += element.parent >= last ? more : 0;
        for (size_t* position : {&element.from, &element.tagTo, &element.contentTo, &element.to})
            *position += delta;
    }
    const auto place = mElements.erase(mElements.begin() + first, mElements.begin() + last);
    mElements.insert(place, std::make_move_iterator(made.begin()), std::make_move_iterator(made.end()));
}

// An element whose tag begins where an old one's begins now is that element. Both are in the order of the
// text: the old ones are [old, end), and elements[0] has the index `first`.
void Document::numberElements(std::vector<Element>& elements, int old, int end, int first,
                              const std::vector<Change>& changes) {
    Shift shift(changes);
    std::optional<size_t> place;
    const auto advance = [&] {
        for (; old < end; ++old)
            if ((place = shift((*this)[old].from)))
                return;
        place.reset();
    };
    advance();
    int madeTo = 0; // the end of the last one that was made
    for (size_t i = 0; i < elements.size(); ++i) {
        while (place && *place < elements[i].from) {
            ++old;
            advance();
        }
        if (place && *place == elements[i].from && (*this)[old].kind == elements[i].kind) {
            elements[i].id = (*this)[old].id;
        } else {
            elements[i].id = ++mLastId;
            if (first + int(i) >= madeTo) {
                mMade.push_back(first + int(i));
                madeTo = elements[i].next;
            }
        }
    }
}

double Document::getOrigin(int index) const {
    double origin = 0;
    for (int i = (*this)[index].parent; i > 0; i = (*this)[i].parent)
        if ((*this)[i].kind == Kind::SPAN)
            origin += double((*this)[i].start);
    return origin;
}

bool Document::isInside(int index, int ancestor) const {
    return index > ancestor && index < (*this)[ancestor].next;
}

int Document::getLine(size_t position) const {
    return 1 +
           int(std::count(mText.begin(), mText.begin() + ptrdiff_t(std::min(position, mText.size())), '\n'));
}

Tempo Document::getTempo() const {
    Tempo tempo;
    const std::vector<int> tempos = getChildren(0, Kind::TEMPO);
    if (tempos.empty())
        return tempo;
    const Element& element = (*this)[tempos[0]];
    if (element.number >= 1 && element.number <= 1000)
        tempo.bpm = element.number;
    if (element.beats >= 1 && element.beats <= 64)
        tempo.beats = element.beats;
    if (std::isfinite(element.start))
        tempo.start = element.start;
    return tempo;
}

std::vector<Document::Problem> Document::getProblems() const {
    std::vector<Problem> problems;
    for (int i = 1; i < getSize(); ++i) {
        const Element& element = (*this)[i];
        if (element.kind == Kind::SPLINE && getChildren(i, Kind::KEY).empty())
            problems.push_back({getLine(element.from), "the spline '" + element.name +
                                                           "' has no keys: the player refuses the script"});
    }
    return problems;
}

Document::Change changeAttribute(std::string_view text, size_t from, size_t to, std::string_view name,
                                 std::string_view value) {
    const Attributes attributes = findAttributes(text, from, to);
    for (auto it = attributes.list.rbegin(); it != attributes.list.rend(); ++it) {
        if (it->name != name)
            continue;
        const std::string clean = withoutLineEnds(value);
        if (it->quote && clean.find(it->quote) == std::string::npos)
            return {it->from + 1, it->to - it->from - 2, clean, -1};
        return {it->from, it->to - it->from, quoted(value, it->quote ? it->quote : '"'), -1};
    }
    return {attributes.end, 0, " " + std::string(name) + "=" + quoted(value, '"'), -1};
}

Document::Change Document::setAttribute(int index, std::string_view name, std::string_view value) const {
    const Element& element = (*this)[index];
    Change change = changeAttribute(mText, element.from, element.tagTo, name, value);
    change.element = index;
    return change;
}

const char* Document::getLineEnd() const {
    const size_t end = mText.find('\n');
    return end != std::string::npos && end > 0 && mText[end - 1] == '\r' ? "\r\n" : "\n";
}

// The blanks between the beginning of the line and `position`; empty if there is other text.
std::string Document::getIndent(size_t position) const {
    size_t start = position;
    while (start > 0 && (mText[start - 1] == ' ' || mText[start - 1] == '\t'))
        --start;
    return start == 0 || mText[start - 1] == '\n' ? mText.substr(start, position - start) : std::string();
}

std::string Document::getIndentOfChildren(int parent) const {
    const Element& element = (*this)[parent];
    if (parent + 1 < element.next) {
        std::string indent = getIndent((*this)[parent + 1].from);
        if (!indent.empty())
            return indent;
    }
    const std::string unit = getSize() > 1 ? getIndent((*this)[1].from) : std::string();
    return getIndent(element.from) + (unit.empty() ? "\t" : unit);
}

Document::Change Document::erase(int index) const {
    const Element& element = (*this)[index];
    size_t from = element.from, to = element.to;
    while (from > 0 && (mText[from - 1] == ' ' || mText[from - 1] == '\t'))
        --from;
    while (to < mText.size() && (mText[to] == ' ' || mText[to] == '\t' || mText[to] == '\r'))
        ++to;
    const bool lineStart = from == 0 || mText[from - 1] == '\n';
    if (lineStart && to < mText.size() && mText[to] == '\n')
        return {from, to + 1 - from, "", -1};
    return {element.from, element.to - element.from, "", -1};
}

std::string Document::getElementText(int index) const {
    const Element& element = (*this)[index];
    const std::string indent = getIndent(element.from);
    std::string result;
    size_t from = element.from;
    while (from < element.to) {
        const size_t end = std::min(mText.find('\n', from), element.to - 1) + 1;
        if (from != element.from && mText.compare(from, indent.size(), indent) == 0)
            from += indent.size();
        for (; from < end; ++from)
            if (mText[from] != '\r')
                result += mText[from];
    }
    return result;
}

std::optional<Document::Change> Document::insert(int parent, int after, std::string_view element) const {
    const Element& owner = (*this)[parent];
    const std::string lineEnd = getLineEnd(), indent = getIndentOfChildren(parent);
    std::string text;
    for (const char c : element)
        if (c == '\n')
            text += lineEnd + indent;
        else
            text += c;
    if (after >= 0)
        return Change{(*this)[after].to, 0, lineEnd + indent + text, -1};
    if (owner.closed) {
        const size_t slash = owner.tagTo >= 2 ? owner.tagTo - 2 : 0;
        if (mText.compare(slash, 2, "/>") != 0)
            return std::nullopt;
        return Change{slash, 2,
                      ">" + lineEnd + indent + text + lineEnd + getIndent(owner.from) + "</" +
                          std::string(owner.kind == Kind::SPLINE ? "spline" : "effect") + ">",
                      -1};
    }
    // After the last child, or else before the end tag.
    int last = -1;
    for (int i = parent + 1; i < owner.next; i = (*this)[i].next)
        last = i;
    if (last >= 0)
        return Change{(*this)[last].to, 0, lineEnd + indent + text, -1};
    const std::string closing = getIndent(owner.contentTo);
    const size_t line = owner.contentTo - closing.size();
    if (line > owner.tagTo && mText[line - 1] == '\n')
        return Change{line, 0, indent + text + lineEnd, -1};
    return Change{owner.contentTo, 0, lineEnd + indent + text + lineEnd + getIndent(owner.from), -1};
}

script::Spline makeSpline(const Document& document, int index) {
    script::Spline spline;
    spline.mName = document[index].name;
    spline.mMode = document[index].mode;
    for (const int key : document.getChildren(index, Kind::KEY))
        spline.addKey({document[key].start, document[key].number, 0, 0});
    return spline;
}

std::string formatNumber(double number) {
    if (!std::isfinite(number))
        return "0";
    char text[64];
    double rounded = std::round(number * 10000) / 10000;
    if (std::fabs(rounded) > 1e15)
        rounded = std::copysign(1e15, rounded);
    const auto end = std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed, 4).ptr;
    std::string result(text, end);
    result.erase(result.find_last_not_of('0') + 1);
    if (result.back() == '.')
        result.pop_back();
    return result == "-0" ? "0" : result;
}

std::optional<double> parseNumber(std::string_view text) {
    text = trimmed(text);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    std::string clean(text);
    std::replace(clean.begin(), clean.end(), ',', '.');
    double number = 0;
    const auto result = std::from_chars(clean.data(), clean.data() + clean.size(), number);
    if (result.ec != std::errc() || result.ptr != clean.data() + clean.size() || !std::isfinite(number))
        return std::nullopt;
    return number;
}

std::optional<TypedTime> parseTime(std::string_view text, const Tempo& tempo) {
    text = trimmed(text);
    for (const std::string_view unit : {"bars", "bar", "b"})
        if (text.ends_with(unit)) {
            const std::optional<double> bars = parseNumber(text.substr(0, text.size() - unit.size()));
            return bars ? std::optional(TypedTime{*bars * tempo.getBar(), true}) : std::nullopt;
        }
    const std::optional<double> seconds = parseNumber(text);
    return seconds ? std::optional(TypedTime{*seconds, false}) : std::nullopt;
}

std::string toComment(std::string_view text) {
    std::string clean = withoutLineEnds(trimmed(text));
    for (size_t i; (i = clean.find("--")) != std::string::npos;)
        clean.erase(i, 1);
    while (!clean.empty() && (clean.back() == '-' || clean.back() == ' '))
        clean.pop_back();
    return clean.empty() ? "Section" : clean;
}

} // namespace zentrak::studio
