# From the loader's 32-bit protected mode to the 64-bit code of the image. The loader finds the
# entry through the note and hands over the address of its start information in %ebx.

        .section .note.entry, "a", @note
        .balign 4
        .long   4, 8, 18                # sizes of name and value; the 32-bit entry
        .asciz  "Xen"
        .quad   start

        .set    PRESENT_WRITABLE, 0x003
        .set    LARGE_PAGE, 0x080
        .set    LARGE_PAGE_SIZE, 0x200000
        .set    PAGE_SIZE, 0x1000
        .set    DIRECTORIES, 4          # one maps 1 GiB: all below 4 GiB, devices too
        .set    ENTRIES, 512

        .set    CR0_ON, 0x80000003      # paging, SSE's half of the coprocessor, protected mode
        .set    CR0_EMULATION, 0x4
        .set    CR4_ON, 0x620           # 64-bit page entries, SSE registers, SSE exceptions
        .set    EFER, 0xC0000080
        .set    EFER_LONG_MODE, 0x100

        .set    CODE, 8                 # offsets in the descriptor table
        .set    DATA, 16

        .text
        .code32
        .globl  start
start:
        cld
        movl    $bssStart, %edi
        movl    $bssEnd, %ecx
        subl    %edi, %ecx
        xorl    %eax, %eax
        rep stosb

        movl    $directories, %edi
        movl    $(PRESENT_WRITABLE | LARGE_PAGE), %eax
        movl    $(DIRECTORIES * ENTRIES), %ecx
1:      movl    %eax, (%edi)
        addl    $LARGE_PAGE_SIZE, %eax
        addl    $8, %edi
        loop    1b

        movl    $directoryPointers, %edi
        movl    $(directories + PRESENT_WRITABLE), %eax
        movl    $DIRECTORIES, %ecx
2:      movl    %eax, (%edi)
        addl    $PAGE_SIZE, %eax
        addl    $8, %edi
        loop    2b
        movl    $(directoryPointers + PRESENT_WRITABLE), pageMap

        movl    $pageMap, %eax
        movl    %eax, %cr3
        movl    %cr4, %eax
        orl     $CR4_ON, %eax
        movl    %eax, %cr4
        movl    $EFER, %ecx
        rdmsr
        orl     $EFER_LONG_MODE, %eax
        wrmsr
        movl    %cr0, %eax
        andl    $~CR0_EMULATION, %eax
        orl     $CR0_ON, %eax
        movl    %eax, %cr0
        lgdt    descriptorTable
        ljmp    $CODE, $start64

        .code64
start64:
        movl    $DATA, %eax
        movl    %eax, %ds
        movl    %eax, %es
        movl    %eax, %ss
        movl    $stackEnd, %esp
        movl    %ebx, %edi
        call    metalMain
        ud2

        .section .rodata
        .balign 8
descriptors:
        .quad   0
        .quad   0x00209A0000000000      # 64-bit code
        .quad   0x0000920000000000      # data
descriptorsEnd:
descriptorTable:
        .word   descriptorsEnd - descriptors - 1
        .long   descriptors

        .bss
        .balign PAGE_SIZE
pageMap:
        .skip   PAGE_SIZE
directoryPointers:
        .skip   PAGE_SIZE
directories:
        .skip   DIRECTORIES * PAGE_SIZE
stack:
        .skip   0x10000
stackEnd:

        .section .note.GNU-stack, "", @progbits
