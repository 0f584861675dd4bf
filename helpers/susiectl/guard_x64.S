// TessaryInvoke and TessaryResume for x64: see guard_machine.h. There the frames' tables, not the stack, say who handles
// exceptions, so that nothing has to be registered or rescued; the system's unwinder restores the registers.
#include "helpers/susiectl/guard_layout.h"

    .intel_syntax noprefix
    .text

    .globl TessaryInvoke
    .globl TessaryResume
    .seh_proc TessaryInvoke
TessaryInvoke:
    push rbp
    .seh_pushreg rbp
    push rbx
    .seh_pushreg rbx
    sub rsp, 8
    .seh_stackalloc 8
    mov rbp, rsp
    .seh_setframe rbp, 0
    .seh_endprologue
    mov rbx, rcx
    mov [rbx + GUARD_FRAME], rbp

    mov ecx, GUARD_CUSHION_PAGES
1:  sub rsp, 4096
    test [rsp], rsp
    dec ecx
    jnz 1b

    mov rax, [rbx + GUARD_ARGUMENTS + 32]
    mov [rsp + 32], rax
    mov rax, [rbx + GUARD_ARGUMENTS + 40]
    mov [rsp + 40], rax
    mov rax, [rbx + GUARD_ARGUMENTS + 48]
    mov [rsp + 48], rax
    mov rax, [rbx + GUARD_ARGUMENTS + 56]
    mov [rsp + 56], rax
    mov rcx, [rbx + GUARD_ARGUMENTS]
    mov rdx, [rbx + GUARD_ARGUMENTS + 8]
    mov r8, [rbx + GUARD_ARGUMENTS + 16]
    mov r9, [rbx + GUARD_ARGUMENTS + 24]
    call [rbx + GUARD_FUNCTION]
    mov [rbx + GUARD_VALUE], rax
TessaryResume:
    cld
    mov rsp, rbp
    add rsp, 8
    pop rbx
    pop rbp
    ret
    .seh_handler TessaryFrameHandler, @except, @unwind
    .seh_endproc
