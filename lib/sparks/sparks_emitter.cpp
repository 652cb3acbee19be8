#include "sparks_emitter.h"

#include "ztk_text.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>

namespace zentrak::sparks {

using mathbase::Vector3f;
using xml::IteratorConst;

namespace {

constexpr float TWO_PI = 6.2831855f;

// Decimal, octal after "0", hexadecimal after "0x"; ignores what follows the number.
long toInteger(const std::string& text) {
    return strtol(text.c_str(), nullptr, 0);
}

int toInt(const std::string& text) {
    return int(std::clamp<long>(toInteger(text), INT_MIN, INT_MAX));
}

int digitOf(const std::string& text, size_t index) {
    return index < text.size() ? hexDigit(text[index]) : 0;
}

// The first child `name` of the tag that `it` is on.
void loadRange(const IteratorConst& it, const char* name, Range<float>& range) {
    IteratorConst child = it.createIterator(name);
    if (!++child)
        return;
    range.v1 = float(toNumber(child->getValue("v1")));
    range.v2 = float(toNumber(child->getValue("v2")));
}

void loadRange(const IteratorConst& it, const char* name, Range<Vector3f>& range) {
    IteratorConst child = it.createIterator(name);
    if (!++child)
        return;
    range.v1 = hex2vec(child->getValue("v1"));
    range.v2 = hex2vec(child->getValue("v2"));
}

template <class T>
xml::XmlTag rangeTag(const char* name, const T& v1, const T& v2) {
    xml::XmlTag tag;
    tag.setName(name);
    tag.setValue("v1", v1);
    tag.setValue("v2", v2);
    return tag;
}

void saveRange(xml::Iterator& it, const char* name, const Range<float>& range) {
    it.addChild(rangeTag<double>(name, range.v1, range.v2));
}

void saveRange(xml::Iterator& it, const char* name, const Range<Vector3f>& range) {
    it.addChild(rangeTag(name, vec2hex(range.v1), vec2hex(range.v2)));
}

// The fields that an emitter and its form in a file share, in file order.
template <class Emitter, class Visit>
void forEachRange(Emitter& e, const Visit& visit) {
    visit("speed", e.speed);
    visit("angle", e.angle);
    visit("color", e.color);
    visit("energy", e.energy);
    visit("energydecay", e.energydecay);
    visit("size", e.size);
    visit("sizedecay", e.sizedecay);
    visit("intensity", e.intensity);
    visit("rotation", e.rotation);
    visit("noise", e.noise);
    visit("mass", e.mass);
    visit("timeoffset", e.timeoffset);
}

} // namespace

mathbase::Random clockRandom() {
    return mathbase::Random(mathbase::randomStart() * 475559465u + 345350u);
}

Emitter::Emitter() : random(clockRandom()) {}

void Emitter::load(IteratorConst& it) {
    name = it->getValue("name");
    texture = toInt(it->getValue("texture"));
    rate = float(toInteger(it->getValue("rate")));
    num = toInt(it->getValue("num"));
    forEachRange(*this, [&](const char* child, auto& range) { loadRange(it, child, range); });
}

void Emitter::save(xml::Iterator& it) const {
    xml::XmlTag tag;
    tag.setName("emitter");
    tag.setValue("name", name);
    tag.setValue("texture", texture);
    tag.setValue("rate", double(rate));
    tag.setValue("num", num);
    xml::Iterator children = it.addChild(tag);
    forEachRange(*this, [&](const char* child, const auto& range) { saveRange(children, child, range); });
}

float Emitter::draw(const Range<float>& range) {
    const float r = random.uniform();
    return range.v1 + (range.v2 - range.v1) * r;
}

Vector3f Emitter::getRandom(Vector3f& a, Vector3f& b) {
    const float r = random.uniform();
    return a + (b - a) * r;
}

// The order of the draws determines the picture. Directions are uniform over the band of the sphere between
// the two angles.
void Emitter::fillSpark(Spark& spark) {
    random.draw(); // for an unused direction
    random.draw();

    const float r1 = random.uniform();
    const float r2 = random.uniform();
    const float top = cosf(angle.v1);
    const float z = (cosf(angle.v2) - top) * r2 + top;
    const float s = sqrtf(std::max(0.0f, 1.0f - z * z));
    const float phi = r1 * TWO_PI;
    spark.velocity = Vector3f(s * cosf(phi), z, s * sinf(phi)) * draw(speed);
    spark.colour = getRandom(color.v1, color.v2);
    spark.intensity = draw(intensity);
    spark.energy = draw(energy);
    spark.energydecay = draw(energydecay);
    spark.size = draw(size);
    spark.sizedecay = draw(sizedecay);
    spark.noise = draw(noise);
    spark.mass = draw(mass);
    spark.timeoffset = draw(timeoffset);
    spark.rotation = draw(rotation);
    spark.texture = texture;
}

Vector3f hex2vec(const std::string& text) {
    const auto component = [&](size_t index) {
        return float(16 * digitOf(text, index) + digitOf(text, index + 1)) / 255.0f;
    };
    return Vector3f(component(0), component(2), component(4));
}

std::string f2hex(float value) {
    static const char digits[] = "0123456789abcdef";
    const float scaled = value * 255.0f;
    const bool fits = scaled > -2147483648.0f && scaled < 2147483648.0f; // false for NaN
    const unsigned byte = fits ? unsigned(int(scaled)) : 0;
    return {digits[byte >> 4 & 15], digits[byte & 15]};
}

std::string vec2hex(Vector3f color) {
    return f2hex(color.x) + f2hex(color.y) + f2hex(color.z);
}

} // namespace zentrak::sparks
