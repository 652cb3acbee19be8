// Documents that end or break where they should not.

#include "xml_support.h"

#include <regex>

using namespace zentrak::xml;
using namespace zentrak::test;

namespace {

const char document[] = "<?xml version=\"1.0\" encoding='utf-8'?>\n"
                        "<!DOCTYPE show 'a b'>\n"
                        "<!-- the opening -->\n"
                        "<script name=\"show\">\r\n"
                        "\t<effect name='clear' start=0 enabled='true'>\n"
                        "\t\t<!-- a -- b -->\n"
                        "\t\t<key time=\"0.5\" value=1 / last=2>\n"
                        "\t\t<?tool hint='1'?><!NOTE x>\n"
                        "\t\tsome\ttext\r\n"
                        "\t</effect>\n"
                        "\t<effect></effect></other>\n"
                        "</script>";

} // namespace

TEST(XmlBroken, DocumentCutAtEveryByteFailsAsEofWithAPosition) {
    const std::string text = document;
    const std::regex expected("\\(error at line \\d+, col \\d+\\); EOF \\(when reading tag at \\d+:\\d+\\)");
    for (size_t length = 0; length < text.size(); ++length) {
        const std::string what = parseFailure(text.substr(0, length));
        EXPECT_TRUE(std::regex_match(what, expected)) << length << ": " << what;
    }
    EXPECT_EQ("(nothing)", parseFailure(text));
}

TEST(XmlBroken, DocumentWithAnyByteReplacedLoadsOrFailsWithItsOwnWords) {
    const std::regex expected(
        "\\(error at line \\d+, col \\d+\\); (EOF|'=' expected!|You must close the value using [\"']|Xml: "
        "Ill "
        "formatted comment!|Xml: Ill formed <\\?xml\\?> tag(, forgot to close it using '\\?>'\\?)?|Root tag "
        "is "
        "closed!|Xml: Ill formed <!\\.\\.\\.> tag) \\(when reading tag at \\d+:\\d+\\)");
    const std::string bytes("\0\t\n\r \"'-/<=>?!:a0_\xff", 19);
    int failures = 0;
    int loads = 0;
    for (size_t i = 0; i < sizeof(document) - 1; ++i) {
        for (const char byte : bytes) {
            std::string text = document;
            text[i] = byte;
            const std::string what = parseFailure(text);
            if (what == "(nothing)") {
                ++loads;
            } else {
                EXPECT_TRUE(std::regex_match(what, expected)) << i << ": " << what;
                ++failures;
            }
        }
    }
    EXPECT_GT(loads, 1000);
    EXPECT_GT(failures, 1000);
}

TEST(XmlBroken, EofAtEachPositionInATag) {
    const std::pair<const char*, const char*> cases[] = {
        {"<", "(error at line 1, col 2); EOF (when reading tag at 1:1)"},
        {"<!", "(error at line 1, col 2); EOF (when reading tag at 1:1)"},
        {"<!-", "(error at line 1, col 2); EOF (when reading tag at 1:1)"},
        {"<!--", "(error at line 1, col 5); EOF (when reading tag at 1:1)"},
        {"<!--x--", "(error at line 1, col 8); EOF (when reading tag at 1:1)"},
        {"<!x", "(error at line 1, col 4); EOF (when reading tag at 1:1)"},
        {"<!x ", "(error at line 1, col 5); EOF (when reading tag at 1:1)"},
        {"<!x 'y", "(error at line 1, col 7); EOF (when reading tag at 1:1)"},
        {"<!x 'y'", "(error at line 1, col 8); EOF (when reading tag at 1:1)"},
        {"<?", "(error at line 1, col 3); EOF (when reading tag at 1:1)"},
        {"<?xml", "(error at line 1, col 6); EOF (when reading tag at 1:1)"},
        {"<?xml ?", "(error at line 1, col 7); EOF (when reading tag at 1:1)"},
        {"<?xml a", "(error at line 1, col 8); EOF (when reading tag at 1:1)"},
        {"< ", "(error at line 1, col 3); EOF (when reading tag at 1:1)"},
        {"</", "(error at line 1, col 3); EOF (when reading tag at 1:1)"},
        {"<a", "(error at line 1, col 3); EOF (when reading tag at 1:1)"},
        {"<a b", "(error at line 1, col 5); EOF (when reading tag at 1:1)"},
        {"<a b ", "(error at line 1, col 6); EOF (when reading tag at 1:1)"},
        {"<a b=", "(error at line 1, col 6); EOF (when reading tag at 1:1)"},
        {"<a b='", "(error at line 1, col 7); EOF (when reading tag at 1:1)"},
        {"<a b='c", "(error at line 1, col 8); EOF (when reading tag at 1:1)"},
        {"<a b='c'", "(error at line 1, col 9); EOF (when reading tag at 1:1)"},
        {"<a b=c", "(error at line 1, col 7); EOF (when reading tag at 1:1)"},
        {"<a /", "(error at line 1, col 5); EOF (when reading tag at 1:1)"},
        {"<a>", "(error at line 1, col 4); EOF (when reading tag at 1:4)"},
        {"<a>text", "(error at line 1, col 8); EOF (when reading tag at 1:8)"},
        {"text", "(error at line 1, col 5); EOF (when reading tag at 1:5)"},
        {"<a><b>\n</b>\n", "(error at line 3, col 1); EOF (when reading tag at 2:5)"},
        {"<a><b></a>", "(error at line 1, col 11); EOF (when reading tag at 1:11)"},
    };
    for (const auto& [text, what] : cases)
        EXPECT_EQ(what, parseFailure(text)) << text;
}

TEST(XmlBroken, EqualsExpectedTakesTheByteItFails) {
    const std::pair<const char*, const char*> cases[] = {
        {"<a b c=1>", "(error at line 1, col 7); '=' expected! (when reading tag at 1:1)"},
        {"<a b>", "(error at line 1, col 6); '=' expected! (when reading tag at 1:1)"},
        {"<a \"b\"=1>", "(error at line 1, col 5); '=' expected! (when reading tag at 1:1)"},
        {"<a <b>", "(error at line 1, col 5); '=' expected! (when reading tag at 1:1)"},
        {"<a data-x=1>", "(error at line 1, col 9); '=' expected! (when reading tag at 1:1)"},
        {"<<", "(error at line 1, col 3); '=' expected! (when reading tag at 1:1)"},
    };
    for (const auto& [text, what] : cases)
        EXPECT_EQ(what, parseFailure(text)) << text;
}
