// MIPS II without floating point, ll and sc, which the VR41xx lack. Anything else ends the program.
#include "simulator/guest/guest.h"

namespace sim::guest {
namespace {

using Signed = std::int32_t;

constexpr Word kSp = 29, kRa = 31, kV0 = 2, kV1 = 3, kA0 = 4, kT9 = 25;
// The callee owns the places of the four arguments in registers.
constexpr Word kHomeBytes = 16;

constexpr Word Extend(Word half) {
    return static_cast<Word>(Signed{static_cast<std::int16_t>(half)});
}
constexpr Signed AsSigned(Word value) { return static_cast<Signed>(value); }

class Mips {
public:
    Mips(const Image& image, Stack& stack) : image_(image), stack_(stack) {}

    Word Run(Word function, const Word (&arguments)[4]) {
        const Word outer = stack_.now;
        for (Word i = 0; i < 4; ++i) {
            r_[kA0 + i] = arguments[i];
        }
        const Word sp = outer - 64;
        r_[kSp] = sp;
        r_[kRa] = kReturnAddress;
        r_[kT9] = function;
        pc_ = function;
        next_ = function + 4;
        while (pc_ != kReturnAddress) {
            if (image_.Holds(pc_)) {
                Step();
            } else {
                CallPlatform();
            }
        }
        if (r_[kSp] != sp) {
            Stop("the stack pointer was not kept", function, r_[kSp]);
        }
        stack_.now = outer;
        TellSteps();
        return r_[kV0];
    }

private:
    void TellSteps() {
        AddInstructions(steps_);
        steps_ = 0;
    }

    void CallPlatform() {
        const Word first[4] = {r_[kA0], r_[kA0 + 1], r_[kA0 + 2], r_[kA0 + 3]};
        stack_.now = r_[kSp];
        TellSteps();
        const std::uint64_t result = CallHost(pc_, first, &At<Word>(r_[kSp] + kHomeBytes, pc_));
        for (Word i = kV0; i < 16; ++i) {  // a callee keeps none of these
            r_[i] = 0xDEADBEEF;
        }
        r_[kV0] = static_cast<Word>(result);
        r_[kV1] = static_cast<Word>(result >> 32);
        pc_ = r_[kRa];
        next_ = pc_ + 4;
    }

    // The instruction behind a branch runs before the branch is taken.
    void Step() {
        ++steps_;
        at_ = pc_;
        op_ = At<Word>(at_, at_);
        pc_ = next_;
        next_ += 4;
        Execute();
        r_[0] = 0;
        if (r_[kSp] < stack_.deepest) {
            stack_.deepest = r_[kSp];
        }
    }

    Word Rs() const { return r_[op_ >> 21 & 31]; }
    Word Rt() const { return r_[op_ >> 16 & 31]; }
    void SetRt(Word value) { r_[op_ >> 16 & 31] = value; }
    void SetRd(Word value) { r_[op_ >> 11 & 31] = value; }
    Word Immediate() const { return Extend(op_); }
    Word Place() const { return Rs() + Immediate(); }
    [[noreturn]] void Refuse() { Stop("instruction of a later processor", at_, op_); }

    void BranchIf(bool taken, bool is_likely) {
        if (taken) {
            next_ = at_ + 4 + (Immediate() << 2);
        } else if (is_likely) {  // the instruction behind it does not run
            pc_ = next_;
            next_ += 4;
        }
    }
    void Jump(Word target) { next_ = target; }

    void Execute() {
        const Word code = op_ >> 26;
        switch (code) {
            case 0: return Special();
            case 1: return BranchOnSign();
            case 3: r_[kRa] = at_ + 8; [[fallthrough]];
            case 2: return Jump(((at_ + 4) & 0xF0000000) | (op_ & 0x03FFFFFF) << 2);
            case 4:
            case 20: return BranchIf(Rs() == Rt(), code == 20);
            case 5:
            case 21: return BranchIf(Rs() != Rt(), code == 21);
            case 6:
            case 22: return BranchIf(AsSigned(Rs()) <= 0, code == 22);
            case 7:
            case 23: return BranchIf(AsSigned(Rs()) > 0, code == 23);
            case 8:
            case 9: return SetRt(Rs() + Immediate());
            case 10: return SetRt(AsSigned(Rs()) < AsSigned(Immediate()));
            case 11: return SetRt(Rs() < Immediate());
            case 12: return SetRt(Rs() & (op_ & 0xFFFF));
            case 13: return SetRt(Rs() | (op_ & 0xFFFF));
            case 14: return SetRt(Rs() ^ (op_ & 0xFFFF));
            case 15: return SetRt(op_ << 16);
            default: return Transfer(code);
        }
    }

    void Transfer(Word code) {
        switch (code) {
            case 32: return SetRt(static_cast<Word>(Signed{At<std::int8_t>(Place(), at_)}));
            case 33: return SetRt(static_cast<Word>(Signed{At<std::int16_t>(Place(), at_)}));
            case 34: return LoadLeft();
            case 35: return SetRt(At<Word>(Place(), at_));
            case 36: return SetRt(At<std::uint8_t>(Place(), at_));
            case 37: return SetRt(At<std::uint16_t>(Place(), at_));
            case 38: return LoadRight();
            case 40: At<std::uint8_t>(Place(), at_) = static_cast<std::uint8_t>(Rt()); return;
            case 41: At<std::uint16_t>(Place(), at_) = static_cast<std::uint16_t>(Rt()); return;
            case 42: return StoreLeft();
            case 43: At<Word>(Place(), at_) = Rt(); return;
            case 46: return StoreRight();
            default: Refuse();
        }
    }

    // The parts of an unaligned word on either side of a word's boundary, the lowest byte first.
    Word& Around() { return At<Word>(Place() & ~3u, at_); }
    Word Shift() const { return 8 * (Place() & 3); }
    static Word LowMask(Word bits) { return bits >= 32 ? ~0u : (1u << bits) - 1; }
    void LoadLeft() {
        const Word kept = LowMask(24 - Shift());
        SetRt((Rt() & kept) | Around() << (24 - Shift()));
    }
    void LoadRight() {
        const Word kept = ~LowMask(32 - Shift());
        SetRt((Rt() & kept) | Around() >> Shift());
    }
    void StoreLeft() {
        const Word kept = ~LowMask(Shift() + 8);
        Around() = (Around() & kept) | Rt() >> (24 - Shift());
    }
    void StoreRight() {
        const Word kept = LowMask(Shift());
        Around() = (Around() & kept) | Rt() << Shift();
    }

    void BranchOnSign() {
        const Word kind = op_ >> 16 & 31;
        const Word value = Rs();
        if ((kind & ~19u) != 0) {
            return TrapIf(kind);
        }
        if ((kind & 16) != 0) {
            r_[kRa] = at_ + 8;
        }
        const bool is_negative = AsSigned(value) < 0;
        BranchIf((kind & 1) != 0 ? !is_negative : is_negative, (kind & 2) != 0);
    }

    void TrapIf(Word kind) {
        if (kind != 12 || Rs() == Immediate()) {
            Refuse();
        }
    }

    void Special() {
        const Word by = op_ >> 6 & 31;
        switch (op_ & 63) {
            case 0: return SetRd(Rt() << by);
            case 2:
                if ((op_ >> 21 & 31) != 0) {
                    Refuse();  // a rotation
                }
                return SetRd(Rt() >> by);
            case 3: return SetRd(static_cast<Word>(AsSigned(Rt()) >> by));
            case 4: return SetRd(Rt() << (Rs() & 31));
            case 6: return SetRd(Rt() >> (Rs() & 31));
            case 7: return SetRd(static_cast<Word>(AsSigned(Rt()) >> (Rs() & 31)));
            case 8: return Jump(Rs());
            case 9: return JumpAndLink();
            case 16: return SetRd(hi_);
            case 17: hi_ = Rs(); return;
            case 18: return SetRd(lo_);
            case 19: lo_ = Rs(); return;
            case 24:
                return SetProduct(
                    static_cast<std::uint64_t>(std::int64_t{AsSigned(Rs())} * AsSigned(Rt())));
            case 25: return SetProduct(std::uint64_t{Rs()} * Rt());
            case 26: return Divide();
            case 27:
                lo_ = Rt() == 0 ? 0 : Rs() / Rt();
                hi_ = Rt() == 0 ? 0 : Rs() % Rt();
                return;
            default: return Compute();
        }
    }

    void Compute() {
        switch (op_ & 63) {
            case 32:
            case 33: return SetRd(Rs() + Rt());
            case 34:
            case 35: return SetRd(Rs() - Rt());
            case 36: return SetRd(Rs() & Rt());
            case 37: return SetRd(Rs() | Rt());
            case 38: return SetRd(Rs() ^ Rt());
            case 39: return SetRd(~(Rs() | Rt()));
            case 42: return SetRd(AsSigned(Rs()) < AsSigned(Rt()));
            case 43: return SetRd(Rs() < Rt());
            case 52:  // trap if equal: the divisor was 0
                if (Rs() != Rt()) {
                    return;
                }
                [[fallthrough]];
            default: Refuse();
        }
    }

    void JumpAndLink() {
        const Word target = Rs();
        SetRd(at_ + 8);
        Jump(target);
    }
    void SetProduct(std::uint64_t value) {
        lo_ = static_cast<Word>(value);
        hi_ = static_cast<Word>(value >> 32);
    }
    void Divide() {
        const std::int64_t a = AsSigned(Rs()), b = AsSigned(Rt());
        lo_ = b == 0 ? 0 : static_cast<Word>(a / b);
        hi_ = b == 0 ? 0 : static_cast<Word>(a % b);
    }

    const Image& image_;
    Stack& stack_;
    Word r_[32] = {};
    Word hi_ = 0, lo_ = 0;
    Word pc_ = 0, next_ = 0, at_ = 0, op_ = 0;
    std::uint64_t steps_ = 0;
};

}  // namespace

Word RunMips(const Image& image, Stack& stack, Word function, const Word (&arguments)[4]) {
    return Mips(image, stack).Run(function, arguments);
}

}  // namespace sim::guest
