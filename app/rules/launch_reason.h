// The texts that name an unattended launch, compared whole and with case.
#pragma once

namespace tolvenar {

constexpr wchar_t kReasonTime[] = L"AutoBackup: Time";
constexpr wchar_t kReasonBattery[] = L"AutoBackup: Battery Low";
constexpr wchar_t kReasonExternalBackup[] = L"AutoBackup: External";  // only from other programs
constexpr wchar_t kReasonRestoreLast[] = L"AutoRestore: Last State";  // only from other programs

// One of the three that ask for a backup.
bool IsBackupReason(const wchar_t* reason);
// One of the two that the device itself starts, often out of its sleep.
bool IsScheduledReason(const wchar_t* reason);
bool IsRestoreReason(const wchar_t* reason);

}  // namespace tolvenar
