// The definition of one stream of particles: a range for each property of a new one, a rate and a count.
#pragma once

#include "mb_random.h"
#include "mb_vector3.h"
#include "sparks_spark.h"
#include "xml_iterator.h"

#include <string>

namespace zentrak::sparks {

// Two bounds, in any order; each new particle draws its own value between them.
template <class T>
struct Range {
    T v1;
    T v2;
};

struct Emitter {
    // clang-format off
    Range<float>              speed       = {1.0f, 2.0f}; // world units per second
    Range<float>              angle       = {0.0f, 0.1f}; // from the +y axis, radians
    Range<mathbase::Vector3f> color       = {{1.0f, 0.51f, 0.01f}, {1.0f, 0.51f, 0.11f}};
    Range<float>              energy      = {1.0f, 2.0f};
    Range<float>              energydecay = {1.0f, 2.0f}; // per second
    Range<float>              size        = {1.4f, 1.3f}; // world units
    Range<float>              sizedecay   = {1.1f, 1.2f}; // per second
    Range<float>              noise       = {0.2f, 0.4f}; // 0 to 1
    Range<float>              mass        = {0.0f, 0.0f};
    Range<float>              intensity   = {0.2f, 0.2f};
    Range<float>              rotation    = {0.0f, 1.0f};
    Range<float>              timeoffset  = {0.0f, 0.1f}; // seconds
    std::string               name;
    int                       num         = -1;    // particles left to emit; below 0 without end
    float                     rate        = 50.0f; // particles per second
    int                       texture     = 0;     // cell of the strip of sprites, 0 to 7
    bool                      active      = true;  // emits only when set
    bool                      second      = true;  // has no reader
    mathbase::Random          random;
    // clang-format on

    Emitter(); // the random numbers start from the processor time

    // Reads the tag that the iterator is on. Name, texture, rate and num are always replaced, by "" or 0
    // where they are missing; a range whose child is missing stays. Nothing is reported: what can't be read
    // is 0.
    void load(xml::IteratorConst& it);

    // Adds a child "emitter" after the one that the iterator is on, and moves onto it.
    void save(xml::Iterator& it) const;

    // Draws everything but position and time of a new particle: fifteen random numbers.
    void fillSpark(Spark& spark);

    // One random number: a colour between two.
    mathbase::Vector3f getRandom(mathbase::Vector3f& a, mathbase::Vector3f& b);

private:
    float draw(const Range<float>& range);
};

// Colours as six hexadecimal digits, "rrggbb", of either case. Digits that are missing or invalid count as 0.
mathbase::Vector3f hex2vec(const std::string& text);
// Lower case, and cut: 0.5 is "7f". Only the low 8 bits count, so that a value above 1 wraps; NaN
// is "00".
std::string f2hex(float value);
std::string vec2hex(mathbase::Vector3f color);

} // namespace zentrak::sparks
