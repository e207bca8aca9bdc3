// Windows CE's <commctrl.h> over mingw-w64's: what has another value there.
#ifndef TOLV_PLATFORM_COMMCTRL_H
#define TOLV_PLATFORM_COMMCTRL_H
#pragma GCC system_header
#include <windows.h>

#include_next <commctrl.h>

#ifndef UNDER_CE
#undef DTM_SETFORMATW
#define DTM_SETFORMATW 0x1050
#endif
#endif
