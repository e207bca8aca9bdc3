// The program's entry point.
#include "platform/heap.h"
#include "platform/win32.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPWSTR, int) {
    if (!tolvenar::CreatePrivateHeap()) { return 0; }
    tolvenar::DestroyPrivateHeap();
    return 0;
}
