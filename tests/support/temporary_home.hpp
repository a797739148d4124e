// Test support shared by every test folder: a temporary home folder (HOME,
// XDG_CONFIG_HOME and XDG_DATA_HOME point into a fresh folder that is
// removed afterwards) and small helpers for real files.
#pragma once

#include <stdlib.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/user_paths.hpp"

namespace lumenote::testing {

class TemporaryHome {
  public:
    TemporaryHome() {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base && *base ? base : "/tmp") + "/lumenote-home-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        root_ = pattern;
        const std::map<std::string, std::string> environment{
            {"HOME", root_.string()},
            {"XDG_CONFIG_HOME", (root_ / "config").string()},
            {"XDG_DATA_HOME", (root_ / "data").string()}};
        paths_ = UserPaths::fromEnvironment([environment](const char* name) -> const char* {
            const auto found = environment.find(name);
            return found == environment.end() ? nullptr : found->second.c_str();
        });
    }
    ~TemporaryHome() { std::filesystem::remove_all(root_); }
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

    const std::filesystem::path& root() const { return root_; }
    const UserPaths& paths() const { return paths_; }

  private:
    std::filesystem::path root_;
    UserPaths paths_;
};

inline void writeFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}

inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The permission bits of `path` itself (a symbolic link is not followed).
inline mode_t modeOf(const std::filesystem::path& path) {
    struct stat info {};
    if (::lstat(path.c_str(), &info) != 0) {
        return 0;
    }
    return info.st_mode & 07777;
}

// The names of every entry of `folder`.
inline std::set<std::string> namesIn(const std::filesystem::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

// Names of the files in `folder` whose name contains `part`.
inline std::vector<std::filesystem::path> filesContaining(const std::filesystem::path& folder,
                                                          std::string_view part) {
    std::vector<std::filesystem::path> found;
    if (!std::filesystem::exists(folder)) {
        return found;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().filename().string().find(part) != std::string::npos) {
            found.push_back(entry.path());
        }
    }
    return found;
}

}  // namespace lumenote::testing
