#pragma once

#include <cstddef>

/// A text that can stand as a template argument; names of types and managed classes are joined from such.
template <std::size_t Size>
struct FixedText {
    char text[Size]{};

    constexpr FixedText() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): a literal is meant to become one without a word.
    constexpr FixedText(const char (&literal)[Size]) {
        for (std::size_t i = 0; i < Size; ++i) {
            text[i] = literal[i];
        }
    }
};

/// Two texts as one, each with its terminator counted.
template <std::size_t A, std::size_t B>
constexpr FixedText<A + B - 1> operator+(const FixedText<A>& front, const FixedText<B>& back) {
    FixedText<A + B - 1> joined;
    for (std::size_t i = 0; i + 1 < A; ++i) {
        joined.text[i] = front.text[i];
    }
    for (std::size_t i = 0; i < B; ++i) {
        joined.text[A - 1 + i] = back.text[i];
    }
    return joined;
}

/// The joined text with an address of its own.
template <FixedText Front, FixedText Back>
inline constexpr auto kJoinedText = Front + Back;
