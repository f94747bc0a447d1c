// The small forms that the window system needs for itself.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "controls/Button.h"
#include "controls/Form.h"
#include "controls/Label.h"
#include "controls/ListView.h"
#include "controls/TextBox.h"

namespace rowlark::terminal {

// A text and buttons, of which Enter presses the first and Escape the last.
class MessageForm final : public controls::Form {
 public:
  // With `help`, which may be empty, F1 calls it.
  MessageForm(std::u16string_view title, std::u16string_view text, const std::vector<std::u16string>& buttons,
              std::function<void()> help, int32_t width, controls::View& view, Trace* trace);

  // The index of the button that was pressed.
  std::size_t Answer() const { return answer_; }

 private:
  void Form_Close() override;
  void Form_Help() override { help_(); }

  const std::function<void()> help_;
  controls::Label text_{*this, u"text"};
  std::vector<std::unique_ptr<controls::Button>> buttons_;
  std::size_t answer_;
};

// A line to type, with buttons to take it and not to.
class PromptForm final : public controls::Form {
 public:
  PromptForm(std::u16string_view title, std::u16string_view text, std::u16string_view ok,
             std::u16string_view cancel, int32_t width, controls::View& view, Trace* trace);

  // What was typed; nothing when it was not taken.
  const std::optional<std::u16string>& Answer() const { return answer_; }

 private:
  controls::TextBox box_{*this, u"box"};
  controls::Button ok_{*this, u"ok"};
  controls::Button cancel_{*this, u"cancel"};
  std::optional<std::u16string> answer_;
};

// Entries to choose one from: a menu, the list of a combo box.
class ListForm final : public controls::Form {
 public:
  struct Entry {
    static Entry Of(std::u16string_view caption) {
      return {controls::PlainCaption(caption), controls::Accelerator(caption)};
    }
    std::u16string text;
    char32_t accelerator = 0;  // the letter that chooses it
  };
  // Shows so many rows at the most.
  ListForm(const std::vector<Entry>& entries, int32_t selected, int32_t rows, controls::View& view,
           Trace* trace);

  // The index of the entry chosen; -1 when none was.
  int32_t Chosen() const { return chosen_; }
  void Choose(int32_t index);

 private:
  void UseKey(int32_t& key);
  void Move(int32_t step);
  void SelectNext(char16_t letter);

  controls::ListView list_{*this, u"list"};
  std::vector<char32_t> accelerators_;
  int32_t rows_;
  int32_t chosen_ = -1;
};

}  // namespace rowlark::terminal
