; The set-up program. make-setup.sh defines VERSION, STAGE (the folder of the files to install), CONTENTS (what
; generate.py has written), ICON, SIDE (a picture), OUTPUT and TARGET, and SIGN where files are to be signed.
;
; In NSIS an uninstaller has only functions whose names begin with "un.", so what both do is a macro.
Unicode true
Target ${TARGET}
ManifestDPIAware true
ManifestSupportedOS all
RequestExecutionLevel user ; for everybody it is started once more, with more rights
SetCompressor /SOLID lzma
CRCCheck force
SetOverwrite try ; what can not be written raises the error flag
!pragma warning disable 6012 ; of the branches of what is known when a 64-bit set-up is made

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh
!include WinVer.nsh
!include WordFunc.nsh
!include x64.nsh
!include "${CONTENTS}"

!define PRODUCT "Vantrel Rowlark"
!define PUBLISHER "Vantrel"
!define WEB_SITE "https://rowlark.example.com"
!define WORKBOOK "vt_rowlark.xlam"
!define ANY_WORKBOOK "vt_rowlark.xla" ; what the names of all versions have in common
!define PRODUCT_KEY "SOFTWARE\Vantrel\Office Addins\Rowlark\1.0"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Vantrel Rowlark"
!define CLASSES "Software\Classes"
!define PROGRAM_ID "vtrlk_runtime.clsVTRLKRuntime"

; Exit statuses; 1 (the user has cancelled) and 2 (an error) are those of NSIS.
!define EXIT_ERROR 2
!define EXIT_NEWER 3
!define EXIT_IN_USE 4
!define EXIT_RIGHTS 5
!define EXIT_USAGE 6
!define EXIT_OTHER_SCOPE 7
!define EXIT_SYSTEM 8

Name "${PRODUCT}"
BrandingText "${PRODUCT} ${VERSION}"
OutFile "${OUTPUT}"
VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
VIAddVersionKey /LANG=0 "CompanyName" "${PUBLISHER}"
VIAddVersionKey /LANG=0 "FileDescription" "${PRODUCT} set-up"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "${PUBLISHER}"
VIAddVersionKey /LANG=0 "ProductName" "${PRODUCT}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
!ifdef SIGN
  !uninstfinalize '${SIGN} "%1"' = 0
  !finalize '${SIGN} "%1"' = 0
!endif

Var ForEverybody   ; 1 or 0
Var ScopeKnown     ; 1: by a switch, or because it is installed so; nobody is asked
Var Installed      ; the version that is there; empty for none
Var ExcelFound     ; 1 when there was an Excel to switch the add-in on in
Var FinishText
Var RemoveSettings ; 1 or 0
Var Replacing      ; 1: the uninstaller makes room for another version
Var ForMe          ; the button of the page
Var SettingsBox

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${SIDE}"
!define MUI_ABORTWARNING
!define MUI_LANGDLL_ALLLANGUAGES
!insertmacro MUI_PAGE_WELCOME
Page custom AskScope ScopeAnswered
!insertmacro MUI_PAGE_INSTFILES
!define MUI_FINISHPAGE_TEXT "$FinishText"
!insertmacro MUI_PAGE_FINISH
UninstPage custom un.AskSettings un.SettingsAnswered
!insertmacro MUI_UNPAGE_INSTFILES

; The languages of set-up, by NSIS's name and that of the language file; the first for whom no other fits.
!macro ForEachLanguage ACTION
  !insertmacro "${ACTION}" English english
  !insertmacro "${ACTION}" French french
  !insertmacro "${ACTION}" German german
  !insertmacro "${ACTION}" Polish polish
  !insertmacro "${ACTION}" Russian russian
  !insertmacro "${ACTION}" Spanish spanish
!macroend
!macro AddLanguage NAME FILE
  !insertmacro MUI_LANGUAGE ${NAME}
  LangString LanguageFile ${LANG_${NAME}} "${FILE}"
  !include "texts/${FILE}.nsh"
!macroend
!macro Text NAME TEXT
  LangString ${NAME} ${LANGUAGE_OF_TEXTS} "${TEXT}"
!macroend
!insertmacro ForEachLanguage AddLanguage
!insertmacro MUI_RESERVEFILE_LANGDLL

; Ends with a message, which shows where set-up is not silent.
!macro Fail STATUS TEXT
  MessageBox MB_OK|MB_ICONSTOP "${TEXT}" /SD IDOK
  SetErrorLevel ${STATUS}
  Quit
!macroend
!define Fail "!insertmacro Fail"

; The keys of 64-bit programs, where there are such programs. Classes have keys for both.
!macro UseMainView
  ${If} ${RunningX64}
    SetRegView 64
  ${Else}
    SetRegView 32
  ${EndIf}
!macroend

; Turns to the keys and the folder of the scope. Both folders are writable for nobody else.
!macro EnterScope
  !insertmacro UseMainView
  ${If} $ForEverybody = 0
    SetShellVarContext current
    StrCpy $INSTDIR "$LOCALAPPDATA\Programs\${PRODUCT}"
  ${ElseIf} ${RunningX64}
    SetShellVarContext all
    StrCpy $INSTDIR "$PROGRAMFILES64\${PRODUCT}"
  ${Else}
    SetShellVarContext all
    StrCpy $INSTDIR "$PROGRAMFILES32\${PRODUCT}"
  ${EndIf}
!macroend

; $0 becomes Admin for who may write where everybody reads.
!macro AskRights
  UserInfo::GetAccountType
  Pop $0
!macroend

; $LANGUAGE becomes the one whose file is called $0; $1 becomes 1 when there is one.
!macro SpeakIfNamed NAME FILE
  ${If} $0 == "${FILE}"
    StrCpy $LANGUAGE ${LANG_${NAME}}
    StrCpy $1 1
  ${EndIf}
!macroend
!macro SpeakLanguageOfFile
  StrCpy $1 0
  !insertmacro ForEachLanguage SpeakIfNamed
!macroend

; The language that set-up was last run in.
!macro SpeakLanguageOfSetup
  !insertmacro UseMainView
  ReadRegStr $0 HKLM "${PRODUCT_KEY}" "SetupLanguage"
  ${If} $0 == ""
    ReadRegStr $0 HKCU "${PRODUCT_KEY}" "SetupLanguage"
  ${EndIf}
  !insertmacro SpeakLanguageOfFile
!macroend

!macro ForEachFile ACTION
  !insertmacro ForEachCommonFile ${ACTION}
  !insertmacro ForEachX86File ${ACTION}
  ${If} ${RunningX64}
    !insertmacro ForEachX64File ${ACTION}
  ${EndIf}
!macroend
!macro InstallFile NAME
  File "/oname=$INSTDIR\${NAME}" "${STAGE}/${NAME}"
!macroend
!macro RemoveFile NAME
  Delete "$INSTDIR\${NAME}"
!macroend
!macro TouchFile NAME
  Push "$INSTDIR\${NAME}"
  Call ${UN}TouchFile
!macroend

; Asks until our files are free, and no Excel runs: when it ends it would write its list of add-ins as it knows it.
!macro WaitUntilFree UN
  ${Do}
    StrCpy $1 0
    !insertmacro ForEachFile TouchFile
    ${If} $ForEverybody = 1
      Call ${UN}TouchStartUpCopies
    ${EndIf}
    ${If} $Replacing <> 1
      FindWindow $0 "XLMAIN"
      ${If} $0 <> 0
        StrCpy $1 1
      ${EndIf}
    ${EndIf}
    ${If} $1 = 0
      ${Break}
    ${EndIf}
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(InUse)" /SD IDCANCEL IDCANCEL`
      SetErrorLevel ${EXIT_IN_USE}
      Quit
    ${EndIf}
  ${Loop}
!macroend

!include excel.nsh
!include registration.nsh
!insertmacro ExcelFunctions ""
!insertmacro ExcelFunctions "un."

Function .onInit
  ${IfNot} ${AtLeastWin7}
    ${Fail} ${EXIT_SYSTEM} "$(NeedsWindows7)"
  ${EndIf}
  ${If} $INSTDIR != ""
    ${Fail} ${EXIT_USAGE} "$(FolderIsFixed)"
  ${EndIf}

  ${GetParameters} $R0
  !insertmacro SpeakLanguageOfSetup
  ClearErrors
  ${GetOptions} $R0 "/Language=" $0
  ${IfNot} ${Errors}
    !insertmacro SpeakLanguageOfFile
    ${If} $1 = 0
      ${Fail} ${EXIT_USAGE} "$(NoSuchLanguage)"
    ${EndIf}
  ${ElseIfNot} ${Silent}
    !insertmacro MUI_LANGDLL_DISPLAY
  ${EndIf}

  StrCpy $ForEverybody 0
  StrCpy $ScopeKnown 1
  ClearErrors
  ${GetOptions} $R0 "/AllUsers" $0
  ${IfNot} ${Errors}
    StrCpy $ForEverybody 1
  ${Else}
    ClearErrors
    ${GetOptions} $R0 "/CurrentUser" $0
    ${If} ${Errors}
      ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "DisplayVersion"
      ReadRegStr $1 HKCU "${UNINSTALL_KEY}" "DisplayVersion"
      ${If} $0 != ""
        StrCpy $ForEverybody 1
      ${ElseIf} $1 == ""
        StrCpy $ScopeKnown 0
      ${EndIf}
    ${EndIf}
  ${EndIf}
  ${If} ${Silent}
    Call Prepare
  ${EndIf}
FunctionEnd

; Looks whether this version can be set up in this scope.
Function Prepare
  !insertmacro EnterScope
  ${If} $ForEverybody = 1
    ReadRegStr $0 HKCU "${UNINSTALL_KEY}" "DisplayVersion"
    ${If} $0 != ""
      ${Fail} ${EXIT_OTHER_SCOPE} "$(InstalledForUser)"
    ${EndIf}
  ${Else}
    ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "DisplayVersion"
    ${If} $0 != ""
      ${Fail} ${EXIT_OTHER_SCOPE} "$(InstalledForEverybody)"
    ${EndIf}
  ${EndIf}
  ReadRegStr $Installed SHCTX "${UNINSTALL_KEY}" "DisplayVersion"
  ${If} $Installed != ""
    ${VersionCompare} "$Installed" "${VERSION}" $0
    ${If} $0 = 1
      ${Fail} ${EXIT_NEWER} "$(NewerInstalled)"
    ${EndIf}
  ${EndIf}
  ${If} $ForEverybody = 1
    !insertmacro AskRights
    ${If} $0 != "Admin"
      ${If} ${Silent}
        SetErrorLevel ${EXIT_RIGHTS}
        Quit
      ${EndIf}
      ClearErrors
      ExecShell "runas" "$EXEPATH" "/AllUsers /Language=$(LanguageFile)"
      ${If} ${Errors}
        ${Fail} ${EXIT_RIGHTS} "$(NeedsRights)"
      ${EndIf}
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd

Function AskScope
  ${If} $ScopeKnown = 1
    Call Prepare
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "$(ScopeTitle)" "$(ScopeQuestion)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateFirstRadioButton} 10u 10u -20u 12u "$(ForMe)"
  Pop $ForMe
  ${NSD_CreateLabel} 22u 24u -32u 24u "$(ForMeMeans)"
  Pop $0
  ${NSD_CreateAdditionalRadioButton} 10u 56u -20u 12u "$(ForEverybody)"
  Pop $1
  ${NSD_CreateLabel} 22u 70u -32u 24u "$(ForEverybodyMeans)"
  Pop $0
  ${If} $ForEverybody = 1
    ${NSD_Check} $1
  ${Else}
    ${NSD_Check} $ForMe
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function ScopeAnswered
  ${NSD_GetState} $ForMe $0
  ${If} $0 = ${BST_CHECKED}
    StrCpy $ForEverybody 0
  ${Else}
    StrCpy $ForEverybody 1
  ${EndIf}
  Call Prepare
FunctionEnd

; A key goes when nothing is left in it.
!macro RemoveProductKeys ROOT
  DeleteRegValue ${ROOT} "${PRODUCT_KEY}" "SetupLanguage"
  DeleteRegValue ${ROOT} "${PRODUCT_KEY}" "HelpPath"
  DeleteRegValue ${ROOT} "${PRODUCT_KEY}" "MenuItemID" ; the library's own, where it has the right to write
  DeleteRegKey /ifempty ${ROOT} "${PRODUCT_KEY}"
  DeleteRegKey /ifempty ${ROOT} "SOFTWARE\Vantrel\Office Addins\Rowlark"
  DeleteRegKey /ifempty ${ROOT} "SOFTWARE\Vantrel\Office Addins"
  DeleteRegKey /ifempty ${ROOT} "SOFTWARE\Vantrel"
!macroend

; Takes away all that set-up has brought, but for what switches the add-in on.
!macro RemoveEverything
  !insertmacro ForEachLibrary UnregisterLibrary
  !insertmacro UnregisterName
  ${If} $ForEverybody = 1
    SetRegView 32
    !insertmacro RemoveProductKeys SHCTX
  ${EndIf}
  !insertmacro UseMainView
  !insertmacro RemoveProductKeys SHCTX
  DeleteRegKey SHCTX "${UNINSTALL_KEY}"
  !insertmacro ForEachFile RemoveFile
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR\x64"
  RMDir "$INSTDIR\x86"
  RMDir "$INSTDIR"
  ${If} $ForEverybody = 0
    RMDir "$LOCALAPPDATA\Programs"
    DeleteRegKey /ifempty HKCU "Software\Microsoft\Windows\CurrentVersion\Uninstall"
  ${EndIf}
!macroend

!macro WriteSettings
  WriteRegStr SHCTX "${PRODUCT_KEY}" "SetupLanguage" "$(LanguageFile)"
  WriteRegStr SHCTX "${PRODUCT_KEY}" "HelpPath" "$INSTDIR\"
!macroend

Section "-Rowlark" Rowlark
  !insertmacro WaitUntilFree ""
  ${If} ${FileExists} "$INSTDIR\uninstall.exe"
    ; The older version knows best what it has brought.
    ExecWait '"$INSTDIR\uninstall.exe" /S /Replace _?=$INSTDIR' $0
    ${If} $0 <> 0
      SetErrorLevel $0
      Abort "$(Failed)"
    ${EndIf}
  ${EndIf}

  ClearErrors
  CreateDirectory "$INSTDIR\x86"
  ${If} ${RunningX64}
    CreateDirectory "$INSTDIR\x64"
  ${EndIf}
  !insertmacro ForEachFile InstallFile
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayName" "${PRODUCT}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\uninstall.exe"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "Publisher" "${PUBLISHER}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "URLInfoAbout" "${WEB_SITE}"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  SectionGetSize ${Rowlark} $0
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "EstimatedSize" $0
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoModify" 1
  WriteRegDWORD SHCTX "${UNINSTALL_KEY}" "NoRepair" 1
  !insertmacro ForEachLibrary RegisterLibrary
  ; Both views, where they differ: for everybody.
  SetRegView 32
  !insertmacro WriteSettings
  !insertmacro UseMainView
  !insertmacro WriteSettings
  ${If} ${Errors}
    ; The list of a user still has the older version, which is gone.
    Call SwitchOff
    !insertmacro RemoveEverything
    SetErrorLevel ${EXIT_ERROR}
    Abort "$(Failed)"
  ${EndIf}

  Call SwitchOn
  ${If} $ExcelFound = 1
    StrCpy $FinishText "$(SwitchedOn)"
  ${Else}
    StrCpy $FinishText "$(NoExcel)"
    DetailPrint "$(NoExcel)"
  ${EndIf}
SectionEnd

Function un.onInit
  !insertmacro SpeakLanguageOfSetup
  ReadRegStr $0 HKLM "${UNINSTALL_KEY}" "InstallLocation"
  StrCpy $ForEverybody 0
  ${If} $0 == $INSTDIR
    StrCpy $ForEverybody 1
  ${EndIf}
  StrCpy $1 $INSTDIR
  !insertmacro EnterScope
  ${If} $1 != $INSTDIR
    ${Fail} ${EXIT_USAGE} "$(FolderIsFixed)"
  ${EndIf}

  ${GetParameters} $R0
  StrCpy $RemoveSettings 0
  ClearErrors
  ${GetOptions} $R0 "/RemoveSettings" $0
  ${IfNot} ${Errors}
    StrCpy $RemoveSettings 1
  ${EndIf}
  StrCpy $Replacing 0
  ClearErrors
  ${GetOptions} $R0 "/Replace" $0
  ${IfNot} ${Errors}
    StrCpy $Replacing 1
  ${EndIf}

  ${If} $ForEverybody = 1
    !insertmacro AskRights
    ${If} $0 != "Admin"
      ${IfNot} ${Silent}
        ClearErrors
        ExecShell "runas" "$INSTDIR\uninstall.exe" $R0
        ${IfNot} ${Errors}
          Quit
        ${EndIf}
      ${EndIf}
      ${Fail} ${EXIT_RIGHTS} "$(NeedsRights)"
    ${EndIf}
  ${EndIf}
FunctionEnd

Function un.AskSettings
  !insertmacro MUI_HEADER_TEXT "$(RemoveTitle)" "$(RemoveFrom)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 10u 10u -20u 12u "$INSTDIR"
  Pop $0
  ${NSD_CreateCheckBox} 10u 34u -20u 12u "$(RemoveSettings)"
  Pop $SettingsBox
  nsDialogs::Show
FunctionEnd

Function un.SettingsAnswered
  ${NSD_GetState} $SettingsBox $RemoveSettings
FunctionEnd

Section "Uninstall"
  !insertmacro WaitUntilFree "un."
  ${If} $ForEverybody = 1
  ${OrIf} $Replacing = 0
    Call un.SwitchOff
  ${EndIf}
  ${If} $RemoveSettings = 1
    SetShellVarContext current
    Delete "$APPDATA\Vantrel\Rowlark\rowlark.cfg*" ; what is kept of a damaged one as well
    RMDir "$APPDATA\Vantrel\Rowlark"
    RMDir "$APPDATA\Vantrel"
    DeleteRegKey HKCU "${PRODUCT_KEY}"
    !insertmacro EnterScope
  ${EndIf}
  !insertmacro RemoveEverything
  ${If} $RemoveSettings = 1
    !insertmacro RemoveProductKeys HKCU
  ${EndIf}
SectionEnd
