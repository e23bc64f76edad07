#pragma once

#include "startup/cpython.h"

#include <array>
#include <cstddef>

// How a generated function takes its arguments. Every parameter has a keyword and an "O&" converter. A call
// that gives each parameter once, by position or by a known keyword, is taken straight from the tuple and the
// dictionary; every other call goes through PyArg_ParseTupleAndKeywords, whose messages stand as CPython
// writes them. The fast way accepts exactly what the parse would accept, and a converter that refuses leaves
// the same exception on both.

/// The keywords of one overload. The interned texts are made at the first call by keyword and live with the
/// process.
template <std::size_t N>
struct ParameterNames {
    std::array<const char*, N + 1> texts;
    std::array<PyObject*, N> interned{};
};

/// The value of one keyword in a dictionary, borrowed; null without an error when there is none. The keyword
/// is interned at the first call and kept in `*interned`.
PyObject* fn_find_keyword(PyObject* kwargs, const char* text, PyObject** interned);

/// Finds each of `count` parameters once in a positional tuple and a keyword dictionary (null or not). True
/// when every parameter is there and nothing else is; `found` then holds borrowed references. No error is
/// set.
bool fn_find_arguments(PyObject* args, PyObject* kwargs, const char* const* texts, PyObject** interned,
                       std::size_t count, PyObject** found);

/// One parameter: its converter, known to the compiler, and where the converted value goes.
template <auto Convert, class Target>
struct Argument {
    static constexpr auto converter = Convert;
    Target* target;

    [[nodiscard]] bool take(PyObject* value) const { return Convert(value, target) != 0; }
};

template <auto Convert, class Target>
Argument<Convert, Target> fn_argument(Target& target) {
    return {&target};
}

template <std::size_t N, class... Arguments>
bool fn_parse_arguments_told(PyObject* args, PyObject* kwargs, const ParameterNames<N>& names,
                             const Arguments&... arguments) {
    static constexpr auto format = [] {
        std::array<char, 2 * N + 1> text{};
        for (std::size_t i = 0; i < N; ++i) {
            text[2 * i] = 'O';
            text[2 * i + 1] = '&';
        }
        return text;
    }();
    auto* keywords = const_cast<char**>(names.texts.data());
    const auto parse = [&](auto... pairs) {
        return PyArg_ParseTupleAndKeywords(args, kwargs, format.data(), keywords, pairs...) != 0;
    };
    const auto flatten = [&parse]<class... Done>(const auto& self, Done... done) {
        return [&self, &parse, done...]<class First, class... Rest>(const First& first, const Rest&... rest) {
            if constexpr (sizeof...(Rest) == 0) {
                return parse(done..., First::converter, first.target);
            } else {
                return self(self, done..., First::converter, first.target)(rest...);
            }
        };
    };
    return flatten(flatten)(arguments...);
}

/// The part of the parse for calls that are not all by position.
template <std::size_t N, class... Arguments>
[[gnu::noinline]] bool fn_parse_keywords(PyObject* args, PyObject* kwargs, ParameterNames<N>& names,
                                         const Arguments&... arguments) {
    std::array<PyObject*, N> found;
    if (fn_find_arguments(args, kwargs, names.texts.data(), names.interned.data(), N, found.data())) {
        std::size_t position = 0;
        return (arguments.take(found[position++]) && ...);
    }
    return fn_parse_arguments_told(args, kwargs, names, arguments...);
}

/// Converts the arguments of one overload. False leaves an exception set.
template <std::size_t N, class... Arguments>
[[gnu::always_inline]] inline bool fn_parse_arguments(PyObject* args, PyObject* kwargs,
                                                      ParameterNames<N>& names,
                                                      const Arguments&... arguments) {
    static_assert(N == sizeof...(Arguments) && N > 0);
    if (kwargs == nullptr && PyTuple_GET_SIZE(args) == static_cast<Py_ssize_t>(N)) [[likely]] {
        Py_ssize_t position = 0;
        return (arguments.take(PyTuple_GET_ITEM(args, position++)) && ...);
    }
    return fn_parse_keywords(args, kwargs, names, arguments...);
}

/// An overload without parameters. False leaves CPython's own message set.
bool fn_parse_no_arguments(PyObject* args, PyObject* kwargs);

/// What every setter answers to `del object.name`, which Python tells by a null value.
int fn_refuse_deletion();
