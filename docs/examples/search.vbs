' Searches a table and lists the rows that stay visible:
'   cscript //nologo search.vbs table.csv text
Option Explicit

Dim application, sheet, runtime, reason, row
If WScript.Arguments.Count <> 2 Then
  WScript.Echo "usage: search.vbs table.csv text"
  WScript.Quit 2
End If

Set application = CreateObject("vtrlk_workbench.Application")
application.Workbooks.Open WScript.Arguments(0)
Set sheet = application.ActiveSheet

Set runtime = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
Set runtime.ExcelApp = application
runtime.SearchOptions.UseFilter = True
runtime.SearchOptions.CompareMethod = 1

If runtime.Search(WScript.Arguments(1), reason) Then
  For row = 1 To sheet.UsedRange.Rows.Count
    If Not sheet.Cells(row, 1).EntireRow.Hidden Then WScript.Echo row & ": " & sheet.Cells(row, 1).Value
  Next
Else
  WScript.Echo reason
End If
runtime.DoStop
Set runtime.ExcelApp = Nothing
