// What a program stands on that has no screen, no message loop and no registry.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "host/Help.h"
#include "host/MessagePump.h"
#include "host/Registry.h"
#include "host/WindowSystem.h"

namespace rowlark::standalone {

// No message ever comes, and time goes on by waiting alone.
class NoMessages final : public host::MessagePump {
 public:
  void ProcessMessages() noexcept override {}
  void WaitForInput(uint32_t milliseconds) noexcept override { now_ += milliseconds; }
  uint32_t TickCount() const noexcept override { return now_; }

 private:
  uint32_t now_ = 0;
};

class NoWindows : public host::WindowSystem {
 public:
  bool Realise(controls::Form&) noexcept override { return false; }
  void MsgBox(std::u16string_view, host::MsgBoxIcon, std::u16string_view) noexcept override {}
  bool Ask(std::u16string_view, std::u16string_view) noexcept override { return false; }
  void OpenLink(controls::Form&, std::u16string_view) noexcept override {}
  void Beep() noexcept override {}
  std::vector<controls::TwipRect> Screens() const noexcept override { return {}; }
  intptr_t WindowOfClass(std::u16string_view) const noexcept override { return 0; }
};

class NoHelp final : public host::Help {
 public:
  intptr_t HtmlHelp(std::u16string_view, host::HelpCommand, int32_t) noexcept override { return 0; }
};

// Holds nothing and takes nothing.
class NoRegistry final : public host::Registry {
 public:
  std::optional<host::RegistryValue> Read(host::Hive, std::u16string_view,
                                          std::u16string_view) const override {
    return std::nullopt;
  }
  bool CreateKey(host::Hive, std::u16string_view) override { return false; }
  bool Write(host::Hive, std::u16string_view, std::u16string_view, const host::RegistryValue&) override {
    return false;
  }
  bool DeleteValue(host::Hive, std::u16string_view, std::u16string_view) override { return false; }
  bool DeleteKey(host::Hive, std::u16string_view) override { return false; }
};

struct Headless {
  NoMessages messages;
  NoWindows windows;
  NoHelp help;
  NoRegistry registry;
};

}  // namespace rowlark::standalone
