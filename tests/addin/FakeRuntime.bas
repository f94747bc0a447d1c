' The runtime object, its items and its language in one.
Public Property Set ExcelApp(ByVal objApplication As Object)
    Say "ExcelApp " & IIf(objApplication Is Nothing, "gone", "set")
End Property

Public Property Set Ribbon(ByVal objRibbon As Object)
    Say "Ribbon " & IIf(objRibbon Is Nothing, "gone", "set")
End Property

Public Property Get Items() As Object
    Set Items = Me
End Property

Public Property Get HotKeySearch() As String
    HotKeySearch = "^f"
End Property

Public Property Get HotKeyUnhide() As String
    HotKeyUnhide = "+^f"
End Property

Public Property Get Language() As Object
    Set Language = Me
End Property

Public Function GetText(ByVal strKey As String, ByVal strDefault As String, Optional ByVal varValue As Variant) As String
    GetText = IIf(IsMissing(varValue), "&Text of " & strKey, Replace(strDefault, "%1", varValue))
End Function

Public Function Unhide(ByVal CallFromSearch As Boolean, ByRef strErr As String) As Boolean
    strErr = "Protected"
End Function

Public Sub Init()
    Say "Init"
End Sub

Public Sub MenuCreate()
    Say "MenuCreate"
End Sub

Public Sub MenuRemove()
    Say "MenuRemove"
End Sub

Public Sub DoStop()
    Say "DoStop"
End Sub

Public Sub ShowSearch()
    Say "ShowSearch"
End Sub

Public Sub OnAddinInstall()
    Say "OnAddinInstall"
End Sub
