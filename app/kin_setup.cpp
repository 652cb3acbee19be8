// Reads the setup file and writes settings back to it.

#include "am_videofile.h"
#include "kin_main.h"
#include "script_loadxml.h"
#include "xml_iterator.h"
#include "xml_parser.h"
#include "ztk_system.h"
#include "ztk_text.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace zentrak::kindler {

namespace {

constexpr const char* LOCAL_FILE = "setup.local.xml";
constexpr const char* DEFAULT_FILE = "setup.xml";

int toInt(const std::string& text) {
    return int(std::clamp(strtol(text.c_str(), nullptr, 0), long(INT_MIN), long(INT_MAX)));
}

// Truncates towards 0; clamps to the range of int, and gives 0 for NaN.
int truncate(float value) {
    if (!(value > -2147483648.0f))
        return value < 0 ? INT_MIN : 0;
    return value < 2147483648.0f ? int(value) : INT_MAX;
}

std::string seconds(float value) {
    char text[64];
    snprintf(text, sizeof(text), "%.2f", double(value));
    return text;
}

const char* onOff(bool on) {
    return on ? "on" : "off";
}

void parse(xml::XmlParser& parser, const am::File& file, const std::string& name) {
    readNamed(name, [&] {
        parser.parse(reinterpret_cast<const char*>(file->data), int(std::min<long>(file->length, INT_MAX)));
    });
}

// The writer puts text between single quotes, which the reader takes for part of it. Takes away those of the
// last save, so that they don't add up.
void unquote(std::string& text) {
    text.erase(text.find_last_not_of(" \t\r\n") + 1);
    if (text.size() >= 2 && text.front() == '\'' && text.back() == '\'')
        text = text.substr(1, text.size() - 2);
}

// Whether what is written can be read again. The values of a declaration are written without quotes, so each
// has to be a word; an element without a name would be read as something else.
bool isReadable(const xml::XmlTag& tag) {
    if (tag.type == xml::XmlTag::Normal)
        return !tag.name.empty();
    if (tag.type != xml::XmlTag::SpecialExclaim)
        return true;
    return std::all_of(tag.arguments.begin(), tag.arguments.end(), [](const auto& argument) {
        const std::string& value = argument.value;
        return !argument.name.empty() && !value.empty() &&
               std::all_of(value.begin(), value.end(), [](unsigned char c) { return std::isalnum(c); });
    });
}

void replaceDoubleQuotes(xml::XmlTag& tag) {
    for (xml::XmlTag::Argument& argument : tag.arguments)
        std::replace(argument.value.begin(), argument.value.end(), '"', '\'');
}

// The writer escapes nothing: it puts values between double quotes, and those of a declaration between none.
// Changes values that would end early and continue as elements; leaves out what could not be read again.
void makeWritable(xml::XmlParser& document) {
    replaceDoubleQuotes(document.header);
    std::vector<xml::XmlNode*> nodes{&document};
    while (!nodes.empty()) {
        xml::XmlNode* const node = nodes.back();
        nodes.pop_back();
        if (node->type == xml::XmlTag::Text)
            for (xml::XmlTag::Argument& argument : node->arguments)
                unquote(argument.value);
        else if (node->type != xml::XmlTag::Comment)
            replaceDoubleQuotes(*node);
        const std::vector<xml::XmlNode*> children = node->children;
        for (xml::XmlNode* const child : children) {
            if (isReadable(*child))
                nodes.push_back(child);
            else
                delete child;
        }
        if (node->parent) { // written as <a/>, an <a> without children would end the <a> around it
            const bool isEnd = node->arguments.empty() && node->name == node->parent->name;
            node->closed = node->children.empty() && !isEnd;
        }
    }
}

} // namespace

// Reads the elements kind by kind in a fixed order rather than in file order: archives before the script,
// which may be in one of them, and the dump before the music, which it silences.
void Kindler::setup() {
    if (mSetupDone)
        return;
    mArchives.addArchive("./");
    const char* name = LOCAL_FILE;
    am::File file = mArchives.readFile(name, -1);
    if (file.isNull())
        file = mArchives.readFile(name = DEFAULT_FILE, -1);
    if (file.isNull())
        throw Exception("[Kindler] Could not load 'setup.[local.]xml'");

    xml::XmlParser parser;
    parse(parser, file, name);
    if (parser.getName() != "demo")
        return;

    for (xml::Iterator it = parser.createIterator("time"); ++it;) {
        mStartTime = float(toNumber(it->getValue("start")));
        if (it->getValue("loop") == "on")
            mLoop = true;
    }
    for (xml::Iterator it = parser.createIterator("archive"); ++it;) {
        const std::string& path = it->getValue("path");
        ZTK_LOG("log", "app", "Kindler: Adding archive: %s\n", path.c_str());
        mArchives.addArchive(path);
    }
    for (xml::Iterator it = parser.createIterator("display"); ++it;) {
        mDisplayEnabled = true;
        mWidth = toInt(it->getValue("width"));
        mHeight = toInt(it->getValue("height"));
        mFullscreen = it->getValue("fullscreen") == "on";
        mTitle = it->getValue("title");
    }
    for (xml::Iterator it = parser.createIterator("osd"); ++it;) {
        const std::string& location = it->getValue("location");
        if (it->getValue("show") != "on")
            mOsdShow = false;
        mOsdLocation = location == "middle" ? 1 : location == "bottom" ? 2 : 0;
        mOsdDelay = float(toNumber(it->getValue("delay")));
        if (mOsdDelay == 0.0f)
            mOsdDelay = 2.0f;
    }
    for (xml::Iterator it = parser.createIterator("script"); ++it;) {
        mScriptFile = it->getValue("filename");
        loadScript(mScriptFile);
    }
    if (mDisplayEnabled && mScript.mEffects.empty())
        ZTK_LOG("warning", "app", "There is nothing to play: no script in '%s', or only empty ones", name);
    for (xml::Iterator it = parser.createIterator("dump"); ++it;) {
        const std::string& rate = it->getValue("rate");
        std::string target = it->getValue("name");
        if (target.empty())
            target = "untitled";
        mDumpRate = rate.empty() ? 60.0f : float(toNumber(rate));
        am::VideoFile::Format format;
        format.mRate = truncate(mDumpRate);
        format.mScale = 1;
        delete mVideo;
        mVideo = nullptr;
        mVideo = am::VideoFile::createForWrite(target, format, &mArchives);
        ZTK_LOG("log", "app", "Dumping to '%s' (rate='%f'fps)", target.c_str(), double(mDumpRate));
    }
    for (xml::Iterator it = parser.createIterator("music"); ++it;) {
        const std::string& mute = it->getValue("mute");
        if (mute == "nosound")
            mNoSound = true;
        if (mute == "on")
            mMuted = true;
        mMusicFile = it->getValue("filename");
        if (mVideo)
            mNoSound = true;
    }
    for (xml::Iterator it = parser.createIterator("setup"); ++it;) {
        mSetupWidth = toInt(it->getValue("width"));
        mSetupHeight = toInt(it->getValue("height"));
        mSetupFilename = it->getValue("filename");
        mSetupTitle = it->getValue("title");
    }
    mSetupDone = true;
}

void Kindler::loadScript(const std::string& name) {
    const am::File script = mArchives.readFile(name, -1);
    if (script.isNull())
        throw Exception("[Kindler] Could not find the script: '%s'", name.c_str());
    const bool loaded = readNamed(name, [&] {
        return script::LoadXML().loadMem(reinterpret_cast<const char*>(script->data), script->length,
                                         mScript);
    });
    if (!loaded)
        ZTK_LOG("error", "app", "The script '%s' can't be played", name.c_str());
}

// Changes values in the local file and keeps the rest. Without a local file nothing is saved.
void Kindler::saveXml() {
    static const char* const LOCATIONS[] = {"top", "middle", "bottom"};

    const am::File file = mArchives.readFile(LOCAL_FILE, -1);
    if (file.isNull())
        return;
    xml::XmlParser parser;
    parse(parser, file, LOCAL_FILE);
    if (parser.getName() != "demo")
        return;

    xml::Iterator window = parser.createIterator("display");
    if (++window)
        window->setValue("fullscreen", onOff(mFullscreen));

    xml::Iterator times = parser.createIterator("time");
    if (++times) {
        times->setValue("start", seconds(mStartTime));
        times->setValue("loop", onOff(mLoop));
    } else {
        xml::XmlTag tag;
        tag.setName("time");
        tag.setValue("start", seconds(mStartTime));
        tag.setValue("loop", onOff(mLoop));
        parser.addChild(tag, -1);
    }
    for (xml::Iterator it = parser.createIterator("music"); ++it;)
        it->setValue("mute", onOff(mMuted));
    for (xml::Iterator it = parser.createIterator("osd"); ++it;) {
        it->setValue("show", onOff(mOsdShow));
        it->setValue("location", LOCATIONS[mOsdLocation == 1 || mOsdLocation == 2 ? mOsdLocation : 0]);
        it->setValue("delay", seconds(mOsdDelay));
    }

    makeWritable(parser);
    std::string text;
    parser.write(text, "");
    if (!mArchives.writeFile(am::File(new am::FileStructure(LOCAL_FILE, text.data(), long(text.size()))), -1))
        ZTK_LOG("error", "app", "The settings can't be saved in '%s'", LOCAL_FILE);
}

} // namespace zentrak::kindler
