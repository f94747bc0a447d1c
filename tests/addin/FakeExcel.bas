' What the add-in uses of Excel: the application, its workbook, its menu bar and a control of the ribbon in one.
' Tells the log what is done to it.
Public LibraryIsThere As Boolean
Public OtherCopy As String
Public RefusedKey As String
Public Tag As String
Public ID As String

Public Function NewRuntime(ByVal strClass As String) As Object
    If Not LibraryIsThere Then Err.Raise 429, , "Can not create " & strClass
    Set NewRuntime = New FakeRuntime
End Function

Public Sub OnKey(ByVal Key As String, Optional ByVal Procedure As Variant)
    If Key = RefusedKey Then Err.Raise 1004, , "OnKey failed"
    If IsMissing(Procedure) Then Procedure = "is Excel's"
    Say "key " & Key & " " & Procedure
End Sub

Public Sub Run(ByVal Macro As String)
    Say "run " & Macro
End Sub

Public Function Workbooks(ByVal strName As String) As Object
    If strName <> OtherCopy Then Err.Raise 9, , "Subscript out of range"
    Set Workbooks = Me
End Function

Public Property Get BookName() As String
    BookName = "vt_rowlark.xlam"
End Property

Public Property Get FullName() As String
    FullName = "C:\" & OtherCopy
End Property

Public Sub CloseBook(ByVal SaveChanges As Boolean)
    Say "close " & SaveChanges
End Sub

Public Function CommandBars(ByVal strName As String) As Object
    Set CommandBars = Me
End Function

Public Function FindControl(ByVal Tag As String) As Object
    Set FindControl = Me
End Function

Public Sub Delete()
    Say "menu deleted"
End Sub
