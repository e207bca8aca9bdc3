// The platform's headers, in the one order that works. Only files that call the platform include
// it.
#pragma once

// clang-format off
#include <windows.h>
#include <windbase.h>
#include <commctrl.h>
#include <commdlg.h>
#include <notify.h>
// clang-format on
