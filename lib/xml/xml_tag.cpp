#include "xml_tag.h"

#include "xml_tagreader.h"

#include <cstdio>

namespace zentrak::xml {

namespace {

const char contentName[] = "content";

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
    for (const Argument& known : arguments)
        if (known.name == argument)
            return known.value;
    return emptyString;
}

void XmlTag::setValue(const std::string& argument, const std::string& value) {
    for (Argument& known : arguments) {
        if (known.name == argument) {
            known.value = value;
            return;
        }
    }
    arguments.emplace_back(argument, value);
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
            if (&argument != &arguments.front())
                os.put(' ');
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
    TagReader raw;
    raw.read(reader);
    raw.store(*this);
}

void XmlTag::parseNormal(BufferReader& reader) {
    TagReader raw;
    raw.readNormal(reader);
    add(raw);
}

void XmlTag::parseComment(BufferReader& reader) {
    TagReader raw;
    raw.readComment(reader);
    add(raw);
}

void XmlTag::parseText(BufferReader& reader) {
    TagReader raw;
    raw.readText(reader);
    add(raw);
}

void XmlTag::parseSpecialExclaim(BufferReader& reader) {
    TagReader raw;
    raw.readSpecialExclaim(reader);
    add(raw);
}

void XmlTag::parseSpecialQuestion(BufferReader& reader) {
    TagReader raw;
    raw.readSpecialQuestion(reader);
    add(raw);
}

void XmlTag::parseAttribute(BufferReader& reader, const std::string&, bool requireEquals) {
    TagReader raw;
    raw.readAttribute(reader, requireEquals);
    raw.storeAttributes(*this);
}

// Takes over what a reader has read; the caller sets the type.
void XmlTag::add(const TagReader& raw) {
    closed = raw.closed;
    name = raw.name;
    raw.storeAttributes(*this);
}

} // namespace zentrak::xml
