// The stand-alone sheet model as an automation host: the names, arguments, constants and errors of the Excel
// object model over late-bound IDispatch, for scripts and for tests of whatever drives Excel.
//
// Strict as Excel is: an unknown member or argument name, a wrong number or type of arguments, a property
// that can not be set all fail with the code that Excel gives. Calls come with the locale 0x0409, as Visual
// Basic makes them. Scripts may pass none (0) or the user's by its number; everything else is refused with
// 0x80028018, as by an Excel that speaks another language than the system. What the model refuses
// (host::Error) arrives as DISP_E_EXCEPTION with the description, the source "Microsoft Excel" and 0x800A0000
// + the error number; a negative number is an HRESULT and is returned as such.
//
// Beside Excel's own members Application has switches for tests; they are neither counted nor refused:
//   CountCalls             Boolean; setting it to True starts counting from zero
//   CallCount([Name])      calls of a member: "Range.FindNext", "Range.Hidden" (reads), "Range.Hidden="
//   (writes),
//                          "IDispatch.GetIDsOfNames"; without a name: calls of all members
//   CallCounts             all of them as lines "name count", sorted
//   RefuseCalls(Count, [Result], [After])   after `After` more calls, the next `Count` (-1: all) fail with
//   the
//                          HRESULT `Result`; by default RPC_E_CALL_REJECTED. Count 0 ends it.
//   RunKey(Key)            the macro that OnKey has assigned to a key, "" without one
#pragma once

#include <functional>
#include <memory>

#include <oaidl.h>

#include "automation/ComPtr.h"
#include "host/standalone/Application.h"
#include "util/Ref.h"

namespace rowlark::workbench {

// The class of the Application object, and its name.
inline constexpr CLSID kApplicationClass = {
    0x3d8f6c1a, 0x52b7, 0x4e0d, {0x8b, 0x6e, 0x27, 0x94, 0xd1, 0x5c, 0x0f, 0xa3}};
inline constexpr wchar_t kApplicationProgId[] = L"vtrlk_workbench.Application";

// The Application object. It and every object reached through it keep the model alive; all belong to the
// thread that made them. `lifetime` is dropped when the last of them goes. `changed` is called after
// every call that may have changed the model. Throws std::bad_alloc.
automation::ComPtr<IDispatch> ExposeApplication(const Ref<standalone::Application>& application,
                                                std::shared_ptr<void> lifetime = nullptr,
                                                std::function<void()> changed = {});

}  // namespace rowlark::workbench
