#include "import/gltf_modes.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

namespace zentrak::importer {

namespace {

constexpr int MAX_DEPTH = 100;

struct Json {
    std::map<std::string, Json> members;
    std::vector<Json> elements;
    std::string text;
    double number = -1;

    const Json& operator[](const std::string& name) const {
        static const Json nothing;
        const auto found = members.find(name);
        return found == members.end() ? nothing : found->second;
    }
    // The element whose index is a member of another value.
    const Json& operator[](const Json& index) const {
        static const Json nothing;
        return index.number >= 0 && index.number < double(elements.size()) ? elements[size_t(index.number)]
                                                                           : nothing;
    }
};

class Parser {
public:
    explicit Parser(const std::string& text) : mText(text) {}

    Json value(int depth = 0) {
        if (depth > MAX_DEPTH)
            throw std::runtime_error("too deep");
        Json result;
        const char first = peek();
        if (first == '{') {
            list('}', [&] {
                const std::string name = string();
                expect(':');
                result.members[name] = value(depth + 1);
            });
        } else if (first == '[') {
            list(']', [&] { result.elements.push_back(value(depth + 1)); });
        } else if (first == '"') {
            result.text = string();
        } else {
            const size_t end = std::min(mText.find_first_of(",]} \t\r\n", mAt), mText.size());
            if (end == mAt)
                throw std::runtime_error("no value");
            const std::string word = mText.substr(mAt, end - mAt);
            char* rest = nullptr;
            const double number = strtod(word.c_str(), &rest);
            if (!*rest)
                result.number = number;
            mAt = end;
        }
        return result;
    }

private:
    char peek() {
        mAt = std::min(mText.find_first_not_of(" \t\r\n", mAt), mText.size());
        if (mAt == mText.size())
            throw std::runtime_error("it ends too early");
        return mText[mAt];
    }

    void expect(char character) {
        if (peek() != character)
            throw std::runtime_error("another character");
        ++mAt;
    }

    template <class Element>
    void list(char end, Element element) {
        ++mAt;
        while (peek() != end) {
            element();
            if (peek() == ',')
                ++mAt;
            else if (peek() != end)
                throw std::runtime_error("no comma");
        }
        ++mAt;
    }

    // Escapes are kept as written, except \" and \\.
    std::string string() {
        expect('"');
        std::string result;
        for (; mAt < mText.size() && mText[mAt] != '"'; ++mAt) {
            if (mText[mAt] == '\\' && mAt + 1 < mText.size() && strchr("\"\\/", mText[mAt + 1]))
                ++mAt;
            result += mText[mAt];
        }
        expect('"');
        return result;
    }

    const std::string& mText;
    size_t mAt = 0;
};

// The text of a glTF file, or the JSON chunk of a binary one.
std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    constexpr size_t HEADER = 20; // of the file and its first chunk
    if (bytes.size() < HEADER || bytes.compare(0, 4, "glTF") != 0)
        return bytes;
    uint32_t length = 0;
    memcpy(&length, bytes.data() + 12, sizeof length);
    return bytes.substr(HEADER, length);
}

} // namespace

std::vector<std::vector<KeyModes>> readKeyModes(const std::string& path) {
    std::vector<std::vector<KeyModes>> result;
    try {
        const std::string text = readText(path);
        const Json file = Parser(text).value();
        for (const Json& animation : file["animations"].elements) {
            std::vector<KeyModes>& modes = result.emplace_back();
            for (const Json& channel : animation["channels"].elements) {
                const std::string& how = animation["samplers"][channel["sampler"]]["interpolation"].text;
                const Json& index = channel["target"]["node"];
                if ((how != "STEP" && how != "CUBICSPLINE") || index.number < 0)
                    continue;
                const std::string& name = file["nodes"][index]["name"].text;
                modes.push_back({name.empty() ? "nodes[" + std::to_string(int64_t(index.number)) + "]" : name,
                                 channel["target"]["path"].text,
                                 how == "STEP" ? KeyMode::STEP : KeyMode::CUBIC});
            }
        }
    } catch (const std::runtime_error&) {
        result.clear();
    }
    return result;
}

} // namespace zentrak::importer
