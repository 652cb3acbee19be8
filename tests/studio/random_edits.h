// Random edits of all kinds.
#pragma once

#include "studio_editor.h"

#include <random>

namespace zentrak::test {

// One edit of any kind on anything.
inline void editAtRandom(studio::Editor& editor, std::mt19937& random) {
    const studio::Document& document = editor.getDocument();
    const auto pick = [&] { return int(random() % unsigned(document.getSize())); };
    const auto number = [&](double most) { return double(random() % 10000) / 10000 * most; };
    const auto ofKind = [&](studio::Kind kind) {
        for (int tries = 0; tries < 50; ++tries)
            if (const int i = pick(); document[i].kind == kind)
                return i;
        return -1;
    };
    if (random() % 3 == 0) {
        std::vector<uint32_t> ids;
        for (unsigned n = random() % 4 + 1; n > 0; --n)
            ids.push_back(document[pick()].id);
        editor.select(ids);
    }
    const bool drag = random() % 6 == 0;
    if (drag)
        editor.beginGesture();
    for (unsigned moves = drag ? 3 : 1; moves > 0; --moves) {
        switch (random() % 20) {
        case 0:
            editor.move(number(8) - 4, number(2) - 1);
            break;
        case 1:
            editor.resize(studio::Editor::Edge(random() % 2), number(8) - 4);
            break;
        case 2:
            editor.stretch(studio::Editor::Edge(random() % 2), number(8) - 4);
            break;
        case 3:
            editor.split(number(20));
            break;
        case 4:
            editor.copy();
            break;
        case 5:
            if (document.getSize() < 300)
                editor.paste(number(30));
            break;
        case 6:
            if (document.getSize() < 300)
                editor.duplicate();
            break;
        case 7:
            editor.removeSelected();
            break;
        case 8:
            editor.toggleEnabled();
            break;
        case 9:
            editor.reorder(random() % 2 ? 1 : -1);
            break;
        case 10:
            editor.addSpan(std::max(0, ofKind(studio::Kind::SPAN)), "x\"'>" + std::to_string(random() % 9),
                           number(5), number(20));
            break;
        case 11:
            if (const int i = ofKind(studio::Kind::SPAN); i > 0)
                editor.addTrigger(i, "t", random() % 2 ? "v" : "", number(3));
            break;
        case 12:
            if (const int i = ofKind(studio::Kind::SPAN); i > 0)
                editor.addSpline(i, "s", number(1));
            break;
        case 13:
            if (const int i = ofKind(studio::Kind::SPLINE); i > 0)
                editor.addKey(i, number(9) - 1, number(1));
            break;
        case 14:
            editor.addSection(std::max(0, ofKind(studio::Kind::SPAN) > 0 && document[1].parent == 0 ? 1 : 0),
                              "s--" + std::to_string(random()));
            break;
        case 15:
            editor.addBookmark(number(20), "b'\"b");
            break;
        case 16:
            editor.setTempo({float(60 + random() % 100), int(1 + random() % 8), float(number(1))});
            break;
        case 17:
            if (const int i = pick(); i > 0 && document[i].kind != studio::Kind::OTHER)
                editor.rename(i, random() % 2 ? "-->" : "it's <x>");
            break;
        case 18:
            if (const int i = ofKind(studio::Kind::SPLINE); i > 0)
                editor.set({i}, "type", "square");
            break;
        case 19:
            random() % 2 ? editor.undo() : editor.redo();
            break;
        }
    }
    if (drag)
        random() % 3 == 0 ? editor.cancelGesture() : editor.endGesture();
}

} // namespace zentrak::test
