// The panel with the exact numbers of what is selected.
#pragma once

#include "pan_control.h"
#include "pan_textinput.h"
#include "studio_editor.h"
#include "studio_overlay.h"
#include "studio_paint.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::studio {

// A field that gives its text away when it is done: by Return, Tab or a click elsewhere. Esc takes back what
// was typed.
class Field : public panorama::TextInput {
public:
    std::function<void(const std::string& text)> mOnDone;
    std::function<void(int step)> mOnTab;   // 1 to the next field, -1 to the one before
    std::function<void(int step)> mOnArrow; // Up 1, Down -1; without it the keys are the text's

    // What it shows while nobody types.
    void show(const std::string& text);
    void edit(); // takes the keys, with all of it selected
    void finish();
    int handleEvent(panorama::Event& event) override;
    panorama::Control* clone() override;

private:
    std::string mShownText;
    bool mEditing = false;
};

class Panel : public panorama::Control {
public:
    static constexpr float WIDTH = 330;
    static constexpr size_t FIELDS = 8;

    Panel(Editor& editor, Overlay& overlay);
    panorama::Control* clone() override; // null: there is one

    void update(); // shows what is selected now; before each frame
    bool hasKeys() const;
    void leaveKeys(); // what is typed counts
    void editField(const std::string& label);
    // The field with this label, or null. For tests too.
    Field* findField(const std::string& label);

    void buildChildArea() override;
    int handleEvent(panorama::Event& event) override;
    void draw() override;

private:
    // One number or text of the selected elements.
    struct Entry {
        std::string label;
        std::string attribute; // as Editor::set takes it, or "" for what set() below knows
        std::string hint;      // behind the field
        std::string value;
        std::vector<std::string> choices;                // of the menu beside it
        enum { TEXT, NUMBER, TIME, LENGTH } type = TEXT; // a time or a length may be typed in bars
    };

    Editor& mEditor;
    Overlay& mOverlay;
    std::vector<Field*> mFields; // the children
    std::vector<Entry> mEntries;
    std::vector<uint32_t> mFieldsOf; // the selection that they are of
    std::string mTitle, mSubtitle;
    uint32_t mVersion = 0;

    void fill();
    std::vector<int> getElements() const; // that the panel shows
    void addSpan(const std::vector<int>& elements);
    void addTrigger(const std::vector<int>& elements);
    void addKey(const std::vector<int>& elements);
    void addTempo();
    void add(Entry entry) { mEntries.push_back(std::move(entry)); }
    void addNumber(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                   double (*get)(const Element&), const std::string& hint = "");
    // In seconds, with the bars behind it.
    void addTime(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                 double (*get)(const Element&));
    double getShift(int element) const;
    void addText(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                 std::vector<std::string> choices);
    void apply(size_t field, const std::string& text);
    void applyTo(const Entry& entry, const std::string& text);
    void nudge(size_t field, int step);
    Box2 getRow(size_t entry) const;
    Box2 getChoiceButton(size_t entry) const;
};

} // namespace zentrak::studio
