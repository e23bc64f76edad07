#pragma once

#include <string>

class HostEnvironment;

/// The text that a missing managed method is reported with.
std::string missing_method_error_message(const char* assembly, const char* type, const char* method,
                                         int status);

/// Looks up one managed method through the runtime's host. In a forked child it gives the dead entry instead,
/// with status 0.
int fn_bind_method(const HostEnvironment& host, const char* assembly, const char* type, const char* method,
                   void** slot);
