# The processor's way into the image's interrupt functions. They use no SSE registers, so the
# general ones that a call may change are all there is to keep.

        .text
        .globl  timerEntry
timerEntry:
        pushq   %rax
        pushq   %rcx
        pushq   %rdx
        pushq   %rsi
        pushq   %rdi
        pushq   %r8
        pushq   %r9
        pushq   %r10
        pushq   %r11
        cld
        call    timerInterrupt
        popq    %r11
        popq    %r10
        popq    %r9
        popq    %r8
        popq    %rdi
        popq    %rsi
        popq    %rdx
        popq    %rcx
        popq    %rax
        iretq

        .globl  faultEntry
faultEntry:
        andq    $-16, %rsp
        call    processorFault

        .section .note.GNU-stack, "", @progbits
