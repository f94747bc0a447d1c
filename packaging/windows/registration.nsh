; What Windows has to know of the libraries: the keys that DllRegisterServer of each writes. They are written and
; removed here, so that set-up runs no code with the rights that it has, needs no program of the other bitness, and
; removes them whatever became of the files.

; Classes and interfaces are of one bitness each; names of classes and type libraries are common to both.
!macro RegisterInterface ID NAME PROXY
  WriteRegStr SHCTX "${CLASSES}\Interface\${ID}" "" "${NAME}"
  WriteRegStr SHCTX "${CLASSES}\Interface\${ID}\ProxyStubClsid32" "" "${PROXY}"
  WriteRegStr SHCTX "${CLASSES}\Interface\${ID}\TypeLib" "" "${LIBRARY_ID}"
  WriteRegStr SHCTX "${CLASSES}\Interface\${ID}\TypeLib" "Version" "${LIBRARY_VERSION}"
!macroend

!macro RegisterLibrary BITS FILE
  SetRegView ${BITS}
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}" "" "${PROGRAM_ID}"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\InprocServer32" "" "${FILE}"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\InprocServer32" "ThreadingModel" "Apartment"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\ProgID" "" "${PROGRAM_ID}"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\TypeLib" "" "${LIBRARY_ID}"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\Version" "" "${CLASS_VERSION}"
  WriteRegStr SHCTX "${CLASSES}\CLSID\${CLASS_ID}\Programmable" "" ""
  WriteRegStr SHCTX "${CLASSES}\${PROGRAM_ID}" "" "${PROGRAM_ID}"
  WriteRegStr SHCTX "${CLASSES}\${PROGRAM_ID}\Clsid" "" "${CLASS_ID}"
  WriteRegStr SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}" "" "${LIBRARY_TITLE}"
  WriteRegStr SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}\FLAGS" "" "0"
  WriteRegStr SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}\0\win${BITS}" "" "${FILE}"
  !insertmacro ForEachInterface RegisterInterface
!macroend

!macro UnregisterInterface ID NAME PROXY
  DeleteRegKey SHCTX "${CLASSES}\Interface\${ID}"
!macroend

; A library of another folder that has been registered since stays registered.
!macro UnregisterLibrary BITS FILE
  SetRegView ${BITS}
  ReadRegStr $0 SHCTX "${CLASSES}\CLSID\${CLASS_ID}\InprocServer32" ""
  ${If} $0 == "${FILE}"
    DeleteRegKey SHCTX "${CLASSES}\CLSID\${CLASS_ID}"
    !insertmacro ForEachInterface UnregisterInterface
  ${EndIf}
  ReadRegStr $0 SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}\0\win${BITS}" ""
  ${If} $0 == "${FILE}"
    DeleteRegKey SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}\0\win${BITS}"
  ${EndIf}
  EnumRegKey $0 SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}\${LIBRARY_VERSION}\0" 0
  ${If} $0 == ""
    DeleteRegKey SHCTX "${CLASSES}\TypeLib\${LIBRARY_ID}"
  ${EndIf}
  ${If} $ForEverybody = 0 ; a user may have had none
    DeleteRegKey /ifempty HKCU "${CLASSES}\CLSID"
    DeleteRegKey /ifempty HKCU "${CLASSES}\Interface"
    DeleteRegKey /ifempty HKCU "${CLASSES}\TypeLib"
  ${EndIf}
!macroend

; The name of the class goes with the last class.
!macro UnregisterName
  StrCpy $1 ""
  ${If} ${RunningX64}
    SetRegView 64
    EnumRegKey $1 SHCTX "${CLASSES}\CLSID\${CLASS_ID}" 0
  ${EndIf}
  SetRegView 32
  EnumRegKey $0 SHCTX "${CLASSES}\CLSID\${CLASS_ID}" 0
  ${If} "$0$1" == ""
    DeleteRegKey SHCTX "${CLASSES}\${PROGRAM_ID}"
    ${If} ${RunningX64}
      SetRegView 64
      DeleteRegKey SHCTX "${CLASSES}\${PROGRAM_ID}"
    ${EndIf}
  ${EndIf}
!macroend

!macro ForEachLibrary ACTION
  ${If} ${RunningX64}
    !insertmacro ${ACTION} 64 "$INSTDIR\x64\vtrlk_runtime.dll"
  ${EndIf}
  !insertmacro ${ACTION} 32 "$INSTDIR\x86\vtrlk_runtime.dll"
  !insertmacro UseMainView
!macroend
