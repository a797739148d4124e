// Where Lumenote's KWin script lies, and the copy of it that KWin is given.
#pragma once

#include <filesystem>
#include <optional>

#include "foundation/result.hpp"
#include "platform/kde/kwin_script_error.hpp"

namespace lumenote::platform::kde {

inline constexpr const char* kScriptFileName = "lumenote-activation.js";

// The shipped script for an executable in `executableFolder`: in the build
// tree beside bin/ (build/kwin/), or installed under
// <prefix>/share/lumenote/kwin/. nullopt when neither holds it.
std::optional<std::filesystem::path> shippedKWinScript(
    const std::filesystem::path& executableFolder);

// Copies `shipped` to <runtimeFolder>/lumenote/kwin/lumenote-activation.js
// (folders created with mode 0700, the file replaced atomically) and returns
// that path. KWin reads the file when it runs the script and again after it
// restarts: a private copy keeps working while the build tree is rebuilt or
// the package is upgraded, and is readable by KWin wherever Lumenote itself
// runs from. Fails with scriptNotFound when `shipped` cannot be read or the
// copy cannot be written.
Result<std::filesystem::path, KWinScriptError> stageKWinScript(
    const std::filesystem::path& shipped, const std::filesystem::path& runtimeFolder);

}  // namespace lumenote::platform::kde
