// A choice of one from a list that opens below it.
#pragma once

#include "pan_context.h"
#include "pan_inputcontrol.h"
#include "pan_textline.h"

#include <memory>
#include <string>
#include <vector>

namespace zentrak::panorama {

// A press opens the list, with the current option marked; a click on a row, or letting go on it, chooses it,
// and one elsewhere closes the list. It opens upwards where there is more room, and one that is taller than
// the window is moved by the wheel. With the keys: Up, Down, Home and End choose, Space and Return open; in
// the list the arrows, Home, End, Page Up and Page Down move, Space and Return choose, Esc closes. Each
// change by the user sends action 8.
class Dropdown : public InputControl {
public:
    struct Option {
        std::string id;   // for the program
        std::string name; // for the user; the id where it is missing
    };

    Dropdown();
    ~Dropdown() override;

    Control* clone() override; // a plain new one without options, owned by the caller

    // Each "option" with "id", "name" and "default" ("true"; the last one of several wins, the first option
    // where there is none). Options replace those that were loaded before, as from a style.
    void load(xml::IteratorConst& it) override;
    int handleEvent(Event& event) override; // 1 for what it takes
    void draw() override;

    void addOption(const std::string& id, const std::string& name);
    void deleteOptions();
    int getOptionCount() const { return int(mOptions.size()); }

    int getSelected() const { return mSelected; } // -1 without options
    void setSelected(int index);                  // sends nothing; nothing for an index out of range
    std::string getSelectedId() const;
    std::string getSelectedName() const;

    void open();              // nothing without options
    Context* getList() const; // owned here

private:
    class List;

    void choose(int index);
    int handleKey(const Event& event);

    std::vector<Option> mOptions;
    int mSelected = -1;
    std::unique_ptr<List> mList;
    TextLine mLine; // the current option's name
};

} // namespace zentrak::panorama
