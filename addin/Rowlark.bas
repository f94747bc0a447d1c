Attribute VB_Name = "Rowlark"
Option Explicit

' The add-in workbook vt_rowlark.xla: it creates the runtime object when Excel opens it, and forwards the
' macros that menu items and hotkeys run. Bound late, so the same source serves 32-bit and 64-bit Excel and
' needs no reference.

Private Const TITLE As String = "Vantrel Rowlark"
' What the library marks its menu with.
Private Const MENU_TAG As String = "VantrelRLK"
' The error of CreateObject where a class is not registered.
Private Const CANNOT_CREATE As Long = 429

Private mobjRuntime As Object
Private mblnFailureTold As Boolean

' Excel opens or closes the add-in.
Sub Auto_Open()
    Dim objRuntime As Object
    Set objRuntime = Runtime()
End Sub

Sub Auto_Close()
    On Error Resume Next
    If mobjRuntime Is Nothing Then Exit Sub
    AssignKey mobjRuntime.Items.HotKeySearch, vbNullString
    AssignKey mobjRuntime.Items.HotKeyUnhide, vbNullString
    Release
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
    On Error GoTo Failed
    Set objRuntime = Runtime()
    If objRuntime Is Nothing Then Exit Sub
    If objRuntime.Unhide(False, strErr) Then Exit Sub
    If Len(strErr) > 0 Then MsgBox strErr, vbExclamation, TITLE
    Exit Sub
Failed:
    MsgBox Err.Description, vbExclamation, TITLE
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
    On Error GoTo Failed
    Set objRuntime = Runtime()
    If Not objRuntime Is Nothing Then CallByName objRuntime, strMethod, VbMethod
    Exit Sub
Failed:
    MsgBox Err.Description, vbExclamation, TITLE
End Sub

' The runtime object, created when Excel opens the add-in. Variables are lost when a macro is stopped in the
' debugger; then the next macro creates it anew. Nothing when it can not be created.
Private Function Runtime() As Object
    If mobjRuntime Is Nothing Then Start
    Set Runtime = mobjRuntime
End Function

Private Sub Start()
    Dim strWhy As String
    On Error GoTo Failed
    Set mobjRuntime = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
    Set mobjRuntime.ExcelApp = Application
    mobjRuntime.Init
    mobjRuntime.MenuCreate
    AssignKey mobjRuntime.Items.HotKeySearch, "VantrelRLK_ShowSearch"
    AssignKey mobjRuntime.Items.HotKeyUnhide, "VantrelRLK_Unhide"
    Exit Sub
Failed:
    strWhy = Err.Description
    If Err.Number = CANNOT_CREATE Then strWhy = NotRegistered()
    Release
    If mblnFailureTold Then Exit Sub
    mblnFailureTold = True
    MsgBox strWhy, vbCritical, TITLE
End Sub

Private Function NotRegistered() As String
    Dim strBits As String
    #If Win64 Then
        strBits = "64"
    #Else
        strBits = "32"
    #End If
    NotRegistered = "The add-in's library is not registered for " & strBits & "-bit Excel." & _
        vbCrLf & vbCrLf & _
        "To register it, close Excel and run in the folder of the " & strBits & "-bit library," & vbCrLf & _
        "as an administrator: regsvr32 vtrlk_runtime.dll" & vbCrLf & _
        "or for yourself alone: regsvr32 /n /i:user vtrlk_runtime.dll"
End Function

' Lets go of the runtime object and of the menu, also of one that an earlier run of Excel has left.
Private Sub Release()
    On Error Resume Next
    mobjRuntime.MenuRemove
    mobjRuntime.DoStop
    Set mobjRuntime.ExcelApp = Nothing
    Set mobjRuntime = Nothing
    Application.CommandBars("Worksheet Menu Bar").FindControl(Tag:=MENU_TAG).Delete
End Sub

' Without a macro the key means again what it means to Excel. A key that Excel refuses is no hotkey.
Private Sub AssignKey(ByVal strKey As String, ByVal strMacro As String)
    On Error Resume Next
    If Len(strKey) = 0 Then Exit Sub
    If Len(strMacro) = 0 Then
        Application.OnKey strKey
    Else
        Application.OnKey strKey, strMacro
    End If
End Sub
