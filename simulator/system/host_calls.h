// The host's own functions that the system exports need, without its headers. Handles are the
// host's.
#pragma once

#include <cstdint>
#include <string>

namespace sim::host {

std::uint32_t TickCount();
void Sleep(std::uint32_t milliseconds);
std::uintptr_t SetTimer(void* window, std::uintptr_t id, std::uint32_t milliseconds,
                        void* procedure);
void* StartThread(void* security, std::uint32_t stack_bytes, unsigned long(__stdcall* run)(void*),
                  void* parameter, std::uint32_t flags, unsigned long* id);
[[noreturn]] void EndThread(std::uint32_t code);

// Modules; null with the last error set.
void* LoadModule(const wchar_t* name);
void* FindModule(const wchar_t* name);
bool UnloadModule(void* module);
void* FindFunction(void* module, const wchar_t* name);
// Device path of the program, or the host's path of any other module; empty on failure.
std::wstring ModulePath(void* module);

void* CreateHeap(std::uint32_t options, std::size_t first, std::size_t most);
bool DestroyHeap(void* heap);
void* AllocateBlock(void* heap, std::uint32_t flags, std::size_t bytes);
bool FreeBlock(void* heap, std::uint32_t flags, void* block);
void* AllocateLocal(std::uint32_t flags, std::size_t bytes);
void* FreeLocal(void* block);
// Of a block of `heap`, or of a local one where that is null; 0 of no block.
std::size_t BlockBytes(void* heap, const void* block);

// The host's English texts for what the device's settings do not tell; 0 with the last error set.
int LocaleInfo(std::uint32_t locale, std::uint32_t type, wchar_t* text, int units);
bool IsInstalledLocale(std::uint32_t locale);
bool IsInstalledCodePage(std::uint32_t code_page);

}  // namespace sim::host
