#pragma once

#include <string>

/// Starts the runtime (or attaches to the one that a sibling module started), binds the exchange layer and
/// hands the callback tables over. 0, or -1 with TypeError set. A runtime that cannot start at all throws,
/// see HostEnvironment::instance. Nothing of it is undone by a later failure of the import.
int initialize_clr_host(std::string netcore_version, const char* assembly_name, bool debug,
                        std::string family, std::string product);
