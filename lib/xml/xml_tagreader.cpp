#include "xml_tagreader.h"

#include "xml_chars.h"

namespace zentrak::xml {

namespace {

const char contentName[] = "content";
const size_t indexFrom = 64; // below this many attributes a linear search is faster

// Takes the longest run of bytes of the given kinds, or of none of them. The run must not contain a line end
// or a tab.
template <bool WITHIN>
std::string_view readRun(BufferReader& reader, int kinds) {
    const std::string_view rest = reader.rest();
    size_t length = 0;
    while (length != rest.size() && isKind(rest[length], kinds) == WITHIN)
        ++length;
    reader.consumePlain(length);
    return rest.substr(0, length);
}

std::string_view readRunOf(BufferReader& reader, int kinds) {
    return readRun<true>(reader, kinds);
}

std::string_view readRunUntil(BufferReader& reader, int kinds) {
    return readRun<false>(reader, kinds);
}

} // namespace

void TagReader::reset() {
    type = XmlTag::Normal;
    closed = true;
    name = std::string_view();
    attributes.clear();
    if (!mRewritten.empty())
        mRewritten.clear();
    if (!mIndex.empty())
        mIndex.clear();
}

void TagReader::read(BufferReader& reader) {
    reset();
    reader.tagLine = reader.line;
    reader.tagCol = reader.col;
    reader.skipSpaces(0);
    if (reader.peek() != '<') {
        type = XmlTag::Text;
        readText(reader);
        return;
    }
    reader.consumePlain(1);
    const char c = reader.peek();
    if (c == '!') {
        const auto ahead = [&reader](size_t offset) {
            if (reader.size - reader.pos <= offset)
                throw Exception("EOF");
            return reader.data[reader.pos + offset];
        };
        if (ahead(1) == '-' && ahead(2) == '-') {
            type = XmlTag::Comment;
            readComment(reader);
        } else {
            type = XmlTag::SpecialExclaim;
            readSpecialExclaim(reader);
        }
    } else if (c == '?') {
        type = XmlTag::SpecialQuestion;
        readSpecialQuestion(reader);
    } else {
        readNormal(reader);
    }
}

void TagReader::readNormal(BufferReader& reader) {
    closed = false;
    reader.skipSpaces(0);
    if (!reader.atEnd() && reader.peek() == '/') {
        closed = true;
        reader.consumePlain(1);
        reader.skipSpaces(0);
    }
    name = readRunOf(reader, CHAR_WORD | CHAR_COLON);
    for (;;) {
        reader.skipSpaces(0);
        const char c = reader.peek();
        if (c == '/') {
            closed = true;
            reader.consumePlain(1);
        } else if (c == '>') {
            reader.consumePlain(1);
            return;
        } else {
            readAttribute(reader, true);
        }
    }
}

void TagReader::readComment(BufferReader& reader) {
    for (int i = 0; i < 3; ++i)
        reader.consume(); // !--
    closed = true;
    name = "COMMENT";
    const std::string_view rest = reader.rest();
    const std::string_view content = rest.substr(0, rest.find("-->"));
    for (const char c : content)
        if (c == '\r')
            reader.consumePlain(1); // in a comment it counts as one column
        else
            reader.consume();
    reader.requireMore();
    if (content.empty() || content.back() == '-')
        throw Exception("Xml: Ill formatted comment!");
    reader.consumePlain(3);
    setValue(contentName, content);
}

void TagReader::readText(BufferReader& reader) {
    closed = true;
    name = "!!!text";
    const size_t start = reader.pos;
    bool plain = true;
    for (;;) {
        readRunUntil(reader, CHAR_TEXT_STOP);
        if (reader.atEnd() || reader.peek() == '<')
            break;
        plain = reader.consume() == '\n' && plain;
    }
    if (reader.pos <= start) {
        setValue(contentName, std::string_view());
    } else {
        const std::string_view text(reader.data + start, reader.pos - start);
        setValue(contentName, plain ? text : rewritten(text));
    }
}

void TagReader::readSpecialExclaim(BufferReader& reader) {
    reader.consume(); // !
    closed = true;
    name = "SPECIAL_EXCLAIM";
    for (;;) {
        reader.skipSpaces(0);
        if (reader.peek() == '>') {
            reader.consumePlain(1);
            return;
        }
        const size_t start = reader.pos;
        readAttribute(reader, false);
        if (reader.pos == start)
            throw Exception("Xml: Ill formed <!...> tag");
    }
}

void TagReader::readSpecialQuestion(BufferReader& reader) {
    reader.consume(); // ?
    closed = true;
    name = readRunOf(reader, CHAR_WORD | CHAR_GREATER);
    for (;;) {
        reader.skipSpaces(0);
        const char c = reader.peek();
        if (c == '?') {
            if (reader.size - reader.pos < 2)
                throw Exception("EOF");
            if (reader.data[reader.pos + 1] != '>')
                throw Exception("Xml: Ill formed <?xml?> tag");
            reader.consumePlain(2);
            return;
        }
        if (c == '>')
            throw Exception("Xml: Ill formed <?xml?> tag, forgot to close it using '?>'?");
        readAttribute(reader, true);
    }
}

void TagReader::readAttribute(BufferReader& reader, bool requireEquals) {
    const std::string_view attribute = readRunOf(reader, CHAR_WORD);
    reader.skipSpaces(0);
    if (requireEquals && reader.consume() != '=')
        throw Exception("'=' expected!");
    reader.skipSpaces(0);
    const char c = reader.peek();
    setValue(attribute, c == '"' || c == '\'' ? readQuoted(reader) : readRunOf(reader, CHAR_WORD));
}

// Reads the value and its closing quote.
std::string_view TagReader::readQuoted(BufferReader& reader) {
    const char quote = reader.consume();
    const size_t start = reader.pos;
    bool plain = true;
    for (;;) {
        readRunUntil(reader, CHAR_VALUE_STOP);
        const char c = reader.peek();
        if (c == '\n')
            throw Exception("You must close the value using %c", quote);
        reader.consume();
        if (c == quote)
            break;
        plain = plain && c != '\t' && c != '\r';
    }
    const std::string_view value(reader.data + start, reader.pos - 1 - start);
    return plain ? value : rewritten(value);
}

// Tabs become four spaces, carriage returns are dropped.
std::string_view TagReader::rewritten(std::string_view text) {
    std::string& kept = mRewritten.emplace_back();
    for (const char c : text)
        if (c == '\t')
            kept.append(4, ' ');
        else if (c != '\r')
            kept.push_back(c);
    return kept;
}

void TagReader::setValue(std::string_view attribute, std::string_view value) {
    if (Attribute* known = find(attribute))
        known->value = value;
    else
        attributes.push_back({attribute, value});
}

// The attribute of this name, or null.
TagReader::Attribute* TagReader::find(std::string_view attribute) {
    if (attributes.size() < indexFrom) {
        for (Attribute& known : attributes)
            if (known.name == attribute)
                return &known;
        return nullptr;
    }
    for (size_t i = mIndex.size(); i < attributes.size(); ++i)
        mIndex.emplace(attributes[i].name, i);
    const auto found = mIndex.find(attribute);
    return found != mIndex.end() ? &attributes[found->second] : nullptr;
}

void TagReader::store(XmlTag& tag) const {
    tag.type = type;
    tag.closed = closed;
    tag.name = name;
    tag.arguments.clear();
    storeAttributes(tag);
}

void TagReader::storeAttributes(XmlTag& tag) const {
    if (tag.arguments.empty()) {
        tag.arguments.reserve(attributes.size());
        for (const Attribute& attribute : attributes)
            tag.arguments.emplace_back(attribute.name, attribute.value);
        return;
    }
    for (const Attribute& attribute : attributes)
        tag.setValue(std::string(attribute.name), std::string(attribute.value));
}

} // namespace zentrak::xml
