#include "host/host_exceptions.h"

#include <utility>

#include "host/pal.h"

BaseException::BaseException(unsigned code) : m_code(code) {}

BaseException::BaseException(unsigned code, std::string text) : m_code(code), m_what(std::move(text)) {}

BaseException::BaseException(std::string text) : m_code(0), m_what(std::move(text)) {}

BaseException::BaseException(std::string prefix, unsigned code) : m_prefix(std::move(prefix)), m_code(code) {}

BaseException::~BaseException() = default;

const char* BaseException::what() const noexcept {
    if (m_what.empty()) {
        if (!m_prefix.empty()) {
            m_what = m_prefix;
            if (m_code != 0) {
                m_what += ": ";
            }
        }
        m_what += pal::to_error_string(static_cast<int>(m_code));
    }
    return m_what.c_str();
}

HostException::~HostException() = default;

const char* HostException::what() const noexcept {
    return BaseException::what();
}
