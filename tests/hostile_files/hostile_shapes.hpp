// The hostile shapes a product file can take on disk, how to put each in a
// file's place, and what the disk holds before and after a read, so that the
// catalogue can prove nothing was lost, followed or left half-written.
#pragma once

#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/temporary_home.hpp"

namespace lumenote::hostile {

namespace fs = std::filesystem;

enum class Shape {
    validDocument,
    linkToValidFile,
    danglingLink,
    fifo,
    folderInPlace,
    emptyFile,
    exactlyTheCap,
    oneByteOverCap,
    newerVersion,
    invalidUtf8,
    truncatedJson,
    groupReadableFolder,  // the containing folder 0755
    worldWritableFolder,  // the containing folder 0777
    sharedFile,           // the file 0644
    unreadableFile,       // the file 0000
};
inline constexpr std::size_t kShapeCount = 15;
static_assert(static_cast<std::size_t>(Shape::unreadableFile) + 1 == kShapeCount);

inline constexpr std::array<std::string_view, kShapeCount> kShapeNames{
    "valid document",  "link to a valid file",
    "dangling link",   "FIFO",
    "folder in place", "empty file",
    "exactly the cap", "one byte over the cap",
    "newer version",   "invalid UTF-8",
    "truncated JSON",  "folder 0755",
    "folder 0777",     "file 0644",
    "file 0000"};

inline std::string_view nameOf(Shape shape) {
    return kShapeNames[static_cast<std::size_t>(shape)];
}

// The bytes a shape puts in the file (or in a link's target).
struct ShapeSource {
    std::string valid;                      // a document of the current version
    std::size_t cap = 0;                    // the reader's size cap, in bytes
    std::optional<std::string> versionKey;  // the member a newer document raises
};

// `valid` padded with JSON whitespace (a space is whitespace to every reader)
// to exactly `size` bytes.
inline std::string padded(const std::string& valid, std::size_t size) {
    return valid + std::string(size - valid.size(), ' ');
}

inline std::string bytesFor(const ShapeSource& source, Shape shape) {
    switch (shape) {
        case Shape::emptyFile:
            return "";
        case Shape::exactlyTheCap:
            return padded(source.valid, source.cap);
        case Shape::oneByteOverCap:
            return padded(source.valid, source.cap + 1);
        case Shape::newerVersion: {
            nlohmann::json document = nlohmann::json::parse(source.valid);
            document[*source.versionKey] = 2;
            return document.dump();
        }
        case Shape::invalidUtf8: {
            // A lone continuation byte inside the first string (or at the
            // start of a document without strings).
            std::string bytes = source.valid;
            const auto quote = bytes.find('"');
            bytes.insert(quote == std::string::npos ? 0 : quote + 1, "\x80\xff");
            return bytes;
        }
        case Shape::truncatedJson:
            return source.valid.substr(0, source.valid.size() / 2);
        default:
            return source.valid;
    }
}

// What one object on disk is: its type and, by type, its bytes, the target
// of a link, or the bytes of the file kept inside a folder.
struct Fingerprint {
    fs::file_type type = fs::file_type::not_found;
    std::string content;
    bool operator==(const Fingerprint&) const = default;
};

inline constexpr std::string_view kKeptInsideFolder = "kept-inside.txt";

inline Fingerprint fingerprintOf(const fs::path& path) {
    std::error_code error;
    const fs::file_type type = fs::symlink_status(path, error).type();
    switch (type) {
        case fs::file_type::regular:
            return {type, testing::readFile(path)};
        case fs::file_type::symlink:
            return {type, fs::read_symlink(path, error).string()};
        case fs::file_type::directory:
            return {type, testing::readFile(path / kKeptInsideFolder)};
        default:
            return {type, {}};
    }
}

// Puts `shape` at `path` and returns where a link points, when it is one.
// Every folder on the way is made 0700 unless the shape is about the folder.
inline std::optional<fs::path> place(const ShapeSource& source, Shape shape, const fs::path& path,
                                     const fs::path& root) {
    const fs::path folder = path.parent_path();
    fs::create_directories(folder);
    fs::permissions(folder, fs::perms::owner_all);
    std::optional<fs::path> target;
    switch (shape) {
        case Shape::linkToValidFile:
        case Shape::danglingLink:
            target =
                root / (shape == Shape::danglingLink ? "nowhere" : "elsewhere") / path.filename();
            if (shape == Shape::linkToValidFile) {
                testing::writeFile(*target, source.valid);
                ::chmod(target->c_str(), 0640);
            }
            fs::create_symlink(*target, path);
            return target;
        case Shape::fifo:
            ::mkfifo(path.c_str(), 0600);
            return std::nullopt;
        case Shape::folderInPlace:
            testing::writeFile(path / kKeptInsideFolder, "a file that must survive");
            return std::nullopt;
        default:
            break;
    }
    testing::writeFile(path, bytesFor(source, shape));
    const std::map<Shape, mode_t> fileModes{{Shape::sharedFile, 0644},
                                            {Shape::unreadableFile, 0000}};
    const std::map<Shape, mode_t> folderModes{{Shape::groupReadableFolder, 0755},
                                              {Shape::worldWritableFolder, 0777}};
    ::chmod(path.c_str(), fileModes.contains(shape) ? fileModes.at(shape) : 0600);
    if (folderModes.contains(shape)) {
        ::chmod(folder.c_str(), folderModes.at(shape));
    }
    return std::nullopt;
}

// Every entry moved aside from `path`: "<stem>.corrupt-<seconds>[-n]<extension>"
// in its folder.
inline std::vector<fs::path> quarantinedCopiesOf(const fs::path& path) {
    std::vector<fs::path> found;
    const std::string prefix = path.stem().string() + ".corrupt-";
    for (const auto& entry : fs::directory_iterator(path.parent_path())) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(prefix) && name.ends_with(path.extension().string())) {
            found.push_back(entry.path());
        }
    }
    return found;
}

// Where `path` was moved aside, when exactly once.
inline std::optional<fs::path> quarantinedCopyOf(const fs::path& path) {
    const auto copies = quarantinedCopiesOf(path);
    return copies.size() == 1 ? std::optional(copies.front()) : std::nullopt;
}

// The bytes of every regular file under `root` (links not followed), with
// how often each occurs. Modes are left alone: a file this process cannot
// read counts as empty, before and after alike.
inline std::multiset<std::string> contentsUnder(const fs::path& root) {
    std::multiset<std::string> contents;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.is_symlink() || !entry.is_regular_file()) {
            continue;
        }
        contents.insert(testing::readFile(entry.path()));
    }
    return contents;
}

// Every name under `root` that ends in ".temporary".
inline std::vector<fs::path> temporaryFilesUnder(const fs::path& root) {
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().filename().string().ends_with(".temporary")) {
            found.push_back(entry.path());
        }
    }
    return found;
}

}  // namespace lumenote::hostile
