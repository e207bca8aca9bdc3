# Programs for Windows CE on MIPS: an R4000 or VR41xx, of which the MIPS II part is used. The VR41xx lack
# ll and sc.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR mips)
set(CE_CPU mips)
set(CE_TOOLS mipsel-linux-gnu)
set(CE_CPU_FLAGS -march=mips2 -mtune=r4000 -mabi=32 -mno-abicalls -fno-pic -fno-pie -G0 -msoft-float -mno-llsc
  -fno-stack-protector)
set(CE_LINK_FLAGS -static -no-pie)
# The rest of the headers know Windows on ARM and x86 alone; nothing of what differs is used.
set(CE_HEADER_FLAGS -D__arm__ -D_ARM_ -U__linux__ -Ulinux -U__unix__ -Uunix)
include(${CMAKE_CURRENT_LIST_DIR}/ce-elf.cmake)
