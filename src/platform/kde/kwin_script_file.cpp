#include "platform/kde/kwin_script_file.hpp"

#include <system_error>

namespace lumenote::platform::kde {

namespace fs = std::filesystem;

std::optional<fs::path> shippedKWinScript(const fs::path& executableFolder) {
    std::error_code error;
    for (const fs::path& candidate :
         {executableFolder.parent_path() / "kwin" / kScriptFileName,
          executableFolder.parent_path() / "share/lumenote/kwin" / kScriptFileName}) {
        if (fs::is_regular_file(candidate, error)) {
            return candidate;
        }
    }
    return std::nullopt;
}

Result<fs::path, KWinScriptError> stageKWinScript(const fs::path& shipped,
                                                  const fs::path& runtimeFolder) {
    std::error_code error;
    const fs::path folder = runtimeFolder / "lumenote" / "kwin";
    for (const fs::path& step : {runtimeFolder / "lumenote", folder}) {
        if (fs::create_directory(step, error)) {
            fs::permissions(step, fs::perms::owner_all, error);
        }
        if (!fs::is_directory(step, error)) {
            return fail(KWinScriptError::scriptNotFound);
        }
    }
    const fs::path staged = folder / kScriptFileName;
    const fs::path partial = folder / (std::string(kScriptFileName) + ".partial");
    if (!fs::is_regular_file(shipped, error) ||
        !fs::copy_file(shipped, partial, fs::copy_options::overwrite_existing, error)) {
        fs::remove(partial, error);
        return fail(KWinScriptError::scriptNotFound);
    }
    fs::rename(partial, staged, error);
    if (error) {
        fs::remove(partial, error);
        return fail(KWinScriptError::scriptNotFound);
    }
    return staged;
}

}  // namespace lumenote::platform::kde
