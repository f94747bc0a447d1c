' What the add-in uses of Excel (application, workbook, menu bar, control of the ribbon) and of the library (runtime
' object, items, language) in one object, which tells the log what is done to it.
Public LibraryIsThere As Boolean
Public MenuFails As Boolean
Public OtherCopy As String
Public RefusedKey As String
Public Tag As String
Public ID As String

Public Function NewRuntime(ByVal strClass As String) As Object
    If Not LibraryIsThere Then Err.Raise 429, , "Can not create " & strClass
    Set NewRuntime = Me
End Function

Public Sub OnKey(ByVal Key As String, Optional ByVal Procedure As Variant)
    If Key = RefusedKey Then Err.Raise 1004, , "OnKey failed"
    If IsMissing(Procedure) Then Procedure = "is Excel's"
    Say "key " & Key & " " & Procedure
End Sub

Public Sub Run(ByVal Macro As String): Say "run " & Macro: End Sub

Public Function Workbooks(ByVal strName As String) As Object
    If strName <> OtherCopy Then Err.Raise 9, , "Subscript out of range"
    Set Workbooks = Me
End Function

Public Property Get BookName() As String: BookName = "vt_rowlark.xlam": End Property
Public Property Get FullName() As String: FullName = "C:\" & OtherCopy: End Property
Public Sub BookClose(ByVal SaveChanges As Boolean): Say "close " & SaveChanges: End Sub
Public Function CommandBars(ByVal strName As String) As Object: Set CommandBars = Me: End Function
Public Function FindControl(ByVal Tag As String) As Object: Set FindControl = Me: End Function
Public Sub Delete(): Say "menu deleted": End Sub
Public Property Set ExcelApp(ByVal obj As Object): Say "ExcelApp " & IIf(obj Is Nothing, "gone", "set"): End Property
Public Property Set Ribbon(ByVal obj As Object): Say "Ribbon " & IIf(obj Is Nothing, "gone", "set"): End Property
Public Property Get Items() As Object: Set Items = Me: End Property
Public Property Get HotKeySearch() As String: HotKeySearch = "^f": End Property
Public Property Get HotKeyUnhide() As String: HotKeyUnhide = "+^f": End Property
Public Property Get Language() As Object: Set Language = Me: End Property

Public Function GetText(ByVal strKey As String, ByVal strDefault As String, Optional ByVal varValue As Variant) As String
    GetText = IIf(IsMissing(varValue), "&Text of " & strKey, Replace(strDefault, "%1", varValue))
End Function

Public Function Unhide(ByVal CallFromSearch As Boolean, ByRef strErr As String) As Boolean: strErr = "Protected": End Function
Public Sub Init(): Say "Init": End Sub
Public Sub MenuRemove(): Say "MenuRemove": End Sub
Public Sub DoStop(): Say "DoStop": End Sub
Public Sub ShowSearch(): Say "ShowSearch": End Sub
Public Sub OnAddinInstall(): Say "OnAddinInstall": End Sub

Public Sub MenuCreate()
    Say "MenuCreate"
    If MenuFails Then Err.Raise 5, , "No menu"
End Sub
