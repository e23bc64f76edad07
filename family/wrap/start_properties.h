#pragma once

#include <string>
#include <vector>

/// The properties that the runtime starts with: what the host passed, completed by what a runtime in someone
/// else's process needs.
///
/// - An empty or missing list of trusted assemblies becomes every assembly of the runtime's own folder.
/// - That folder is added to the folders in which native libraries are looked for.
/// - Defaults are added for what the host did not set: a workstation collector without a thread of its own,
/// and
///   globalisation without ICU, which a machine may lack and whose absence would end the process.
class StartProperties {
public:
    /// `runtime_folder` is the real folder of the runtime library.
    /// Throws `std::runtime_error` when an assembly folder is not an absolute path: the runtime would answer
    /// with no more than a number.
    StartProperties(int count, const char* const* keys, const char* const* values,
                    const std::string& runtime_folder);

    /// The tables that the runtime takes. They point into this object.
    std::vector<const char*> keys() const;
    std::vector<const char*> values() const;

    /// The value of a property, null when it is not set.
    const std::string* find(const std::string& key) const;

private:
    struct Property {
        std::string key;
        std::string value;
    };

    std::string* find_mutable(const std::string& key);
    void complete_trusted_assemblies(const std::string& runtime_folder);
    void complete_native_folders(const std::string& runtime_folder);
    void add_defaults();
    void check_folders(const char* key) const;

    std::vector<Property> m_properties;
};
