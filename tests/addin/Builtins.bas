
' Instead of what Excel and Visual Basic have.
Function Application() As Object
    Set Application = Excel()
End Function

Function ThisWorkbook() As Object
    Set ThisWorkbook = Excel()
End Function

Function CreateObject(ByVal strClass As String) As Object
    Set CreateObject = Excel().NewRuntime(strClass)
End Function

Function MsgBox(ByVal strText As String, ByVal lngStyle As Long, ByVal strTitle As String) As Long
    Say "message " & lngStyle & " " & strTitle & ": " & Join(Split(strText, vbCrLf), "|")
End Function
