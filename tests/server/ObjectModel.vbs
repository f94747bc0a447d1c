' The object model as a script sees it: ObjectModel.vbs table.csv configuration-file
' Prints what fails and, last, how many checks were made.
Option Explicit

Dim checks, failures
checks = 0
failures = 0

Sub Check(what, actual, expected)
  checks = checks + 1
  If CStr(actual) <> CStr(expected) Then
    failures = failures + 1
    WScript.Echo "FAILED " & what & ": " & actual & " instead of " & expected
  End If
End Sub

' The number of the error that has just happened; 0 for none.
Function Failure()
  Failure = Err.Number And &hFFFF&
  Err.Clear
End Function

Class Ribbon
  Public Asked
  Public Sub Invalidate()
    Asked = Asked + 1
  End Sub
End Class

On Error Resume Next

Dim app, sheet, rt, reason, item, items, other, files
Set files = CreateObject("Scripting.FileSystemObject")
If files.FileExists(WScript.Arguments(1)) Then files.DeleteFile WScript.Arguments(1)
Set app = CreateObject("vtrlk_workbench.Application")
app.Workbooks.Open WScript.Arguments(0)
Set sheet = app.ActiveSheet
Set rt = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
Check "creation", Failure(), 0

reason = "untouched"
Check "search without a host", rt.Search("x", reason), False
Check "reason", Len(reason) > 0 And reason <> "untouched", True
Set rt.ExcelApp = app
rt.Items.CfgFileName = WScript.Arguments(1)
rt.Init
rt.Language.LangFile = "english.lng"
Check "start", Failure(), 0

rt.SearchOptions.UseFilter = True
rt.SearchOptions.CompareMethod = 1
rt.SearchOptions.SearchWords = 2
Check "search", rt.Search("GERMANY", reason), True
Check "reason of a success", reason, ""
Check "a row without a match", sheet.Range("A1").EntireRow.Hidden, True
Check "rows are grouped", rt.Items.RowsIsGrouped, True
Check "search for nothing", rt.Search("no such text", reason), False
Check "text not found", reason, "Text not found"
Check "search without the optional text", rt.Search("germany"), True
Check "show all", rt.Unhide(False, reason), True
Check "first row", sheet.Range("A1").EntireRow.Hidden, False
Check "show all without arguments", rt.Unhide(), True
Check "stop", rt.StopSearch(), True
Check "searching", rt.Searching, False
Check "errors so far", Failure(), 0

rt.SearchOptions.SearchWords = 3
Check "the source of an error", Err.Source, "VTRLKRuntime.clsVTRLKOptions.SearchWords"
Check "an unknown mode", Failure() <> 0, True
rt.SearchOptions = rt.Items
Check "options of another class", Failure() <> 0, True
Set rt.Items = app
Check "a foreign object", Failure() <> 0, True
rt.NoSuchMember
Check "an unknown member", Failure(), 438
rt.Search
Check "too few arguments", Failure() <> 0, True
rt.ExcelApp = 5
Check "a host that is none", Failure() <> 0, True

Set items = rt.Items
Check "identity", items Is rt.Items, True
Set item = items.DefaultItem.Clone("C:\Data\Sales.xls")
Check "name", item.Name, "Sales.xls"
item.StartCol = 2
item.StartRow = 3
item.EndCol = 6
item.EndRow = 200
Check "range", item.SearchRange, "B3:F200"
Check "add", items.Add(item), True
Check "add again", items.Add(item), False
Check "count", items.count, 1
Check "the same profile", items.ByName("SALES.XLS") Is item, True
Check "by position", items.Item(0) Is item, True
Check "no profile", items.ByName("other") Is Nothing, True
Check "no position", items.Item(7) Is Nothing, True
Set other = item.Clone()
other.SelectCol = 4
Set items.ByName("sales.xls") = other
Check "replaced", items.Item(0).SelectCol, 4
item.StartRow = 0
item.EndRow = 0
rt.DetectSearchRange sheet, item
Check "detected", item.EndRow > 1, True
items.RecentItems.Add "berlin"
Check "history", items.RecentItems.Item(0) & items.RecentItems.count, "berlin1"
items.HotKeySearch = "^G"
Check "hotkey", items.HotKeySearch, "^g"
Check "saved", items.CfgSave(), True
items.Remove "Sales.xls"
items.HotKeySearch = "^f"
Check "loaded", items.CfgLoad(), True
Check "as it was", items.HotKeySearch & items.count, "^g1"

Dim accelerator
Check "text", rt.Language.GetText("Menu.Find", "?"), "S&earch..."
Check "text without its mark", rt.Language.GetText("Menu.Find", "?", Empty, accelerator), "Search..."
Check "accelerator", accelerator, "e"
Check "replaced texts", rt.Language.GetText("none", "%1 and %2", Array("a", 2)), "a and 2"
rt.MenuCreate
Dim bar
Set bar = New Ribbon
Set rt.Ribbon = bar
rt.Language.LangFile = "german.lng"
Set rt.Ribbon = Nothing
rt.Language.LangFile = "english.lng"
Check "labels are asked for", bar.Asked, 2
rt.Ribbon = app
Check "a ribbon that is none", Failure(), 438
rt.MenuRemove
rt.ShowSearch
rt.ShowOptions
Check "menu and forms", Failure(), 0
rt.DoStop
Set rt.ExcelApp = Nothing
Check "a host that was released", rt.Search("x"), False
Check "end", Failure(), 0

WScript.Echo checks & " checks, " & failures & " failures"
If checks = 50 And failures = 0 Then WScript.Quit 0
WScript.Quit 1
