/* Division of 64-bit numbers and the counting of leading zeros, which the compiler calls by name, for CPUs
 * whose compiler brings them for another ABI. */
typedef unsigned long long Unsigned;
typedef long long Signed;

enum { kBits = 64, kWordBits = 32 };

int __clzsi2(unsigned value) {
    int zeros = 0;
    while (zeros < kWordBits && (value & 0x80000000u >> zeros) == 0) {
        ++zeros;
    }
    return zeros;
}

static Unsigned Divide(Unsigned dividend, Unsigned divisor, Unsigned *rest) {
    Unsigned quotient = 0;
    *rest = 0;
    for (int bit = kBits - 1; bit >= 0; --bit) {
        const Unsigned carry = *rest >> (kBits - 1);
        *rest = *rest << 1 | (dividend >> bit & 1);
        if (carry || *rest >= divisor) {
            *rest -= divisor;
            quotient |= (Unsigned)1 << bit;
        }
    }
    return quotient;
}

static Unsigned Magnitude(Signed value) { return value < 0 ? -(Unsigned)value : (Unsigned)value; }

Unsigned __udivdi3(Unsigned a, Unsigned b) {
    Unsigned rest;
    return Divide(a, b, &rest);
}

Unsigned __umoddi3(Unsigned a, Unsigned b) {
    Unsigned rest;
    Divide(a, b, &rest);
    return rest;
}

Signed __divdi3(Signed a, Signed b) {
    Unsigned rest;
    const Unsigned quotient = Divide(Magnitude(a), Magnitude(b), &rest);
    return (Signed)((a < 0) != (b < 0) ? -quotient : quotient);
}

Signed __moddi3(Signed a, Signed b) {
    Unsigned rest;
    Divide(Magnitude(a), Magnitude(b), &rest);
    return (Signed)(a < 0 ? -rest : rest);
}
