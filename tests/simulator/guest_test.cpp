// Programs that were built for a real device: what their code does, and what ends them.
#include "platform/win32.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "simulator/processes/process_start.h"
#include "simulator/programs/programs.h"
#include "tests/support/programs.h"

namespace tests {
namespace {

using Code = std::vector<std::uint32_t>;

constexpr std::uint32_t kBase = 0x10000;
constexpr wchar_t kPath[] = L"\\Windows\\guest.exe";
constexpr std::uint32_t kStopped = 99;
constexpr WORD kArm = IMAGE_FILE_MACHINE_ARM;
constexpr WORD kMips = IMAGE_FILE_MACHINE_R4000;

// A program without imports: headers in the first page, the code in the second.
std::string ProgramOf(WORD machine, const Code& code) {
    constexpr DWORD kPage = 0x1000, kRaw = 0x200;
    std::string bytes(2 * kRaw, '\0');
    IMAGE_DOS_HEADER start{};
    start.e_magic = IMAGE_DOS_SIGNATURE;
    start.e_lfanew = sizeof start;
    IMAGE_NT_HEADERS32 head{};
    head.Signature = IMAGE_NT_SIGNATURE;
    head.FileHeader.Machine = machine;
    head.FileHeader.NumberOfSections = 1;
    head.FileHeader.SizeOfOptionalHeader = sizeof head.OptionalHeader;
    head.OptionalHeader.ImageBase = kBase;
    head.OptionalHeader.AddressOfEntryPoint = kPage;
    head.OptionalHeader.SizeOfImage = 2 * kPage;
    head.OptionalHeader.SizeOfHeaders = kRaw;
    head.OptionalHeader.Subsystem = IMAGE_SUBSYSTEM_WINDOWS_CE_GUI;
    IMAGE_SECTION_HEADER section{};
    section.VirtualAddress = kPage;
    section.SizeOfRawData = kRaw;
    section.PointerToRawData = kRaw;
    std::memcpy(&bytes[0], &start, sizeof start);
    std::memcpy(&bytes[sizeof start], &head, sizeof head);
    std::memcpy(&bytes[sizeof start + sizeof head], &section, sizeof section);
    std::memcpy(&bytes[kRaw], code.data(), code.size() * sizeof code[0]);
    return bytes;
}

class GuestTest : public DeviceTest {
protected:
    // What the run has told; each program ends with the simulator's own exit code.
    std::string Told(WORD machine, const Code& code) {
        device().PutFile(kPath, ProgramOf(machine, code));
        const std::wstring log = device().sim().folder() + L"\\guest.log";
        ::_wremove(log.c_str());
        EXPECT_EQ(kStopped, sim::processes::Run(device().sim(), kPath, L"", 20000).value_or(0));
        std::string text;
        if (std::FILE* file = ::_wfopen(log.c_str(), L"rb")) {
            char buffer[512];
            text.assign(buffer, std::fread(buffer, 1, sizeof buffer, file));
            std::fclose(file);
        }
        return text;
    }
    // The first argument is the program's address.
    void ExpectResult(WORD machine, const Code& code, const char* result) {
        const std::string expected =
            std::string("\\Windows\\guest.exe: stopped: the entry point returned at 00011000: ") +
            result + "\n";
        EXPECT_EQ(expected, Told(machine, code));
    }
    void ExpectStop(WORD machine, const Code& code, const std::string& why) {
        const std::string told = Told(machine, code);
        EXPECT_NE(std::string::npos, told.find(": stopped: " + why)) << told;
    }
};

constexpr std::uint32_t kArmReturn = 0xE1A0F00E;  // mov pc, lr

TEST_F(GuestTest, ArmCodeComputes) {
    // mov r0, #42
    ExpectResult(kArm, {0xE3A0002A, kArmReturn}, "0000002a");
    // mvn r1, #0; adds r0, r1, #1; adc r0, r0, #5: the carry counts
    ExpectResult(kArm, {0xE3E01000, 0xE2910001, 0xE2A00005, kArmReturn}, "00000006");
    // push {r4, lr}; mov r4, #7; mov r0, r4; pop {r4, pc}
    ExpectResult(kArm, {0xE92D4010, 0xE3A04007, 0xE1A00004, 0xE8BD8010}, "00000007");
    // cmp r0, r0; movne r0, #1; moveq r0, #2
    ExpectResult(kArm, {0xE1500000, 0x13A00001, 0x03A00002, kArmReturn}, "00000002");
    // mvn r1, #0; mov r0, r1, asr #32
    ExpectResult(kArm, {0xE3E01000, 0xE1A00041, kArmReturn}, "ffffffff");
    // mvn r1, #0; umull r2, r0, r1, r1: the upper word
    ExpectResult(kArm, {0xE3E01000, 0xE0802191, kArmReturn}, "fffffffe");
}

TEST_F(GuestTest, ArmCodeThatAnOldDeviceDoesNotBearEndsTheRun) {
    ExpectStop(kArm, {0xE5900001}, "unaligned access at 00011000: 00010001");  // ldr r0, [r0, #1]
    ExpectStop(kArm, {0xE1D000B1}, "unaligned access");                        // ldrh r0, [r0, #1]
    ExpectStop(kArm, {0xE16F0F10}, "status register, or instruction of a later processor");  // clz
    ExpectStop(kArm, {0xE12FFF1E}, "status register, or instruction of a later processor");  // bx
    ExpectStop(kArm, {0xE1C000D0}, "transfer of two words");                                 // ldrd
    ExpectStop(kArm, {0xE7F000F0}, "undefined instruction");
    ExpectStop(kArm, {0xEE000A10}, "coprocessor");  // a floating-point move
    ExpectStop(kArm, {0xE24DD004, kArmReturn}, "the stack pointer was not kept");
}

constexpr std::uint32_t kMipsReturn = 0x03E00008;  // jr ra; the instruction behind it runs, too

TEST_F(GuestTest, MipsCodeComputes) {
    // jr ra; li v0, 42
    ExpectResult(kMips, {kMipsReturn, 0x2402002A}, "0000002a");
    // li a1, 7; li a2, 2; div a1, a2; jr ra; mflo v0
    ExpectResult(kMips, {0x24050007, 0x24060002, 0x00A6001A, kMipsReturn, 0x00001012}, "00000003");
    // li v0, 5; beql a0, zero: what is behind a likely branch that is not taken does not run
    ExpectResult(kMips, {0x24020005, 0x50800001, 0x24420001, kMipsReturn, 0}, "00000005");
    // lui v0, 0x1234; lwr v0, 1(a0); lwl v0, 4(a0): four bytes from an odd place, "Z" behind "M"
    ExpectResult(kMips, {0x3C021234, 0x98820001, 0x88820004, kMipsReturn, 0}, "0000005a");
}

TEST_F(GuestTest, MipsCodeThatAnOldDeviceDoesNotBearEndsTheRun) {
    ExpectStop(kMips, {0x8C820001}, "unaligned access at 00011000: 00010001");  // lw v0, 1(a0)
    ExpectStop(kMips, {0xC0820000}, "instruction of a later processor");        // ll v0, (a0)
    ExpectStop(kMips, {0x0080100A}, "instruction of a later processor");        // movz v0, a0, zero
    ExpectStop(kMips, {0x46000000}, "instruction of a later processor");        // floating point
}

TEST_F(GuestTest, AProgramForAnUnknownProcessorIsNotRun) {
    ExpectStop(IMAGE_FILE_MACHINE_ALPHA, {0}, "no processor for the program");
}

}  // namespace
}  // namespace tests
