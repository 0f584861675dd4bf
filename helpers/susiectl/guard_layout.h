// Where guard_x86.S and guard_x64.S find the fields of GuardContext. Read by the assembler too,
// hence macros; guard_context.h checks them against the structure.
#pragma once

#ifdef __x86_64__
#define GUARD_FUNCTION 0
#define GUARD_ARGUMENTS 8
#define GUARD_VALUE 72
#define GUARD_FRAME 80
#else
#define GUARD_FUNCTION 0
#define GUARD_ARGUMENTS 4
#define GUARD_VALUE 36
#define GUARD_FRAME 40
#define GUARD_OUTER_FRAME 44
#define GUARD_STACK 48
#define GUARD_RETURN_ADDRESS 52
#define GUARD_EBP 56
#define GUARD_EBX 60
#define GUARD_ESI 64
#define GUARD_EDI 68
#define GUARD_ARGUMENT_COUNT 72
#endif

// Unused stack between our own frames and the called function's: what a buffer overrun in there
// destroys first.
#define GUARD_CUSHION_PAGES 16
