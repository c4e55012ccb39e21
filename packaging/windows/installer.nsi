; Installs Quillfile for the user who runs it, and registers the library of the architecture that Windows has and the
; one that a 32-bit Outlook on 64-bit Windows needs.
; FOR_CHECK: without the 32-bit registration, to be run where there is no 32-bit half of Windows.
Unicode true
Name "Quillfile ${VERSION}"
OutFile "${OUT}"
RequestExecutionLevel user
InstallDir "$LOCALAPPDATA\Quillfile"
SetCompressor /SOLID lzma
!include x64.nsh
!define UNINSTALL "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillfile"

Page directory
Page instfiles
UninstPage uninstConfirm
UninstPage instfiles

Section
  SetOutPath "$INSTDIR\32"
  File "${STAGE}/32/quillfile.dll"
  File "${STAGE}/32/Paperclip.ico"
!ifndef FOR_CHECK
  ExecWait '"$SYSDIR\regsvr32.exe" /s "$INSTDIR\32\quillfile.dll"' $0
  ${If} $0 <> 0
    Abort "The 32-bit library could not be registered ($0)."
  ${EndIf}
!endif
  ${If} ${RunningX64}
    SetOutPath "$INSTDIR\64"
    File "${STAGE}/64/quillfile.dll"
    File "${STAGE}/64/Paperclip.ico"
    ${DisableX64FSRedirection}
    ExecWait '"$WINDIR\System32\regsvr32.exe" /s "$INSTDIR\64\quillfile.dll"' $0
    ${EnableX64FSRedirection}
    ${If} $0 <> 0
      Abort "The 64-bit library could not be registered ($0)."
    ${EndIf}
  ${EndIf}
  SetOutPath "$INSTDIR"
  File "${STAGE}/README.md"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayName" "Quillfile"
  WriteRegStr HKCU "${UNINSTALL}" "DisplayVersion" "${VERSION}"
  WriteRegStr HKCU "${UNINSTALL}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegDWORD HKCU "${UNINSTALL}" "NoModify" 1
  WriteRegDWORD HKCU "${UNINSTALL}" "NoRepair" 1
SectionEnd

; The settings in the registry and the saved files are the user's, and stay.
Section Uninstall
!ifndef FOR_CHECK
  ExecWait '"$SYSDIR\regsvr32.exe" /u /s "$INSTDIR\32\quillfile.dll"'
!endif
  ${If} ${RunningX64}
    ${DisableX64FSRedirection}
    ExecWait '"$WINDIR\System32\regsvr32.exe" /u /s "$INSTDIR\64\quillfile.dll"'
    ${EnableX64FSRedirection}
  ${EndIf}
  ; a library that Outlook still holds goes when Windows starts next
  Delete /REBOOTOK "$INSTDIR\32\quillfile.dll"
  Delete "$INSTDIR\32\Paperclip.ico"
  RMDir /REBOOTOK "$INSTDIR\32"
  Delete /REBOOTOK "$INSTDIR\64\quillfile.dll"
  Delete "$INSTDIR\64\Paperclip.ico"
  RMDir /REBOOTOK "$INSTDIR\64"
  Delete "$INSTDIR\README.md"
  Delete "$INSTDIR\uninstall.exe"
  RMDir /REBOOTOK "$INSTDIR"
  DeleteRegKey HKCU "${UNINSTALL}"
SectionEnd
