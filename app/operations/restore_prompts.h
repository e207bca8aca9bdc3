// The questions of a restore as message boxes.
#pragma once

#include "app/operations/application.h"
#include "storage/operations/restore_result.h"

namespace tolvenar {

// No is the default of each, and the answer of a program that is being closed.
class RestorePrompts final : public RestoreQuestions {
public:
    explicit RestorePrompts(const Application& app) : app_(app) {}

    bool MayWriteBackMissing(const DamageCount& damage) override;
    bool MayTakeOlderList(std::uint32_t states) override;
    bool MayGoOnWithoutRoom(std::uint64_t missing_bytes) override;

private:
    bool Ask(const wchar_t* question);

    const Application& app_;
};

}  // namespace tolvenar
