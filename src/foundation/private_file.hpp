// Private files: the one implementation of the file rules every JSON document
// of the system follows (size cap before reading, no symbolic links, regular
// files only, atomic replacement with fsync, quarantine instead of deletion,
// folders 0700 and files 0600).
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/dates.hpp"
#include "foundation/result.hpp"

namespace lumenote {
inline namespace foundation {

enum class PrivateFileError {
    missing,          // no file at the path
    symbolicLink,     // the path is a symbolic link (never followed)
    notRegularFile,   // a folder, FIFO, socket or device
    tooLarge,         // larger than the caller's cap; nothing was read
    unreadable,       // open or read failed for another reason
    folderUnusable,   // the parent folder could not be created or made private
    writeFailed,      // writing, syncing or renaming the temporary file failed
    quarantineFailed  // the damaged file could not be moved aside
};

// A short English description, used in diagnostics and in the messages of the
// stores that wrap this helper.
std::string_view describe(PrivateFileError error);

// The system calls an atomic write makes, so that tests can make one fail
// part-way. The default implementation calls POSIX directly.
class FileWriteOperations {
  public:
    virtual ~FileWriteOperations() = default;
    // write(2) semantics: returns the number of bytes written or -1.
    virtual long write(int descriptor, const char* data, std::size_t size);
    virtual int fsync(int descriptor);
    virtual int rename(const char* from, const char* to);
};

// The operations used when none are injected.
FileWriteOperations& systemFileWriteOperations();

namespace private_file {

// The mode of every private file: read and write for its owner only.
inline constexpr unsigned kPrivateFileMode = 0600;

// Creates `folder` and any missing parents with mode 0700 (whatever the
// umask), and narrows an existing `folder` to 0700; parents that already exist
// are left as they are. Folders may be reached through symbolic links (a user
// may move a data folder elsewhere); only files are never followed. Fails with
// `folderUnusable` when a component exists but is not a folder, or when a
// folder cannot be created or narrowed.
Result<void, PrivateFileError> ensureFolder(const std::filesystem::path& folder);

// Reads the whole file at `path`. The file is opened with O_NOFOLLOW (a
// symbolic link is refused, never followed) and O_NONBLOCK (a FIFO cannot
// block the open), must be a regular file, and its size is checked on the
// opened descriptor against `maximumBytes` before any byte is read: a file of
// exactly `maximumBytes` is read, one byte more is `tooLarge`. A file that
// grows past the cap while being read is `tooLarge` as well.
Result<std::string, PrivateFileError> read(const std::filesystem::path& path,
                                           std::size_t maximumBytes);

// Replaces the file at `path` with `contents` atomically: writes a temporary
// sibling (mode 0600) named "." + file name + a random part + ".temporary", so
// that folder readers can skip it by name, fsyncs it, renames it over `path`,
// then fsyncs the folder. The parent folder is ensured with ensureFolder. Any
// failure up to the rename leaves the previous file whole and removes the
// temporary file; a failure to sync the folder afterwards is still
// `writeFailed`, though the new contents are then already in place. When
// `path` is a symbolic link the link itself is replaced, its target untouched.
//
// `Durability::unsynced` skips both fsyncs, for files that are worthless after
// a restart and written often (a browser event waiting in the bridge inbox):
// readers still never see a half-written file, but after a power cut the file
// may be missing or empty.
enum class Durability { synced, unsynced };
Result<void, PrivateFileError> writeAtomically(
    const std::filesystem::path& path, std::string_view contents,
    FileWriteOperations& operations = systemFileWriteOperations(),
    Durability durability = Durability::synced);

// The name a damaged file is moved to: the file's stem, ".corrupt-", the whole
// seconds since 1970 of `now`, then the original extension, in the same folder
// ("active-session-v1.json" -> "active-session-v1.corrupt-1763280000.json").
// When that name is taken a counter is appended to the seconds ("-2", "-3" ...).
std::filesystem::path quarantinePath(const std::filesystem::path& path, Date now);

// Moves a damaged file aside under quarantinePath (never deletes it, never
// replaces an existing file) and sets a regular file to mode 0600. Returns
// where it now lies. A symbolic link is moved as the link itself, never
// followed. The mode is narrowed just before the move, so that a failure
// leaves the file where it was instead of moved aside but still readable by
// others.
Result<std::filesystem::path, PrivateFileError> quarantine(const std::filesystem::path& path,
                                                           Date now);

}  // namespace private_file

// The outcome of loading a versioned JSON document through loadVersionedJson.
enum class VersionedJsonStatus {
    missing,       // no file: start empty
    loaded,        // `text` holds the document of a supported version
    newerVersion,  // a format version above the supported one: leave it untouched, read-only
    quarantined,   // undecodable or of an invalid version: moved aside, start empty
    refused        // symbolic link, not a regular file, too large or unreadable: left in place
};

struct VersionedJsonLoad {
    VersionedJsonStatus status = VersionedJsonStatus::missing;
    std::string text;                              // the file's bytes when `loaded`
    std::optional<long long> formatVersion;        // as read, when one was read
    std::optional<std::filesystem::path> movedTo;  // where a quarantined file went
    std::optional<PrivateFileError> error;         // why the file was `refused`
};

// The format version of `text`: the integer member `versionKey` of a JSON
// object at its root, when it fits a long long; nullopt for text that is not
// well-formed JSON, another root, a missing member or one that is not an
// integer (1.0 is not one).
std::optional<long long> formatVersionOf(std::string_view text, std::string_view versionKey);

// Reads a small JSON document whose root object carries an integer member
// named `versionKey`. The member is read first on its own, so that a newer
// layout is recognised without decoding the rest: a version above
// `supportedVersion` is `newerVersion` and the file is left byte-for-byte as
// it is. Text that is not well-formed JSON with an object at its root, or
// lacks a positive integer version (one that fits 64 bits; 1.0 is not an
// integer), is quarantined. When the quarantine itself fails the file stays in
// place and the result is `refused` with `quarantineFailed`. Decoding the rest
// of the document is the caller's job; a caller that then finds it invalid
// calls private_file::quarantine itself.
VersionedJsonLoad loadVersionedJson(const std::filesystem::path& path, std::size_t maximumBytes,
                                    long long supportedVersion, std::string_view versionKey,
                                    Date now);

}  // namespace foundation
}  // namespace lumenote
