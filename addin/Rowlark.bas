Attribute VB_Name = "Rowlark"
Option Explicit

' The add-in workbook vt_rowlark: it creates the runtime object when Excel opens it, and forwards the macros
' that menu items, hotkeys and the ribbon run. Bound late, so the same source serves 32-bit and 64-bit Excel
' and needs no reference.

Private Const TITLE As String = "Vantrel Rowlark"
' What the library marks its menu with.
Private Const MENU_TAG As String = "VantrelRLK"

Private mobjRuntime As Object
Private mobjRibbon As Object
Private mblnFailureTold As Boolean

' Excel opens or closes the add-in.
Sub Auto_Open()
    Dim objOther As Object
    Set objOther = OtherCopy()
    If objOther Is Nothing Then
        StartUnlessFailed
        Exit Sub
    End If
    MsgBox "Rowlark is open already:" & vbCrLf & objOther.FullName & vbCrLf & vbCrLf & _
        "Excel has opened a second copy, which is closed again now:" & vbCrLf & ThisWorkbook.FullName & vbCrLf & vbCrLf & _
        "To open only one from now on, choose File, Options, Add-ins, Go... and switch the other one off.", _
        vbExclamation, TITLE
    ThisWorkbook.Close False
End Sub

Sub Auto_Close()
    On Error Resume Next
    If mobjRuntime Is Nothing Then Exit Sub
    ReleaseKey mobjRuntime.Items.HotKeySearch
    ReleaseKey mobjRuntime.Items.HotKeyUnhide
    Release
End Sub

' The user has installed the add-in with the add-in manager, which opens it as well.
Sub Auto_Add()
    StartUnlessFailed
    If Not mobjRuntime Is Nothing Then Forward "OnAddinInstall"
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

' Excel 2007 and later have read what the add-in adds to the ribbon; that may be before Auto_Open.
Sub VantrelRLK_RibbonLoaded(ByVal objRibbon As Object)
    Set mobjRibbon = objRibbon
    HandOverRibbon
End Sub

' A label of the ribbon: English until the runtime object knows the user's language.
Sub VantrelRLK_RibbonLabel(ByVal objControl As Object, ByRef varLabel As Variant)
    Dim strText() As String
    On Error Resume Next
    strText = Split(objControl.Tag, "|")
    If Not mobjRuntime Is Nothing Then strText(1) = mobjRuntime.Language.GetText(strText(0), strText(1))
    varLabel = Replace(strText(1), "&", vbNullString)
End Sub

Sub VantrelRLK_RibbonAction(ByVal objControl As Object)
    Application.Run "'" & Replace(ThisWorkbook.Name, "'", "''") & "'!" & objControl.ID
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
' debugger; then the next macro creates it anew. Nothing, and the user knows why, when it can not be created.
Private Function Runtime() As Object
    If mobjRuntime Is Nothing Then Start
    Set Runtime = mobjRuntime
End Function

' Excel's own calls come in pairs, and a failure is told once; the user's are answered each time.
Private Sub StartUnlessFailed()
    If mobjRuntime Is Nothing And Not mblnFailureTold Then Start
End Sub

Private Sub Start()
    Dim strWhy As String
    On Error GoTo Failed
    Set mobjRuntime = CreateObject("vtrlk_runtime.clsVTRLKRuntime")
    Set mobjRuntime.ExcelApp = Application
    mobjRuntime.Init
    mobjRuntime.MenuCreate
    AssignKeys
    HandOverRibbon
    Exit Sub
Failed:
    strWhy = Err.Description
    If mobjRuntime Is Nothing Then strWhy = NoLibrary(strWhy)
    Release
    mblnFailureTold = True
    MsgBox strWhy, vbCritical, TITLE
End Sub

Private Function NoLibrary(ByVal strWhy As String) As String
    Dim strBits As String
    #If Win64 Then
        strBits = "64"
    #Else
        strBits = "32"
    #End If
    NoLibrary = "The add-in's library is missing or not registered for " & strBits & "-bit Excel." & vbCrLf & _
        "(" & strWhy & ")" & vbCrLf & vbCrLf & _
        "Run Rowlark's set-up again; or run in the folder of the " & strBits & "-bit library" & vbCrLf & _
        "for yourself: regsvr32 /n /i:user vtrlk_runtime.dll" & vbCrLf & _
        "or for all users, as an administrator: regsvr32 vtrlk_runtime.dll"
End Function

' Another open file of this add-in, such as one of an earlier version. Two would take menu and hotkeys from
' each other.
Private Function OtherCopy() As Object
    Dim varName As Variant
    On Error Resume Next
    For Each varName In Array("vt_rowlark.xla", "vt_rowlark.xlam")
        If StrComp(varName, ThisWorkbook.Name, vbTextCompare) <> 0 Then
            If OtherCopy Is Nothing Then Set OtherCopy = Application.Workbooks(varName)
        End If
    Next
End Function

' Lets go of the runtime object and of the menu, also of one that an earlier run of Excel has left.
Private Sub Release()
    On Error Resume Next
    mobjRuntime.MenuRemove
    mobjRuntime.DoStop
    Set mobjRuntime.Ribbon = Nothing
    Set mobjRuntime.ExcelApp = Nothing
    Set mobjRuntime = Nothing
    Application.CommandBars("Worksheet Menu Bar").FindControl(Tag:=MENU_TAG).Delete
End Sub

' From now on the runtime object has the labels asked for anew with each new language.
Private Sub HandOverRibbon()
    On Error Resume Next
    If Not (mobjRuntime Is Nothing Or mobjRibbon Is Nothing) Then Set mobjRuntime.Ribbon = mobjRibbon
End Sub

' The rest of the add-in works without a hotkey that Excel refuses.
Private Sub AssignKeys()
    Dim strRefused As String
    AssignKey mobjRuntime.Items.HotKeySearch, "VantrelRLK_ShowSearch", strRefused
    AssignKey mobjRuntime.Items.HotKeyUnhide, "VantrelRLK_Unhide", strRefused
    If Len(strRefused) = 0 Then Exit Sub
    MsgBox mobjRuntime.Language.GetText("Err.HotKey", "Excel refuses the hotkey %1. Choose another one in the options.", _
        strRefused), vbExclamation, TITLE
End Sub

Private Sub AssignKey(ByVal strKey As String, ByVal strMacro As String, ByRef strRefused As String)
    If Len(strKey) = 0 Then Exit Sub
    On Error Resume Next
    Application.OnKey strKey, strMacro
    If Err.Number <> 0 Then strRefused = strRefused & IIf(Len(strRefused) > 0, ", ", vbNullString) & strKey
End Sub

' Without a macro the key means again what it means to Excel.
Private Sub ReleaseKey(ByVal strKey As String)
    If Len(strKey) > 0 Then Application.OnKey strKey
End Sub
