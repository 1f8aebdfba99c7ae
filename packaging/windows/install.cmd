@echo off
rem Tells the saver where its show lies, and Windows where the saver is. Changes nothing for other users.
set "folder=%~dp0"
if "%folder:~-1%"=="\" set "folder=%folder:~0,-1%"
reg add HKCU\Software\OrinLab\Screensavers\Tamblor /v path /t REG_SZ /d "%folder%" /f
if errorlevel 1 exit /b 1
if /i "%~1"=="/quiet" exit /b 0
rem Windows takes the rest of the line as it stands, quotes and all: so the name without blanks.
for %%f in ("%folder%\tamb.scr") do rundll32 desk.cpl,InstallScreenSaver %%~sf
