// What is one per loaded library for COM: its type library, the objects handed out, the locks, and the
// program that the objects are the outside of.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <oaidl.h>

#include "automation/ComPtr.h"

namespace rowlark::server {

class WindowsProgram;

// The program is one, and belongs to one thread: to the one that made the first object, until the last object
// has gone. `DllCanUnloadNow` may come from anywhere.
class Module {
 public:
  explicit Module(HINSTANCE instance);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  HINSTANCE Instance() const { return instance_; }
  // Full path of the library's file.
  std::u16string FileName() const;

  // The calling thread works on the library, as if it held an object. Raises an error while the program
  // belongs to another one.
  class [[nodiscard]] Visit {
   public:
    explicit Visit(Module& module) : module_(module) { module.Enter(); }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;
    ~Visit() { module_.ObjectGone(); }

   private:
    Module& module_;
  };

  // Objects and locks keep the library loaded. The program ends with the last object.
  volatile LONG& Locks() { return locks_; }
  void ObjectMade() { InterlockedIncrement(&objects_); }
  void ObjectGone();
  // True when an object that its last client has let go of has to wait: the program may be on the stack, in a
  // form's message. It then goes when that has been handled.
  bool Keep(IUnknown* object) noexcept;
  bool CanUnload() const { return locks_ == 0 && objects_ == 0 && thread_ == 0; }

  // The type information of an interface or a class; null when the library's resources can not be read.
  automation::ComPtr<ITypeInfo> TypeInfo(const GUID& guid);

  // The program, begun with the first object.
  WindowsProgram& Program();

  // The object that stands for a core object, while there is one: the same core object is the same object to
  // every client.
  IUnknown* Find(const void* core) const;
  void Remember(const void* core, IUnknown* object) { objects_by_core_[core] = object; }
  void Forget(const void* core, const IUnknown* object) {
    if (Find(core) == object) objects_by_core_.erase(core);
  }

 private:
  void Enter();

  HINSTANCE instance_;
  volatile LONG locks_ = 0;
  volatile LONG objects_ = 0;
  volatile LONG thread_ = 0;  // the one that the program belongs to; 0 for none
  automation::ComPtr<ITypeLib> type_library_;
  std::unique_ptr<WindowsProgram> program_;
  std::vector<automation::ComPtr<IUnknown>> kept_;
  std::unordered_map<const void*, IUnknown*> objects_by_core_;  // not counted
};

}  // namespace rowlark::server
