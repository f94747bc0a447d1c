Attribute VB_Name = "Rowlark"
Option Explicit

' The add-in workbook vt_rowlark.xla: it creates the runtime object when Excel opens it, and forwards the
' macros that menu items and hotkeys run. Bound late, so the same source serves 32-bit and 64-bit Excel and
' needs no reference.

Private Const TITLE As String = "Vantrel Rowlark"

Private mobjRuntime As Object

' Excel opens or closes the add-in.
Sub Auto_Open()
    Dim objRuntime As Object
    Set objRuntime = Runtime()
End Sub

Sub Auto_Close()
    If mobjRuntime Is Nothing Then Exit Sub
    On Error Resume Next
    AssignKey mobjRuntime.Items.HotKeySearch, vbNullString
    AssignKey mobjRuntime.Items.HotKeyUnhide, vbNullString
    mobjRuntime.MenuRemove
    mobjRuntime.DoStop
    Set mobjRuntime.ExcelApp = Nothing
    Set mobjRuntime = Nothing
End Sub

' The user has installed the add-in with the add-in manager.
Sub Auto_Add()
    Forward "OnAddinInstall"
End Sub

Sub VantrelRLK_ShowSearch()
    Forward "ShowSearch"
End Sub

Sub VantrelRLK_Unhide()
    Dim objRuntime As Object
    Dim strErr As String
    Set objRuntime = Runtime()
    If objRuntime Is Nothing Then Exit Sub
    If objRuntime.Unhide(False, strErr) Then Exit Sub
    If Len(strErr) > 0 Then MsgBox strErr, vbExclamation, TITLE
End Sub

Sub VantrelRLK_ShowOptions()
    Forward "ShowOptions"
End Sub

Sub VantrelRLK_CallHelp()
    Forward "CallHelp"
End Sub

Sub VantrelRLK_CallTechSupport()
    Forward "CallTechSupport"
End Sub

Sub VantrelRLK_ShowAbout()
    Forward "About"
End Sub

Private Sub Forward(ByVal strMethod As String)
    Dim objRuntime As Object
    Set objRuntime = Runtime()
    If Not objRuntime Is Nothing Then CallByName objRuntime, strMethod, VbMethod
End Sub

' The runtime object, created when Excel opens the add-in. Variables are lost when a macro is stopped in the
' debugger; then the next macro creates it anew.
Private Function Runtime() As Object
    If mobjRuntime Is Nothing Then Start
    Set Runtime = mobjRuntime
End Function

Private Sub Start()
    On Error GoTo Failed
    Set mobjRuntime = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
    Set mobjRuntime.ExcelApp = Application
    mobjRuntime.Init
    mobjRuntime.MenuCreate
    AssignKey mobjRuntime.Items.HotKeySearch, "VantrelRLK_ShowSearch"
    AssignKey mobjRuntime.Items.HotKeyUnhide, "VantrelRLK_Unhide"
    Exit Sub
Failed:
    MsgBox Err.Description, vbCritical, TITLE
    Set mobjRuntime = Nothing
End Sub

' Without a macro the key means again what it means to Excel.
Private Sub AssignKey(ByVal strKey As String, ByVal strMacro As String)
    If Len(strKey) = 0 Then Exit Sub
    If Len(strMacro) = 0 Then
        Application.OnKey strKey
    Else
        Application.OnKey strKey, strMacro
    End If
End Sub
