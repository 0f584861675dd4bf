// TessaryInvoke and what else guard_machine.h declares for x86.
#include "helpers/susiectl/guard_layout.h"

    .intel_syntax noprefix
    .text

    .globl _TessaryInvoke
_TessaryInvoke:
    mov edx, [esp + 4]
    mov eax, [esp]
    mov [edx + GUARD_RETURN_ADDRESS], eax
    mov [edx + GUARD_STACK], esp
    mov [edx + GUARD_EBP], ebp
    mov [edx + GUARD_EBX], ebx
    mov [edx + GUARD_ESI], esi
    mov [edx + GUARD_EDI], edi

    // The registration that makes us a frame of the thread's exception chain.
    mov eax, fs:[0]
    mov [edx + GUARD_OUTER_FRAME], eax
    push offset _TessaryFrameHandler
    push eax
    mov [edx + GUARD_FRAME], esp
    mov fs:[0], esp

    // Page by page, because the system commits a stack only in this order.
    mov ecx, GUARD_CUSHION_PAGES
1:  sub esp, 4096
    test [esp], esp
    dec ecx
    jnz 1b

    // Some compilers rely on 16-byte alignment at a call.
    mov ecx, [edx + GUARD_ARGUMENT_COUNT]
    lea eax, [ecx * 4]
    sub esp, eax
    and esp, -16
    lea esi, [edx + GUARD_ARGUMENTS]
    mov edi, esp
    cld
    rep movsd
    call [edx + GUARD_FUNCTION]

    // Nothing but eax can be relied on now; the stack pointer may be a few words off.
    cld
    and esp, -4
    push eax
    call _TessaryInnermostGuard
    pop dword ptr [eax + GUARD_VALUE]
    push eax
    push eax

    .globl _TessaryResume
_TessaryResume:
    mov edx, [esp + 4]
    mov esp, [edx + GUARD_STACK]
    mov eax, [edx + GUARD_OUTER_FRAME]
    mov fs:[0], eax
    mov eax, [edx + GUARD_RETURN_ADDRESS]
    mov [esp], eax
    mov [esp + 4], edx
    mov ebp, [edx + GUARD_EBP]
    mov ebx, [edx + GUARD_EBX]
    mov esi, [edx + GUARD_ESI]
    mov edi, [edx + GUARD_EDI]
    ret

    .globl _TessaryUnwind
_TessaryUnwind:
    mov eax, [esp + 4]
    mov edx, [esp + 8]
    push ebp
    push ebx
    push esi
    push edi
    push 0
    push edx
    push offset 1f
    push eax
    call _RtlUnwind@16
    // It is allowed to come back with every register but the stack pointer changed.
1:  pop edi
    pop esi
    pop ebx
    pop ebp
    ret

    // As the system calls handlers, any convention does: it finds its stack pointer by itself. So
    // its own handler is jumped to, whichever it has.
    .globl _TessaryCallbackHandler
_TessaryCallbackHandler:
    push [esp + 8]
    push [esp + 8]
    call _TessaryCallbackException
    add esp, 8
    test eax, eax
    jz 1f
    jmp eax
1:  ret

    .globl _TessaryWatchHandler
_TessaryWatchHandler:
    push ebx
    mov ebx, esp
    push [ebx + 12]
    push [ebx + 8]
    call _TessaryBeginWatched
    mov esp, ebx
    push [ebx + 20]
    push [ebx + 16]
    push [ebx + 12]
    push [ebx + 8]
    call eax
    mov esp, ebx
    push eax
    push [ebx + 12]
    push [ebx + 8]
    call _TessaryEndWatched
    add esp, 8
    pop eax
    pop ebx
    ret

    .globl _TessaryCaughtReturn
_TessaryCaughtReturn:
    cld
    mov eax, esp
    and esp, -16
    sub esp, 12
    push eax
    call _TessaryPassOn

    .globl _TessaryStrayReturn
_TessaryStrayReturn:
    cld
    and esp, -16
    call _TessaryEndProcess
