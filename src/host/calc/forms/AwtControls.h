// The kinds of controls that have files of their own.
#pragma once

#include <memory>

#include "host/calc/forms/AwtControl.h"

namespace rowlark::controls {
class ComboBox;
class ListView;
class TextBox;
class TreeView;
}  // namespace rowlark::controls

namespace rowlark::calc {

std::unique_ptr<AwtControl> MakeTextBox(controls::TextBox& control, Site& site);
// One with a text to edit.
std::unique_ptr<AwtControl> MakeComboBox(controls::ComboBox& control, Site& site);
std::unique_ptr<AwtControl> MakeDropDownList(controls::ComboBox& control, Site& site);
std::unique_ptr<AwtControl> MakeListView(controls::ListView& control, Site& site);
std::unique_ptr<AwtControl> MakeTreeView(controls::TreeView& control, Site& site);

}  // namespace rowlark::calc
