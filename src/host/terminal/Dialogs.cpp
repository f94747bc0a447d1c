#include "host/terminal/Dialogs.h"

#include <algorithm>
#include <utility>

#include "host/terminal/Glyph.h"
#include "host/terminal/Input.h"
#include "host/terminal/TextLines.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::terminal {
namespace {

using controls::Layout;

// A caption shows two "&" as one.
std::u16string Literal(std::u16string_view text) {
  std::u16string literal;
  for (const char16_t c : text) literal.append(c == u'&' ? 2 : 1, c);
  return literal;
}

}  // namespace

MessageForm::MessageForm(std::u16string_view title, std::u16string_view text,
                         const std::vector<std::u16string>& buttons, std::function<void()> help,
                         int32_t width, controls::View& view, Trace* trace)
    : Form(u"MessageForm", trace), help_(std::move(help)), answer_(buttons.size() - 1) {
  HelpContextID = help_ ? 1 : 0;
  SetCaption(title);
  std::u16string lines;
  for (const auto [begin, end] : BreakLines(text, width)) {
    if (!lines.empty()) lines += u"\r\n";
    lines += Literal(text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
  }
  text_.SetCaption(lines);
  std::vector<Layout> row{Layout().Wide()};
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    buttons_.push_back(std::make_unique<controls::Button>(*this, u"button"));
    auto& button = *buttons_.back();
    button.SetCaption(buttons[i]);
    button.Default = i == 0;
    button.Cancel = i + 1 == buttons.size();
    button.Click = [this, i] {
      answer_ = i;
      Unload();
    };
    row.emplace_back(button);
  }
  Activate = [this] { buttons_.front()->SetFocus(); };
  KeyPress = [this](char16_t& character) {
    const auto meant = [c = ToLower(char32_t{character})](const auto& button) {
      return controls::Accelerator(button->Caption()) == c;
    };
    const auto button = std::ranges::find_if(buttons_, meant);
    if (button != buttons_.end()) (*button)->UserClicked();
  };
  SetLayout(Layout::Column({text_, Layout::Row(std::move(row))}));
  Attach(view);
  Arrange();
  Load();
}

void MessageForm::Form_Close() {
  answer_ = buttons_.size() - 1;
  Unload();
}

PromptForm::PromptForm(std::u16string_view title, std::u16string_view text, std::u16string_view ok,
                       std::u16string_view cancel, int32_t width, controls::View& view, Trace* trace)
    : Form(u"PromptForm", trace) {
  SetCaption(title);
  box_.SetText(text);
  ok_.SetCaption(ok);
  ok_.Default = true;
  ok_.Click = [this] {
    answer_ = box_.Text();
    Unload();
  };
  cancel_.SetCaption(cancel);
  cancel_.Cancel = true;
  cancel_.Click = [this] { Unload(); };
  Activate = [this] {
    box_.SetFocus();
    box_.SetCaret(box_.End());
  };
  SetLayout(Layout::Column({Layout(box_, {width}), Layout::Row({Layout().Wide(), ok_, cancel_})}));
  Attach(view);
  Arrange();
  Load();
}

ListForm::ListForm(const std::vector<Entry>& entries, int32_t selected, int32_t rows, controls::View& view,
                   Trace* trace)
    : Form(u"ListForm", trace), rows_(std::min(rows, static_cast<int32_t>(entries.size()))) {
  int32_t width = 0;
  for (const auto& entry : entries) {
    list_.AddItem({entry.text, {}, 0});
    accelerators_.push_back(entry.accelerator);
    width = std::max(width, WidthOf(entry.text));
  }
  list_.Select(std::max(selected, 0));
  KeyDown = [this](int32_t& key, int32_t) { UseKey(key); };
  KeyPress = [this](char16_t& character) {
    const auto entry = std::ranges::find(accelerators_, ToLower(char32_t{character}));
    if (entry != accelerators_.end()) return Choose(static_cast<int32_t>(entry - accelerators_.begin()));
    SelectNext(character);
  };
  Activate = [this] { list_.SetFocus(); };
  SetLayout(Layout::Column({Layout(list_, {width + 3, rows_})}));
  Attach(view);
  Arrange();
  Load();
}

void ListForm::UseKey(int32_t& key) {
  if (key == controls::kKeyReturn || key == controls::kKeySpace) {
    key = 0;
    Choose(list_.Selected());
  } else if (key == controls::kKeyEscape) {
    key = 0;
    Unload();
  } else if (key == controls::kKeyHome || key == controls::kKeyEnd) {
    Move(key == controls::kKeyHome ? -list_.Selected() : static_cast<int32_t>(list_.Items().size()));
  } else if (key == kKeyPageUp || key == kKeyPageDown) {
    Move(key == kKeyPageUp ? -rows_ : rows_);
  }
}

void ListForm::Move(int32_t step) {
  list_.UserPicked(std::clamp(list_.Selected() + step, 0, static_cast<int32_t>(list_.Items().size()) - 1));
}

// The next entry that begins with the letter.
void ListForm::SelectNext(char16_t letter) {
  const int32_t count = static_cast<int32_t>(list_.Items().size());
  for (int32_t i = 1; i <= count; ++i) {
    const int32_t at = (list_.Selected() + i) % count;
    std::u16string_view text = list_.Items()[static_cast<std::size_t>(at)].text;
    if (!text.empty() && ToLower(TakeUtf16(text)) == ToLower(char32_t{letter})) return list_.UserPicked(at);
  }
}

void ListForm::Choose(int32_t index) {
  chosen_ = index;
  Unload();
}

}  // namespace rowlark::terminal
