' Creates the library's object by its registered class and tells what it finds where it was installed.
Option Explicit
Dim runtime
Set runtime = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
WScript.Echo runtime.Language.Path
WScript.Echo runtime.Language.LangFile
WScript.Echo runtime.HelpFile
runtime.DoStop
WScript.Quit 42
