// What a program stands on, for tests: a registry in memory, help that remembers what it was asked, windows
// without a screen.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "ScriptedMessagePump.h"
#include "Windows.h"
#include "settings/SharedState.h"
#include "util/Text.h"
#include "util/Utf.h"

namespace rowlark::testing {

class MemoryRegistry final : public host::Registry {
 public:
  bool MachineWideIsWritable = true;
  int64_t FailingCall = 0;  // the call that fails, from 1; 0: none
  int64_t Calls = 0;
  std::function<void(std::string)> Log;  // hears of what is written

  std::optional<host::RegistryValue> Read(host::Hive hive, std::u16string_view key,
                                          std::u16string_view name) const override {
    if (Fails()) return std::nullopt;
    const auto found = values_.find({hive, FoldCase(key), FoldCase(name)});
    return found == values_.end() ? std::nullopt : std::optional(found->second);
  }
  bool CreateKey(host::Hive, std::u16string_view) override { return true; }
  bool Write(host::Hive hive, std::u16string_view key, std::u16string_view name,
             const host::RegistryValue& value) override {
    if (Fails() || (hive == host::Hive::LocalMachine && !MachineWideIsWritable)) return false;
    if (Log) Log("write " + ToUtf8(name));
    values_.insert_or_assign({hive, FoldCase(key), FoldCase(name)}, value);
    return true;
  }
  bool DeleteValue(host::Hive hive, std::u16string_view key, std::u16string_view name) override {
    return values_.erase({hive, FoldCase(key), FoldCase(name)}) > 0;
  }
  bool DeleteKey(host::Hive, std::u16string_view) override { return false; }

 private:
  bool Fails() const { return ++const_cast<MemoryRegistry*>(this)->Calls == FailingCall; }

  std::map<std::tuple<host::Hive, std::u16string, std::u16string>, host::RegistryValue> values_;
};

class RecordingHelp final : public host::Help {
 public:
  intptr_t Window = 1;
  std::vector<std::string> Calls;  // "path command context"

  intptr_t HtmlHelp(std::u16string_view file, host::HelpCommand command, int32_t context) noexcept override {
    Calls.push_back(ToUtf8(file) + ' ' + std::to_string(static_cast<int32_t>(command)) + ' ' +
                    std::to_string(context));
    return Window;
  }
};

class RecordingTrace final : public Trace {
 public:
  std::vector<std::string> Lines;

  void Write(std::string_view line) noexcept override { Lines.emplace_back(line); }
};

// Paths are those of the machine unless drives are mapped.
struct TestPlatform {
  explicit TestPlatform(std::u16string_view library_folder = u"/nowhere",
                        std::u16string_view config_folder = u"/nowhere/")
      : shared(Platform{pump, registry, help, windows, files, std::u16string(library_folder),
                        std::u16string(config_folder), &trace}) {}

  RecordingTrace trace;
  ScriptedMessagePump pump;
  MemoryRegistry registry;
  RecordingHelp help;
  ScriptedWindows windows{pump};
  mclsVTFileSystem files;
  SharedState shared;
};

}  // namespace rowlark::testing
