// Controls beyond what the forms make of them.
#include <gtest/gtest.h>

#include <map>

#include "controls/ComboBox.h"
#include "controls/Form.h"
#include "controls/Frame.h"
#include "controls/Keyboard.h"
#include "controls/OptionButton.h"
#include "controls/TextBox.h"
#include "controls/Timer.h"

namespace rowlark::controls {
namespace {

struct Sample final : Form, View {
  Frame left{*this, u"left"}, right{*this, u"right"};
  OptionButton a{*this, u"a"}, b{*this, u"b"}, c{*this, u"c"};
  TextBox box{*this, u"box"};
  ComboBox combo{*this, u"combo"};
  Timer timer{*this, u"timer"};
  std::map<Control*, Property> told;
  bool released = false;

  Sample() : Form(u"Sample") {
    SetLayout(
        Layout::Row({Layout::Framed(left, Layout::Column({a, b})), Layout::Framed(right, c), box, combo}));
    Attach(*this);
    Load();
    Show();
  }
  void Changed(Control& control, Property property) noexcept override { told[&control] = property; }
  void Released(Form&) noexcept override { released = true; }
  int32_t TextWidth(std::u16string_view text) const noexcept override {
    return 5 * static_cast<int32_t>(text.size());
  }
  controls::TwipSize WindowSize(controls::Size) const noexcept override { return {}; }
};

TEST(Controls, OptionButtonsExcludeEachOtherWithinTheirFrame) {
  const auto form = MakeRef<Sample>();
  form->c.SetValue(true);
  form->a.UserClicked();
  form->b.UserClicked();
  EXPECT_TRUE(!form->a.Value() && form->b.Value() && form->c.Value());
}

TEST(Controls, AreTakenAlongWithTheirFrame) {
  const auto form = MakeRef<Sample>();
  form->told.clear();
  form->left.SetVisible(false);
  EXPECT_EQ(form->told.size(), 3U);
  EXPECT_EQ(form->told[&form->b], Property::Visible);
  int clicks = 0;
  form->a.Click = [&] { ++clicks; };
  form->a.UserClicked();
  form->left.SetVisible(true);
  form->a.SetEnabled(false);
  form->a.UserClicked();
  EXPECT_EQ(clicks, 0);
}

TEST(Controls, TimersStartHoweverTheyAreEnabled) {
  const auto form = MakeRef<Sample>();
  Control& timer = form->timer;
  int ticks = 0;
  form->timer.Tick = [&] { ++ticks; };
  form->timer.Expired();
  for (const bool enabled : {true, true, false}) {
    form->told.clear();
    timer.SetEnabled(enabled);
    EXPECT_EQ(form->told[&timer], Property::Timer);
    form->timer.Expired();
  }
  EXPECT_EQ(ticks, 2);
}

TEST(Controls, TextsTellWhatChangedThem) {
  const auto form = MakeRef<Sample>();
  std::string events;
  form->box.Change = [&] { events += 'c'; };
  form->box.SetText(u"abc");
  form->box.SetText(u"abc");
  form->box.UserTyped(u"abcd", 9);
  EXPECT_EQ(form->box.Caret(), 4);
  form->box.ReadOnly = true;
  form->box.UserTyped(u"no", 0);
  EXPECT_EQ(form->box.Text(), u"abcd");
  form->combo.Change = [&] { events += 'C'; };
  form->combo.Click = [&] { events += 'K'; };
  form->combo.AddItem(u"one");
  form->combo.AddItem(u"two");
  form->combo.UserPicked(1);
  form->combo.AddItem(u"zero", 0);
  EXPECT_EQ(form->combo.ListIndex(), 2);
  form->combo.UserPicked(7);
  form->combo.UserTyped(u"x", 1);
  EXPECT_EQ(form->combo.ListIndex(), -1);
  EXPECT_EQ(events, "ccKC");
  form->combo.Click = [] { throw std::runtime_error("a handler's affair"); };
  form->combo.SetListIndex(0);
  EXPECT_EQ(form->combo.Text(), u"zero");
}

TEST(Controls, KeysReachTheFormFirstAndNobodyAfterItIsUnloaded) {
  const auto form = MakeRef<Sample>();
  std::string heard;
  form->box.SetFocus();
  form->KeyDown = [&](int32_t& key, int32_t) {
    heard += 'F';
    if (key == 'X') key = 0;
    if (key == 'U') form->Unload();
  };
  form->box.KeyDown = [&](int32_t&, int32_t) { heard += 'B'; };
  form->box.KeyUp = [&](int32_t&, int32_t) { heard += 'u'; };
  PressKey(*form, 'X', kNoShift, u'x');
  EXPECT_EQ(heard, "Fu");
  PressKey(*form, 'Y', kNoShift, u'y');
  EXPECT_EQ(heard, "FuFBu");
  EXPECT_EQ(form->box.Text(), u"y");
  PressKey(*form, 'U', kNoShift, u'u');
  EXPECT_EQ(heard, "FuFBuF");
  EXPECT_TRUE(form->released && !form->Visible());
  form->told.clear();
  form->box.SetText(u"nobody shows it");
  form->box.UserTyped(u"", 0);
  EXPECT_TRUE(form->told.empty());
}

TEST(Controls, CaptionsMarkTheirAccelerator) {
  for (const auto& [caption, plain, accelerator] : {std::tuple(u"&Find", u"Find", U'f'),
                                                    {u"Go&to", u"Goto", U't'},
                                                    {u"R&&D", u"R&D", U'\0'},
                                                    {u"R&&&D", u"R&D", U'd'},
                                                    {u"&\u0416", u"\u0416", U'\u0436'},
                                                    {u"end&", u"end&", U'\0'}}) {
    EXPECT_EQ(PlainCaption(caption), plain);
    EXPECT_EQ(Accelerator(caption), accelerator);
  }
}

}  // namespace
}  // namespace rowlark::controls
