// The defaults domain on Linux: one typed JSON document,
// $XDG_CONFIG_HOME/Lumenote/defaults.json.
//
// The document is a flat JSON object from key to value; a value's JSON type is
// its stored type (true/false, integer, number with a fraction or exponent,
// string, array of strings), so a key stored with another type is recognised.
// It carries no format version of its own: like the platform key-value domain
// it stands for, it is a bag of keys, and keys this release does not know (or
// values of types it does not model) are kept when it is rewritten.
//
// The file may be shared by several processes (the command line and the
// desktop application): every change is a whole-file atomic replacement, and
// before each read and each change the file's identity (inode, size,
// modification and change times) is compared with what this process last saw;
// when another process replaced it, it is read again first, so that a change
// never writes back keys read before someone else changed them. Two changes
// racing in the same instant still end with the last writer's document.
//
// A document that cannot be used (not JSON, not an object at its root, nested
// deeper than kMaximumDefaultsNesting, larger than kMaximumDefaultsBytes, a symbolic link or not a
// regular file, or unreadable) is moved aside under a "corrupt" name and the domain starts empty,
// so every setting takes its default. Nothing here fails the program: a change that cannot be
// written stays in effect for this process and is reported by lastWriteError().
#pragma once

#include <sys/types.h>

#include <ctime>
#include <filesystem>
#include <functional>
#include <map>

#include "foundation/dates.hpp"
#include "foundation/private_file.hpp"
#include "foundation/user_paths.hpp"
#include "settings/defaults_document.hpp"
#include "settings/defaults_domain.hpp"

namespace lumenote::settings {

// The largest defaults document that is read: far above what the settings
// need, small enough that a damaged file cannot exhaust memory.
inline constexpr std::size_t kMaximumDefaultsBytes = 1024 * 1024;

class JsonFileDefaultsDomain final : public DefaultsDomain {
  public:
    using Clock = std::function<Date()>;

    // $XDG_CONFIG_HOME/Lumenote/defaults.json for these folders.
    static std::filesystem::path pathFor(const UserPaths& paths);

    // Reads nothing until the first read or change. `now` dates the name of a
    // quarantined file.
    JsonFileDefaultsDomain(std::filesystem::path path, Clock now,
                           FileWriteOperations& operations = systemFileWriteOperations());

    std::optional<DefaultsValue> object(std::string_view key) override;
    std::vector<std::string> keys() override;
    void set(std::string_view key, DefaultsValue value) override;
    void remove(const std::vector<std::string>& keys) override;
    using DefaultsDomain::remove;
    std::optional<PrivateFileError> lastWriteError() const override { return lastWriteError_; }
    // One stat of the file; the document is read again only when it was
    // replaced (or first appeared, or went away) since this process saw it.
    bool refreshFromStorage() override;

    const std::filesystem::path& path() const { return path_; }
    // Where the last unusable document was moved, when one was found.
    const std::optional<std::filesystem::path>& lastQuarantinedPath() const {
        return lastQuarantinedPath_;
    }

  private:
    // What identifies one version of the file on disk.
    struct FileSignature {
        bool exists = false;
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        std::timespec modified{};
        std::timespec changed{};
        bool operator==(const FileSignature& other) const;
    };

    FileSignature currentSignature() const;
    void refreshIfChanged();
    void reload();
    void quarantineDamagedFile();
    void writeBack();

    std::filesystem::path path_;
    Clock now_;
    FileWriteOperations& operations_;
    DefaultsValues values_;
    std::optional<FileSignature> seen_;  // nullopt until the file was first looked at
    // Another process's version was read since refreshFromStorage() last
    // reported one.
    bool reloadedSinceLastRefresh_ = false;
    std::optional<PrivateFileError> lastWriteError_;
    std::optional<std::filesystem::path> lastQuarantinedPath_;
};

}  // namespace lumenote::settings
