#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/Defaults.hpp"
#include "platform/Log.hpp"
#include "platform/linux/FileIO.hpp"
#include "platform/linux/JsonDocument.hpp"
#include "platform/linux/XdgFolders.hpp"

namespace quorvel::native {

/// One JSON file a domain: `<configHome>/<domain>/defaults.json`; presets in
/// `quorvel/presets.json` of the data folders. Whatever else a file holds, also what this program
/// does not know, outlives every write.
///
/// A file of our own whose content is no JSON object is renamed to `defaults.json.unreadable-<n>`
/// when it is first met, with one line in the log, and the domain is empty from then on. A file
/// that cannot be read at all stays where it is, and nothing is written then.
class JsonDefaults final : public Defaults {
public:
    JsonDefaults(std::string domain, const XdgFolders& folders, Log& log);

    std::optional<Value> object(std::string_view key) const override;
    bool apply(const std::vector<DefaultsChange>& changes) override;
    bool areTooLarge(const std::vector<DefaultsChange>& changes) const override;
    Value::Dictionary persistentDomain(std::string_view domain) const override;
    std::optional<Value> preset(std::string_view key) const override;

    /// Letters, digits, "-", "_" and "."; no leading dot, no two dots in a row, at most 200 bytes:
    /// nothing that could lead out of the folder of the domains.
    static bool isDomainName(std::string_view name);

private:
    enum class Outcome { read, absent, unreadable, failed };

    /// A file as it was last found, and whether that is still what it is.
    struct File {
        explicit File(std::string path) : path(std::move(path)) {}

        std::string path;
        Outcome outcome = Outcome::absent;
        std::string reason;  ///< when unreadable or failed
        JsonDocument document;
        std::optional<FileStamp> stamp;  ///< while what was read may be used again
        std::string complaint;           ///< the last one logged, so that it is logged once
    };

    void refresh(File& file) const;
    void complain(File& file, const std::string& message) const;
    /// The content now; empty when it cannot be had.
    const JsonDocument& current(File& file) const;
    const JsonDocument& currentOwn() const;
    /// With the lock held.
    bool setAsideOwn() const;
    void couldNotSetAside(int error) const;
    /// Whether the own file would be another one afterwards, as far as can be said without a lock.
    bool areNeeded(const std::vector<DefaultsChange>& changes) const;
    /// Reads the own file afresh, changes it and stores it, all under the lock. Why not, in
    /// `error`.
    bool update(const std::vector<DefaultsChange>& changes, std::string& error);

    std::string domain;
    std::string configHome;
    Log& log;
    bool isUsable;
    std::string folder;
    mutable File own;
    mutable std::vector<File> presets;
};

}  // namespace quorvel::native
