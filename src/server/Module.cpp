#include "server/Module.h"

#include <new>
#include <utility>

#include "automation/Variant.h"
#include "server/WindowsProgram.h"
#include "util/AutomationError.h"

namespace rowlark::server {

Module::Module(HINSTANCE instance) : instance_(instance) {}

Module::~Module() = default;

std::u16string Module::FileName() const {
  std::u16string path(MAX_PATH, u'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(instance_, reinterpret_cast<wchar_t*>(path.data()),
                                            static_cast<DWORD>(path.size()));
    if (length < path.size()) {
      path.resize(length);
      return path;
    }
    path.resize(path.size() * 2);
  }
}

void Module::Enter() {
  const auto thread = static_cast<LONG>(GetCurrentThreadId());
  const LONG owner = InterlockedCompareExchange(&thread_, thread, 0);
  if (owner != 0 && owner != thread) {
    throw AutomationError(RPC_E_WRONG_THREAD, {}, u"Another thread of this process is using the library");
  }
  ObjectMade();
}

void Module::ObjectGone() {
  if (InterlockedDecrement(&objects_) > 0) return;
  program_.reset();
  type_library_ = nullptr;
  InterlockedExchange(&thread_, 0);
}

bool Module::Keep(IUnknown* object) noexcept try {
  if (!program_ || !program_->Busy()) return false;
  kept_.emplace_back();
  kept_.back() = automation::ComPtr<IUnknown>(object);
  return true;
} catch (const std::bad_alloc&) {
  TraceCaught(program_->Trace());
  return false;
}

automation::ComPtr<ITypeInfo> Module::TypeInfo(const GUID& guid) {
  automation::ComPtr<ITypeInfo> info;
  if (!type_library_) LoadTypeLibEx(windows::AsWide(FileName().c_str()), REGKIND_NONE, type_library_.Put());
  if (type_library_) type_library_->GetTypeInfoOfGuid(guid, info.Put());
  return info;
}

WindowsProgram& Module::Program() {
  if (!program_)
    program_ = std::make_unique<WindowsProgram>(FileName(), [this] { std::exchange(kept_, {}); });
  return *program_;
}

IUnknown* Module::Find(const void* core) const {
  const auto found = objects_by_core_.find(core);
  return found == objects_by_core_.end() ? nullptr : found->second;
}

}  // namespace rowlark::server
