// ARMv4 without Thumb, coprocessors and status registers. Anything else ends the program: a device
// of the oldest kind that is supported has no more.
#include "simulator/guest/guest.h"

namespace sim::guest {
namespace {

using Signed = std::int32_t;

constexpr Word kSp = 13, kLr = 14, kPc = 15;

constexpr Word Bits(Word value, int low, int count) { return value >> low & ((1u << count) - 1); }
constexpr bool Bit(Word value, int at) { return (value >> at & 1) != 0; }
constexpr Word RotateRight(Word value, Word by) {
    by &= 31;
    return by == 0 ? value : value >> by | value << (32 - by);
}

struct Shifted {
    Word value;
    bool carry;
};

class Arm {
public:
    Arm(const Image& image, Stack& stack) : image_(image), stack_(stack) {}

    Word Run(Word function, const Word (&arguments)[4]) {
        const Word outer = stack_.now;
        for (int i = 0; i < 4; ++i) {
            r_[i] = arguments[i];
        }
        // Four bytes off eight: no device promises more.
        r_[kSp] = outer - 68;
        r_[kLr] = kReturnAddress;
        const Word sp = r_[kSp];
        for (Word pc = function; pc != kReturnAddress;) {
            pc = image_.Holds(pc) ? Step(pc) : CallPlatform(pc);
        }
        if (r_[kSp] != sp) {
            Stop("the stack pointer was not kept", function, r_[kSp]);
        }
        stack_.now = outer;
        TellSteps();
        return r_[0];
    }

private:
    void TellSteps() {
        AddInstructions(steps_);
        steps_ = 0;
    }

    Word CallPlatform(Word function) {
        const Word first[4] = {r_[0], r_[1], r_[2], r_[3]};
        stack_.now = r_[kSp];
        TellSteps();
        const std::uint64_t result = CallHost(function, first, &At<Word>(r_[kSp], function));
        r_[0] = static_cast<Word>(result);
        r_[1] = static_cast<Word>(result >> 32);
        r_[2] = r_[3] = r_[12] = 0xDEADBEEF;  // a callee keeps none of these
        return r_[kLr];
    }

    Word Step(Word pc) {
        ++steps_;
        op_ = At<Word>(pc, pc);
        pc_ = pc;
        next_ = pc + 4;
        r_[kPc] = pc + 8;
        if (IsMet(op_ >> 28)) {
            Execute();
        }
        if (image_.Holds(next_) && (next_ & 3) != 0) {
            Stop("branch to other than ARM code", pc, next_);
        }
        if (r_[kSp] < stack_.deepest) {
            stack_.deepest = r_[kSp];
        }
        return next_;
    }

    bool IsMet(Word condition) const {
        if (condition == 14) {
            return true;
        }
        if (condition == 15) {
            Stop("instruction of a later processor", pc_, op_);
        }
        const bool rows[] = {z_, c_, n_, v_, c_ && !z_, n_ == v_, !z_ && n_ == v_};
        return rows[condition >> 1] != Bit(condition, 0);
    }

    void Execute() {
        switch (Bits(op_, 25, 3)) {
            case 0:
                if (Bit(op_, 7) && Bit(op_, 4)) {
                    return MultiplyOrHalfword();
                }
                [[fallthrough]];
            case 1: return Compute();
            case 2: return Transfer(Bits(op_, 0, 12));
            case 3:
                if (Bit(op_, 4)) {
                    Stop("undefined instruction", pc_, op_);
                }
                return Transfer(ShiftedByNumber().value);
            case 4: return TransferMany();
            case 5: return Branch();
            default: Stop("coprocessor or system call", pc_, op_);
        }
    }

    Word& Rd() { return r_[Bits(op_, 12, 4)]; }
    Word& Rn() { return r_[Bits(op_, 16, 4)]; }
    Word& Rs() { return r_[Bits(op_, 8, 4)]; }
    Word& Rm() { return r_[Bits(op_, 0, 4)]; }
    void Set(Word number, Word value) {
        r_[number] = value;
        if (number == kPc) {
            next_ = value;
        }
    }
    void SetRd(Word value) { Set(Bits(op_, 12, 4), value); }

    void Branch() {
        if (Bit(op_, 24)) {
            r_[kLr] = pc_ + 4;
        }
        next_ = pc_ + 8 + static_cast<Word>(static_cast<Signed>(op_ << 8) >> 6);
    }

    void MultiplyOrHalfword() {
        if (Bits(op_, 5, 2) != 0) {
            TransferHalfword();
        } else if (Bits(op_, 22, 6) == 0) {
            Multiply();
        } else if (Bits(op_, 23, 5) == 1) {
            MultiplyLong();
        } else {
            Stop("swap", pc_, op_);
        }
    }

    void Multiply() {  // the places of Rn and Rd are the other way round
        Rn() = Rm() * Rs() + (Bit(op_, 21) ? Rd() : 0);
        if (Bit(op_, 20)) {
            SetSign(Rn());
        }
    }

    void MultiplyLong() {
        std::uint64_t value =
            Bit(op_, 22) ? static_cast<std::uint64_t>(std::int64_t{static_cast<Signed>(Rm())} *
                                                      static_cast<Signed>(Rs()))
                         : std::uint64_t{Rm()} * Rs();
        if (Bit(op_, 21)) {
            value += std::uint64_t{Rn()} << 32 | Rd();
        }
        Rd() = static_cast<Word>(value);
        Rn() = static_cast<Word>(value >> 32);
        if (Bit(op_, 20)) {
            n_ = value >> 63 != 0;
            z_ = value == 0;
        }
    }

    // The address of a transfer, before or after the base has moved; the base as it is then.
    struct Place {
        Word address;
        Word moved;
    };
    Place PlaceOf(Word offset) {
        const Word moved = Bit(op_, 23) ? Rn() + offset : Rn() - offset;
        return {Bit(op_, 24) ? moved : Rn(), moved};
    }
    void MoveBase(const Place& place) {
        if (!Bit(op_, 24) || Bit(op_, 21)) {
            Rn() = place.moved;
        }
    }

    void TransferHalfword() {
        const Place place = PlaceOf(Bit(op_, 22) ? Bits(op_, 8, 4) << 4 | Bits(op_, 0, 4) : Rm());
        if (!Bit(op_, 20)) {
            if (Bits(op_, 5, 2) != 1) {
                Stop("transfer of two words", pc_, op_);
            }
            At<std::uint16_t>(place.address, pc_) = static_cast<std::uint16_t>(Rd());
            return MoveBase(place);
        }
        Word value = 0;
        switch (Bits(op_, 5, 2)) {
            case 1: value = At<std::uint16_t>(place.address, pc_); break;
            case 2: value = static_cast<Word>(Signed{At<std::int8_t>(place.address, pc_)}); break;
            default: value = static_cast<Word>(Signed{At<std::int16_t>(place.address, pc_)});
        }
        MoveBase(place);
        SetRd(value);
    }

    void Transfer(Word offset) {
        const Place place = PlaceOf(offset);
        const bool is_byte = Bit(op_, 22);
        if (!Bit(op_, 20)) {
            if (is_byte) {
                At<std::uint8_t>(place.address, pc_) = static_cast<std::uint8_t>(Rd());
            } else {
                At<Word>(place.address, pc_) = Rd();
            }
            return MoveBase(place);
        }
        const Word value =
            is_byte ? At<std::uint8_t>(place.address, pc_) : At<Word>(place.address, pc_);
        MoveBase(place);
        SetRd(value);
    }

    void TransferMany() {
        const Word bytes = 4 * static_cast<Word>(__builtin_popcount(Bits(op_, 0, 16)));
        const Word base_number = Bits(op_, 16, 4);
        const Word base = Rn();
        const bool up = Bit(op_, 23);
        const Word moved = up ? base + bytes : base - bytes;
        Word address = (up ? base : moved) + (Bit(op_, 24) == up ? 4 : 0);
        const bool loads = Bit(op_, 20);
        if (Bit(op_, 21)) {
            Rn() = moved;
        }
        for (Word number = 0; number < 16; ++number) {
            if (!Bit(op_, static_cast<int>(number))) {
                continue;
            }
            if (loads) {
                Set(number, At<Word>(address, pc_));
            } else {
                At<Word>(address, pc_) = number == base_number ? base : r_[number];
            }
            address += 4;
        }
    }

    Shifted ShiftedByNumber() {
        const Word by = Bits(op_, 7, 5);
        const bool is_rrx = by == 0 && Bits(op_, 5, 2) == 3;
        if (is_rrx) {
            return {Rm() >> 1 | static_cast<Word>(c_) << 31, Bit(Rm(), 0)};
        }
        // A shift to the right by 0 stands for one by 32.
        return Shift(Rm(), by == 0 && Bits(op_, 5, 2) != 0 ? 32 : by);
    }

    Shifted Shift(Word value, Word by) const {
        if (by == 0) {
            return {value, c_};
        }
        const Word less = by > 32 ? 33 : by;
        const std::uint64_t wide = value;
        switch (Bits(op_, 5, 2)) {
            case 0: return {static_cast<Word>(wide << less), (wide << less >> 32 & 1) != 0};
            case 1: return {static_cast<Word>(wide >> less), (wide >> (less - 1) & 1) != 0};
            case 2: {
                const std::int64_t sign = static_cast<Signed>(value);
                return {static_cast<Word>(sign >> less), (sign >> (less - 1) & 1) != 0};
            }
            default: {
                const Word rotated = RotateRight(value, by);
                return {rotated, Bit(rotated, 31)};
            }
        }
    }

    Shifted SecondOperand() {
        if (Bit(op_, 25)) {
            const Word by = 2 * Bits(op_, 8, 4);
            const Word value = RotateRight(Bits(op_, 0, 8), by);
            return {value, by == 0 ? c_ : Bit(value, 31)};
        }
        return Bit(op_, 4) ? Shift(Rm(), Rs() & 0xFF) : ShiftedByNumber();
    }

    void SetSign(Word value) {
        n_ = Bit(value, 31);
        z_ = value == 0;
    }

    // Both operands and the carry that comes in; subtraction adds the complement.
    Word Add(Word a, Word b, bool in) {
        const std::uint64_t sum = std::uint64_t{a} + b + (in ? 1 : 0);
        const Word value = static_cast<Word>(sum);
        if (Bit(op_, 20)) {
            c_ = sum >> 32 != 0;
            v_ = Bit(~(a ^ b) & (a ^ value), 31);
        }
        return value;
    }

    void Compute() {
        const Word code = Bits(op_, 21, 4);
        const bool compares = code >= 8 && code <= 11;
        if (compares && !Bit(op_, 20)) {
            Stop("status register, or instruction of a later processor", pc_, op_);
        }
        const Word a = Rn();
        const bool carry = c_;
        const Shifted b = SecondOperand();
        const bool is_logic = code <= 1 || code == 8 || code == 9 || code >= 12;
        const Word value = is_logic ? Logic(code, a, b.value) : Arithmetic(code, a, b.value, carry);
        if (Bit(op_, 20)) {
            SetSign(value);
            c_ = is_logic ? b.carry : c_;
        }
        if (!compares) {
            SetRd(value);
        }
    }

    static Word Logic(Word code, Word a, Word b) {
        switch (code) {
            case 0:
            case 8: return a & b;
            case 1:
            case 9: return a ^ b;
            case 12: return a | b;
            case 13: return b;
            case 14: return a & ~b;
            default: return ~b;
        }
    }

    Word Arithmetic(Word code, Word a, Word b, bool carry) {
        switch (code) {
            case 2:
            case 10: return Add(a, ~b, true);
            case 3: return Add(b, ~a, true);
            case 4:
            case 11: return Add(a, b, false);
            case 5: return Add(a, b, carry);
            case 6: return Add(a, ~b, carry);
            default: return Add(b, ~a, carry);
        }
    }

    const Image& image_;
    Stack& stack_;
    Word r_[16] = {};
    bool n_ = false, z_ = false, c_ = false, v_ = false;
    Word op_ = 0, pc_ = 0, next_ = 0;
    std::uint64_t steps_ = 0;
};

}  // namespace

Word RunArm(const Image& image, Stack& stack, Word function, const Word (&arguments)[4]) {
    return Arm(image, stack).Run(function, arguments);
}

}  // namespace sim::guest
