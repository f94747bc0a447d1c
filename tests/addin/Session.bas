' Reads the workbook; then runs its source with fakes.
Private mobjExcel As Object

Function Excel() As Object
    Set Excel = mobjExcel
End Function

Sub Say(ByVal strText As String)
    Dim intFile As Integer
    intFile = FreeFile
    Open Environ("ROWLARK_LOG") For Append As #intFile
    Print #intFile, strText
    Close #intFile
End Sub

Sub Main()
    On Error GoTo Failed
    ReadWorkbook Environ("ROWLARK_WORKBOOK")
    Set mobjExcel = New Fake
    mobjExcel.ID = "VantrelRLK_Unhide"
    mobjExcel.Tag = "Menu.Unhide|&Show All"
    Play
    StarDesktop.terminate
    Exit Sub
Failed:
    Say "error " & Err.Number & ": " & Err.Description & " in line " & Erl
    StarDesktop.terminate
End Sub

Sub ReadWorkbook(ByVal strUrl As String)
    Dim objBook As Object, objLibrary As Object, varName As Variant
    Dim udtHow(2) As New com.sun.star.beans.PropertyValue
    udtHow(0).Name = "Hidden"
    udtHow(0).Value = True
    udtHow(1).Name = "MacroExecutionMode"
    udtHow(1).Value = com.sun.star.document.MacroExecMode.NEVER_EXECUTE
    udtHow(2).Name = "FilterName"
    udtHow(2).Value = "Calc MS Excel 2007 VBA XML"
    Set objBook = StarDesktop.loadComponentFromURL(strUrl, "_blank", 0, udtHow)
    Say objBook.DocumentProperties.Title & ": " & objBook.DocumentProperties.Description
    Set objLibrary = objBook.BasicLibraries.getByName("VantrelRowlark")
    For Each varName In objLibrary.ElementNames
        Say "module " & varName
    Next
    Say objLibrary.getByName("Rowlark")
    objBook.Close True
End Sub

Sub Play()
    Dim varLabel As Variant
    Say "== Without the library"
    VantrelRLK_RibbonLoaded mobjExcel
    Auto_Open
    Auto_Add
    Say "-- chosen by the user"
    VantrelRLK_ShowSearch
    VantrelRLK_RibbonLabel mobjExcel, varLabel
    Say varLabel
    Say "-- with the library at last"
    mobjExcel.LibraryIsThere = True
    VantrelRLK_ShowSearch
    Say "== A second start"
    Auto_Open
    Auto_Add
    Say "== The ribbon"
    VantrelRLK_RibbonLabel mobjExcel, varLabel
    Say varLabel
    VantrelRLK_RibbonAction mobjExcel
    VantrelRLK_Unhide
    Say "== The end, and a start with a hotkey that is refused"
    Auto_Close
    mobjExcel.RefusedKey = "^f"
    VantrelRLK_ShowSearch
    Auto_Close
    Say "== A start that fails later"
    mobjExcel.MenuFails = True
    VantrelRLK_ShowSearch
    Say "== A second copy"
    mobjExcel.OtherCopy = "vt_rowlark.xla"
    Auto_Open
End Sub
