// Lists, of which one entry is selected.
#include <com/sun/star/awt/XItemList.hpp>

#include "controls/ComboBox.h"
#include "controls/ListView.h"
#include "controls/TreeView.h"
#include "host/calc/forms/AwtControls.h"

namespace rowlark::calc {
namespace {

using controls::Property;
using css::uno::Reference;

class AwtListBox : public AwtControl {
 public:
  AwtListBox(controls::Control& model, calc::Site& site) : AwtControl(model, site, "ListBox") {}

  void Describe() override {
    AwtControl::Describe();
    Put("Tabstop", TabStop());
    Put("MultiSelection", false);
  }

 protected:
  struct Entry {
    std::u16string_view text;
    std::u16string_view picture;
  };
  void Fill(const std::vector<Entry>& entries) {
    const Reference<css::awt::XItemList> list(properties_, css::uno::UNO_QUERY_THROW);
    // Entries that stay the same stay where they are: the list may be open.
    while (list->getItemCount() > static_cast<sal_Int32>(entries.size())) {
      list->removeItem(list->getItemCount() - 1);
    }
    sal_Int32 position = 0;
    for (const auto& [text, picture] : entries) {
      const auto label = ToOffice(text);
      if (position == list->getItemCount()) {
        list->insertItem(position, label, site_.Desk->Picture(picture, true));
      } else if (list->getItemText(position) != label) {
        list->setItemText(position, label);
      }
      ++position;
    }
    Apply(Property::ListIndex);
  }
  virtual int32_t Selected() const = 0;

  void Apply(Property property) override {
    if (property == Property::ListIndex) {
      css::uno::Sequence<sal_Int16> selected(Selected() < 0 ? 0 : 1);
      if (Selected() >= 0) selected.getArray()[0] = static_cast<sal_Int16>(Selected());
      Put("SelectedItems", selected);
    } else if (property != Property::Caption) {
      AwtControl::Apply(property);
    }
  }
};

class AwtDropDownList final : public AwtListBox {
 public:
  AwtDropDownList(controls::ComboBox& model, calc::Site& site) : AwtListBox(model, site), box_(model) {}

  void Describe() override {
    AwtListBox::Describe();
    Put("Dropdown", true);
    Put("LineCount", sal_Int16{12});
  }
  void Picked(int32_t index) override { box_.UserPicked(index); }
  bool TakesKey(int32_t key) const override { return IsForOpenList(key); }

 private:
  int32_t Selected() const override { return box_.ListIndex(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(static_cast<std::size_t>(box_.ListCount()));
    for (int32_t i = 0; i < box_.ListCount(); ++i) entries.push_back({box_.List(i), {}});
    Fill(entries);
  }

  controls::ComboBox& box_;
};

class AwtListView final : public AwtListBox {
 public:
  AwtListView(controls::ListView& model, calc::Site& site) : AwtListBox(model, site), list_(model) {}

  void Picked(int32_t index) override { list_.UserPicked(index); }

 private:
  int32_t Selected() const override { return list_.Selected(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(list_.Items().size());
    for (const auto& item : list_.Items()) entries.push_back({item.text, item.small_icon});
    Fill(entries);
  }

  controls::ListView& list_;
};

class AwtTreeView final : public AwtListBox {
 public:
  AwtTreeView(controls::TreeView& model, calc::Site& site) : AwtListBox(model, site), tree_(model) {}

  void Picked(int32_t index) override { tree_.UserPicked(index); }

 private:
  int32_t Selected() const override { return tree_.Selected(); }
  void FillList() override {
    std::vector<Entry> entries;
    entries.reserve(tree_.Nodes().size());
    for (const auto& node : tree_.Nodes()) entries.push_back({node.text, node.key});
    Fill(entries);
  }

  controls::TreeView& tree_;
};

}  // namespace

std::unique_ptr<AwtControl> MakeDropDownList(controls::ComboBox& control, Site& site) {
  return std::make_unique<AwtDropDownList>(control, site);
}

std::unique_ptr<AwtControl> MakeListView(controls::ListView& control, Site& site) {
  return std::make_unique<AwtListView>(control, site);
}

std::unique_ptr<AwtControl> MakeTreeView(controls::TreeView& control, Site& site) {
  return std::make_unique<AwtTreeView>(control, site);
}

}  // namespace rowlark::calc
