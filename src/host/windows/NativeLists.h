// Tree views, list views and tool bars.
#pragma once

#include <string>
#include <vector>

#include "controls/ListView.h"
#include "controls/ToolBar.h"
#include "controls/TreeView.h"
#include "host/windows/NativeControl.h"

namespace rowlark::windows {

using ImageList = Owner<NullableTraits<HIMAGELIST, ::ImageList_Destroy>>;

// Small pictures of entries, by name. Entries without a picture of their name have none.
class Pictures {
 public:
  // Begins anew, in that size.
  void Clear(const Resources& resources, int pixels);
  // Position of a picture in the list; -1 (I_IMAGENONE for tool bars is another one) when there is none.
  int Index(std::u16string_view name);
  HIMAGELIST Handle() const { return list_.get(); }
  bool Empty() const { return names_.empty(); }

 private:
  const Resources* resources_ = nullptr;
  int pixels_ = 0;
  ImageList list_;
  std::vector<std::u16string> names_;
};

class NativeTreeView final : public NativeControl {
 public:
  NativeTreeView(controls::Control& model, FormSite& site);

  LRESULT Notify(const NMHDR& header) override;

 private:
  const controls::TreeView& Tree() const { return static_cast<const controls::TreeView&>(model_); }
  void Apply(controls::Property property) override;
  void FillList() override;
  void ApplyPictures() override;

  Pictures pictures_;
  std::vector<HTREEITEM> items_;
};

class NativeListView final : public NativeControl {
 public:
  NativeListView(controls::Control& model, FormSite& site);

  LRESULT Notify(const NMHDR& header) override;

 private:
  const controls::ListView& List() const { return static_cast<const controls::ListView&>(model_); }
  void Apply(controls::Property property) override;
  void FillList() override;
  void ApplyPictures() override;
  void Placed(SIZE) override;
  int Selected() const;

  Pictures pictures_;
};

class NativeToolBar final : public NativeControl {
 public:
  NativeToolBar(controls::Control& model, FormSite& site);

  void Command(WORD code, WORD number) override;
  LRESULT Notify(const NMHDR& header) override;

 private:
  const controls::ToolBar& Bar() const { return static_cast<const controls::ToolBar&>(model_); }
  void FillList() override;
  void ApplyPictures() override;
  void Placed(SIZE) override;

  Pictures pictures_;
};

}  // namespace rowlark::windows
