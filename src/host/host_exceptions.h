#pragma once

#include <cstdint>
#include <exception>
#include <string>

/// An error of the host layer: a code, and a text that is either given or composed from the system's own.
class BaseException : public std::exception {
public:
    /// The text will be the system's text for the code.
    explicit BaseException(unsigned code);

    /// The text stands as given.
    BaseException(unsigned code, std::string text);

    /// The text stands as given; the code is 0.
    explicit BaseException(std::string text);

    /// The text will be `prefix`, ": " when the code is not 0, and the system's text for the code.
    BaseException(std::string prefix, unsigned code);

    ~BaseException() override;

    /// The text, composed at the first call when it was not given.
    const char* what() const noexcept override;

    /// 0 when there is none.
    std::uint32_t error_code() const { return m_code; }

private:
    std::string m_prefix;
    std::uint32_t m_code;
    mutable std::string m_what;
};

/// The runtime could not be loaded, started or asked.
class HostException : public BaseException {
public:
    using BaseException::BaseException;
    ~HostException() override;
    const char* what() const noexcept override;
};
