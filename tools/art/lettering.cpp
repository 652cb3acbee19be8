#include "lettering.h"

#include "canvas.h"

#include <cctype>
#include <cstdlib>

namespace zentrak::art {

namespace {

// Strokes on a grid 6 high, y up. Points are pairs of digits, x and y; strokes are separated by blanks. A
// stroke of one point is a dot.
struct Glyph {
    char letter;
    int width;
    const char* strokes;
};

const Glyph glyphs[] = {
    {'A', 4, "000516364540 0343"},
    {'B', 4, "0006364534 0343 3342413000"},
    {'C', 4, "4536160501103041"},
    {'D', 4, "00062645412000"},
    {'E', 4, "4606 0600 0040 0333"},
    {'F', 4, "4606 0600 0333"},
    {'G', 4, "45361605011030414323"},
    {'H', 4, "0006 4046 0343"},
    {'I', 0, "0006"},
    {'J', 3, "3631201001"},
    {'K', 4, "0006 460340 0313"},
    {'L', 3, "060030"},
    {'M', 5, "0006235650"},
    {'N', 4, "00064046"},
    {'O', 4, "011030414536160501"},
    {'P', 4, "00063645443303"},
    {'Q', 4, "011030414536160501 2240"},
    {'R', 4, "00063645443303 2340"},
    {'S', 4, "453616050413334241301001"},
    {'T', 4, "0646 2620"},
    {'U', 4, "060110304146"},
    {'V', 4, "06022042 4246"},
    {'W', 6, "0610 1034 3450 5066"},
    {'X', 4, "0046 0640"},
    {'Y', 4, "0604234446 2320"},
    {'Z', 4, "06460040"},
    {'0', 4, "011030414536160501 1135"},
    {'1', 1, "051610"},
    {'2', 4, "05163645440040"},
    {'3', 4, "05163645443313 33424130100101"},
    {'4', 4, "3036023242 3242"},
    {'5', 4, "460604344341301001"},
    {'6', 4, "4536160501103041423303"},
    {'7', 4, "06464210"},
    {'8', 4, "133344453616050413021001 0110304142 4233"},
    {'9', 4, "01103041453616050413 1343"},
    {'.', 0, "00"},
    {',', 1, "1100"},
    {'-', 2, "0323"},
    {'+', 2, "0323 1412"},
    {'!', 0, "0602 00"},
    {'?', 4, "0516364544 4423 2322 20"},
    {'\'', 0, "0605"},
    {':', 0, "04 01"},
    {'&', 4, "4014153635020110203042"},
    {'/', 3, "0036"},
    {'#', 4, "1016 3036 0242 0444"},
    {'*', 2, "0525 0424 1613"},
    {'(', 1, "16050110"},
    {')', 1, "06151100"},
    {'<', 2, "250321"},
    {'>', 2, "052301"},
};

constexpr int GAP = 3; // for a blank or a missing letter

const Glyph* glyphOf(char c) {
    const char upper = char(toupper(static_cast<unsigned char>(c)));
    for (const Glyph& glyph : glyphs)
        if (glyph.letter == upper)
            return &glyph;
    return nullptr;
}

float distanceToGlyph(const Glyph& glyph, float x, float y) {
    float nearest = 1e9f;
    const char* p = glyph.strokes;
    while (*p != 0) {
        float x0 = float(p[0] - '0'), y0 = float(p[1] - '0');
        p += 2;
        if (*p == ' ' || *p == 0) {
            const float d = distanceToSegment(x, y, x0, y0, x0, y0);
            nearest = d < nearest ? d : nearest;
        }
        while (*p != ' ' && *p != 0) {
            const float x1 = float(p[0] - '0'), y1 = float(p[1] - '0');
            const float d = distanceToSegment(x, y, x0, y0, x1, y1);
            nearest = d < nearest ? d : nearest;
            x0 = x1, y0 = y1;
            p += 2;
        }
        while (*p == ' ')
            ++p;
    }
    return nearest;
}

} // namespace

Lettering::Lettering(const std::string& text, float height, float tracking)
    : mText(text), mHeight(height), mTracking(tracking * 6), mWidth(0) {
    float units = 0;
    for (const char c : mText) {
        const Glyph* glyph = glyphOf(c);
        units += float(glyph != nullptr ? glyph->width : GAP) + mTracking;
    }
    mWidth = mText.empty() ? 0 : (units - mTracking) * mHeight / 6;
}

float Lettering::distance(float x, float y) const {
    const float unit = mHeight / 6;
    const float gx = x / unit, gy = 6 - y / unit;
    float nearest = 1e9f;
    float start = 0;
    for (const char c : mText) {
        const Glyph* glyph = glyphOf(c);
        const float width = float(glyph != nullptr ? glyph->width : GAP);
        if (glyph != nullptr && gx > start - 6 && gx < start + width + 6) {
            const float d = distanceToGlyph(*glyph, gx - start, gy);
            nearest = d < nearest ? d : nearest;
        }
        start += width + mTracking;
    }
    return nearest * unit;
}

} // namespace zentrak::art
