// The panel with the exact numbers of what is selected.
#pragma once

#include "effect_names.h"
#include "pan_control.h"
#include "pan_entryfield.h"
#include "pan_overlay.h"
#include "studio_editor.h"
#include "studio_paint.h"

#include <functional>
#include <string>
#include <vector>

namespace zentrak::studio {

// What an effect knows; null for one that isn't there.
const kindler::EffectNames* findNames(const std::string& effect);

class Panel : public panorama::Control {
public:
    static constexpr float WIDTH = 330;
    static constexpr size_t FIELDS = 8;

    Panel(Editor& editor, panorama::Overlay& overlay);
    panorama::Control* clone() override; // null: there is one

    std::function<void(const std::string& text)> mOnRefused; // why what was typed was not taken

    void update(); // shows what is selected now; before each frame
    bool hasKeys() const;
    void leaveKeys(); // and takes over what was typed
    void editField(const std::string& label);
    // The field with this label, or null.
    panorama::EntryField* findField(const std::string& label);

    int handleEvent(panorama::Event& event) override;
    void draw() override;

private:
    // One number or text of the selected elements.
    struct Entry {
        std::string label;
        std::string attribute; // as Editor::set takes it, or one that applyTo knows
        std::string hint;      // after the field
        std::string value;
        std::vector<std::string> choices;                // of the menu beside it
        enum { TEXT, NUMBER, TIME, LENGTH } type = TEXT; // a time or a length may be typed in bars
    };

    Editor& mEditor;
    panorama::Overlay& mOverlay;
    std::vector<panorama::EntryField*> mFields; // the children
    std::vector<Entry> mEntries;
    std::vector<uint32_t> mFieldsOf; // the selection that they show
    std::string mTitle, mSubtitle;
    uint32_t mVersion = 0;

    void fill();
    std::vector<int> getElements() const; // that the panel shows
    void addSpan(const std::vector<int>& elements);
    void addTrigger(const std::vector<int>& elements);
    void addKey(const std::vector<int>& elements);
    void addSpline(const std::vector<int>& elements);
    void addTempo();
    void add(Entry entry) { mEntries.push_back(std::move(entry)); }
    void addNumber(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                   double (*get)(const Element&), const std::string& hint = "");
    // In seconds, with the bars after the field.
    void addTime(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                 double (*get)(const Element&));
    double getShift(int element) const;
    void addText(const std::vector<int>& elements, const std::string& label, const std::string& attribute,
                 std::vector<std::string> choices);
    void apply(size_t field, const std::string& text);
    bool applyTo(const Entry& entry, const std::string& text);
    bool applyTempo(const Entry& entry, double number);
    void nudge(size_t field, int step);
    Box2 getRow(size_t entry) const;
    Box2 getFieldBox(size_t entry) const;
    Box2 getChoiceButton(size_t entry) const;
};

} // namespace zentrak::studio
