#include "xml_tag.h"

#include "xml_chars.h"

#include <cstdio>
#include <unordered_map>
#include <utility>

namespace zentrak::xml {

namespace {

const char contentName[] = "content";

// Takes the longest run of bytes that are of the given kinds, or of none of them. The run must hold no line
// end and no tab.
template <bool WITHIN>
std::string_view readRun(BufferReader& reader, int kinds) {
    const std::string_view rest = reader.rest();
    size_t                 length = 0;
    while (length != rest.size() && isKind(rest[length], kinds) == WITHIN) {
        ++length;
    }
    reader.consumePlain(length);
    return rest.substr(0, length);
}

std::string_view readRunOf(BufferReader& reader, int kinds) {
    return readRun<true>(reader, kinds);
}

std::string_view readRunUntil(BufferReader& reader, int kinds) {
    return readRun<false>(reader, kinds);
}

// Reads up to the closing quote and takes it. Tabs become four spaces, carriage returns vanish.
void readQuoted(BufferReader& reader, std::string& value) {
    const char quote = reader.consume();
    for (;;) {
        value.append(readRunUntil(reader, CHAR_VALUE_STOP));
        const char c = reader.peek();
        if (c == '\n') {
            throw Exception("You must close the value using %c", quote);
        }
        reader.consume();
        if (c == quote) {
            return;
        }
        if (c == '\t') {
            value.append(4, ' ');
        } else if (c != '\r') {
            value.push_back(c);
        }
    }
}

// Reads name and value of one attribute.
void readAttribute(BufferReader& reader, bool requireEquals, XmlTag::Argument& attribute) {
    attribute.name = readRunOf(reader, CHAR_WORD);
    reader.skipSpaces(0);
    if (requireEquals && reader.consume() != '=') {
        throw Exception("'=' expected!");
    }
    reader.skipSpaces(0);
    const char c = reader.peek();
    if (c == '"' || c == '\'') {
        attribute.value.clear();
        readQuoted(reader, attribute.value);
    } else {
        attribute.value = readRunOf(reader, CHAR_WORD);
    }
}

// Collects the attributes of one tag as setValue would, without slowing down on a tag of very many.
class AttributeReader {
public:
    AttributeReader(BufferReader& reader, std::vector<XmlTag::Argument>& arguments)
        : mReader(reader), mArguments(arguments) {}

    void read(bool requireEquals) {
        mArguments.emplace_back();
        XmlTag::Argument& attribute = mArguments.back();
        readAttribute(mReader, requireEquals, attribute);
        const size_t known = find(attribute.name);
        if (known != mArguments.size() - 1) {
            mArguments[known].value = std::move(attribute.value);
            mArguments.pop_back();
        }
    }

private:
    // The first attribute of this name; the last one, which is being read, at the latest.
    size_t find(const std::string& name) {
        const size_t last = mArguments.size() - 1;
        if (last < indexFrom) {
            size_t i = 0;
            while (i != last && mArguments[i].name != name) {
                ++i;
            }
            return i;
        }
        for (size_t i = mIndex.size(); i < last; ++i) {
            mIndex.emplace(mArguments[i].name, i);
        }
        return mIndex.emplace(name, last).first->second;
    }

    static constexpr size_t indexFrom = 64;

    BufferReader&                           mReader;
    std::vector<XmlTag::Argument>&          mArguments;
    std::unordered_map<std::string, size_t> mIndex; // by name, of tags with many attributes
};

void put(std::ostream& os, std::string_view text) {
    os.write(text.data(), static_cast<std::streamsize>(text.size()));
}

void putArguments(std::ostream& os, const std::vector<XmlTag::Argument>& arguments) {
    for (const XmlTag::Argument& argument : arguments) {
        os.put(' ');
        put(os, argument.name);
        put(os, "=\"");
        put(os, argument.value);
        os.put('"');
    }
}

} // namespace

const std::string& XmlTag::getValue(std::string_view argument) const {
    for (const Argument& known : arguments) {
        if (known.name == argument) {
            return known.value;
        }
    }
    return emptyString;
}

void XmlTag::setValue(const std::string& argument, const std::string& value) {
    for (Argument& known : arguments) {
        if (known.name == argument) {
            known.value = value;
            return;
        }
    }
    arguments.push_back({argument, value});
}

void XmlTag::setValue(const std::string& argument, double value) {
    char text[64];
    snprintf(text, sizeof(text), "%.25g", value);
    setValue(argument, std::string(text));
}

void XmlTag::setValue(const std::string& argument, int value) {
    char text[64];
    snprintf(text, sizeof(text), "%0d", value);
    setValue(argument, std::string(text));
}

void XmlTag::setTag(const XmlTag& tag) {
    type = tag.type;
    closed = tag.closed;
    name = tag.name;
    arguments = tag.arguments;
}

void XmlTag::reset() {
    type = Normal;
    closed = true;
    name.clear();
    arguments.clear();
}

void XmlTag::write(std::ostream& os, bool allowSelfClose) const {
    switch (type) {
    case Normal:
        os.put('<');
        put(os, name);
        putArguments(os, arguments);
        put(os, closed && allowSelfClose ? "/>" : ">");
        break;
    case Comment:
        put(os, "<!--");
        put(os, getValue(contentName));
        put(os, "-->");
        break;
    case SpecialQuestion:
        put(os, "<?");
        put(os, name);
        putArguments(os, arguments);
        put(os, "?>");
        break;
    case SpecialExclaim:
        put(os, "<!");
        for (const Argument& argument : arguments) {
            if (&argument != &arguments.front()) {
                os.put(' ');
            }
            put(os, argument.name);
            os.put(' ');
            put(os, argument.value);
        }
        os.put('>');
        break;
    case Text:
        os.put('\'');
        put(os, getValue(contentName));
        os.put('\'');
        break;
    default:
        throw Exception("XmlTag::write; Unknown tagtype!");
    }
    os << std::endl;
}

std::ostream& operator<<(std::ostream& os, const XmlTag& tag) {
    tag.write(os, true);
    return os;
}

void XmlTag::parse(BufferReader& reader) {
    reset();
    reader.tagLine = reader.line;
    reader.tagCol = reader.col;
    reader.skipSpaces(0);
    if (reader.peek() != '<') {
        type = Text;
        parseText(reader);
        return;
    }
    reader.consume();
    const char c = reader.peek();
    if (c == '!') {
        const auto ahead = [&reader](size_t offset) {
            if (reader.size - reader.pos <= offset) {
                throw Exception("EOF");
            }
            return reader.data[reader.pos + offset];
        };
        if (ahead(1) == '-' && ahead(2) == '-') {
            type = Comment;
            parseComment(reader);
        } else {
            type = SpecialExclaim;
            parseSpecialExclaim(reader);
        }
    } else if (c == '?') {
        type = SpecialQuestion;
        parseSpecialQuestion(reader);
    } else {
        parseNormal(reader);
    }
}

void XmlTag::parseNormal(BufferReader& reader) {
    closed = false;
    reader.skipSpaces(0);
    if (!reader.atEnd() && reader.peek() == '/') {
        closed = true;
        reader.consume();
        reader.skipSpaces(0);
    }
    name = readRunOf(reader, CHAR_WORD | CHAR_COLON);
    AttributeReader attributes(reader, arguments);
    for (;;) {
        reader.skipSpaces(0);
        const char c = reader.peek();
        if (c == '/') {
            closed = true;
            reader.consume();
        } else if (c == '>') {
            reader.consume();
            return;
        } else {
            attributes.read(true);
        }
    }
}

void XmlTag::parseComment(BufferReader& reader) {
    for (int i = 0; i < 3; ++i) {
        reader.consume(); // !--
    }
    name = "COMMENT";
    const std::string_view rest = reader.rest();
    size_t                 length = 0;
    while (length != rest.size() && rest.substr(length, 3) != "-->") {
        if (rest[length] == '\r') {
            reader.consumePlain(1); // in a comment it has a column of its own
        } else {
            reader.consume();
        }
        ++length;
    }
    reader.requireMore();
    if (length == 0 || rest[length - 1] == '-') {
        throw Exception("Xml: Ill formatted comment!");
    }
    reader.consumePlain(3);
    setValue(contentName, std::string(rest.substr(0, length)));
}

void XmlTag::parseText(BufferReader& reader) {
    name = "!!!text";
    std::string text;
    for (;;) {
        text.append(readRunUntil(reader, CHAR_TEXT_STOP));
        if (reader.atEnd() || reader.peek() == '<') {
            break;
        }
        const char c = reader.consume();
        if (c == '\t') {
            text.append(4, ' ');
        } else if (c == '\n') {
            text.push_back(c);
        }
    }
    setValue(contentName, text);
}

void XmlTag::parseSpecialExclaim(BufferReader& reader) {
    reader.consume(); // !
    closed = true;
    name = "SPECIAL_EXCLAIM";
    AttributeReader attributes(reader, arguments);
    for (;;) {
        reader.skipSpaces(0);
        if (reader.peek() == '>') {
            reader.consume();
            return;
        }
        const size_t start = reader.pos;
        attributes.read(false);
        if (reader.pos == start) {
            throw Exception("Xml: Ill formed <!...> tag");
        }
    }
}

void XmlTag::parseSpecialQuestion(BufferReader& reader) {
    reader.consume(); // ?
    closed = true;
    name = readRunOf(reader, CHAR_WORD | CHAR_GREATER);
    AttributeReader attributes(reader, arguments);
    for (;;) {
        reader.skipSpaces(0);
        const char c = reader.peek();
        if (c == '?') {
            if (reader.size - reader.pos < 2) {
                throw Exception("EOF");
            }
            if (reader.data[reader.pos + 1] != '>') {
                throw Exception("Xml: Ill formed <?xml?> tag");
            }
            reader.consumePlain(2);
            return;
        }
        if (c == '>') {
            throw Exception("Xml: Ill formed <?xml?> tag, forgot to close it using '?>'?");
        }
        attributes.read(true);
    }
}

void XmlTag::parseAttribute(BufferReader& reader, const std::string&, bool requireEquals) {
    Argument attribute;
    readAttribute(reader, requireEquals, attribute);
    setValue(attribute.name, attribute.value);
}

} // namespace zentrak::xml
