#include "simulator/guest/thunks.h"

#include <cstring>
#include <map>
#include <mutex>
#include <windows.h>

namespace sim::guest {
namespace {

Word AddressOf(const void* pointer) {
    return static_cast<Word>(reinterpret_cast<std::uintptr_t>(pointer));
}

// Code for each function, made once; `fill` puts in its addresses.
class Thunks {
public:
    template <std::size_t kBytes, typename Fill>
    const void* For(Word function, const unsigned char (&bytes)[kBytes], const Fill& fill) {
        const std::lock_guard<std::mutex> lock(mutex_);
        unsigned char*& code = made_[function];
        if (code == nullptr) {
            code = static_cast<unsigned char*>(
                ::VirtualAlloc(nullptr, kBytes, MEM_RESERVE | MEM_COMMIT, PAGE_EXECUTE_READWRITE));
            std::memcpy(code, bytes, kBytes);
            fill(code);
        }
        return code;
    }

private:
    std::mutex mutex_;
    std::map<Word, unsigned char*> made_;
};

void Put(unsigned char* place, Word value) { std::memcpy(place, &value, sizeof value); }

}  // namespace

const void* CallableByHost(Word function, Enter* enter) {
    static Thunks thunks;
    constexpr unsigned char kCode[] = {0x8D, 0x44, 0x24, 0x04,     // lea eax, [esp + 4]
                                       0x50,                       // push eax
                                       0x68, 0,    0,    0,    0,  // push function
                                       0xB9, 0,    0,    0,    0,  // mov ecx, enter
                                       0xFF, 0xD1,                 // call ecx
                                       0x83, 0xC4, 0x08,           // add esp, 8
                                       0xC2, 0x10, 0x00};          // ret 16
    return thunks.For(function, kCode, [&](unsigned char* code) {
        Put(code + 6, function);
        Put(code + 11, AddressOf(reinterpret_cast<const void*>(enter)));
    });
}

Word CallableByX86(const void* function) {
    static Thunks thunks;
    // Twenty words are passed whatever the function takes.
    constexpr unsigned char kCode[] = {0x55,                          // push ebp
                                       0x89, 0xE5,                    // mov ebp, esp
                                       0x56, 0x57,                    // push esi; push edi
                                       0x8D, 0x75, 0x08,              // lea esi, [ebp + 8]
                                       0x56,                          // push esi
                                       0xB8, 0,    0,    0,    0,     // mov eax, NotePlatformCall
                                       0xFF, 0xD0,                    // call eax
                                       0x83, 0xEC, 0x4C,              // sub esp, 76
                                       0x89, 0xE7,                    // mov edi, esp
                                       0xB9, 0x14, 0x00, 0x00, 0x00,  // mov ecx, 20
                                       0xFC, 0xF3, 0xA5,              // cld; rep movsd
                                       0xB8, 0,    0,    0,    0,     // mov eax, function
                                       0xFF, 0xD0,                    // call eax
                                       0x8D, 0x65, 0xF8,              // lea esp, [ebp - 8]
                                       0x5F, 0x5E, 0x5D, 0xC3};       // pop edi, esi, ebp; ret
    return AddressOf(thunks.For(AddressOf(function), kCode, [&](unsigned char* code) {
        Put(code + 10, AddressOf(reinterpret_cast<const void*>(&NotePlatformCall)));
        Put(code + 30, AddressOf(function));
    }));
}

}  // namespace sim::guest
