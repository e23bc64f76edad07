#pragma once

/// True when the calling code runs inside a function of the shared object that holds `address`.
///
/// A managed `Environment.Exit` shuts the runtime down and then calls the C library's `exit`, whose handlers
/// end in the host's wish to shut the runtime down. To ask the runtime for that from within its own shutdown
/// hangs for ever; its frames on the stack tell that this is where the call comes from.
bool is_called_from_library_of(const void* address);
