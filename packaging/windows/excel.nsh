; Switches the add-in on and off in Excel.
;
; For one user: each version of Excel has a list of the add-ins that it opens, the values OPEN, OPEN1, OPEN2 ... of its
; key Options. It reads them up to the first number that is missing, and writes them anew when it ends. Add-ins that are
; known but off are the names of values of the key "Add-in Manager".
;
; For everybody: those lists belong to single users, of whom a set-up reaches few or none. But Excel opens what lies in
; the folder XLSTART of its program folder for everybody, so a copy of the workbook goes there. Where copies went is
; kept as the names of the values of STARTUP_KEY.
!define FIRST_EXCEL 12 ; Excel 2007
!define LAST_EXCEL 30  ; later than any
!define LAST_ENTRY 255
!define STARTUP_KEY "${PRODUCT_KEY}\XLSTART"

!define HKCU_HANDLE -2147483647 ; HKEY_CURRENT_USER
!define ANY_TYPE 0x1000FFFF     ; RRF_RT_ANY | RRF_NOEXPAND

!macro ExcelFunctions UN

; The name of the entry with the number $R0, as $R1.
Function ${UN}EntryName
  StrCpy $R1 OPEN
  ${If} $R0 > 0
    StrCpy $R1 "OPEN$R0"
  ${EndIf}
FunctionEnd

; $2 is 0 where the key $R8 has the entry $R1; $3 its type and $4 its size then.
Function ${UN}LookAtEntry
  System::Call "advapi32::RegGetValueW(p ${HKCU_HANDLE}, w R8, w R1, i ${ANY_TYPE}, *i .r3, p 0, *i .r4) i .r2"
FunctionEnd

; Gives the entry $R1, which LookAtEntry has found, the number $R0, whatever its type is.
Function ${UN}Renumber
  StrCpy $R4 $R1
  Call ${UN}EntryName
  System::Alloc $4
  Pop $5
  System::Call "advapi32::RegGetValueW(p ${HKCU_HANDLE}, w R8, w R4, i ${ANY_TYPE}, *i .r3, p r5, *i r4r4) i .r2"
  ${If} $2 = 0
    System::Call "advapi32::RegSetKeyValueW(p ${HKCU_HANDLE}, w R8, w R1, i r3, p r5, i r4) i .r2"
    ${If} $2 = 0
      DeleteRegValue HKCU $R8 $R4
    ${EndIf}
  ${EndIf}
  System::Free $5
FunctionEnd

; Takes the add-ins with $R5 in their names off the list in the key $R8. Those behind them move up.
Function ${UN}TakeOffList
  StrCpy $R2 "" ; the next free number, from the first of them on
  ${For} $R3 0 ${LAST_ENTRY}
    StrCpy $R0 $R3
    Call ${UN}EntryName
    Call ${UN}LookAtEntry
    ${If} $2 <> 0
      ${Continue}
    ${EndIf}
    ReadRegStr $0 HKCU $R8 $R1
    System::Call 'shlwapi::StrStrIW(w r0, w R5) p .r0'
    ${If} $0 P<> 0
      DeleteRegValue HKCU $R8 $R1
      ${If} $R2 == ""
        StrCpy $R2 $R3
      ${EndIf}
    ${ElseIf} $R2 != ""
      StrCpy $R0 $R2
      Call ${UN}Renumber
      IntOp $R2 $R2 + 1
    ${EndIf}
  ${Next}
FunctionEnd

; Takes the add-ins with $R5 in their names out of Excel $R9, which need not be there.
Function ${UN}SwitchOffForUser
  StrCpy $R7 "Software\Microsoft\Office\$R9.0\Excel"
  StrCpy $R8 "$R7\Options"
  Call ${UN}TakeOffList
  DeleteRegValue HKCU "$R7\Add-in Manager" "$INSTDIR\${WORKBOOK}"
FunctionEnd

; Switches the add-in off in every Excel.
Function ${UN}SwitchOff
  ${If} $ForEverybody = 0
    StrCpy $R5 "$INSTDIR\${WORKBOOK}"
    ${For} $R9 ${FIRST_EXCEL} ${LAST_EXCEL}
      Call ${UN}SwitchOffForUser
      ; Where there has never been an Excel the keys are set-up's.
      DeleteRegKey /ifempty HKCU $R8
      DeleteRegKey /ifempty HKCU "$R7\Add-in Manager"
      DeleteRegKey /ifempty HKCU $R7
      DeleteRegKey /ifempty HKCU "Software\Microsoft\Office\$R9.0"
    ${Next}
  ${Else}
    ${For} $R3 0 ${LAST_ENTRY}
      EnumRegValue $0 HKLM "${STARTUP_KEY}" $R3
      ${If} $0 == ""
        ${Break}
      ${EndIf}
      Delete $0
    ${Next}
    DeleteRegKey HKLM "${STARTUP_KEY}"
  ${EndIf}
FunctionEnd

; $1 becomes 1 where a copy for everybody is open in an Excel.
Function ${UN}TouchStartUpCopies
  ${For} $R3 0 ${LAST_ENTRY}
    EnumRegValue $2 HKLM "${STARTUP_KEY}" $R3
    ${If} $2 == ""
      ${Break}
    ${EndIf}
    Push $2
    Call ${UN}TouchFile
  ${Next}
FunctionEnd

; $1 becomes 1 where another program has the file open whose name lies on the stack.
Function ${UN}TouchFile
  Exch $0
  ${If} ${FileExists} $0
    ClearErrors
    FileOpen $0 $0 a
    ${If} ${Errors}
      StrCpy $1 1
    ${Else}
      FileClose $0
    ${EndIf}
  ${EndIf}
  Pop $0
FunctionEnd

!macroend

; $0 becomes the program folder of Excel $R9 that stands below the key SOFTWARE, unless there is one already.
!macro ReadProgramFolder VIEW SOFTWARE
  ${If} $0 == ""
    SetRegView ${VIEW}
    ReadRegStr $0 HKLM "${SOFTWARE}\Microsoft\Office\$R9.0\Excel\InstallRoot" "Path"
  ${EndIf}
!macroend

; Excel has 32 or 64 bits; one that was streamed to the computer may have its keys in a place of their own.
!macro FindProgramFolder
  StrCpy $0 ""
  ${If} ${RunningX64}
    !insertmacro ReadProgramFolder 64 "SOFTWARE"
    !insertmacro ReadProgramFolder 64 "SOFTWARE\Microsoft\Office\ClickToRun\REGISTRY\MACHINE\Software"
  ${EndIf}
  !insertmacro ReadProgramFolder 32 "SOFTWARE"
  !insertmacro UseMainView
!macroend

; Switches the add-in on in every Excel; $ExcelFound tells whether there was one. A copy that the user has switched on
; elsewhere goes off the list: Excel opens no two workbooks of one name.
Function SwitchOn
  StrCpy $ExcelFound 0
  StrCpy $R5 "${ANY_WORKBOOK}"
  ${For} $R9 ${FIRST_EXCEL} ${LAST_EXCEL}
    Call SwitchOffForUser
    !insertmacro FindProgramFolder
    ${If} $ForEverybody = 0
      ${If} $0 == ""
        ; One that the user has started before, wherever it is.
        EnumRegKey $0 HKCU "Software\Microsoft\Office\$R9.0\Excel" 0
      ${EndIf}
      ${If} $0 != ""
        ${For} $R3 0 ${LAST_ENTRY}
          StrCpy $R0 $R3
          Call EntryName
          Call LookAtEntry
          ${If} $2 <> 0
            WriteRegStr HKCU $R8 $R1 '/R "$INSTDIR\${WORKBOOK}"'
            StrCpy $ExcelFound 1
            ${Break}
          ${EndIf}
        ${Next}
      ${EndIf}
    ${ElseIf} $0 != ""
      StrCpy $1 $0 1 -1
      ${If} $1 != "\"
        StrCpy $0 "$0\"
      ${EndIf}
      ${If} ${FileExists} "$0XLSTART\*.*" ; not of an Excel that has left its keys behind
        ClearErrors
        CopyFiles /SILENT "$INSTDIR\${WORKBOOK}" "$0XLSTART\${WORKBOOK}"
        ${IfNot} ${Errors}
          WriteRegStr HKLM "${STARTUP_KEY}" "$0XLSTART\${WORKBOOK}" ""
          StrCpy $ExcelFound 1
        ${EndIf}
      ${EndIf}
    ${EndIf}
  ${Next}
FunctionEnd
