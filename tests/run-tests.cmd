@echo off
rem run-tests.cmd   Runs every test program in the folder "tests" beside this file and writes
rem                 test-log.txt there. Nothing has to be installed. The exit status is 0 only
rem                 when all have passed.
rem /nopause        Does not wait for a key at the end.
setlocal EnableExtensions DisableDelayedExpansion
set "pause=pause"
if /i "%~1"=="/nopause" set "pause=rem"
set "here=%~dp0"
if "%here:~0,2%"=="\\" goto network
cd /d "%~dp0tests" 2>nul
if not exist app_test.exe goto unpack
if not exist ..\bin\TessaryViewer.exe goto unpack

rem Only names without a folder from here on: the folder's may hold any character.
set "log=..\test-log.txt"
del %log% 2>nul
type nul >%log%
if not exist %log% goto readonly
set /a passed=0, failed=0
set "names="

echo The tests take some minutes. Windows will come and go: please do not use the mouse, the
echo keyboard or the clipboard meanwhile. When one program stays for more than ten minutes, press
echo Ctrl+C, then N and Enter: the next one follows.
echo.
call :all >>%log% 2>&1
call :summary
echo.
echo The log is test-log.txt. It names folders of this computer; nothing else of yours is in it.
%pause%
if %failed%==0 if not %passed%==0 exit /b 0
exit /b 1

:all
echo Tests of Tessary Viewer, %date% %time%
ver
chcp
echo processor %PROCESSOR_ARCHITECTURE% %PROCESSOR_ARCHITEW6432%, %NUMBER_OF_PROCESSORS% of them
reg query HKLM\SYSTEM\CurrentControlSet\Control\Nls\CodePage /v ACP
for %%p in (*_test.exe) do call :run %%p
call :summary
exit /b

rem On success a program tells little; on failure, everything about what has failed.
:run
>con echo %time% %1
echo.
echo ==== %1, %date% %time%
.\%1 --gtest_brief=1
set "status=%errorlevel%"
if "%status%"=="0" goto good
set /a failed=failed+1
set "names=%names% %1"
echo ==== %1: FAILED, status %status%, %time%
>con echo             FAILED, status %status%
exit /b

:good
set /a passed=passed+1
echo ==== %1: passed, %time%
exit /b

:summary
echo.
echo %passed% programs passed, %failed% failed:%names%
exit /b

:network
echo This folder is on the network. Please copy it to a disk of this computer and start
echo run-tests.cmd there.
%pause%
exit /b 2

:unpack
echo The folders "bin" and "tests" are not beside this file. Please unpack the whole zip and start
echo run-tests.cmd in the folder that comes out of it.
%pause%
exit /b 2

:readonly
echo Nothing can be written here. Please copy the folder to where you may write, such as the
echo desktop, and start run-tests.cmd there.
%pause%
exit /b 2
